#include <basicutils/bitstream/ByteOrder.h>

#include <array>
#include <cstring>
#include <limits>
#include <new>

namespace basicutils {

namespace {

// Reverses a run of bytes end to end.
void ReverseRun(unsigned char* p, int length) {
    for (int i = 0, j = length - 1; i < j; ++i, --j) {
        unsigned char t = p[i];
        p[i] = p[j];
        p[j] = t;
    }
}

// "00" "01" ... "99": two decimal digits per lookup.
constexpr std::array<char, 200> kDigitPairs = [] {
    std::array<char, 200> pairs{};
    for (int i = 0; i < 100; ++i) {
        pairs[static_cast<size_t>(2 * i)] = static_cast<char>('0' + i / 10);
        pairs[static_cast<size_t>(2 * i + 1)] = static_cast<char>('0' + i % 10);
    }
    return pairs;
}();

}  // namespace

void UByteSwapper::Swap(long double* value) {
    // x87 extended: 64-bit significand, 10 significant bytes at the start.
    constexpr bool kX87 = std::numeric_limits<long double>::digits == 64;
    constexpr int kBytes = kX87 ? 10 : static_cast<int>(sizeof(long double));
    static_assert(kBytes <= static_cast<int>(sizeof(long double)));
    ReverseRun(reinterpret_cast<unsigned char*>(value), kBytes);
}

void UByteSwapper::Swap(char* buffer, int16_t length) {
    ReverseRun(reinterpret_cast<unsigned char*>(buffer), length);
}

void UByteSwapper::SwapShort(unsigned char* buffer, int16_t length) {
    for (int i = 0; i + 1 < length; i += 2) {
        unsigned char t = buffer[i];
        buffer[i] = buffer[i + 1];
        buffer[i + 1] = t;
    }
}

int64_t ToCLongLong(const unsigned char* text) {
    uint64_t result = 0;  // unsigned, so that overflow wraps modulo 2^64
    if (!text) return 0;
    for (; *text; ++text) {
        unsigned digit = static_cast<unsigned>(*text) - '0';
        if (digit <= 9) result = result * 10 + digit;
    }
    return static_cast<int64_t>(result);
}

char* ToString10(int64_t& value) {
    constexpr size_t kSize = 21;  // the 20 digits of 2^64 - 1 and the terminator
    char* text = static_cast<char*>(::operator new(kSize));
    std::memset(text, 0, kSize);
    // Digits are produced from the lowest, two at a time, into the end of a
    // scratch buffer, then copied to the front of the text.
    char digits[20];
    size_t start = sizeof digits;
    uint64_t v = static_cast<uint64_t>(value);
    while (v >= 100) {
        const size_t pair = static_cast<size_t>(v % 100) * 2;
        v /= 100;
        start -= 2;
        digits[start] = kDigitPairs[pair];
        digits[start + 1] = kDigitPairs[pair + 1];
    }
    if (v >= 10) {
        start -= 2;
        digits[start] = kDigitPairs[static_cast<size_t>(v) * 2];
        digits[start + 1] = kDigitPairs[static_cast<size_t>(v) * 2 + 1];
    } else {
        digits[--start] = static_cast<char>('0' + v);
    }
    std::memcpy(text, digits + start, sizeof digits - start);
    return text;
}

}  // namespace basicutils
