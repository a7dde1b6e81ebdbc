#include <basicutils/text/CaseCompare.h>

#include <cctype>

namespace basicutils {

namespace {

// The 8-bit toupper on one unit. The C library defines toupper only for
// byte values, so a wider unit passes unchanged, as it would on Windows.
inline unsigned Upper(char16_t c) {
    return c <= 0xFF ? static_cast<unsigned>(std::toupper(c)) : c;
}

}  // namespace

int strcasecmp(const char16_t* a, const char16_t* b) {
    for (;; ++a, ++b) {
        auto x = static_cast<int8_t>(Upper(*a) & 0xFF);
        auto y = static_cast<int8_t>(Upper(*b) & 0xFF);
        if (x == 0 && y == 0) return 0;
        if (x < y) return -1;
        if (x > y) return 1;
    }
}

int strncasecmp(const char16_t* a, const char16_t* b, uint32_t n) {
    for (uint32_t i = 0; i < n; ++i) {
        auto x = static_cast<uint16_t>(Upper(a[i]));
        auto y = static_cast<uint16_t>(Upper(b[i]));
        if (x < y) return -1;
        if (x > y) return 1;
        if (x == 0) return 0;
    }
    return 0;
}

}  // namespace basicutils
