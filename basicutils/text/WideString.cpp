#include <basicutils/text/WideString.h>

#include <cctype>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <cwctype>
#include <string>

namespace basicutils {

namespace {

// Lower case of one unit for the case-blind comparisons.
inline unsigned FoldLower(char16_t c) {
    return towlower(c);
}

inline bool IsAsciiSpace(char16_t c) {
    return c == u' ' || (c >= 9 && c <= 13);
}

inline bool IsDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}

thread_local char16_t* tTokenPosition = nullptr;

}  // namespace

size_t wcslen(const char16_t* s) {
    const char16_t* p = s;
    // Four units per round keep the loop's branch cost low without reading a
    // unit beyond the terminator.
    for (;;) {
        if (!p[0]) return static_cast<size_t>(p - s);
        if (!p[1]) return static_cast<size_t>(p - s) + 1;
        if (!p[2]) return static_cast<size_t>(p - s) + 2;
        if (!p[3]) return static_cast<size_t>(p - s) + 3;
        p += 4;
    }
}

char16_t* wcscpy(char16_t* dst, const char16_t* src) {
    std::memmove(dst, src, (wcslen(src) + 1) * sizeof(char16_t));
    return dst;
}

char16_t* wcsncpy(char16_t* dst, const char16_t* src, size_t count) {
    size_t i = 0;
    for (; i < count && src[i]; ++i) dst[i] = src[i];
    for (; i < count; ++i) dst[i] = 0;
    return dst;
}

char16_t* wcscat(char16_t* dst, const char16_t* src) {
    wcscpy(dst + wcslen(dst), src);
    return dst;
}

char16_t* wcsncat(char16_t* dst, const char16_t* src, size_t count) {
    char16_t* p = dst + wcslen(dst);
    size_t i = 0;
    for (; i < count && src[i]; ++i) p[i] = src[i];
    p[i] = 0;
    return dst;
}

int wcscmp(const char16_t* a, const char16_t* b) {
    while (*a == *b) {
        if (!*a) return 0;
        ++a;
        ++b;
    }
    return *a < *b ? -1 : 1;
}

int wcsncmp(const char16_t* a, const char16_t* b, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        if (a[i] != b[i]) return static_cast<int>(a[i]) - static_cast<int>(b[i]);
        if (!a[i]) return 0;
    }
    return 0;
}

int _wcsicmp(const char16_t* a, const char16_t* b) {
    for (;; ++a, ++b) {
        if (*a == *b) {
            if (!*a) return 0;
            continue;
        }
        unsigned la = FoldLower(*a), lb = FoldLower(*b);
        if (la != lb) return static_cast<int>(la) - static_cast<int>(lb);
    }
}

int _wcsnicmp(const char16_t* a, const char16_t* b, size_t count) {
    for (size_t i = 0; i < count; ++i) {
        if (a[i] == b[i]) {
            if (!a[i]) return 0;
            continue;
        }
        unsigned la = FoldLower(a[i]), lb = FoldLower(b[i]);
        if (la != lb) return static_cast<int>(la) - static_cast<int>(lb);
    }
    return 0;
}

const char16_t* wcschr(const char16_t* s, char16_t c) {
    for (;; ++s) {
        if (*s == c) return s;
        if (!*s) return nullptr;
    }
}

const char16_t* wcsrchr(const char16_t* s, char16_t c) {
    const char16_t* found = nullptr;
    for (;; ++s) {
        if (*s == c) found = s;
        if (!*s) return found;
    }
}

const char16_t* wcsstr(const char16_t* s, const char16_t* needle) {
    const char16_t first = needle[0];
    if (!first) return s;
    for (; (s = wcschr(s, first)) != nullptr; ++s) {
        size_t k = 1;
        while (needle[k] && s[k] == needle[k]) ++k;
        if (!needle[k]) return s;
        if (!s[k]) return nullptr;  // the text ended inside a partial match
    }
    return nullptr;
}

