// UTF-8 and Mac Roman conversions behind MultiByteToWideChar and
// WideCharToMultiByte.
//
// Each direction has one loop, instantiated twice: unchecked when the
// destination is known to be large enough for any input of that length (a
// byte never yields more than one unit; a unit never more than three bytes),
// and checked otherwise, which also serves the size query.
#include <basicutils/platform/CodePage.h>
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/internal/Utf8.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <string_view>
#include <utility>

namespace basicutils {

namespace {

constexpr char16_t kReplacement = 0xFFFD;

// Bytes 0x80..0xFF of Mac Roman, as Windows reads code page 2.
constexpr char16_t kMacRomanHigh[128] = {
    0x00C4, 0x00C5, 0x00C7, 0x00C9, 0x00D1, 0x00D6, 0x00DC, 0x00E1,  // 80
    0x00E0, 0x00E2, 0x00E4, 0x00E3, 0x00E5, 0x00E7, 0x00E9, 0x00E8,  // 88
    0x00EA, 0x00EB, 0x00ED, 0x00EC, 0x00EE, 0x00EF, 0x00F1, 0x00F3,  // 90
    0x00F2, 0x00F4, 0x00F6, 0x00F5, 0x00FA, 0x00F9, 0x00FB, 0x00FC,  // 98
    0x2020, 0x00B0, 0x00A2, 0x00A3, 0x00A7, 0x2022, 0x00B6, 0x00DF,  // A0
    0x00AE, 0x00A9, 0x2122, 0x00B4, 0x00A8, 0x2260, 0x00C6, 0x00D8,  // A8
    0x221E, 0x00B1, 0x2264, 0x2265, 0x00A5, 0x00B5, 0x2202, 0x2211,  // B0
    0x220F, 0x03C0, 0x222B, 0x00AA, 0x00BA, 0x03A9, 0x00E6, 0x00F8,  // B8
    0x00BF, 0x00A1, 0x00AC, 0x221A, 0x0192, 0x2248, 0x2206, 0x00AB,  // C0
    0x00BB, 0x2026, 0x00A0, 0x00C0, 0x00C3, 0x00D5, 0x0152, 0x0153,  // C8
    0x2013, 0x2014, 0x201C, 0x201D, 0x2018, 0x2019, 0x00F7, 0x25CA,  // D0
    0x00FF, 0x0178, 0x2044, 0x00A4, 0x2039, 0x203A, 0xFB01, 0xFB02,  // D8
    0x2021, 0x00B7, 0x201A, 0x201E, 0x2030, 0x00C2, 0x00CA, 0x00C1,  // E0
    0x00CB, 0x00C8, 0x00CD, 0x00CE, 0x00CF, 0x00CC, 0x00D3, 0x00D4,  // E8
    0xF8FF, 0x00D2, 0x00DA, 0x00DB, 0x00D9, 0x0131, 0x02C6, 0x02DC,  // F0
    0x00AF, 0x02D8, 0x02D9, 0x02DA, 0x00B8, 0x02DD, 0x02DB, 0x02C7,  // F8
};

// The same table inverted and sorted by character, for binary search.
constexpr std::array<std::pair<char16_t, unsigned char>, 128> kMacRomanReverse = [] {
    std::array<std::pair<char16_t, unsigned char>, 128> t{};
    for (int i = 0; i < 128; ++i) t[i] = {kMacRomanHigh[i], static_cast<unsigned char>(0x80 + i)};
    std::sort(t.begin(), t.end());
    return t;
}();

// 0 when c has no Mac Roman byte (c is never 0 here: 7-bit text is handled
// before the search).
unsigned char MacRomanByte(char16_t c) {
    auto it = std::lower_bound(kMacRomanReverse.begin(), kMacRomanReverse.end(),
                               std::pair<char16_t, unsigned char>{c, 0});
    return (it != kMacRomanReverse.end() && it->first == c) ? it->second : 0;
}

bool IsContinuation(unsigned char b) {
    return (b & 0xC0) == 0x80;
}

// Index of the first byte, in memory order, whose top bit is set in a word
// that has one (high holds only top bits).
int FirstHighByte(uint64_t high) {
    if constexpr (std::endian::native == std::endian::little)
        return std::countr_zero(high) / 8;
    else
        return std::countl_zero(high) / 8;
}

enum class Status { kOk, kNoRoom, kInvalid };

// Writes one unit at out, counting it whether or not it fits.
template <bool Checked>
inline void Put16(char16_t* dst, size_t cap, size_t& out, char16_t u) {
    if (!Checked || out < cap) dst[out] = u;
    ++out;
}

template <bool Checked>
Status DecodeUtf8(const unsigned char* s, size_t n, char16_t* dst, size_t cap, bool strict,
                  size_t& out) {
    size_t i = 0;
    out = 0;
    while (i < n) {
        // 7-bit text eight bytes at a time; a word that holds a wider byte
        // still gives up the 7-bit bytes in front of it.
        if (i + 8 <= n && (!Checked || out + 8 <= cap)) {
            uint64_t word;
            std::memcpy(&word, s + i, 8);
            const uint64_t high = word & 0x8080808080808080ull;
            const size_t ascii = high ? static_cast<size_t>(FirstHighByte(high)) : size_t{8};
            for (size_t k = 0; k < ascii; ++k) dst[out + k] = s[i + k];
            i += ascii;
            out += ascii;
            if (ascii == 8) continue;
        } else if (s[i] < 0x80) {
            Put16<Checked>(dst, cap, out, s[i]);
            ++i;
            continue;
        }
        unsigned char b = s[i];
        // Two-byte sequences are the common wide case (Latin letters).
        if (b >= 0xC2 && b <= 0xDF && i + 1 < n && IsContinuation(s[i + 1])) {
            Put16<Checked>(dst, cap, out,
                           static_cast<char16_t>(((b & 0x1F) << 6) | (s[i + 1] & 0x3F)));
            i += 2;
            continue;
        }
        // Three- and four-byte sequences, and every invalid one: an invalid
        // sequence's maximal subpart (the lead and the continuations valid so
        // far) makes one replacement, and the byte that broke it is read
        // again as a fresh start.
        char32_t cp;
        bool valid;
        const size_t length = detail::DecodeUtf8(
            std::string_view(reinterpret_cast<const char*>(s + i), n - i), cp, valid);
        if (!valid) {
            if (strict) return Status::kInvalid;
            Put16<Checked>(dst, cap, out, kReplacement);
            i += length;
            continue;
        }
        i += length;
        if (cp >= 0x10000) {
            cp -= 0x10000;
            Put16<Checked>(dst, cap, out, static_cast<char16_t>(0xD800 + (cp >> 10)));
            Put16<Checked>(dst, cap, out, static_cast<char16_t>(0xDC00 + (cp & 0x3FF)));
        } else {
            Put16<Checked>(dst, cap, out, static_cast<char16_t>(cp));
        }
    }
    return Checked && out > cap ? Status::kNoRoom : Status::kOk;
}

template <bool Checked>
inline void Put8(char* dst, size_t cap, size_t& out, uint32_t b) {
    if (!Checked || out < cap) dst[out] = static_cast<char>(b);
    ++out;
}

template <bool Checked>
Status EncodeUtf8(const char16_t* s, size_t n, char* dst, size_t cap, bool strict, size_t& out) {
    size_t i = 0;
    out = 0;
    while (i < n) {
        while (i + 4 <= n && (!Checked || out + 4 <= cap) &&
               ((s[i] | s[i + 1] | s[i + 2] | s[i + 3]) < 0x80)) {
            dst[out] = static_cast<char>(s[i]);
            dst[out + 1] = static_cast<char>(s[i + 1]);
            dst[out + 2] = static_cast<char>(s[i + 2]);
            dst[out + 3] = static_cast<char>(s[i + 3]);
            i += 4;
            out += 4;
        }
        if (i >= n) break;
        uint32_t c = s[i++];
        if (c < 0x80) {
            Put8<Checked>(dst, cap, out, c);
        } else if (c < 0x800) {
            Put8<Checked>(dst, cap, out, 0xC0 | (c >> 6));
            Put8<Checked>(dst, cap, out, 0x80 | (c & 0x3F));
        } else {
            if (c >= 0xD800 && c <= 0xDFFF) {
                if (c <= 0xDBFF && i < n && s[i] >= 0xDC00 && s[i] <= 0xDFFF) {
                    uint32_t cp = 0x10000 + ((c - 0xD800) << 10) + (s[i++] - 0xDC00);
                    Put8<Checked>(dst, cap, out, 0xF0 | (cp >> 18));
                    Put8<Checked>(dst, cap, out, 0x80 | ((cp >> 12) & 0x3F));
                    Put8<Checked>(dst, cap, out, 0x80 | ((cp >> 6) & 0x3F));
                    Put8<Checked>(dst, cap, out, 0x80 | (cp & 0x3F));
                    continue;
                }
                if (strict) return Status::kInvalid;
                c = kReplacement;
            }
            Put8<Checked>(dst, cap, out, 0xE0 | (c >> 12));
            Put8<Checked>(dst, cap, out, 0x80 | ((c >> 6) & 0x3F));
            Put8<Checked>(dst, cap, out, 0x80 | (c & 0x3F));
        }
    }
    return Checked && out > cap ? Status::kNoRoom : Status::kOk;
}

bool IsUtf8Page(uint32_t codePage) {
    return codePage == CP_ACP || codePage == CP_UTF8;
}

bool Fail(uint32_t error) {
    SetLastError(error);
    return false;
}

// The checks both calls share; on success srcLen holds the real length.
template <typename Src>
bool CheckArguments(uint32_t codePage, const Src* src, int srcLen, const void* dst, int dstLen,
                    size_t& length) {
    if (!IsUtf8Page(codePage) && codePage != CP_MACCP) return Fail(ERROR_INVALID_PARAMETER);
    if (!src || srcLen == 0 || srcLen < -1 || dstLen < 0 || (dstLen > 0 && !dst))
        return Fail(ERROR_INVALID_PARAMETER);
    if (srcLen == -1) {
        length = std::char_traits<Src>::length(src) + 1;
    } else {
        length = static_cast<size_t>(srcLen);
    }
    return true;
}

}  // namespace

int MultiByteToWideChar(uint32_t CodePage, uint32_t dwFlags, const char* lpMultiByteStr,
                        int cbMultiByte, char16_t* lpWideCharStr, int cchWideChar) {
    size_t n;
    if (!CheckArguments(CodePage, lpMultiByteStr, cbMultiByte, lpWideCharStr, cchWideChar, n))
        return 0;
    if (dwFlags & ~(MB_PRECOMPOSED | MB_ERR_INVALID_CHARS)) return Fail(ERROR_INVALID_FLAGS);
    const auto* s = reinterpret_cast<const unsigned char*>(lpMultiByteStr);
    const size_t cap = static_cast<size_t>(cchWideChar);
    size_t out = 0;
    if (CodePage == CP_MACCP) {
        // One unit per byte, always.
        if (cap == 0) return static_cast<int>(n);
        size_t count = std::min(n, cap);
        for (size_t i = 0; i < count; ++i)
            lpWideCharStr[i] = s[i] < 0x80 ? char16_t(s[i]) : kMacRomanHigh[s[i] - 0x80];
        if (count < n) return Fail(ERROR_INSUFFICIENT_BUFFER);
        return static_cast<int>(n);
    }
    const bool strict = (dwFlags & MB_ERR_INVALID_CHARS) != 0;
    Status st = cap >= n ? DecodeUtf8<false>(s, n, lpWideCharStr, cap, strict, out)
                         : DecodeUtf8<true>(s, n, lpWideCharStr, cap, strict, out);
    if (st == Status::kInvalid) return Fail(ERROR_NO_UNICODE_TRANSLATION);
    if (cap == 0) return static_cast<int>(out);
    if (st == Status::kNoRoom) return Fail(ERROR_INSUFFICIENT_BUFFER);
    return static_cast<int>(out);
}

int WideCharToMultiByte(uint32_t CodePage, uint32_t dwFlags, const char16_t* lpWideCharStr,
                        int cchWideChar, char* lpMultiByteStr, int cbMultiByte,
                        const char* lpDefaultChar, int* lpUsedDefaultChar) {
    size_t n;
    if (!CheckArguments(CodePage, lpWideCharStr, cchWideChar, lpMultiByteStr, cbMultiByte, n))
        return 0;
    if (dwFlags & ~(WC_ERR_INVALID_CHARS | WC_NO_BEST_FIT_CHARS)) return Fail(ERROR_INVALID_FLAGS);
    const size_t cap = static_cast<size_t>(cbMultiByte);
    size_t out = 0;
    if (IsUtf8Page(CodePage)) {
        if (lpDefaultChar || lpUsedDefaultChar) return Fail(ERROR_INVALID_PARAMETER);
        const bool strict = (dwFlags & WC_ERR_INVALID_CHARS) != 0;
        Status st = cap >= 3 * n
                        ? EncodeUtf8<false>(lpWideCharStr, n, lpMultiByteStr, cap, strict, out)
                        : EncodeUtf8<true>(lpWideCharStr, n, lpMultiByteStr, cap, strict, out);
        if (st == Status::kInvalid) return Fail(ERROR_NO_UNICODE_TRANSLATION);
        if (cap == 0) return static_cast<int>(out);
        if (st == Status::kNoRoom) return Fail(ERROR_INSUFFICIENT_BUFFER);
        return static_cast<int>(out);
    }
    // Mac Roman: one byte per character, a surrogate pair being one character.
    const char fallback = lpDefaultChar ? lpDefaultChar[0] : '?';
    bool usedDefault = false;
    for (size_t i = 0; i < n; ++i) {
        char16_t c = lpWideCharStr[i];
        char b;
        if (c < 0x80) {
            b = static_cast<char>(c);
        } else if (unsigned char m = MacRomanByte(c)) {
            b = static_cast<char>(m);
        } else {
            if (c >= 0xD800 && c <= 0xDBFF && i + 1 < n && lpWideCharStr[i + 1] >= 0xDC00 &&
                lpWideCharStr[i + 1] <= 0xDFFF)
                ++i;
            b = fallback;
            usedDefault = true;
        }
        if (cap != 0) {
            if (out == cap) return Fail(ERROR_INSUFFICIENT_BUFFER);
            lpMultiByteStr[out] = b;
        }
        ++out;
    }
    if (lpUsedDefaultChar) *lpUsedDefaultChar = usedDefault ? 1 : 0;
    return static_cast<int>(out);
}

}  // namespace basicutils
