#include <basicutils/text/WideString.h>

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <string>
#include <thread>

namespace basicutils {
namespace {

int Sign(int v) { return (v > 0) - (v < 0); }

// Units compare unsigned, so a unit above 0x7FFF sorts after ASCII.
TEST(WideString, ComparisonsOrderByUnsignedUnits) {
    struct Case {
        const char16_t* a;
        const char16_t* b;
        int sign;
    } cases[] = {
        {u"", u"", 0},         {u"abc", u"abc", 0},     {u"abc", u"abd", -1},
        {u"abd", u"abc", 1},   {u"ab", u"abc", -1},     {u"abc", u"ab", 1},
        {u"\x8000", u"a", 1},  {u"a\xFFFF", u"a", 1},   {u"", u"a", -1},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(wcscmp(c.a, c.b), c.sign) << "wcscmp exact -1/0/1";
        EXPECT_EQ(Sign(wcsncmp(c.a, c.b, 100)), c.sign);
        EXPECT_EQ(Sign(std::u16string_view(c.a).compare(c.b)), c.sign);
    }
    EXPECT_EQ(wcsncmp(u"abcX", u"abcY", 3), 0) << "the count limits the comparison";
    EXPECT_EQ(wcsncmp(u"a", u"b", 0), 0);
}

TEST(WideString, CaseBlindComparisons) {
    EXPECT_EQ(_wcsicmp(u"Hello", u"hELLO"), 0);
    EXPECT_LT(_wcsicmp(u"abc", u"ABD"), 0);
    EXPECT_GT(_wcsicmp(u"ABD", u"abc"), 0);
    EXPECT_LT(_wcsicmp(u"ab", u"ABC"), 0);
    // Folding to lower case: '_' (0x5F) lies between the upper and lower
    // letters, so it sorts before any letter once both are lower case.
    EXPECT_LT(_wcsicmp(u"_", u"A"), 0);
    EXPECT_EQ(_wcsnicmp(u"abcX", u"ABCy", 3), 0);
    EXPECT_NE(_wcsnicmp(u"abcX", u"ABCy", 4), 0);
    EXPECT_EQ(_wcsnicmp(u"ab", u"AB", 10), 0) << "stops at the terminators";
}

TEST(WideString, CopyAndConcatenate) {
    char16_t buf[16];
    EXPECT_EQ(wcscpy(buf, u"abc"), buf);
    EXPECT_EQ(std::u16string(buf), u"abc");
    EXPECT_EQ(wcscat(buf, u"de"), buf);
    EXPECT_EQ(std::u16string(buf), u"abcde");
    wcsncat(buf, u"fghij", 2);
    EXPECT_EQ(std::u16string(buf), u"abcdefg") << "wcsncat appends at most count, then 0";
    EXPECT_EQ(wcslen(buf), 7u);
    EXPECT_EQ(wcslen(u""), 0u);
}

TEST(WideString, NcpyFillsWithZerosAndOmitsTerminatorWhenFull) {
    char16_t buf[8];
    std::fill(std::begin(buf), std::end(buf), u'#');
    wcsncpy(buf, u"ab", 5);
    EXPECT_EQ(std::u16string(buf, 6), std::u16string(u"ab\0\0\0#", 6));
    std::fill(std::begin(buf), std::end(buf), u'#');
    wcsncpy(buf, u"abcdef", 3);
    EXPECT_EQ(std::u16string(buf, 4), u"abc#") << "no terminator when the source is longer";
    std::fill(std::begin(buf), std::end(buf), u'#');
    wcsncpy(buf, u"abc", 3);
    EXPECT_EQ(std::u16string(buf, 4), u"abc#") << "nor when it is exactly the count";
}

TEST(WideString, LengthOfEveryAlignment) {
    // The four-unit loop must find a terminator at every offset.
    std::u16string text(40, u'x');
    for (size_t n = 0; n < text.size(); ++n)
        EXPECT_EQ(wcslen(text.c_str() + text.size() - n), n);
}

TEST(WideString, Searches) {
    const char16_t* s = u"a/b/c";
    EXPECT_EQ(wcschr(s, u'/'), s + 1);
    EXPECT_EQ(wcsrchr(s, u'/'), s + 3);
    EXPECT_EQ(wcschr(s, u'x'), nullptr);
    EXPECT_EQ(wcsrchr(s, u'x'), nullptr);
    EXPECT_EQ(wcschr(s, 0), s + 5) << "0 finds the terminator";
    EXPECT_EQ(wcsrchr(s, 0), s + 5);
    EXPECT_EQ(wcsstr(s, u"b/c"), s + 2);
    EXPECT_EQ(wcsstr(s, u""), s);
    EXPECT_EQ(wcsstr(s, u"c/"), nullptr);
    EXPECT_EQ(wcsstr(u"aaab", u"aab"), static_cast<const char16_t*>(u"aaab") + 1);
    EXPECT_EQ(wcsstr(u"ab", u"abc"), nullptr);
}

TEST(WideString, IntegerReading) {
    struct Case {
        const char16_t* text;
        int value;
    } cases[] = {
        {u"42", 42},
        {u"  \t\n-17xyz", -17},
        {u"+8", 8},
        {u"", 0},
        {u"abc", 0},
        {u"- 5", 0},
        {u"2147483647", INT_MAX},
        {u"-2147483648", INT_MIN},
        {u"2147483648", INT_MAX},
        {u"-2147483649", INT_MIN},
        {u"99999999999999999999999", INT_MAX},
        {u"-99999999999999999999999", INT_MIN},
        {u"0x1A", 0},
        {u"\x0663", 0},  // a non-ASCII digit is not read
    };
    for (const Case& c : cases)
        EXPECT_EQ(_wtoi(c.text), c.value) << std::string(c.text, c.text + wcslen(c.text));
}

TEST(WideString, FloatReading) {
    struct Case {
        const char16_t* text;
        double value;
    } cases[] = {
        {u"3.25", 3.25},     {u"  -0.5e2xyz", -50.0}, {u"+.5", 0.5},    {u"1e", 1.0},
        {u"", 0.0},          {u"x1", 0.0},           {u"1e400", HUGE_VAL}, {u"-1e400", -HUGE_VAL},
        {u"1e-400", 0.0},    {u"0x10", 16.0},        {u"0x1p4", 16.0},  {u"0x", 0.0},
        {u"--1", 0.0},       {u"12,5", 12.0},         {u"INF", HUGE_VAL},
    };
    for (const Case& c : cases)
        EXPECT_EQ(_wtof(c.text), c.value) << std::string(c.text, c.text + wcslen(c.text));
    EXPECT_TRUE(std::isnan(_wtof(u"nan")));
}

TEST(WideString, TokenizerKeepsItsPlacePerThread) {
    char16_t line[] = u",,one,two;;three,";
    std::u16string seen;
    for (char16_t* t = wcstok(line, u",;"); t; t = wcstok(nullptr, u",;")) {
        seen += t;
        seen += u'|';
    }
    EXPECT_EQ(seen, u"one|two|three|");
    EXPECT_EQ(wcstok(nullptr, u",;"), nullptr) << "stays at the end";

    char16_t mine[] = u"a b";
    EXPECT_EQ(std::u16string(wcstok(mine, u" ")), u"a");
    std::thread([] {
        char16_t other[] = u"x y z";
        EXPECT_EQ(std::u16string(wcstok(other, u" ")), u"x");
        EXPECT_EQ(std::u16string(wcstok(nullptr, u" ")), u"y");
    }).join();
    EXPECT_EQ(std::u16string(wcstok(nullptr, u" ")), u"b") << "another thread must not move ours";
    char16_t empty[] = u"";
    EXPECT_EQ(wcstok(empty, u" "), nullptr);
}

TEST(WideString, CaseOfOneUnit) {
    EXPECT_EQ(towupper(u'a'), u'A');
    EXPECT_EQ(towlower(u'Z'), u'z');
    EXPECT_EQ(towupper(u'1'), u'1');
    EXPECT_TRUE(iswupper(u'Q'));
    EXPECT_FALSE(iswupper(u'q'));
    EXPECT_TRUE(iswlower(u'q'));
    // Surrogate halves are never letters, whatever the C library says.
    EXPECT_EQ(towupper(0xD801), 0xD801);
    EXPECT_FALSE(iswlower(0xDC00));
}

}  // namespace
}  // namespace basicutils
