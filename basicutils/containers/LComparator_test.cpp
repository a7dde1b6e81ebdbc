#include <basicutils/containers/LComparator.h>
#include <gtest/gtest.h>

#include <cstdint>

namespace basicutils {
namespace {

TEST(BlockCompare, ByteDifferenceThenLength) {
    const unsigned char ab[] = {0x61, 0x62}, abc[] = {0x61, 0x62, 0x63}, ff[] = {0xFF}, one[] = {1};
    // clang-format off
    const struct { const unsigned char *a, *b; uint32_t aSize, bSize; int32_t want; } cases[] = {
        {ab, abc, 2, 3, -1}, {abc, ab, 3, 2, 1}, {ff, one, 1, 1, 254}, {one, ff, 1, 1, -254},
        {ab, abc, 2, 2, 0}, {ff, one, 0, 0, 0}, {ab, abc + 1, 1, 1, -1},
        {ab, abc, 0, 0xFFFFFFFFu, 1},  // 0 - 0xFFFFFFFF wraps to 1
    };
    // clang-format on
    for (const auto& c : cases) {
        EXPECT_EQ(BlockCompare(c.a, c.b, c.aSize, c.bSize), c.want) << c.aSize << " " << c.bSize;
        if (c.aSize != c.bSize) continue;
        EXPECT_EQ(BlockCompare(c.a, c.b, c.aSize), c.want);
        EXPECT_EQ(BlocksAreEqual(c.a, c.b, c.aSize), c.want == 0);
    }
}

TEST(Comparators, LongComparatorWrapsAndPointerComparatorOrders) {
    const LLongComparator longs;
    const struct {
        int32_t a, b, sign;
    } cases[] = {{5, 3, 1}, {3, 5, -1}, {7, 7, 0}, {0x7FFFFFFF, -1, -1}, {-1000, 1000, -1}};
    for (const auto& c : cases) {
        const int32_t r = longs.Compare(&c.a, &c.b, 4, 4);
        EXPECT_EQ((r > 0) - (r < 0), c.sign) << c.a << " " << c.b;
        EXPECT_EQ(longs.IsEqualTo(&c.a, &c.b, 0, 0), c.sign == 0 && c.a == c.b);
    }
    const LPointerComparator pointers;
    const intptr_t lo = 0x100000000, hi = 0x200000000;  // equal in their low 32 bits
    EXPECT_EQ(pointers.Compare(&lo, &hi, 8, 8), -1);
    EXPECT_EQ(pointers.Compare(&hi, &lo, 8, 8), 1);
    EXPECT_FALSE(pointers.IsEqualTo(&lo, &hi, 8, 8));
    const LComparator bytes;
    EXPECT_EQ(bytes.CompareToKey(&lo, 8, &lo), 1);
    EXPECT_FALSE(bytes.IsEqualToKey(&lo, 8, &lo));
    EXPECT_TRUE(bytes.IsEqualTo(&lo, &lo, 8, 8));
}

}  // namespace
}  // namespace basicutils
