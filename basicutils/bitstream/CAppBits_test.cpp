#include <basicutils/bitstream/CAppBits.h>

#include <cstdint>
#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace basicutils {
namespace {

// The simplest possible reader: one bit at a time, MSB first.
uint32_t ReferenceRead(const std::vector<unsigned char>& buf, int64_t pos, int n) {
    uint32_t v = 0;
    for (int i = 0; i < n; ++i) {
        int64_t bit = pos + i;
        v = (v << 1) | ((buf[bit >> 3] >> (7 - (bit & 7))) & 1u);
    }
    return v;
}

// The write rule for values that fit their field: a byte the field enters
// at its bit 0 is cleared first, a byte already begun is ORed into. A
// 32-bit value with its top bit set is a negative int and, starting
// mid-byte, also sets the bits before the field in its first byte.
void ReferenceWrite(std::vector<unsigned char>& buf, int64_t pos, uint32_t value, int n) {
    if (n == 32 && (value >> 31) != 0 && (pos & 7) != 0)
        buf[pos >> 3] |= static_cast<unsigned char>(~(0xFFu >> (pos & 7)));
    for (int i = 0; i < n; ++i) {
        int64_t bit = pos + i;
        if ((bit & 7) == 0) buf[bit >> 3] = 0;
        if ((value >> (n - 1 - i)) & 1u) buf[bit >> 3] |= static_cast<unsigned char>(0x80 >> (bit & 7));
    }
}

std::vector<unsigned char> RandomBytes(size_t size, uint32_t seed) {
    std::mt19937 rng(seed);
    std::vector<unsigned char> v(size);
    for (auto& b : v) b = static_cast<unsigned char>(rng());
    return v;
}

// Opens the protected tables and the table-only read path.
class BitsProbe : public CAppBits {
public:
    using CAppBits::CAppBits;
    using CAppBits::FastGetBits;
    static bool Initialized() { return sByteMasksInitialized; }
    static unsigned First(int n, int o) { return sFirstByteMasks[n][o]; }
    static unsigned Second(int n, int o) { return sSecondByteMasks[n][o]; }
    static unsigned Remaining(int o) { return sRemainingBitsMasks[o]; }
};

TEST(CAppBitsTables, FilledAtLoadByTheirRule) {
    ASSERT_TRUE(BitsProbe::Initialized());
    for (int o = 0; o < 8; ++o) {
        EXPECT_EQ(BitsProbe::First(0, o), 0u);
        EXPECT_EQ(BitsProbe::Second(0, o), 0u);
        EXPECT_EQ(BitsProbe::Remaining(o), 0xFFu >> o);
        for (int n = 1; n <= 8; ++n) {
            unsigned word = (0xFFFFu << (16 - n) & 0xFFFFu) >> o;
            EXPECT_EQ(BitsProbe::First(n, o), word >> 8) << n << "," << o;
            EXPECT_EQ(BitsProbe::Second(n, o), word & 0xFF) << n << "," << o;
        }
    }
    EXPECT_EQ(BitsProbe::First(3, 6), 0x03u);
    EXPECT_EQ(BitsProbe::Second(3, 6), 0x80u);
}

TEST(CAppBitsTables, FastGetBitsAgreesWithReferenceAndMovesOnlyInConsumeMode) {
    auto buf = RandomBytes(2, 7);
    for (unsigned a = 0; a < 256; a += 37) {
        buf[0] = static_cast<unsigned char>(a);
        buf[1] = static_cast<unsigned char>(~a * 13);
        for (int o = 0; o < 8; ++o)
            for (int n = 0; n <= 8; ++n) {
                BitsProbe bits(buf.data(), 2);
                bits.FlushBits(o);
                EXPECT_EQ(static_cast<uint32_t>(bits.FastGetBits(n, kCBitsShow)), ReferenceRead(buf, o, n));
                EXPECT_EQ(bits.GetBytePosition(), 0);
                bits.FastGetBits(n, kCBitsConsume);
                EXPECT_EQ(bits.GetBytePosition(), (o + n) >> 3);
            }
    }
}

// Every offset 0..7 and width 0..32, at cursor positions that leave many
// bytes, a few bytes, and exactly the bytes the field needs (the buffer is
// cut there, so a load past it is a sanitizer error). Each read form must
// agree with the reference and leave the cursor where it should.
TEST(CAppBitsRead, EveryOffsetAndWidthAgreesWithReference) {
    const auto data = RandomBytes(64, 42);
    for (int byteStart : {0, 3, 17}) {
        for (int o = 0; o < 8; ++o) {
            for (int n = 0; n <= 32; ++n) {
                const int needed = (o + n + 7) >> 3;
                for (int tail : {needed, needed + 1, 2, 7, 8, 40}) {
                    if (tail < needed) continue;
                    std::vector<unsigned char> buf(data.begin(), data.begin() + byteStart + tail);
                    const int size = static_cast<int>(buf.size());
                    const int64_t pos = int64_t{byteStart} * 8 + o;
                    const uint32_t want = ReferenceRead(buf, pos, n);
                    SCOPED_TRACE(testing::Message() << "byte " << byteStart << " offset " << o << " width " << n
                                                    << " tail " << tail);

                    CAppBits bits(buf.data(), size);
                    bits.FlushBits(static_cast<int>(pos));
                    EXPECT_EQ(static_cast<uint32_t>(bits.ShowBits(n)), want);
                    EXPECT_EQ(static_cast<uint32_t>(bits.GetBits(n, kCBitsShow)), want);
                    EXPECT_EQ(bits.GetBytePosition(), byteStart);
                    EXPECT_EQ(static_cast<uint32_t>(bits.GetBits(n, kCBitsConsume)), want);
                    EXPECT_EQ(bits.GetBytePosition(), (pos + n) >> 3);
                    EXPECT_EQ(bits.IsByteAlligned(), ((pos + n) & 7) == 0 ? 1 : 0);

                    CAppBits at(buf.data(), size);
                    EXPECT_EQ(static_cast<uint32_t>(at.GetBitsAt(static_cast<int>(pos), n)), want);
                    EXPECT_EQ(at.GetBytePosition(), (pos + n) >> 3);
                }
            }
        }
    }
}

TEST(CAppBitsRead, WalkingSequenceAcrossBothPaths) {
    // 0xA5 0x3C: 4 bits, then 8 across the byte boundary (mask tables),
    // then the last 4 bits with one byte left (byte path).
    std::vector<unsigned char> buf{0xA5, 0x3C};
    CAppBits bits(buf.data(), 2);
    EXPECT_EQ(bits.GetBits(4, kCBitsConsume), 0xA);
    EXPECT_EQ(bits.IsByteAlligned(), 0);
    EXPECT_EQ(bits.GetBits(8, kCBitsConsume), 0x53);
    EXPECT_EQ(bits.IsEOB(), 0);
    EXPECT_EQ(bits.GetBits(4, kCBitsConsume), 0xC);
    EXPECT_EQ(bits.IsEOB(), 1);
    EXPECT_EQ(bits.IsByteAlligned(), 1);
    // Reads of nothing at the end touch nothing and stay put.
    EXPECT_EQ(bits.GetBits(0, kCBitsConsume), 0);
    EXPECT_EQ(bits.GetBytePosition(), 2);
}

TEST(CAppBitsRead, ThirtyTwoBitFieldsKeepEveryBitAndOnlyTheTopSetsTheSign) {
    // Five-byte fields at each offset, in a buffer cut right after them.
    for (int o = 0; o < 8; ++o) {
        std::vector<unsigned char> buf(o == 0 ? 4 : 5);
        uint32_t value = 0x80000001u | (0x5A5A5Au << 4);
        CAppBits writer(buf.data(), static_cast<int>(buf.size()));
        writer.PutBits(0x7F >> (7 - o), o);
        writer.PutBits(static_cast<int>(value), 32);
        CAppBits reader(buf.data(), static_cast<int>(buf.size()));
        EXPECT_EQ(reader.GetBitsAt(o, 32), static_cast<int>(value)) << "offset " << o;
        EXPECT_LT(reader.GetBitsAt(o, 32), 0);
        EXPECT_EQ(reader.GetBitsAt(o + 1, 31), static_cast<int>(value & 0x7FFFFFFF));
    }
}

TEST(CAppBitsMove, FlushAndIsEOBFollowTheBitPosition) {
    std::vector<unsigned char> buf(4);
    CAppBits bits(buf.data(), 4);
    bits.FlushBits(6);
    bits.FlushBits(3);
    EXPECT_EQ(bits.GetBytePosition(), 1);
    EXPECT_EQ(bits.IsByteAlligned(), 0);
    bits.SetBuf(buf.data(), 4);
    bits.FlushBits(6);
    bits.FlushBits(2);
    EXPECT_EQ(bits.GetBytePosition(), 1);
    EXPECT_EQ(bits.IsByteAlligned(), 1);
    bits.FlushBits(23);
    EXPECT_EQ(bits.IsEOB(), 0);
    bits.FlushBits(1);
    EXPECT_EQ(bits.IsEOB(), 1);
    CAppBits empty;
    EXPECT_EQ(empty.IsEOB(), 1);
    EXPECT_EQ(empty.IsByteAlligned(), 1);
    // Copies walk independently.
    CAppBits copy = bits;
    copy.SetBuf(buf.data(), 4);
    EXPECT_EQ(bits.GetBytePosition(), 4);
    EXPECT_EQ(copy.GetBytePosition(), 0);
}

// Every offset and width, into buffers of all-zero, all-one and random
// contents: the bytes after the write must match the clear-or-OR rule and
// the read-back must give the value where the field started its byte.
TEST(CAppBitsWrite, EveryOffsetAndWidthFollowsTheClearOrRule) {
    std::mt19937 rng(3);
    for (unsigned char fill : {0x00, 0xFF, 0x5A}) {
        for (int o = 0; o < 8; ++o) {
            for (int n = 0; n <= 32; ++n) {
                const uint32_t value = n == 0 ? 0 : static_cast<uint32_t>(rng()) >> (32 - n);
                std::vector<unsigned char> buf(8, fill);
                std::vector<unsigned char> want = buf;
                ReferenceWrite(want, 8 + o, value, n);
                CAppBits bits(buf.data(), 8);
                EXPECT_EQ(bits.PutBitsAt(8 + o, static_cast<int>(value), n), 0);
                EXPECT_EQ(buf, want) << "fill " << int{fill} << " offset " << o << " width " << n;
                EXPECT_EQ(bits.GetBytePosition(), (8 + o + n) >> 3);
                if (o == 0 || fill == 0) {
                    EXPECT_EQ(static_cast<uint32_t>(bits.GetBitsAt(8 + o, n)), value);
                }
            }
        }
    }
}

TEST(CAppBitsWrite, ClearsAByteItStartsAndOrsIntoOneBegun) {
    struct Case {
        const char* what;
        std::vector<unsigned char> before;
        int bitPosition;
        std::vector<std::pair<int, int>> writes;  // value, width
        std::vector<unsigned char> after;
    };
    const Case cases[] = {
        {"3 then 5 bits into a full byte", {0xFF}, 0, {{0x5, 3}, {0x1F, 5}}, {0xBF}},
        {"16 bits at a boundary", {0xFF, 0xFF, 0xEE}, 0, {{0x1234, 16}}, {0x12, 0x34, 0xEE}},
        {"width 0 touches nothing", {0xC3}, 0, {{0xFF, 0}}, {0xC3}},
        {"ending on a boundary leaves the next byte", {0x00, 0x77}, 0, {{0xAB, 8}}, {0xAB, 0x77}},
        {"the next write then clears it", {0x00, 0x77}, 0, {{0xAB, 8}, {0x1, 1}}, {0xAB, 0x80}},
        {"zero into a set bit mid-byte leaves it", {0xFF}, 3, {{0, 1}}, {0xFF}},
        {"a boundary write clears bits past the field", {0xFF, 0xFF}, 8, {{0x1, 2}}, {0xFF, 0x40}},
        {"a too-wide value spills before the field", {0x00}, 4, {{0xFF, 2}}, {0x0C | 0xF0}},
        {"a negative value spills within its byte", {0x00, 0x00}, 10, {{-1, 4}}, {0x00, 0xFC}},
        {"a negative value across bytes", {0x00, 0x00}, 4, {{-2, 8}}, {0xFF, 0xE0}},
    };
    for (const Case& c : cases) {
        std::vector<unsigned char> buf = c.before;
        CAppBits bits(buf.data(), static_cast<int>(buf.size()));
        bits.FlushBits(c.bitPosition);
        for (auto [value, width] : c.writes) EXPECT_EQ(bits.PutBits(value, width), 0);
        EXPECT_EQ(buf, c.after) << c.what;
    }
}

TEST(CAppBitsWrite, RandomFieldsRoundTrip) {
    std::mt19937 rng(11);
    std::vector<unsigned char> buf(4096, 0xEE);
    std::vector<std::pair<uint32_t, int>> fields;
    CAppBits writer(buf.data(), static_cast<int>(buf.size()));
    int64_t bitsWritten = 0;
    while (bitsWritten + 32 <= int64_t{4096} * 8) {
        int n = static_cast<int>(rng() % 33);
        uint32_t value = n == 0 ? 0 : static_cast<uint32_t>(rng()) >> (32 - n);
        // A negative int would spill into the field before (see the rule above).
        if (n == 32 && (bitsWritten & 7) != 0) value &= 0x7FFFFFFF;
        writer.PutBits(static_cast<int>(value), n);
        fields.emplace_back(value, n);
        bitsWritten += n;
    }
    CAppBits reader(buf.data(), static_cast<int>(buf.size()));
    for (auto [value, n] : fields) ASSERT_EQ(static_cast<uint32_t>(reader.GetBits(n, kCBitsConsume)), value);
}

}  // namespace
}  // namespace basicutils
