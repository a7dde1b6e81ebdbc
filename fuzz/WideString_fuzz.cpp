// The 16-bit string primitives and the two case-blind comparisons against
// models built on std::u16string and the C library's strtod.
//
// Input: byte 0 is a count; the rest is two texts separated by a zero byte.
// Bytes below 0x80 are ASCII units; the others pick units that matter here
// (high units that sort above ASCII, units whose low byte is a letter or 0,
// signed low bytes, surrogates, a non-ASCII digit).
#include <basicutils/text/CaseCompare.h>
#include <basicutils/text/WideString.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "FuzzSupport.h"

namespace {

namespace bu = basicutils;

using fuzzsupport::Check;

int Sign(int v) {
    return (v > 0) - (v < 0);
}

char16_t Unit(uint8_t b) {
    static const char16_t kHigh[] = {0x00E9, 0x00C9, 0x0100, 0x0141, 0x0161, 0x8000, 0xFFFF,
                                     0xD801, 0xDC00, 0x0663, 0x00A0, 0x0130, 0x212A, 0x00FF};
    return b < 0x80 ? b : kHigh[b % std::size(kHigh)];
}

// The 8-bit C-locale fold of both case-blind comparisons.
char16_t Upper(char16_t c) {
    return c >= u'a' && c <= u'z' ? static_cast<char16_t>(c - 32) : c;
}

int ModelCaseCmp(const std::u16string& a, const std::u16string& b) {
    for (size_t i = 0;; ++i) {
        auto x = static_cast<int8_t>(Upper(a.c_str()[i]) & 0xFF);
        auto y = static_cast<int8_t>(Upper(b.c_str()[i]) & 0xFF);
        if (x != y) return Sign(x - y);
        if (x == 0) return 0;
    }
}

int ModelCountedCaseCmp(const std::u16string& a, const std::u16string& b, uint32_t n) {
    for (size_t i = 0; i < n; ++i) {
        char16_t x = Upper(a.c_str()[i]), y = Upper(b.c_str()[i]);
        if (x != y) return Sign(x - y);
        if (x == 0) return 0;
    }
    return 0;
}

// Difference of the first differing units within count (the terminator counts).
int ModelDiff(const std::u16string& a, const std::u16string& b, size_t count, bool fold) {
    for (size_t i = 0; i < count; ++i) {
        int x = a.c_str()[i], y = b.c_str()[i];
        if (fold)
            x = bu::towlower(static_cast<char16_t>(x)), y = bu::towlower(static_cast<char16_t>(y));
        if (x != y) return x - y;
        if (x == 0) return 0;
    }
    return 0;
}

int ModelToInt(const std::u16string& s) {
    size_t i = 0;
    while (i < s.size() && (s[i] == u' ' || (s[i] >= u'\t' && s[i] <= u'\r'))) ++i;
    bool negative = i < s.size() && s[i] == u'-';
    if (i < s.size() && (s[i] == u'+' || s[i] == u'-')) ++i;
    long long v = 0;
    for (; i < s.size() && s[i] >= u'0' && s[i] <= u'9'; ++i)
        v = std::min(v * 10 + (s[i] - u'0'), 1LL << 40);
    v = negative ? -v : v;
    return static_cast<int>(std::clamp<long long>(v, INT_MIN, INT_MAX));
}

double ModelToDouble(const std::u16string& s) {
    std::string ascii;
    for (char16_t c : s) {
        if (c >= 0x80) break;
        ascii.push_back(static_cast<char>(c));
    }
    return std::strtod(ascii.c_str(), nullptr);  // the process runs in the "C" locale
}

const char16_t* At(const std::u16string& s, size_t at) {
    return at == std::u16string::npos ? nullptr : s.c_str() + at;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1 || size > 4096) return 0;
    const uint32_t count = data[0] % 40;
    std::u16string a, b;
    size_t i = 1;
    for (; i < size && data[i] != 0; ++i) a.push_back(Unit(data[i]));
    for (++i; i < size && data[i] != 0; ++i) b.push_back(Unit(data[i]));
    const char16_t *pa = a.c_str(), *pb = b.c_str();

    Check(bu::wcslen(pa) == a.size());
    Check(bu::wcscmp(pa, pb) == Sign(a.compare(b)));
    Check(bu::wcsncmp(pa, pb, count) == ModelDiff(a, b, count, false));
    Check(bu::_wcsicmp(pa, pb) == ModelDiff(a, b, SIZE_MAX, true));
    Check(bu::_wcsnicmp(pa, pb, count) == ModelDiff(a, b, count, true));
    Check(bu::strcasecmp(pa, pb) == ModelCaseCmp(a, b));
    Check(bu::strncasecmp(pa, pb, count) == ModelCountedCaseCmp(a, b, count));

    const char16_t c = b.empty() ? 0 : b[0];
    Check(bu::wcschr(pa, c) == At(a, c ? a.find(c) : a.size()));
    Check(bu::wcsrchr(pa, c) == At(a, c ? a.rfind(c) : a.size()));
    Check(bu::wcsstr(pa, pb) == At(a, a.find(b)));

    Check(bu::_wtoi(pa) == ModelToInt(a));
    const double got = bu::_wtof(pa), want = ModelToDouble(a);
    Check(got == want || (std::isnan(got) && std::isnan(want)));

    // Copies into a buffer with a guard behind the room they may use.
    std::u16string buf(a.size() + b.size() + count + 2, u'#');
    bu::wcsncpy(buf.data(), pb, count);
    std::u16string want16 = b.substr(0, count);
    want16.resize(count, u'\0');
    Check(buf.compare(0, count, want16) == 0 && buf[count] == u'#');
    bu::wcscpy(buf.data(), pa);
    bu::wcsncat(buf.data(), pb, count);
    Check(std::u16string(buf.c_str()) == a + b.substr(0, count));
    bu::wcscpy(buf.data(), pa);
    bu::wcscat(buf.data(), pb);
    Check(std::u16string(buf.c_str()) == a + b);

    // Tokens: the pieces between runs of the units of b.
    std::u16string line = a, model, seen;
    if (!b.empty()) {
        for (size_t at = 0; (at = line.find_first_not_of(b, at)) != line.npos;) {
            size_t end = line.find_first_of(b, at);
            model += line.substr(at, end - at) + u'|';
            at = end;
        }
        char16_t* context = nullptr;
        for (char16_t* t = bu::wcstok_r(line.data(), pb, &context); t;
             t = bu::wcstok_r(nullptr, pb, &context))
            seen += std::u16string(t) + u'|';
        Check(seen == model);
    }
    return 0;
}
