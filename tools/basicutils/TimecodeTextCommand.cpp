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
// Timecodes are read by the library's own text reader, so bad text is never
// refused: it gets the library's answer (0, clamped), and the tool prints
// what it understood whenever that is not what was typed.
#include <cstdio>
#include <string>

#include <basicutils/BasicUtils.h>

#include "Commands.h"

namespace basicutils_tool {
namespace {

using basicutils::CDuration;
using basicutils::CTimecode;
using basicutils::CTimecodeParser;
using basicutils::MString;

const char* const kUsage =
    "timecode: usage: basicutils timecode parse TEXT [--keep] [--rate R] | read TEXT [--rate R]"
    " | drop|nondrop TC [--start TC] | end START LENGTH [--drop] | length START END [--drop]"
    " | overlap START LENGTH START LENGTH | pal TC...";

const char* const kActions[] = {"parse", "read", "drop", "nondrop", "end", "length", "overlap", "pal"};

struct Options {
    double rate = 30.0;
    bool keep = false;
    bool drop = false;
    std::string start;
    Args positional;
};

std::u16string Widen(const std::string& s) { return std::u16string(s.begin(), s.end()); }

std::string Narrow(const char16_t* s) {
    std::string out;
    for (; s && *s; ++s) out += *s < 0x80 ? static_cast<char>(*s) : '?';
    return out;
}

std::string Written(const CTimecode& tc) {
    MString text;
    tc.GetTime(&text);
    char rate[32];
    std::snprintf(rate, sizeof rate, " @%g", tc.GetFrameRate());
    return Narrow(text) + rate;
}

// True if `text` is four plain numbers, separated by one ':' or ';' each,
// that the timecode holds as they were written.
bool ReadAsWritten(const std::string& text, const CTimecode& tc) {
    const unsigned held[4] = {tc.GetHour(), tc.GetMinute(), tc.GetSecond(), tc.GetFrame()};
    size_t at = 0;
    for (int field = 0; field < 4; ++field) {
        unsigned long value = 0;
        size_t digits = 0;
        for (; at < text.size() && text[at] >= '0' && text[at] <= '9' && digits < 6; ++at, ++digits)
            value = value * 10 + static_cast<unsigned>(text[at] - '0');
        if (digits == 0 || value != held[field]) return false;
        if (field < 3 && (at >= text.size() || (text[at] != ':' && text[at] != ';'))) return false;
        if (field < 3) ++at;
    }
    return at == text.size();
}

// The library's reading of `text` at `rate`, with a note when it is not
// what the user wrote.
CTimecode Read(const std::string& text, double rate) {
    CTimecode tc;
    tc.SetTime(Widen(text).c_str(), rate);
    if (!ReadAsWritten(text, tc) || tc.GetFrameRate() != rate)
        std::fprintf(stderr, "note: '%s' read as %s\n", text.c_str(), Written(tc).c_str());
    return tc;
}

bool ParseOptions(const Args& args, Options& o, int& status) {
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        bool takesValue = a == "--rate" || a == "-r" || a == "--start";
        if (takesValue && i + 1 >= args.size()) {
            status = UsageError("timecode: " + a + " needs a value");
            return false;
        }
        if (a == "--rate" || a == "-r") {
            if (!ParseDouble(args[++i], o.rate)) {
                status = UsageError("timecode: rate '" + args[i] + "' is not a number");
                return false;
            }
        } else if (a == "--start") {
            o.start = args[++i];
        } else if (a == "--keep") {
            o.keep = true;
        } else if (a == "--drop") {
            o.drop = true;
        } else if (a.size() > 1 && a[0] == '-' && !(a[1] >= '0' && a[1] <= '9')) {
            status = UsageError("timecode: unknown option '" + a + "'");
            return false;
        } else {
            o.positional.push_back(a);
        }
    }
    return true;
}

// A stretch at the options' standard and drop type; with no length text it
// is one frame long.
CDuration Stretch(const Options& o, const std::string& start, const std::string* length) {
    CDuration d;
    d.SetFrameType(o.rate == 25.0 ? basicutils::kFrameType25 : basicutils::kFrameType30);
    d.SetDropType(o.drop ? basicutils::kDrop : basicutils::kNonDrop);
    d.SetStartTime(Read(start, o.rate));
    if (length) d.SetDurationUI(Read(*length, o.rate));
    return d;
}

int Parse(const Options& o) {
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

int Convert(const Options& o, bool toDrop) {
    CTimecode start = o.start.empty() ? CTimecode() : Read(o.start, 30.0);
    CTimecode from = Read(o.positional[1], 30.0), to;
    if (toDrop) {
        from.Nondrop2Drop(start, &to);
    } else {
        from.Drop2Nondrop(start, &to);
    }
    std::printf("%s %s = %s %s (from %s)\n", toDrop ? "non-drop" : "drop", Written(from).c_str(),
                toDrop ? "drop" : "non-drop", Written(to).c_str(), Written(start).c_str());
    return 0;
}

}  // namespace

bool IsTimecodeTextAction(const Args& args) {
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a == "--rate" || a == "-r" || a == "--start") {
            ++i;
        } else if (a.empty() || a[0] != '-') {
            for (const char* action : kActions)
                if (a == action) return true;
            return false;
        }
    }
    return false;
}

int RunTimecodeText(const Args& args) {
    Options o;
    int status = 0;
    if (!ParseOptions(args, o, status)) return status;
    const std::string action = o.positional.empty() ? "" : o.positional[0];
    size_t n = o.positional.size() - 1;
    auto need = [&](bool ok) { return ok ? 0 : UsageError(kUsage); };

    if (action == "parse") {
        if ((status = need(n == 1))) return status;
        return Parse(o);
    }
    if (action == "read") {
        if ((status = need(n == 1))) return status;
        CTimecode tc = Read(o.positional[1], o.rate);
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
            d.SetEndTimeUI(Read(o.positional[2], o.rate));
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
        for (size_t i = 1; i < o.positional.size(); ++i) list.Add(Read(o.positional[i], 30.0));
        list.Change2PAL();
        size_t i = 1;
        for (CTimecode* tc = list.GetHead(); tc; tc = list.GetNext())
            std::printf("%s -> %s\n", o.positional[i++].c_str(), Written(*tc).c_str());
        return 0;
    }
    return UsageError(kUsage);
}

}  // namespace basicutils_tool
