// Reads, writes and steps of the byte cursor are checked against a model by
// fuzz/ByteOrder_fuzz.cpp (CTest: fuzz.ByteOrder); here, the sign rule.
#include <basicutils/bitstream/CAppBytes.h>
#include <gtest/gtest.h>

#include <vector>

namespace basicutils {
namespace {

TEST(CAppBytes, OnlyFourBytesCarryASign) {
    std::vector<unsigned char> buf{0xFF, 0xFE, 0xFD, 0xFC};
    CAppBytes bytes(buf.data(), 4);
    EXPECT_EQ(bytes.ShowBytes(3), 0xFFFEFD);
    EXPECT_EQ(bytes.GetBytes(4, static_cast<cbytes_get_t>(7)), static_cast<int>(0xFFFEFDFCu))
        << "any non-zero mode consumes";
    EXPECT_EQ(bytes.IsEOB(), 1);
}

}  // namespace
}  // namespace basicutils
