#include <basicutils/bitstream/CAppBytes.h>
#include <gtest/gtest.h>

#include <vector>

namespace basicutils {
namespace {

TEST(CAppBytes, ReadsBigEndianWithoutSignBelowFourBytes) {
    std::vector<unsigned char> buf{0x12, 0x34, 0x56, 0x78, 0xFF, 0xFE, 0xFD, 0xFC};
    CAppBytes bytes(buf.data(), 8);
    EXPECT_EQ(bytes.ShowBytes(4), 0x12345678);
    EXPECT_EQ(bytes.GetBytes(2, kCBytesConsume), 0x1234);
    EXPECT_EQ(bytes.GetBytes(3, static_cast<cbytes_get_t>(7)),
              0x5678FF);  // any non-zero mode consumes
    EXPECT_EQ(bytes.GetBytes(1, kCBytesShow), 0xFE);
    for (int n : {0, 5, -1}) EXPECT_EQ(bytes.GetBytes(n, kCBytesConsume), 0);
    EXPECT_EQ(bytes.GetBytes(3, kCBytesConsume), 0xFEFDFC);
    EXPECT_EQ(bytes.IsEOB(), 1);
    bytes.FlushBytes(-4);
    EXPECT_EQ(bytes.GetBytes(4, kCBytesConsume), static_cast<int>(0xFFFEFDFCu));
}

TEST(CAppBytes, PutBytesWritesTheLowBytesBigEndianAndReadsBack) {
    for (int n = 0; n <= 5; ++n) {
        std::vector<unsigned char> buf(5, 0xEE);
        CAppBytes writer(buf.data(), 5);
        EXPECT_EQ(writer.PutBytes(-0x123457, n), 0);  // pattern 0xFFEDCBA9
        const std::vector<unsigned char> all{0xFF, 0xED, 0xCB, 0xA9};
        std::vector<unsigned char> want(5, 0xEE);
        if (n >= 1 && n <= 4) std::copy(all.end() - n, all.end(), want.begin());
        EXPECT_EQ(buf, want) << n;
        CAppBytes reader(buf.data(), 5);
        if (n >= 1 && n <= 4) {
            EXPECT_EQ(static_cast<uint32_t>(reader.GetBytes(n, kCBytesConsume)),
                      0xFFEDCBA9u & (0xFFFFFFFFu >> (32 - 8 * n)));
        }
        writer.FlushBytes(0);
        EXPECT_EQ(writer.IsEOB(), reader.IsEOB());  // both moved by the same count
    }
}

}  // namespace
}  // namespace basicutils
