#include <basicutils/text/UStringUtils.h>
#include <basicutils/text/CStringExtract.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace basicutils {
namespace {

TEST(UStringUtils, AtoTSharesOneBuffer) {
    char16_t* first = UStringUtils::AtoT("first");
    EXPECT_EQ(std::u16string(first), u"first");
    char16_t* second = UStringUtils::AtoT("caf\xC3\xA9");
    EXPECT_EQ(first, second);
    EXPECT_EQ(std::u16string(first), u"café") << "the second call overwrote the first";
    EXPECT_EQ(std::u16string(UStringUtils::AtoT(nullptr)), u"");
    std::string longText(5000, 'x');
    EXPECT_EQ(std::u16string(UStringUtils::AtoT(longText.c_str())).size(), 2047u)
        << "cut to the buffer instead of overrunning it";
}

TEST(UStringUtils, TtoAAtTheBufferLimit) {
    struct Case {
        size_t units;
        char16_t unit;
        size_t bytes;  // length of the result
    } cases[] = {
        {0, u'a', 0},       {1, u'a', 1},       {1023, u'a', 1023}, {1024, u'a', 1024},
        {1025, u'a', 0},    {512, u'é', 1024},  {513, u'é', 0},     {341, u'€', 1023},
    };
    for (const Case& c : cases) {
        std::u16string text(c.units, c.unit);
        char* out = UStringUtils::TtoA(text.c_str());
        EXPECT_EQ(std::strlen(out), c.bytes) << c.units << " units";
    }
    char* a = UStringUtils::TtoA(u"one");
    char* b = UStringUtils::TtoA(u"two");
    EXPECT_EQ(a, b);
    EXPECT_STREQ(a, "two");
    EXPECT_STREQ(UStringUtils::TtoA(nullptr), "");
}

TEST(CStringExtract, QuotedPieces) {
    struct Case {
        const char* line;
        int seek;         // SeekLeftDoubleQuat
        int get;          // GetString from the start of the line
        const char* out;  // what GetString copied
    } cases[] = {
        {"abcd\"xy\"", 5, 5, "abcd"},
        {"abc", 0, 0, ""},
        {"\"abc\"", 1, 1, ""},
        {"", 0, 0, ""},
        {"abc\" tail", 4, 4, "abc"},
    };
    for (const Case& c : cases) {
        std::u16string wide(c.line, c.line + std::strlen(c.line));
        char16_t wout[32] = u"junk";
        char nout[32] = "junk";
        EXPECT_EQ(CStringExtract::SeekLeftDoubleQuat(wide.c_str()), c.seek) << c.line;
        EXPECT_EQ(CStringExtract::SeekLeftDoubleQuatChar(c.line), c.seek) << c.line;
        EXPECT_EQ(CStringExtract::GetString(wide.c_str(), wout), c.get) << c.line;
        EXPECT_EQ(CStringExtract::GetStringChar(c.line, nout), c.get) << c.line;
        EXPECT_EQ(std::u16string(wout), std::u16string(c.out, c.out + std::strlen(c.out)));
        EXPECT_STREQ(nout, c.out);
    }
}

TEST(CStringExtract, WalkingALine) {
    const char16_t* line = u"name \"abc\" rest \"de\"";
    int at = CStringExtract::SeekLeftDoubleQuat(line);
    char16_t out[16];
    EXPECT_EQ(CStringExtract::GetString(line + at, out), 4);
    EXPECT_EQ(std::u16string(out), u"abc");
    at += 4;
    int next = CStringExtract::SeekLeftDoubleQuat(line + at);
    at += next;
    EXPECT_EQ(CStringExtract::GetString(line + at, out), 3);
    EXPECT_EQ(std::u16string(out), u"de");
    EXPECT_EQ(CStringExtract::SeekLeftDoubleQuat(nullptr), 0);
    EXPECT_EQ(CStringExtract::GetString(nullptr, out), 0);
    EXPECT_EQ(out[0], 0);
}

}  // namespace
}  // namespace basicutils
