#include "TimecodeTool.h"

#include <cmath>
#include <cstdint>
#include <cstdio>

namespace basicutils_tool {

using basicutils::CTimecode;
using basicutils::MString;

namespace {

const std::pair<const char*, const char*> kActions[] = {
    {"frames", "frames TC [--rate R]"},
    {"at", "at FRAME [--rate R]"},
    {"add", "add TC TC [--rate R]"},
    {"sub", "sub TC TC [--rate R]"},
    {"pack", "pack TC [--rate R]"},
    {"unpack", "unpack PACKED"},
    {"ms", "ms TC [--rate R]"},
    {"parse", "parse TEXT [--keep] [--rate R]"},
    {"read", "read TEXT [--rate R]"},
    {"drop", "drop TC [--start TC]"},
    {"nondrop", "nondrop TC [--start TC]"},
    {"end", "end START LENGTH [--drop] [--rate 25]"},
    {"length", "length START END [--drop] [--rate 25]"},
    {"overlap", "overlap START LENGTH START LENGTH [--rate 25]"},
    {"pal", "pal TC..."},
};

}  // namespace

const char* ActionUsage(const std::string& action) {
    for (const auto& [name, usage] : kActions)
        if (action == name) return usage;
    return nullptr;
}

int ActionUsageError(const std::string& action) {
    const char* usage = ActionUsage(action);
    return UsageError(std::string("timecode: usage: basicutils timecode ") +
                      (usage ? usage : "ACTION ..."));
}

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
    if (WideCount(tc) > INT32_MAX)
        std::fprintf(stderr,
                     "note: %s is frame %lld, past the library's 32-bit frame counts; its count "
                     "wraps to %d\n",
                     Written(tc).c_str(), static_cast<long long>(WideCount(tc)),
                     tc.GetTotalFrame());
    return tc;
}

int64_t WideCount(const CTimecode& tc) {
    const int64_t seconds = int64_t{tc.GetHour()} * 3600 + tc.GetMinute() * 60 + tc.GetSecond();
    return static_cast<int64_t>(std::floor(tc.GetFrameRate() * static_cast<double>(seconds))) +
           tc.GetFrame() + 1;
}

void NoteIfWrapped(int64_t count, double rate) {
    const double minutes = static_cast<double>(count - 1) / rate / 60.0;
    if (count <= INT32_MAX && minutes < 65536.0) return;
    std::fprintf(stderr,
                 "note: the exact answer, frame %lld, is past the library's limits (32-bit frame "
                 "counts, 1092:15:59 the last time it labels); the library's answer wraps\n",
                 static_cast<long long>(count));
}

}  // namespace basicutils_tool
