// Reads, writes and skips at every offset and width are checked against a
// bit-by-bit model by fuzz/BitCursor_fuzz.cpp (CTest: fuzz.BitCursor), whose
// values always fit their field. Here: values that do not fit, and the end.
#include <basicutils/bitstream/CAppBits.h>
#include <gtest/gtest.h>

#include <vector>

namespace basicutils {
namespace {

using Bytes = std::vector<unsigned char>;

TEST(CAppBits, TooWideAndNegativeValuesSpillBeforeTheField) {
    // clang-format off
    struct { const char* what; Bytes before; int at; int value, width; Bytes after; } cases[] = {
        {"a too-wide value spills before the field", {0x00}, 4, 0xFF, 2, {0xFC}},
        {"a negative value spills across bytes", {0x00, 0x00}, 4, -2, 8, {0xFF, 0xE0}},
    };
    // clang-format on
    for (const auto& c : cases) {
        Bytes buf = c.before;
        CAppBits bits(buf.data(), static_cast<int>(buf.size()));
        bits.FlushBits(c.at);
        bits.PutBits(c.value, c.width);
        EXPECT_EQ(buf, c.after) << c.what;
    }
}

TEST(CAppBits, ReadingAtTheEndTouchesNothing) {
    Bytes buf{0xA5, 0x3C};
    CAppBits bits(buf.data(), 2);
    EXPECT_EQ(bits.GetBits(16, kCBitsConsume), 0xA53C);
    EXPECT_EQ(bits.IsEOB(), 1);
    EXPECT_EQ(bits.GetBits(0, kCBitsConsume), 0);
}

}  // namespace
}  // namespace basicutils
