// Quoted extraction is checked against std::string's search by
// fuzz/StringExtract_fuzz.cpp (CTest: fuzz.StringExtract); here, the shared
// buffers of the 8/16-bit conversions and null arguments.
#include <basicutils/text/CStringExtract.h>
#include <basicutils/text/UStringUtils.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace basicutils {
namespace {

// Each direction answers one static buffer, overwritten by the next call and
// never overrun: AtoT cuts long text, TtoA answers "" when it does not fit.
TEST(UStringUtils, ConversionsShareOneBufferAndRespectItsLimit) {
    char16_t* first = UStringUtils::AtoT("first");
    EXPECT_EQ(UStringUtils::AtoT("caf\xC3\xA9"), first);
    EXPECT_EQ(std::u16string(first), u"café") << "the second call overwrote the first";
    EXPECT_EQ(std::u16string(UStringUtils::AtoT(nullptr)), u"");
    EXPECT_EQ(std::u16string(UStringUtils::AtoT(std::string(5000, 'x').c_str())).size(), 2047u);
    char* a = UStringUtils::TtoA(u"one");
    EXPECT_EQ(UStringUtils::TtoA(u"two"), a);
    EXPECT_STREQ(a, "two");
    EXPECT_STREQ(UStringUtils::TtoA(nullptr), "");
    // clang-format off
    struct { size_t units; char16_t unit; size_t bytes; } cases[] = {
        {1024, u'a', 1024}, {1025, u'a', 0}, {512, u'é', 1024}, {513, u'é', 0}, {341, u'€', 1023},
    };
    // clang-format on
    for (const auto& c : cases)
        EXPECT_EQ(std::strlen(UStringUtils::TtoA(std::u16string(c.units, c.unit).c_str())), c.bytes)
            << c.units;
}

TEST(CStringExtract, NullLineGivesNothing) {
    char16_t out[4] = u"xyz";
    EXPECT_EQ(CStringExtract::SeekLeftDoubleQuat(nullptr), 0);
    EXPECT_EQ(CStringExtract::GetString(nullptr, out), 0);
    EXPECT_EQ(out[0], 0);
}

}  // namespace
}  // namespace basicutils
