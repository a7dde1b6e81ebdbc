// UTF-8 one sequence at a time, for the layer's own converters (names, the
// stream's 16-bit text). Strict: no overlong forms, no encoded surrogates,
// nothing above U+10FFFF.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace basicutils::detail {

// Appends the UTF-8 form of a code point (at most U+10FFFF, no surrogate).
inline void AppendUtf8(std::string& out, char32_t c) {
    if (c < 0x80) {
        out.push_back(static_cast<char>(c));
    } else if (c < 0x800) {
        out.push_back(static_cast<char>(0xC0 | (c >> 6)));
        out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    } else if (c < 0x10000) {
        out.push_back(static_cast<char>(0xE0 | (c >> 12)));
        out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    } else {
        out.push_back(static_cast<char>(0xF0 | (c >> 18)));
        out.push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    }
}

// Reads the sequence at the start of `s` (not empty). Answers the bytes it
// takes: a valid sequence, its code point in `c` and `valid` true; or the
// maximal invalid subpart (at least one byte) with `valid` false, which a
// decoder replaces by one U+FFFD or escapes byte by byte. A valid sequence
// that `s` cuts short counts as invalid.
inline size_t DecodeUtf8(std::string_view s, char32_t& c, bool& valid) {
    const auto b0 = static_cast<unsigned char>(s[0]);
    valid = false;
    c = b0;
    if (b0 < 0x80) {
        valid = true;
        return 1;
    }
    size_t length;
    unsigned char low = 0x80, high = 0xBF;  // bounds of the second byte
    if (b0 >= 0xC2 && b0 <= 0xDF) {
        length = 2;
        c = b0 & 0x1F;
    } else if (b0 >= 0xE0 && b0 <= 0xEF) {
        length = 3;
        c = b0 & 0x0F;
        if (b0 == 0xE0) low = 0xA0;
        if (b0 == 0xED) high = 0x9F;
    } else if (b0 >= 0xF0 && b0 <= 0xF4) {
        length = 4;
        c = b0 & 0x07;
        if (b0 == 0xF0) low = 0x90;
        if (b0 == 0xF4) high = 0x8F;
    } else {
        return 1;
    }
    for (size_t i = 1; i < length; ++i) {
        if (i >= s.size()) return i;
        const auto b = static_cast<unsigned char>(s[i]);
        if (i == 1 ? (b < low || b > high) : (b & 0xC0) != 0x80) return i;
        c = (c << 6) | (b & 0x3F);
    }
    valid = true;
    return length;
}

}  // namespace basicutils::detail
