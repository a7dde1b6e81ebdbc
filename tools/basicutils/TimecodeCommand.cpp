// `basicutils timecode` (alias `tc`): timecode arithmetic on the command line.
//
// Every number shown is the library's answer: the tool reads the fields of a
// timecode, hands them to CTimecode (which clamps, never refuses), and when
// the library stored something other than what was typed it says so.
#include <cinttypes>
#include <cstdio>
#include <string>

#include <basicutils/BasicUtils.h>

#include "Commands.h"

namespace basicutils_tool {
namespace {

using basicutils::CTimecode;

struct Options {
    double rate = 30.0;
    Args positional;
};

// Splits off --rate/-r; false (after printing) for a bad option.
bool ParseOptions(const Args& args, Options& options, int& status) {
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a == "--rate" || a == "-r") {
            if (i + 1 >= args.size()) {
                status = UsageError("timecode: " + a + " needs a number");
                return false;
            }
            if (!ParseDouble(args[++i], options.rate)) {
                status = UsageError("timecode: rate '" + args[i] + "' is not a number");
                return false;
            }
        } else if (a.size() > 1 && a[0] == '-' && !(a[1] >= '0' && a[1] <= '9')) {
            status = UsageError("timecode: unknown option '" + a + "'");
            return false;
        } else {
            options.positional.push_back(a);
        }
    }
    return true;
}

std::string Format(const CTimecode& tc) {
    char text[64];
    std::snprintf(text, sizeof text, "%02u:%02u:%02u%c%02u @%g", tc.GetHour(), tc.GetMinute(),
                  tc.GetSecond(), tc.GetFrameType() == basicutils::kFrameType25 ? ';' : ':',
                  tc.GetFrame(), tc.GetFrameRate());
    return text;
}

// Reads HH:MM:SS:FF (';' accepted before the frames) into the four fields;
// each field is a decimal number of at most 65535.
bool ParseFields(const std::string& text, uint16_t fields[4]) {
    int field = 0;
    uint32_t value = 0;
    int digits = 0;
    for (size_t i = 0; i <= text.size(); ++i) {
        char c = i < text.size() ? text[i] : '\0';
        if (c >= '0' && c <= '9') {
            value = value * 10 + static_cast<uint32_t>(c - '0');
            if (++digits > 5 || value > 65535) return false;
        } else if (c == ':' || c == ';' || c == '\0') {
            if (digits == 0 || field > 3 || (c == ';' && field != 2)) return false;
            fields[field++] = static_cast<uint16_t>(value);
            value = 0;
            digits = 0;
        } else {
            return false;
        }
    }
    return field == 4;
}

// The timecode the library makes of `text` at `rate`; prints a note when it
// had to bring the input into range.
bool ReadTimecode(const std::string& text, double rate, CTimecode& tc, int& status) {
    uint16_t f[4];
    if (!ParseFields(text, f)) {
        status = UsageError("timecode: '" + text + "' is not a timecode (HH:MM:SS:FF)");
        return false;
    }
    tc.SetTime(f[0], f[1], f[2], f[3], rate);
    if (tc.GetHour() != f[0] || tc.GetMinute() != f[1] || tc.GetSecond() != f[2] ||
        tc.GetFrame() != f[3] || tc.GetFrameRate() != rate) {
        std::fprintf(stderr, "note: %s @%g read as %s\n", text.c_str(), rate, Format(tc).c_str());
    }
    return true;
}

bool Expect(const Options& o, size_t count, const char* usage, int& status) {
    if (o.positional.size() - 1 == count) return true;
    status = UsageError(std::string("timecode: usage: basicutils timecode ") + usage);
    return false;
}

}  // namespace

int RunTimecode(const Args& args) {
    if (IsTimecodeTextAction(args)) return RunTimecodeText(args);
    Options o;
    int status = 0;
    if (!ParseOptions(args, o, status)) return status;
    if (o.positional.empty()) return UsageError("timecode: missing action (try 'basicutils help tc')");
    const std::string& action = o.positional[0];
    CTimecode a, b;

    if (action == "frames") {
        if (!Expect(o, 1, "frames TC [--rate R]", status)) return status;
        if (!ReadTimecode(o.positional[1], o.rate, a, status)) return status;
        std::printf("%s = frame %" PRId32 "\n", Format(a).c_str(), a.GetTotalFrame());
    } else if (action == "at") {
        if (!Expect(o, 1, "at FRAME [--rate R]", status)) return status;
        long long n = 0;
        if (!ParseInt(o.positional[1], n) || n < INT32_MIN || n > INT32_MAX)
            return UsageError("timecode: '" + o.positional[1] + "' is not a 32-bit frame count");
        a.SetFrameRate(o.rate);
        a.SetTotalFrame(static_cast<int32_t>(n), basicutils::kFrameTypeKeep);
        std::printf("frame %lld = %s\n", n, Format(a).c_str());
    } else if (action == "add" || action == "sub") {
        if (!Expect(o, 2, "add|sub TC TC [--rate R]", status)) return status;
        if (!ReadTimecode(o.positional[1], o.rate, a, status)) return status;
        if (!ReadTimecode(o.positional[2], o.rate, b, status)) return status;
        CTimecode r = action == "add" ? a + b : a - b;
        std::printf("%s %c %s = %s\n", Format(a).c_str(), action == "add" ? '+' : '-',
                    Format(b).c_str(), Format(r).c_str());
    } else if (action == "pack") {
        if (!Expect(o, 1, "pack TC [--rate R]", status)) return status;
        if (!ReadTimecode(o.positional[1], o.rate, a, status)) return status;
        std::printf("%s = packed %.1f\n", Format(a).c_str(), static_cast<double>(a));
    } else if (action == "unpack") {
        if (!Expect(o, 1, "unpack PACKED", status)) return status;
        double packed = 0;
        if (!ParseDouble(o.positional[1], packed))
            return UsageError("timecode: '" + o.positional[1] + "' is not a number");
        a = packed;
        std::printf("packed %s = %s\n", o.positional[1].c_str(), Format(a).c_str());
    } else if (action == "ms") {
        if (!Expect(o, 1, "ms TC [--rate R]", status)) return status;
        if (!ReadTimecode(o.positional[1], o.rate, a, status)) return status;
        std::printf("%s = %" PRIu32 " ms\n", Format(a).c_str(), static_cast<uint32_t>(a));
    } else {
        return UsageError("timecode: unknown action '" + action + "'");
    }
    return 0;
}

}  // namespace basicutils_tool