int _wtoi(const char16_t* s) {
    while (IsAsciiSpace(*s)) ++s;
    bool negative = false;
    if (*s == u'-' || *s == u'+') negative = *s++ == u'-';
    // Accumulate as a negative number, whose range holds INT_MIN.
    int64_t value = 0;
    for (; IsDigit(*s); ++s) {
        value = value * 10 - (*s - u'0');
        if (value < -static_cast<int64_t>(INT_MAX) - 1) return negative ? INT_MIN : INT_MAX;
    }
    if (negative) return static_cast<int>(value);
    return value < -static_cast<int64_t>(INT_MAX) ? INT_MAX : static_cast<int>(-value);
}

double _wtof(const char16_t* s) {
    while (IsAsciiSpace(*s)) ++s;
    bool negative = false;
    if (*s == u'-' || *s == u'+') negative = *s++ == u'-';

    // Narrow the run of characters a number can hold; anything else ends it.
    std::string text;
    for (const char16_t* p = s; *p < 0x80 && *p; ++p) {
        char c = static_cast<char>(*p);
        if (!(std::isalnum(static_cast<unsigned char>(c)) || c == '.' || c == '+' || c == '-'))
            break;
        text.push_back(c);
    }
    auto format = std::chars_format::general;
    size_t offset = 0;
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
        format = std::chars_format::hex;
        offset = 2;
    }
    const char* begin = text.data() + offset;
    const char* end = text.data() + text.size();
    if (begin < end && (*begin == '+' || *begin == '-')) return 0.0;  // a second sign
    double value = 0.0;
    auto result = std::from_chars(begin, end, value, format);
    if (result.ec == std::errc::invalid_argument) {
        // "0x" with nothing hexadecimal behind it is the number 0.
        return offset ? (negative ? -0.0 : 0.0) : 0.0;
    }
    if (result.ec == std::errc::result_out_of_range) {
        // Decide between overflow and underflow by the decimal magnitude.
        const char* p = begin;
        long magnitude = 0;
        bool seenNonZero = false;
        bool afterPoint = false;
        for (; p < result.ptr && *p != 'e' && *p != 'E' && *p != 'p' && *p != 'P'; ++p) {
            if (*p == '.') {
                afterPoint = true;
            } else if (!seenNonZero) {
                if (*p != '0') {
                    seenNonZero = true;
                    if (!afterPoint) ++magnitude;
                } else if (afterPoint) {
                    --magnitude;
                }
            } else if (!afterPoint) {
                ++magnitude;
            }
        }
        long exponent = 0;
        if (p < result.ptr) {
            ++p;
            bool expNegative = false;
            if (*p == '+' || *p == '-') expNegative = *p++ == '-';
            for (; p < result.ptr && exponent < 1000000; ++p) exponent = exponent * 10 + (*p - '0');
            if (expNegative) exponent = -exponent;
        }
        value = magnitude + exponent > 0 ? HUGE_VAL : 0.0;
    }
    return negative ? -value : value;
}

char16_t* wcstok_r(char16_t* s, const char16_t* delims, char16_t** context) {
    char16_t* p = s ? s : *context;
    if (!p) return nullptr;
    while (*p && wcschr(delims, *p)) ++p;
    if (!*p) {
        *context = p;
        return nullptr;
    }
    char16_t* token = p;
    while (*p && !wcschr(delims, *p)) ++p;
    if (*p) *p++ = 0;
    *context = p;
    return token;
}

char16_t* wcstok(char16_t* s, const char16_t* delims) {
    return wcstok_r(s, delims, &tTokenPosition);
}

char16_t towupper(char16_t c) {
    if (c >= 0xD800 && c <= 0xDFFF) return c;
    std::wint_t r = std::towupper(static_cast<std::wint_t>(c));
    return r <= 0xFFFF ? static_cast<char16_t>(r) : c;
}

char16_t towlower(char16_t c) {
    if (c >= 0xD800 && c <= 0xDFFF) return c;
    std::wint_t r = std::towlower(static_cast<std::wint_t>(c));
    return r <= 0xFFFF ? static_cast<char16_t>(r) : c;
}

int iswupper(char16_t c) {
    if (c >= 0xD800 && c <= 0xDFFF) return 0;
    return std::iswupper(static_cast<std::wint_t>(c)) ? 1 : 0;
}

int iswlower(char16_t c) {
    if (c >= 0xD800 && c <= 0xDFFF) return 0;
    return std::iswlower(static_cast<std::wint_t>(c)) ? 1 : 0;
}

}  // namespace basicutils
