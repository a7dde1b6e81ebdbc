// The named orders, the integer swaps and the run swaps are checked against a
// byte-by-byte model by fuzz/ByteOrder_fuzz.cpp, and the decimal text by
// fuzz/ToCLongLong_fuzz.cpp (both run by CTest); here, the floating-point
// swaps and null pointers.
#include <basicutils/bitstream/ByteOrder.h>
#include <gtest/gtest.h>

#include <algorithm>
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

TEST(UByteSwapper, FloatingPointSwapsReverseTheSignificantBytesOnly) {
    float f = -3.25f;
    double d = -2.75e100;
    Bytes wantF = BytesOf(f), wantD = BytesOf(d);
    std::reverse(wantF.begin(), wantF.end());
    std::reverse(wantD.begin(), wantD.end());
    UByteSwapper::Swap(f);
    UByteSwapper::Swap(&d);
    EXPECT_EQ(BytesOf(f), wantF);
    EXPECT_EQ(BytesOf(d), wantD);
    long double x;
    Bytes pattern(sizeof x);
    for (size_t i = 0; i < pattern.size(); ++i) pattern[i] = static_cast<unsigned char>(i + 1);
    std::memcpy(&x, pattern.data(), sizeof x);
    UByteSwapper::Swap(&x);
    const auto significant = std::numeric_limits<long double>::digits == 64 ? 10 : sizeof x;
    std::reverse(pattern.begin(), pattern.begin() + static_cast<std::ptrdiff_t>(significant));
    EXPECT_EQ(BytesOf(x), pattern) << "padding bytes untouched";
}

TEST(NamedOrder, NullPointersGiveZeroOrDoNothing) {
    unsigned char* up = nullptr;
    char* cp = nullptr;
    EXPECT_EQ(GetShort(up) + GetShort(cp) + GetMB32(up) + GetInt32(up) + GetLB32(cp) + GetMB16(up) +
                  GetInt16(up) + GetLB16(up) + ToCLongLong(nullptr),
              0);
    SetShort(up, 1), SetShort(cp, 1), SetMB32(up, 1), SetInt32(up, 1), SetLB32(up, 1);
    SetMB16(up, 1), SetInt16(up, 1), SetLB16(up, 1);  // reaching here is the test
}

}  // namespace
}  // namespace basicutils
