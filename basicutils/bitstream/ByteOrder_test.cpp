#include <basicutils/bitstream/ByteOrder.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace basicutils {
namespace {

using Bytes = std::vector<unsigned char>;

template <typename T>
Bytes BytesOf(const T& v) {
    Bytes b(sizeof v);
    std::memcpy(b.data(), &v, sizeof v);
    return b;
}

Bytes Reversed(Bytes b) { return Bytes(b.rbegin(), b.rend()); }

TEST(UByteSwapper, ValueSwapsReverseWhateverTheHost) {
    EXPECT_EQ(UByteSwapper::SwapLong(0x12345678u), 0x78563412u);
    EXPECT_EQ(UByteSwapper::SwapShort(uint16_t{0x1234}), 0x3412);
    EXPECT_EQ(UByteSwapper::SwapLongLong(0x0102030405060708), 0x0807060504030201);
    EXPECT_EQ(UByteSwapper::SwapLongLong(-1), -1);
    EXPECT_EQ(UByteSwapper::SwapLongLong(0x00000000000000FF), std::numeric_limits<int64_t>::min() >> 7);
}

// Each in-place swap reverses exactly the bytes of its operand and a second
// call restores it.
TEST(UByteSwapper, InPlaceSwapsReverseTheOperandAndUndoThemselves) {
    int16_t s = 0x1234;
    uint16_t us = 0xFE01;
    int32_t l = 0x12345678;
    uint32_t ul = 0xFEDCBA98u;
    float f = 1.5f;
    double d = -2.75e100;
    const Bytes s0 = BytesOf(s), us0 = BytesOf(us), l0 = BytesOf(l), ul0 = BytesOf(ul), f0 = BytesOf(f),
                d0 = BytesOf(d);

    UByteSwapper::Swap(&s);
    UByteSwapper::Swap(&us);
    UByteSwapper::Swap(&l);
    UByteSwapper::Swap(&ul);
    UByteSwapper::Swap(&f);
    UByteSwapper::Swap(&d);
    EXPECT_EQ(BytesOf(s), Reversed(s0));
    EXPECT_EQ(BytesOf(us), Reversed(us0));
    EXPECT_EQ(BytesOf(l), Reversed(l0));
    EXPECT_EQ(BytesOf(ul), Reversed(ul0));
    EXPECT_EQ(BytesOf(f), Reversed(f0));
    EXPECT_EQ(BytesOf(d), Reversed(d0));

    UByteSwapper::Swap(l);  // the reference forms
    UByteSwapper::Swap(ul);
    UByteSwapper::Swap(f);
    UByteSwapper::Swap(&s);
    UByteSwapper::Swap(&us);
    UByteSwapper::Swap(&d);
    EXPECT_EQ(l, 0x12345678);
    EXPECT_EQ(ul, 0xFEDCBA98u);
    EXPECT_EQ(f, 1.5f);
    EXPECT_EQ(d, -2.75e100);
    EXPECT_EQ(s, 0x1234);
    EXPECT_EQ(us, 0xFE01);
}

TEST(UByteSwapper, LongDoubleSwapStaysWithinTheSignificantBytes) {
    // Fill the whole storage (padding included) with a known pattern.
    long double x;
    Bytes pattern(sizeof x);
    for (size_t i = 0; i < pattern.size(); ++i) pattern[i] = static_cast<unsigned char>(i + 1);
    std::memcpy(&x, pattern.data(), sizeof x);
    UByteSwapper::Swap(&x);
    const size_t significant = std::numeric_limits<long double>::digits == 64 ? 10 : sizeof x;
    Bytes want = pattern;
    std::reverse(want.begin(), want.begin() + static_cast<std::ptrdiff_t>(significant));
    EXPECT_EQ(BytesOf(x), want);
    UByteSwapper::Swap(&x);
    EXPECT_EQ(BytesOf(x), pattern);
}

TEST(UByteSwapper, RunSwaps) {
    struct Case {
        int16_t length;
        Bytes whole, pairs;
    };
    const Case cases[] = {
        {5, {5, 4, 3, 2, 1, 6}, {2, 1, 4, 3, 5, 6}},
        {4, {4, 3, 2, 1, 5, 6}, {2, 1, 4, 3, 5, 6}},
        {1, {1, 2, 3, 4, 5, 6}, {1, 2, 3, 4, 5, 6}},
        {0, {1, 2, 3, 4, 5, 6}, {1, 2, 3, 4, 5, 6}},
        {-3, {1, 2, 3, 4, 5, 6}, {1, 2, 3, 4, 5, 6}},
        {2, {2, 1, 3, 4, 5, 6}, {2, 1, 3, 4, 5, 6}},
    };
    for (const Case& c : cases) {
        Bytes whole{1, 2, 3, 4, 5, 6}, pairs = whole;
        UByteSwapper::Swap(reinterpret_cast<char*>(whole.data()), c.length);
        UByteSwapper::SwapShort(pairs.data(), c.length);
        EXPECT_EQ(whole, c.whole) << c.length;
        EXPECT_EQ(pairs, c.pairs) << c.length;
    }
}

// The buffer forms read or write the operand's memory image reversed, so
// the expectations are written as byte images, whatever the host order.
TEST(UByteSwapper, BufferReadsAndWritesAreReversedAndUnaligned) {
    Bytes buf{0xEE, 0x12, 0x34, 0x56, 0x78, 0xEE};
    char* p = reinterpret_cast<char*>(buf.data()) + 1;  // deliberately odd
    const Bytes before = buf;
    EXPECT_EQ(BytesOf(UByteSwapper::SwapUL(p)), (Bytes{0x78, 0x56, 0x34, 0x12}));
    EXPECT_EQ(BytesOf(UByteSwapper::SwapSL(p)), (Bytes{0x78, 0x56, 0x34, 0x12}));
    EXPECT_EQ(BytesOf(UByteSwapper::SwapUS(p)), (Bytes{0x34, 0x12}));
    EXPECT_EQ(BytesOf(UByteSwapper::SwapSS(p + 2)), (Bytes{0x78, 0x56}));
    EXPECT_EQ(buf, before);
    // Signed and unsigned forms agree bit for bit.
    buf[3] = 0xFF;
    EXPECT_EQ(static_cast<uint32_t>(UByteSwapper::SwapSL(p)), UByteSwapper::SwapUL(p));
    EXPECT_EQ(static_cast<uint16_t>(UByteSwapper::SwapSS(p + 2)), UByteSwapper::SwapUS(p + 2));

    const uint32_t ul = 0x11223344u;
    const int32_t sl = -2;
    const uint16_t us = 0xABCD;
    const int16_t ss = -300;
    UByteSwapper::SwapToBuf(ul, p);
    EXPECT_EQ(Bytes(buf.begin() + 1, buf.begin() + 5), Reversed(BytesOf(ul)));
    UByteSwapper::SwapToBuf(sl, p);
    EXPECT_EQ(Bytes(buf.begin() + 1, buf.begin() + 5), Reversed(BytesOf(sl)));
    UByteSwapper::SwapToBuf(us, p);
    EXPECT_EQ(Bytes(buf.begin() + 1, buf.begin() + 3), Reversed(BytesOf(us)));
    UByteSwapper::SwapToBuf(ss, p + 2);
    EXPECT_EQ(Bytes(buf.begin() + 3, buf.begin() + 5), Reversed(BytesOf(ss)));
    EXPECT_EQ(buf.front(), 0xEE);
    EXPECT_EQ(buf.back(), 0xEE);
    // Writing reversed and reading reversed gives the value back.
    UByteSwapper::SwapToBuf(ul, p);
    EXPECT_EQ(UByteSwapper::SwapUL(p), ul);
}

TEST(NamedOrder, GettersAtAnUnalignedPointer) {
    Bytes buf{0x00, 0x12, 0x34, 0x56, 0x78, 0xFF, 0xFE};
    unsigned char* p = buf.data() + 1;
    char* c = reinterpret_cast<char*>(p);
    EXPECT_EQ(GetMB32(p), 0x12345678);
    EXPECT_EQ(GetInt32(p), 0x12345678);
    EXPECT_EQ(GetLong(p), 0x12345678);
    EXPECT_EQ(GetLong(c), 0x12345678);
    EXPECT_EQ(GetLB32(c), 0x78563412);
    EXPECT_EQ(GetMB16(p), 0x1234);
    EXPECT_EQ(GetLB16(p), 0x3412);

    unsigned char* ff = buf.data() + 5;  // 0xFF 0xFE: sign matters
    EXPECT_EQ(GetInt16(ff), 65534);
    EXPECT_EQ(GetMB16(ff), 65534);
    EXPECT_EQ(GetShort(ff), -2);
    EXPECT_EQ(GetShort(reinterpret_cast<char*>(ff)), -2);
    EXPECT_EQ(GetLB16(ff), 65279);
    EXPECT_EQ(GetMB32(buf.data() + 3), static_cast<int>(0x5678FFFEu));
    EXPECT_EQ(GetLong(buf.data() + 3), static_cast<int32_t>(0x5678FFFEu));
    EXPECT_EQ(GetLB32(reinterpret_cast<char*>(buf.data() + 3)), static_cast<int>(0xFEFF7856u));
}

TEST(NamedOrder, SettersWriteTheirOrderAndOnlyTheirWidth) {
    struct Case {
        const char* name;
        void (*set)(unsigned char*);
        Bytes want;
    };
    const Case cases[] = {
        {"SetMB32", [](unsigned char* p) { SetMB32(p, 0x12345678); }, {0xEE, 0x12, 0x34, 0x56, 0x78, 0xEE}},
        {"SetInt32", [](unsigned char* p) { SetInt32(p, 0xFFFFFFFE); }, {0xEE, 0xFF, 0xFF, 0xFF, 0xFE, 0xEE}},
        {"SetLB32", [](unsigned char* p) { SetLB32(p, 0x12345678); }, {0xEE, 0x78, 0x56, 0x34, 0x12, 0xEE}},
        {"SetLong", [](unsigned char* p) { SetLong(reinterpret_cast<char*>(p), -2); },
         {0xEE, 0xFF, 0xFF, 0xFF, 0xFE, 0xEE}},
        {"SetMB16", [](unsigned char* p) { SetMB16(p, 0x12345); }, {0xEE, 0x23, 0x45, 0xEE, 0xEE, 0xEE}},
        {"SetInt16", [](unsigned char* p) { SetInt16(p, 0xBEEF); }, {0xEE, 0xBE, 0xEF, 0xEE, 0xEE, 0xEE}},
        {"SetLB16", [](unsigned char* p) { SetLB16(p, 0x12345); }, {0xEE, 0x45, 0x23, 0xEE, 0xEE, 0xEE}},
        {"SetShort", [](unsigned char* p) { SetShort(p, int16_t{-2}); }, {0xEE, 0xFF, 0xFE, 0xEE, 0xEE, 0xEE}},
        {"SetShort(char*)", [](unsigned char* p) { SetShort(reinterpret_cast<char*>(p), int16_t{0x0102}); },
         {0xEE, 0x01, 0x02, 0xEE, 0xEE, 0xEE}},
    };
    for (const Case& c : cases) {
        Bytes buf(6, 0xEE);
        c.set(buf.data() + 1);
        EXPECT_EQ(buf, c.want) << c.name;
    }
}

TEST(NamedOrder, NullPointersGiveZeroOrDoNothing) {
    unsigned char* up = nullptr;
    char* cp = nullptr;
    EXPECT_EQ(GetShort(up), 0);
    EXPECT_EQ(GetShort(cp), 0);
    EXPECT_EQ(GetMB32(up), 0);
    EXPECT_EQ(GetInt32(up), 0);
    EXPECT_EQ(GetLB32(cp), 0);
    EXPECT_EQ(GetMB16(up), 0);
    EXPECT_EQ(GetInt16(up), 0);
    EXPECT_EQ(GetLB16(up), 0);
    // Setters must return quietly (a write through null would fault).
    SetShort(up, 1);
    SetShort(cp, 1);
    SetMB32(up, 1);
    SetInt32(up, 1);
    SetLB32(up, 1);
    SetMB16(up, 1);
    SetInt16(up, 1);
    SetLB16(up, 1);
}

TEST(DecimalText, ToCLongLongCollectsDigitsOnly) {
    struct Case {
        const char* text;
        int64_t want;
    };
    const Case cases[] = {
        {"", 0},
        {"0", 0},
        {"42", 42},
        {"-42", 42},
        {"+7", 7},
        {"1,234", 1234},
        {" 12 34 ", 1234},
        {"abc", 0},
        {"x9y8z7", 987},
        {"9223372036854775807", std::numeric_limits<int64_t>::max()},
        {"9223372036854775808", std::numeric_limits<int64_t>::min()},  // wraps
        {"18446744073709551615", -1},
        {"18446744073709551616", 0},
        {"\xB9\xB2\xFF" "5", 5},  // high bytes are not digits
    };
    for (const Case& c : cases)
        EXPECT_EQ(ToCLongLong(reinterpret_cast<const unsigned char*>(c.text)), c.want) << '"' << c.text << '"';
    EXPECT_EQ(ToCLongLong(nullptr), 0);
}

TEST(DecimalText, ToString10WritesTheUnsignedValueInANewBlock) {
    struct Case {
        int64_t value;
        const char* text;
    };
    const Case cases[] = {
        {0, "0"},
        {7, "7"},
        {10, "10"},
        {1234567890123, "1234567890123"},
        {-1, "18446744073709551615"},
        {std::numeric_limits<int64_t>::max(), "9223372036854775807"},
        {std::numeric_limits<int64_t>::min(), "9223372036854775808"},
        {-10, "18446744073709551606"},
    };
    for (const Case& c : cases) {
        int64_t v = c.value;
        char* text = ToString10(v);
        ASSERT_NE(text, nullptr);
        EXPECT_STREQ(text, c.text);
        for (size_t i = std::strlen(text); i < 21; ++i) EXPECT_EQ(text[i], 0);
        // The reader wraps in 64 bits, so every value round trips.
        EXPECT_EQ(ToCLongLong(reinterpret_cast<unsigned char*>(text)), c.value);
        ::operator delete(text);
    }
}

}  // namespace
}  // namespace basicutils
