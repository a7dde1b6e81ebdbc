// `basicutils timecode` (alias `tc`): timecodes on the command line.
//
// This file has the counting actions (frames, at, add, sub, pack, unpack,
// ms) and the dispatch; TimecodeTextCommand.cpp has the text, drop-frame and
// stretch actions. Every number shown is the library's answer: operands are
// read by the library's own text reader, which clamps rather than refuses,
// and the tool says what it read whenever that is not what was typed.
#include <algorithm>
#include <cinttypes>
#include <climits>
#include <cstdio>
#include <string>

#include "TimecodeTool.h"

namespace basicutils_tool {
namespace {

using basicutils::CTimecode;

bool Expect(const TimecodeOptions& o, size_t count, int& status) {
    if (o.positional.size() - 1 == count) return true;
    status = ActionUsageError(o.positional[0]);
    return false;
}

}  // namespace

int RunTimecode(const Args& args) {
    TimecodeOptions o;
    int status = 0;
    if (!ParseTimecodeOptions(args, o, status)) return status;
    if (o.positional.empty())
        return UsageError("timecode: missing action (try 'basicutils help tc')");
    if (RunTimecodeTextAction(o, status)) return status;
    const std::string& action = o.positional[0];

    if (action == "frames") {
        if (!Expect(o, 1, status)) return status;
        CTimecode a = ReadTimecode(o.positional[1], o.rate);
        std::printf("%s = frame %" PRId32 "\n", Written(a).c_str(), a.GetTotalFrame());
    } else if (action == "at") {
        if (!Expect(o, 1, status)) return status;
        long long n = 0;
        if (!ParseInt(o.positional[1], n) || n < INT32_MIN || n > INT32_MAX)
            return UsageError("timecode: '" + o.positional[1] + "' is not a 32-bit frame count");
        CTimecode a;
        a.SetFrameRate(o.rate);
        a.SetTotalFrame(static_cast<int32_t>(n), basicutils::kFrameTypeKeep);
        NoteIfWrapped(n, a.GetFrameRate());
        std::printf("frame %lld = %s\n", n, Written(a).c_str());
    } else if (action == "add" || action == "sub") {
        if (!Expect(o, 2, status)) return status;
        CTimecode a = ReadTimecode(o.positional[1], o.rate);
        CTimecode b = ReadTimecode(o.positional[2], o.rate);
        CTimecode r = action == "add" ? a + b : a - b;
        const int64_t wa = WideCount(a), wb = WideCount(b);
        NoteIfWrapped(action == "add" ? wa + wb - 1 : std::max<int64_t>(1, wa - wb + 1),
                      a.GetFrameRate());
        std::printf("%s %c %s = %s\n", Written(a).c_str(), action == "add" ? '+' : '-',
                    Written(b).c_str(), Written(r).c_str());
    } else if (action == "pack") {
        if (!Expect(o, 1, status)) return status;
        CTimecode a = ReadTimecode(o.positional[1], o.rate);
        std::printf("%s = packed %.1f\n", Written(a).c_str(), static_cast<double>(a));
    } else if (action == "unpack") {
        if (!Expect(o, 1, status)) return status;
        double packed = 0;
        if (!ParseDouble(o.positional[1], packed))
            return UsageError("timecode: '" + o.positional[1] + "' is not a number");
        CTimecode a(packed);
        std::printf("packed %s = %s\n", o.positional[1].c_str(), Written(a).c_str());
    } else if (action == "ms") {
        if (!Expect(o, 1, status)) return status;
        CTimecode a = ReadTimecode(o.positional[1], o.rate);
        std::printf("%s = %" PRIu32 " ms\n", Written(a).c_str(), static_cast<uint32_t>(a));
    } else {
        return UsageError("timecode: unknown action '" + action + "'");
    }
    return 0;
}

}  // namespace basicutils_tool
