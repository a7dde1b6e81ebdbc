#include <basicutils/bitstream/CAppBytes.h>

#include <vector>

#include <gtest/gtest.h>

namespace basicutils {
namespace {

TEST(CAppBytes, ReadsMostSignificantFirstWithoutSign) {
    std::vector<unsigned char> buf{0x12, 0x34, 0x56, 0x78};
    CAppBytes bytes(buf.data(), 4);
    EXPECT_EQ(bytes.ShowBytes(1), 0x12);
    EXPECT_EQ(bytes.ShowBytes(3), 0x123456);
    EXPECT_EQ(bytes.ShowBytes(4), 0x12345678);
    EXPECT_EQ(bytes.GetBytes(2, kCBytesConsume), 0x1234);
    EXPECT_EQ(bytes.IsEOB(), 0);
    EXPECT_EQ(bytes.GetBytes(2, kCBytesConsume), 0x5678);
    EXPECT_EQ(bytes.IsEOB(), 1);

    std::vector<unsigned char> high{0xFF, 0xFE, 0xFD, 0xFC};
    CAppBytes h(high.data(), 4);
    EXPECT_EQ(h.GetBytes(1, kCBytesShow), 255);
    EXPECT_EQ(h.GetBytes(2, kCBytesShow), 0xFFFE);
    EXPECT_EQ(h.GetBytes(3, kCBytesShow), 0xFFFEFD);
    EXPECT_EQ(h.GetBytes(4, kCBytesShow), static_cast<int>(0xFFFEFDFCu));
    // Any non-zero mode consumes.
    EXPECT_EQ(h.GetBytes(1, static_cast<cbytes_get_t>(7)), 0xFF);
    EXPECT_EQ(h.ShowBytes(1), 0xFE);
}

TEST(CAppBytes, CountsOutsideOneToFourDoNothing) {
    std::vector<unsigned char> buf{0x12, 0x34, 0x56, 0x78, 0x9A};
    unsigned char* nothing = nullptr;
    for (int n : {0, 5, -1, 100}) {
        CAppBytes bytes(buf.data(), 5);
        EXPECT_EQ(bytes.GetBytes(n, kCBytesConsume), 0) << n;
        EXPECT_EQ(bytes.ShowBytes(1), 0x12) << n;
        EXPECT_EQ(bytes.PutBytes(0x7F, n), 0);
        EXPECT_EQ(buf[0], 0x12);
        CAppBytes none(nothing, 0);
        EXPECT_EQ(none.GetBytes(n, kCBytesConsume), 0);
    }
}

TEST(CAppBytes, FlushMovesEitherWayAndIsEOBFollows) {
    std::vector<unsigned char> buf{1, 2, 3};
    CAppBytes bytes(buf.data(), 3);
    bytes.FlushBytes(5);
    EXPECT_EQ(bytes.IsEOB(), 1);
    bytes.FlushBytes(-4);
    EXPECT_EQ(bytes.IsEOB(), 0);
    EXPECT_EQ(bytes.ShowBytes(1), 2);
    CAppBytes copy = bytes;
    copy.FlushBytes(1);
    EXPECT_EQ(bytes.ShowBytes(1), 2);
    EXPECT_EQ(copy.ShowBytes(1), 3);
    bytes.SetBuf(buf.data(), 3);
    EXPECT_EQ(bytes.ShowBytes(1), 1);
    EXPECT_EQ(CAppBytes().IsEOB(), 1);
}

TEST(CAppBytes, PutBytesWritesTheLowBytesAndReadsBack) {
    struct Case {
        int value, n;
        std::vector<unsigned char> written;
    };
    const Case cases[] = {
        {0x12345678, 4, {0x12, 0x34, 0x56, 0x78, 0xEE}},
        {0x12345678, 3, {0x34, 0x56, 0x78, 0xEE, 0xEE}},
        {0x12345678, 2, {0x56, 0x78, 0xEE, 0xEE, 0xEE}},
        {-1, 1, {0xFF, 0xEE, 0xEE, 0xEE, 0xEE}},
        {-2, 4, {0xFF, 0xFF, 0xFF, 0xFE, 0xEE}},
    };
    for (const Case& c : cases) {
        std::vector<unsigned char> buf(5, 0xEE);
        CAppBytes writer(buf.data(), 5);
        EXPECT_EQ(writer.PutBytes(c.value, c.n), 0);
        EXPECT_EQ(buf, c.written) << c.value << " in " << c.n;
        CAppBytes reader(buf.data(), 5);
        uint32_t mask = c.n == 4 ? 0xFFFFFFFFu : (1u << (8 * c.n)) - 1;
        EXPECT_EQ(static_cast<uint32_t>(reader.GetBytes(c.n, kCBytesConsume)), static_cast<uint32_t>(c.value) & mask);
        EXPECT_EQ(writer.IsEOB(), reader.IsEOB());
        writer.FlushBytes(5 - c.n);
        EXPECT_EQ(writer.IsEOB(), 1);
    }
}

}  // namespace
}  // namespace basicutils
