#include <basicutils/text/CStringExtract.h>
#include <basicutils/text/UStringUtils.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "TextTest_test.h"

namespace basicutils {
namespace {
using texttest::Str;

// Each direction answers one static buffer, overwritten by the next call and
// never overrun: AtoT cuts long text, TtoA answers "" when it does not fit.
TEST(UStringUtils, ConversionsShareOneBufferAndRespectItsLimit) {
    char16_t* first = UStringUtils::AtoT("first");
    EXPECT_EQ(Str(first), u"first");
    EXPECT_EQ(UStringUtils::AtoT("caf\xC3\xA9"), first);
    EXPECT_EQ(Str(first), u"café") << "the second call overwrote the first";
    EXPECT_EQ(Str(UStringUtils::AtoT(nullptr)), u"");
    EXPECT_EQ(Str(UStringUtils::AtoT(std::string(5000, 'x').c_str())).size(), 2047u);

    char* a = UStringUtils::TtoA(u"one");
    EXPECT_EQ(UStringUtils::TtoA(u"two"), a);
    EXPECT_STREQ(a, "two");
    EXPECT_STREQ(UStringUtils::TtoA(nullptr), "");
    struct Case {
        size_t units;
        char16_t unit;
        size_t bytes;  // length of the result
    } cases[] = {
        {0, u'a', 0},    {1, u'a', 1},      {1023, u'a', 1023}, {1024, u'a', 1024},
        {1025, u'a', 0}, {512, u'é', 1024}, {513, u'é', 0},     {341, u'€', 1023},
    };
    for (const Case& c : cases)
        EXPECT_EQ(std::strlen(UStringUtils::TtoA(std::u16string(c.units, c.unit).c_str())), c.bytes)
            << c.units << " units";
}

TEST(CStringExtract, QuotedPieces) {
    struct Case {
        const char* line;
        int seek;         // SeekLeftDoubleQuat
        int get;          // GetString from the start of the line
        const char* out;  // what GetString copied
    } cases[] = {
        {"abcd\"xy\"", 5, 5, "abcd"}, {"abc", 0, 0, ""}, {"\"abc\"", 1, 1, ""}, {"", 0, 0, ""},
        {"abc\" tail", 4, 4, "abc"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.line);
        std::u16string wide = Str(c.line);
        char16_t wout[32] = u"junk";
        char nout[32] = "junk";
        EXPECT_EQ(CStringExtract::SeekLeftDoubleQuat(wide.c_str()), c.seek);
        EXPECT_EQ(CStringExtract::SeekLeftDoubleQuatChar(c.line), c.seek);
        EXPECT_EQ(CStringExtract::GetString(wide.c_str(), wout), c.get);
        EXPECT_EQ(CStringExtract::GetStringChar(c.line, nout), c.get);
        EXPECT_EQ(Str(wout), Str(c.out));
        EXPECT_STREQ(nout, c.out);
    }
    // Walking a line piece by piece, each answer counting from where the last ended.
    const char16_t* line = u"name \"abc\" rest \"de\"";
    char16_t out[16];
    int at = CStringExtract::SeekLeftDoubleQuat(line);
    EXPECT_EQ(CStringExtract::GetString(line + at, out), 4);
    EXPECT_EQ(Str(out), u"abc");
    at += 4;
    at += CStringExtract::SeekLeftDoubleQuat(line + at);
    EXPECT_EQ(CStringExtract::GetString(line + at, out), 3);
    EXPECT_EQ(Str(out), u"de");
    EXPECT_EQ(CStringExtract::SeekLeftDoubleQuat(nullptr), 0);
    EXPECT_EQ(CStringExtract::GetString(nullptr, out), 0);
    EXPECT_EQ(out[0], 0);
}

}  // namespace
}  // namespace basicutils
