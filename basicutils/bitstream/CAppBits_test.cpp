#include <basicutils/bitstream/CAppBits.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <vector>

namespace basicutils {
namespace {

using Bytes = std::vector<unsigned char>;

// One bit at a time, MSB first: the reference for every read route.
uint32_t ReferenceRead(const Bytes& buf, int64_t pos, int n) {
    uint32_t v = 0;
    for (int64_t bit = pos; bit < pos + n; ++bit)
        v = (v << 1) | ((buf[bit >> 3] >> (7 - (bit & 7))) & 1u);
    return v;
}

// For values that fit: a byte entered at bit 0 is cleared, a begun one ORed.
// A negative 32-bit value written mid-byte also sets the bits before it.
void ReferenceWrite(Bytes& buf, int64_t pos, uint32_t value, int n) {
    if (n == 32 && (value >> 31) != 0 && (pos & 7) != 0)
        buf[pos >> 3] |= static_cast<unsigned char>(~(0xFFu >> (pos & 7)));
    for (int i = 0; i < n; ++i) {
        int64_t bit = pos + i;
        if ((bit & 7) == 0) buf[bit >> 3] = 0;
        if ((value >> (n - 1 - i)) & 1u)
            buf[bit >> 3] |= static_cast<unsigned char>(0x80 >> (bit & 7));
    }
}

// Every offset 0..7 and width 0..32, with plenty of bytes left (64-bit
// load), a few (mask tables) and exactly those the field needs (byte loop,
// five bytes for 32 bits off a boundary). The buffer is cut there, so a
// read past it is a sanitizer error. All read forms must agree.
TEST(CAppBits, EveryOffsetAndWidthReadsLikeTheReference) {
    std::mt19937 rng(42);
    Bytes data(64);
    for (auto& b : data) b = static_cast<unsigned char>(rng());
    for (int start : {0, 17})
        for (int o = 0; o < 8; ++o)
            for (int n = 0; n <= 32; ++n) {
                const int needed = (o + n + 7) >> 3;
                for (int tail : {needed, needed + 1, 7, 40}) {
                    if (tail < needed) continue;
                    Bytes buf(data.begin(), data.begin() + start + tail);
                    const int pos = start * 8 + o;
                    const uint32_t want = ReferenceRead(buf, pos, n);
                    SCOPED_TRACE(testing::Message()
                                 << "offset " << o << " width " << n << " tail " << tail);
                    CAppBits bits(buf.data(), static_cast<int>(buf.size()));
                    bits.FlushBits(pos);
                    EXPECT_EQ(static_cast<uint32_t>(bits.ShowBits(n)), want);
                    EXPECT_EQ(static_cast<uint32_t>(bits.GetBits(n, kCBitsShow)), want);
                    EXPECT_EQ(bits.GetBytePosition(), start);
                    EXPECT_EQ(static_cast<uint32_t>(bits.GetBitsAt(pos, n)), want);
                    EXPECT_EQ(bits.GetBytePosition(), (pos + n) >> 3);
                    EXPECT_EQ(bits.IsByteAlligned(), (pos + n) % 8 == 0 ? 1 : 0);
                }
            }
}

TEST(CAppBits, WalkingAcrossRoutesToTheEnd) {
    Bytes buf{0xA5, 0x3C};
    CAppBits bits(buf.data(), 2);
    EXPECT_EQ(bits.GetBits(4, kCBitsConsume), 0xA);
    EXPECT_EQ(bits.GetBits(8, kCBitsConsume), 0x53);  // mask tables
    EXPECT_EQ(bits.IsEOB(), 0);
    EXPECT_EQ(bits.GetBits(4, kCBitsConsume), 0xC);  // last byte alone
    EXPECT_EQ(bits.IsEOB(), 1);
    EXPECT_EQ(bits.IsByteAlligned(), 1);
    EXPECT_EQ(bits.GetBits(0, kCBitsConsume), 0);  // at the end: touches nothing
    bits.SetBuf(buf.data(), 2);
    bits.FlushBits(6);
    bits.FlushBits(3);
    EXPECT_EQ(bits.GetBytePosition(), 1);
    EXPECT_EQ(bits.IsByteAlligned(), 0);
}

// Every offset and width, into zeroed, filled and patterned buffers.
TEST(CAppBits, EveryOffsetAndWidthWritesByTheClearOrRule) {
    std::mt19937 rng(3);
    for (unsigned char fill : {0x00, 0xFF, 0x5A})
        for (int o = 0; o < 8; ++o)
            for (int n = 0; n <= 32; ++n) {
                const uint32_t value = n == 0 ? 0 : static_cast<uint32_t>(rng()) >> (32 - n);
                Bytes buf(8, fill), want(8, fill);
                ReferenceWrite(want, 8 + o, value, n);
                CAppBits bits(buf.data(), 8);
                EXPECT_EQ(bits.PutBitsAt(8 + o, static_cast<int>(value), n), 0);
                EXPECT_EQ(buf, want) << "fill " << int{fill} << " offset " << o << " width " << n;
                EXPECT_EQ(bits.GetBytePosition(), (8 + o + n) >> 3);
            }
}

TEST(CAppBits, WritesClearFreshBytesOrIntoBegunOnesAndSpillWideValues) {
    struct Case {
        const char* what;
        Bytes before;
        int at;
        std::vector<std::pair<int, int>> writes;  // value, width
        Bytes after;
    };
    const Case cases[] = {
        {"3 then 5 bits into a full byte", {0xFF}, 0, {{0x5, 3}, {0x1F, 5}}, {0xBF}},
        {"16 bits at a boundary", {0xFF, 0xFF, 0xEE}, 0, {{0x1234, 16}}, {0x12, 0x34, 0xEE}},
        {"width 0 touches nothing", {0xC3}, 0, {{0xFF, 0}}, {0xC3}},
        {"ending on a boundary leaves the next byte", {0x00, 0x77}, 0, {{0xAB, 8}}, {0xAB, 0x77}},
        {"until the next write clears it", {0x00, 0x77}, 0, {{0xAB, 8}, {0x1, 1}}, {0xAB, 0x80}},
        {"zero into a set bit mid-byte leaves it", {0xFF}, 3, {{0, 1}}, {0xFF}},
        {"a too-wide value spills before the field", {0x00}, 4, {{0xFF, 2}}, {0xFC}},
        {"a negative value spills across bytes", {0x00, 0x00}, 4, {{-2, 8}}, {0xFF, 0xE0}},
    };
    for (const Case& c : cases) {
        Bytes buf = c.before;
        CAppBits bits(buf.data(), static_cast<int>(buf.size()));
        bits.FlushBits(c.at);
        for (auto [value, width] : c.writes) bits.PutBits(value, width);
        EXPECT_EQ(buf, c.after) << c.what;
    }
}

}  // namespace
}  // namespace basicutils
