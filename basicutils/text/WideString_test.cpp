#include <basicutils/text/WideString.h>
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <string>
#include <thread>

#include "TextTest_test.h"

namespace basicutils {
namespace {
using texttest::Narrow;
using texttest::Str;

int Sign(int v) {
    return (v > 0) - (v < 0);
}

// Units compare unsigned, so a unit above 0x7FFF sorts after ASCII; the
// case-blind forms fold to lower case.
TEST(WideString, Comparisons) {
    struct Case {
        const char16_t *a, *b;
        int sign;
    } cases[] = {
        {u"", u"", 0},        {u"abc", u"abc", 0},   {u"abc", u"abd", -1},
        {u"abd", u"abc", 1},  {u"ab", u"abc", -1},   {u"abc", u"ab", 1},
        {u"\x8000", u"a", 1}, {u"a\xFFFF", u"a", 1}, {u"", u"a", -1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(Narrow(c.a) + " / " + Narrow(c.b));
        EXPECT_EQ(wcscmp(c.a, c.b), c.sign) << "wcscmp exact -1/0/1";
        EXPECT_EQ(Sign(wcsncmp(c.a, c.b, 100)), c.sign);
        EXPECT_EQ(Sign(std::u16string_view(c.a).compare(c.b)), c.sign);
    }
    EXPECT_EQ(wcsncmp(u"abcX", u"abcY", 3), 0) << "the count limits the comparison";
    EXPECT_EQ(wcsncmp(u"a", u"b", 0), 0);

    const Case blind[] = {
        {u"Hello", u"hELLO", 0}, {u"abc", u"ABD", -1}, {u"ABD", u"abc", 1},
        {u"ab", u"ABC", -1},     {u"_", u"A", -1},  // '_' (0x5F) sorts before every letter once
                                                    // both are lower case
    };
    for (const Case& c : blind) EXPECT_EQ(Sign(_wcsicmp(c.a, c.b)), c.sign) << Narrow(c.a);
    EXPECT_EQ(_wcsnicmp(u"abcX", u"ABCy", 3), 0);
    EXPECT_NE(_wcsnicmp(u"abcX", u"ABCy", 4), 0);
    EXPECT_EQ(_wcsnicmp(u"ab", u"AB", 10), 0) << "stops at the terminators";
}

TEST(WideString, CopyConcatenateAndLength) {
    char16_t buf[16];
    EXPECT_EQ(wcscpy(buf, u"abc"), buf);
    EXPECT_EQ(wcscat(buf, u"de"), buf);
    EXPECT_EQ(Str(buf), u"abcde");
    wcsncat(buf, u"fghij", 2);
    EXPECT_EQ(Str(buf), u"abcdefg") << "wcsncat appends at most count, then 0";
    // wcsncpy pads with zeros and writes no terminator once the count is used up.
    struct Ncpy {
        const char16_t* source;
        size_t count;
        std::u16string firstSix;
    } ncpys[] = {{u"ab", 5, std::u16string(u"ab\0\0\0#", 6)},
                 {u"abcdef", 3, u"abc###"},
                 {u"abc", 3, u"abc###"}};
    for (const Ncpy& c : ncpys) {
        std::fill(std::begin(buf), std::end(buf), u'#');
        wcsncpy(buf, c.source, c.count);
        EXPECT_EQ(std::u16string(buf, 6), c.firstSix) << Narrow(c.source);
    }
    // The four-unit loop must find a terminator at every offset.
    std::u16string text(40, u'x');
    for (size_t n = 0; n < text.size(); ++n) EXPECT_EQ(wcslen(text.c_str() + text.size() - n), n);
}

TEST(WideString, Searches) {
    const char16_t* s = u"a/b/c";
    const char16_t* aaab = u"aaab";
    const char16_t* found[] = {wcschr(s, u'/'),      wcsrchr(s, u'/'),     wcschr(s, u'x'),
                               wcsrchr(s, u'x'),     wcschr(s, 0),         wcsrchr(s, 0),
                               wcsstr(s, u"b/c"),    wcsstr(s, u""),       wcsstr(s, u"c/"),
                               wcsstr(aaab, u"aab"), wcsstr(u"ab", u"abc")};
    const char16_t* expected[] = {s + 1, s + 3, nullptr, nullptr,  s + 5,  s + 5,
                                  s + 2, s,     nullptr, aaab + 1, nullptr};
    for (size_t i = 0; i < std::size(found); ++i)
        EXPECT_EQ(found[i], expected[i]) << "search " << i;
}

TEST(WideString, NumberReading) {
    struct Int {
        const char16_t* text;
        int value;
    } ints[] = {
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
    for (const Int& c : ints) EXPECT_EQ(_wtoi(c.text), c.value) << Narrow(c.text);
    struct Float {
        const char16_t* text;
        double value;
    } floats[] = {
        {u"3.25", 3.25},      {u"  -0.5e2xyz", -50.0},
        {u"+.5", 0.5},        {u"1e", 1.0},
        {u"", 0.0},           {u"x1", 0.0},
        {u"1e400", HUGE_VAL}, {u"-1e400", -HUGE_VAL},
        {u"1e-400", 0.0},     {u"0x10", 16.0},
        {u"0x1p4", 16.0},     {u"0x", 0.0},
        {u"--1", 0.0},        {u"12,5", 12.0},
        {u"INF", HUGE_VAL},
    };
    for (const Float& c : floats) EXPECT_EQ(_wtof(c.text), c.value) << Narrow(c.text);
    EXPECT_TRUE(std::isnan(_wtof(u"nan")));
}

TEST(WideString, TokenizerKeepsItsPlacePerThread) {
    char16_t line[] = u",,one,two;;three,";
    std::u16string seen;
    for (char16_t* t = wcstok(line, u",;"); t; t = wcstok(nullptr, u",;")) seen += Str(t) + u'|';
    EXPECT_EQ(seen, u"one|two|three|");
    EXPECT_EQ(wcstok(nullptr, u",;"), nullptr) << "stays at the end";

    char16_t mine[] = u"a b";
    EXPECT_EQ(Str(wcstok(mine, u" ")), u"a");
    std::thread([] {
        char16_t other[] = u"x y z";
        EXPECT_EQ(Str(wcstok(other, u" ")), u"x");
        EXPECT_EQ(Str(wcstok(nullptr, u" ")), u"y");
    }).join();
    EXPECT_EQ(Str(wcstok(nullptr, u" ")), u"b") << "another thread must not move ours";
    char16_t empty[] = u"";
    EXPECT_EQ(wcstok(empty, u" "), nullptr);
}

TEST(WideString, CaseOfOneUnit) {
    EXPECT_EQ(towupper(u'a'), u'A');
    EXPECT_EQ(towlower(u'Z'), u'z');
    EXPECT_EQ(towupper(u'1'), u'1');
    EXPECT_TRUE(iswupper(u'Q') && iswlower(u'q') && !iswupper(u'q'));
    // Surrogate halves are never letters, whatever the C library says.
    EXPECT_EQ(towupper(0xD801), 0xD801);
    EXPECT_FALSE(iswlower(0xDC00));
}

}  // namespace
}  // namespace basicutils
