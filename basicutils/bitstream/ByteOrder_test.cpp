#include <basicutils/bitstream/ByteOrder.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

namespace basicutils {
namespace {

using Bytes = std::vector<unsigned char>;

template <typename T>
Bytes BytesOf(const T& v) {
    Bytes b(sizeof v);
    std::memcpy(b.data(), &v, sizeof v);
    return b;
}

Bytes Reversed(Bytes b) {
    std::reverse(b.begin(), b.end());
    return b;
}

// Checks that swap reverses the memory image of value and undoes itself.
template <typename T, typename Swap>
void ExpectReverses(T value, Swap swap) {
    T v = value;
    swap(v);
    EXPECT_EQ(BytesOf(v), Reversed(BytesOf(value)));
    swap(v);
    EXPECT_EQ(BytesOf(v), BytesOf(value));
}

TEST(UByteSwapper, EverySwapReversesItsOperandWhateverTheHost) {
    EXPECT_EQ(UByteSwapper::SwapLong(0x12345678u), 0x78563412u);
    EXPECT_EQ(UByteSwapper::SwapShort(uint16_t{0x1234}), 0x3412);
    EXPECT_EQ(UByteSwapper::SwapLongLong(0x0102030405060708), 0x0807060504030201);
    ExpectReverses(int16_t{0x1234}, [](int16_t& v) { UByteSwapper::Swap(&v); });
    ExpectReverses(uint16_t{0xFE01}, [](uint16_t& v) { UByteSwapper::Swap(&v); });
    ExpectReverses(int32_t{-0x123456}, [](int32_t& v) { UByteSwapper::Swap(&v); });
    ExpectReverses(int32_t{0x12345678}, [](int32_t& v) { UByteSwapper::Swap(v); });
    ExpectReverses(0xFEDCBA98u, [](uint32_t& v) { UByteSwapper::Swap(&v); });
    ExpectReverses(0xFEDCBA98u, [](uint32_t& v) { UByteSwapper::Swap(v); });
    ExpectReverses(1.5f, [](float& v) { UByteSwapper::Swap(&v); });
    ExpectReverses(-3.25f, [](float& v) { UByteSwapper::Swap(v); });
    ExpectReverses(-2.75e100, [](double& v) { UByteSwapper::Swap(&v); });
}

TEST(UByteSwapper, LongDoubleSwapStaysWithinTheSignificantBytes) {
    long double x;
    Bytes pattern(sizeof x);
    for (size_t i = 0; i < pattern.size(); ++i) pattern[i] = static_cast<unsigned char>(i + 1);
    std::memcpy(&x, pattern.data(), sizeof x);
    UByteSwapper::Swap(&x);
    const auto significant = std::numeric_limits<long double>::digits == 64 ? 10 : sizeof x;
    Bytes want = pattern;
    std::reverse(want.begin(), want.begin() + static_cast<std::ptrdiff_t>(significant));
    EXPECT_EQ(BytesOf(x), want);  // padding bytes untouched
}

TEST(UByteSwapper, RunSwapsAndBufferForms) {
    const std::pair<int16_t, std::pair<Bytes, Bytes>> runs[] = {
        {5, {{5, 4, 3, 2, 1, 6}, {2, 1, 4, 3, 5, 6}}},
        {4, {{4, 3, 2, 1, 5, 6}, {2, 1, 4, 3, 5, 6}}},
        {1, {{1, 2, 3, 4, 5, 6}, {1, 2, 3, 4, 5, 6}}},
        {-3, {{1, 2, 3, 4, 5, 6}, {1, 2, 3, 4, 5, 6}}},
    };
    for (const auto& [length, want] : runs) {
        Bytes whole{1, 2, 3, 4, 5, 6}, pairs = whole;
        UByteSwapper::Swap(reinterpret_cast<char*>(whole.data()), length);
        UByteSwapper::SwapShort(pairs.data(), length);
        EXPECT_EQ(whole, want.first) << length;
        EXPECT_EQ(pairs, want.second) << length;
    }
    Bytes buf{0xEE, 0x12, 0x34, 0x56, 0x78, 0xEE};
    char* p = reinterpret_cast<char*>(buf.data()) + 1;  // unaligned on purpose
    EXPECT_EQ(BytesOf(UByteSwapper::SwapUL(p)), (Bytes{0x78, 0x56, 0x34, 0x12}));
    EXPECT_EQ(BytesOf(UByteSwapper::SwapSL(p)), (Bytes{0x78, 0x56, 0x34, 0x12}));
    EXPECT_EQ(BytesOf(UByteSwapper::SwapUS(p)), (Bytes{0x34, 0x12}));
    EXPECT_EQ(BytesOf(UByteSwapper::SwapSS(p + 2)), (Bytes{0x78, 0x56}));
    UByteSwapper::SwapToBuf(int32_t{-2}, p);
    EXPECT_EQ(Bytes(buf.begin() + 1, buf.end() - 1), Reversed(BytesOf(int32_t{-2})));
    UByteSwapper::SwapToBuf(0x11223344u, p);
    EXPECT_EQ(UByteSwapper::SwapUL(p), 0x11223344u);
    UByteSwapper::SwapToBuf(int16_t{-300}, p);
    EXPECT_EQ(UByteSwapper::SwapSS(p), -300);
    UByteSwapper::SwapToBuf(uint16_t{0xABCD}, p + 2);
    EXPECT_EQ(UByteSwapper::SwapUS(p + 2), 0xABCD);
    EXPECT_EQ(buf.front() + buf.back(), 2 * 0xEE);
}

TEST(NamedOrder, GettersAndSettersAtUnalignedPointers) {
    Bytes buf{0x00, 0x12, 0x34, 0x56, 0x78, 0xFF, 0xFE};
    unsigned char* p = buf.data() + 1;
    char* c = reinterpret_cast<char*>(p);
    EXPECT_EQ(GetMB32(p), 0x12345678);
    EXPECT_EQ(GetInt32(p), 0x12345678);
    EXPECT_EQ(GetLong(c), 0x12345678);
    EXPECT_EQ(GetLB32(c), 0x78563412);
    EXPECT_EQ(GetLong(buf.data() + 3), static_cast<int32_t>(0x5678FFFEu));
    unsigned char* ff = buf.data() + 5;  // 0xFF 0xFE: the sign matters
    EXPECT_EQ(GetInt16(ff), 65534);
    EXPECT_EQ(GetMB16(ff), 65534);
    EXPECT_EQ(GetShort(ff), -2);
    EXPECT_EQ(GetLB16(ff), 65279);

    using Set = void (*)(unsigned char*);
    const std::pair<Set, Bytes> setters[] = {
        {[](unsigned char* q) { SetMB32(q, 0x12345678); }, {0xEE, 0x12, 0x34, 0x56, 0x78, 0xEE}},
        {[](unsigned char* q) { SetInt32(q, 0xFFFFFFFE); }, {0xEE, 0xFF, 0xFF, 0xFF, 0xFE, 0xEE}},
        {[](unsigned char* q) { SetLB32(q, 0x12345678); }, {0xEE, 0x78, 0x56, 0x34, 0x12, 0xEE}},
        {[](unsigned char* q) { SetLong(reinterpret_cast<char*>(q), -2); },
         {0xEE, 0xFF, 0xFF, 0xFF, 0xFE, 0xEE}},
        {[](unsigned char* q) { SetMB16(q, 0x12345); }, {0xEE, 0x23, 0x45, 0xEE, 0xEE, 0xEE}},
        {[](unsigned char* q) { SetInt16(q, 0xBEEF); }, {0xEE, 0xBE, 0xEF, 0xEE, 0xEE, 0xEE}},
        {[](unsigned char* q) { SetLB16(q, 0x12345); }, {0xEE, 0x45, 0x23, 0xEE, 0xEE, 0xEE}},
        {[](unsigned char* q) { SetShort(q, int16_t{-2}); }, {0xEE, 0xFF, 0xFE, 0xEE, 0xEE, 0xEE}},
        {[](unsigned char* q) { SetShort(reinterpret_cast<char*>(q), int16_t{258}); },
         {0xEE, 0x01, 0x02, 0xEE, 0xEE, 0xEE}},
    };
    for (size_t i = 0; i < std::size(setters); ++i) {
        Bytes out(6, 0xEE);
        setters[i].first(out.data() + 1);
        EXPECT_EQ(out, setters[i].second) << "setter " << i;
    }
}

TEST(NamedOrder, NullPointersGiveZeroOrDoNothing) {
    unsigned char* up = nullptr;
    char* cp = nullptr;
    EXPECT_EQ(GetShort(up) + GetShort(cp) + GetMB32(up) + GetInt32(up) + GetLB32(cp) + GetMB16(up) +
                  GetInt16(up) + GetLB16(up),
              0);
    SetShort(up, 1), SetShort(cp, 1), SetMB32(up, 1), SetInt32(up, 1), SetLB32(up, 1);
    SetMB16(up, 1), SetInt16(up, 1), SetLB16(up, 1);  // reaching here is the test
}

TEST(DecimalText, ToCLongLongCollectsDigitsAndWraps) {
    const std::pair<const char*, int64_t> cases[] = {
        {"", 0},
        {"-42", 42},
        {"+7", 7},
        {"1,234", 1234},
        {" 12 34 ", 1234},
        {"abc", 0},
        {"\xB9\xFF"
         "5",
         5},
        {"9223372036854775807", std::numeric_limits<int64_t>::max()},
        {"9223372036854775808", std::numeric_limits<int64_t>::min()},
        {"18446744073709551616", 0},
    };
    for (const auto& [text, want] : cases)
        EXPECT_EQ(ToCLongLong(reinterpret_cast<const unsigned char*>(text)), want)
            << '"' << text << '"';
    EXPECT_EQ(ToCLongLong(nullptr), 0);
}

TEST(DecimalText, ToString10IsUnsignedZeroFilledAndRoundTrips) {
    const std::pair<int64_t, const char*> cases[] = {
        {0, "0"},
        {7, "7"},
        {10, "10"},
        {1234567890123, "1234567890123"},
        {-1, "18446744073709551615"},
        {std::numeric_limits<int64_t>::max(), "9223372036854775807"},
        {std::numeric_limits<int64_t>::min(), "9223372036854775808"},
    };
    for (auto [value, want] : cases) {
        char* text = ToString10(value);
        EXPECT_STREQ(text, want);
        for (size_t i = std::strlen(text); i < 21; ++i) EXPECT_EQ(text[i], 0);
        EXPECT_EQ(ToCLongLong(reinterpret_cast<unsigned char*>(text)), value);
        ::operator delete(text);
    }
}

}  // namespace
}  // namespace basicutils
