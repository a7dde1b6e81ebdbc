// The comparisons, searches, copies, number readers and the re-entrant
// tokenizer are checked against models by fuzz/WideString_fuzz.cpp (run by
// CTest as fuzz.WideString); here stays what a model of one call cannot see.
#include <basicutils/text/WideString.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>

namespace basicutils {
namespace {

TEST(WideString, TokenizerKeepsItsPlacePerThread) {
    char16_t mine[] = u",a,,b";
    EXPECT_EQ(std::u16string(wcstok(mine, u",")), u"a");
    std::thread([] {
        char16_t other[] = u"x y z";
        EXPECT_EQ(std::u16string(wcstok(other, u" ")), u"x");
        EXPECT_EQ(std::u16string(wcstok(nullptr, u" ")), u"y");
    }).join();
    EXPECT_EQ(std::u16string(wcstok(nullptr, u",")), u"b") << "another thread must not move ours";
    EXPECT_EQ(wcstok(nullptr, u","), nullptr);
    EXPECT_EQ(wcstok(nullptr, u","), nullptr) << "stays at the end";
}

TEST(WideString, CaseOfOneUnitLeavesSurrogatesAlone) {
    EXPECT_EQ(towupper(u'a'), u'A');
    EXPECT_EQ(towlower(u'Z'), u'z');
    EXPECT_TRUE(iswupper(u'Q') && iswlower(u'q') && !iswupper(u'q'));
    EXPECT_EQ(towupper(0xD801), 0xD801) << "whatever the C library says";
    EXPECT_FALSE(iswlower(0xDC00));
}

}  // namespace
}  // namespace basicutils
