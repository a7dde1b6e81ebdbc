#include "TimecodeTool.h"

#include <cstdio>

namespace basicutils_tool {

using basicutils::CTimecode;
using basicutils::MString;

bool ParseTimecodeOptions(const Args& args, TimecodeOptions& o, int& status) {
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

std::u16string Widen(const std::string& s) {
    return std::u16string(s.begin(), s.end());
}

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

namespace {

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

}  // namespace

CTimecode ReadTimecode(const std::string& text, double rate) {
    CTimecode tc;
    tc.SetTime(Widen(text).c_str(), rate);
    if (!ReadAsWritten(text, tc) || tc.GetFrameRate() != rate)
        std::fprintf(stderr, "note: '%s' read as %s\n", text.c_str(), Written(tc).c_str());
    return tc;
}

}  // namespace basicutils_tool
