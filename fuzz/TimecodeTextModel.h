// A plain model of how the timecode readers turn a piece of text into a
// number, shared by the timecode fuzz harnesses: blanks, one sign, decimal
// digits, clamped to the int range, then kept to 16 bits.
#pragma once

#include <climits>
#include <cstddef>
#include <cstdint>
#include <string>

namespace fuzzmodel {

inline uint16_t Number(std::u16string_view s) {
    size_t i = 0;
    while (i < s.size() && (s[i] == u' ' || (s[i] >= u'\t' && s[i] <= u'\r'))) ++i;
    bool negative = false;
    if (i < s.size() && (s[i] == u'+' || s[i] == u'-')) negative = s[i++] == u'-';
    long long value = 0;
    for (; i < s.size() && s[i] >= u'0' && s[i] <= u'9'; ++i) {
        value = value * 10 + (s[i] - u'0');
        if (value > 1LL << 32) value = 1LL << 32;  // clamped below anyway
    }
    if (negative) value = -value;
    if (value > INT_MAX) value = INT_MAX;
    if (value < INT_MIN) value = INT_MIN;
    return static_cast<uint16_t>(static_cast<int>(value));
}

// Fuzz bytes as 16-bit units, stopping at a zero unit or after `limit` units.
inline std::u16string Units(const uint8_t* data, size_t size, size_t limit) {
    std::u16string text;
    for (size_t i = 0; i + 1 < size && text.size() < limit; i += 2) {
        char16_t c = static_cast<char16_t>(data[i] | (data[i + 1] << 8));
        if (!c) break;
        text.push_back(c);
    }
    return text;
}

}  // namespace fuzzmodel
