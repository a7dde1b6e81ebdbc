// The written-form, drop-frame, duration and PAL actions of `basicutils
// timecode`:
//
//   parse TEXT [--keep] [--rate R]   read from the right, as CTimecodeParser
//   read TEXT [--rate R]             read from the left, as CTimecode::SetTime
//   drop TC [--start TC]             non-drop to drop-frame label
//   nondrop TC [--start TC]          drop-frame label to non-drop
//   end START LENGTH [--drop] [--rate 25]     inclusive end of a stretch
//   length START END [--drop] [--rate 25]     length of a stretch
//   overlap START LENGTH START LENGTH [--rate 25]
//   pal TC...                        relabel NTSC timecodes as PAL
//
// The options and the reading of operands are shared with the counting
// actions (TimecodeTool.h).
#include <basicutils/BasicUtils.h>

#include <cstdio>
#include <string>

#include "TimecodeTool.h"

namespace basicutils_tool {
namespace {

using basicutils::CDuration;
using basicutils::CTimecode;
using basicutils::CTimecodeParser;
using basicutils::MString;

// A stretch at the options' standard and drop type; with no length text it
// is one frame long.
CDuration Stretch(const TimecodeOptions& o, const std::string& start, const std::string* length) {
    CDuration d;
    d.SetFrameType(o.rate == 25.0 ? basicutils::kFrameType25 : basicutils::kFrameType30);
    d.SetDropType(o.drop ? basicutils::kDrop : basicutils::kNonDrop);
    d.SetStartTime(ReadTimecode(start, o.rate));
    if (length) d.SetDurationUI(ReadTimecode(*length, o.rate));
    return d;
}

int Parse(const TimecodeOptions& o) {
    CTimecodeParser parser;
    parser.SetFrameType(o.rate == 25.0   ? basicutils::kFrameType25
                        : o.rate == 24.0 ? basicutils::kFrameType24
                                         : basicutils::kFrameType30);
    parser.Parse(Widen(o.positional[1]).c_str(), o.keep);
    std::printf("hours %u, minutes %u, seconds %u, frames %u = %s\n", parser.GetHour(),
                parser.GetMinute(), parser.GetSecond(), parser.GetFrame(),
                Written(parser.GetTime()).c_str());
    return 0;
}

int Convert(const TimecodeOptions& o, bool toDrop) {
    CTimecode start = o.start.empty() ? CTimecode() : ReadTimecode(o.start, 30.0);
    CTimecode from = ReadTimecode(o.positional[1], 30.0), to;
    if (toDrop) {
        from.Nondrop2Drop(start, &to);
    } else {
        from.Drop2Nondrop(start, &to);
    }
    std::printf("%s %s = %s %s (from %s)\n", toDrop ? "non-drop" : "drop", Written(from).c_str(),
                toDrop ? "drop" : "non-drop", Written(to).c_str(), Written(start).c_str());
    return 0;
}

constexpr int kNotATextAction = -1;

// Runs a text action; kNotATextAction when `o` names none of them.
int RunTextAction(const TimecodeOptions& o) {
    const std::string& action = o.positional[0];
    size_t n = o.positional.size() - 1;
    int status = 0;
    auto need = [&](bool ok) { return ok ? 0 : ActionUsageError(action); };

    if (action == "parse") {
        if ((status = need(n == 1))) return status;
        return Parse(o);
    }
    if (action == "read") {
        if ((status = need(n == 1))) return status;
        CTimecode tc = ReadTimecode(o.positional[1], o.rate);
        std::printf("%s = frame %d\n", Written(tc).c_str(), tc.GetTotalFrame());
        return 0;
    }
    if (action == "drop" || action == "nondrop") {
        if ((status = need(n == 1))) return status;
        return Convert(o, action == "drop");
    }
    if (action == "end" || action == "length") {
        if ((status = need(n == 2))) return status;
        CDuration d;
        if (action == "end") {
            d = Stretch(o, o.positional[1], &o.positional[2]);
        } else {
            d = Stretch(o, o.positional[1], nullptr);
            d.SetEndTimeUI(ReadTimecode(o.positional[2], o.rate));
        }
        std::printf("start %s, length %s, end %s, %d frames\n", Written(d.GetStartTimeUI()).c_str(),
                    Written(d.GetDurationUI()).c_str(), Written(d.GetEndTimeUI()).c_str(),
                    d.GetTotalFrame());
        return 0;
    }
    if (action == "overlap") {
        if ((status = need(n == 4))) return status;
        CDuration a = Stretch(o, o.positional[1], &o.positional[2]);
        CDuration b = Stretch(o, o.positional[3], &o.positional[4]);
        CDuration shared;
        if (!a.GetOverlapDuration(b, &shared)) {
            std::printf("no overlap\n");
            return 0;
        }
        std::printf("overlap from %s to %s, %d frames\n", Written(shared.GetStartTime()).c_str(),
                    Written(shared.GetEndTime()).c_str(), shared.GetTotalFrame());
        return 0;
    }
    if (action == "pal") {
        if ((status = need(n >= 1))) return status;
        basicutils::CTimecodeList list;
        for (size_t i = 1; i < o.positional.size(); ++i)
            list.Add(ReadTimecode(o.positional[i], 30.0));
        list.Change2PAL();
        size_t i = 1;
        for (CTimecode* tc = list.GetHead(); tc; tc = list.GetNext())
            std::printf("%s -> %s\n", o.positional[i++].c_str(), Written(*tc).c_str());
        return 0;
    }
    return kNotATextAction;
}

}  // namespace

bool RunTimecodeTextAction(const TimecodeOptions& o, int& status) {
    status = RunTextAction(o);
    return status != kNotATextAction;
}

}  // namespace basicutils_tool
