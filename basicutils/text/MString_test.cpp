#include <basicutils/text/MString.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "TextTest_test.h"

namespace basicutils {
namespace {
using texttest::Str;

TEST(MString, ConstructionAssignmentAndConcatenation) {
    MString empty;
    ASSERT_NE(static_cast<const char16_t*>(empty), nullptr);
    EXPECT_EQ(empty.GetLength(), 0);
    EXPECT_EQ(Str(MString(u"abcde", 3)), u"abc");
    EXPECT_EQ(Str(MString(u"ab", 3)), u"ab");
    MString room(10u);
    EXPECT_EQ(room.GetLength(), 0);
    std::memcpy(static_cast<char16_t*>(room), u"0123456789", 11 * sizeof(char16_t));
    EXPECT_EQ(room.GetLength(), 10) << "the block has room for n units and a terminator";

    MString s(u"text");
    const char16_t* own = s;
    s = own;
    EXPECT_EQ(Str(s), u"text") << "assigning the own buffer changes nothing";
    EXPECT_EQ(static_cast<const char16_t*>(s), own);
    s = static_cast<const char16_t*>(nullptr);
    EXPECT_EQ(Str(s), u"");
    MString t(u"keep");
    const MString& same = t;  // spelled so that compilers do not warn about t = t
    t = same;
    MString copy(t);
    copy = u"changed";
    EXPECT_EQ(Str(t), u"keep") << "copies share nothing";

    MString ab(u"ab");
    ab += MString(u"cd");
    ab += u"ef";
    ab += ab;
    EXPECT_EQ(Str(ab), u"abcdefabcdef") << "appending itself";
    EXPECT_EQ(Str(MString(u"x") + MString(u"yz")), u"xyz");
    EXPECT_EQ(Str(MString() + MString()), u"");
}

// Every comparison answers exactly 1 or 0; CaseCmp is an equality, not an order.
TEST(MString, ComparisonsAnswerOneOrZero) {
    MString a(u"abc"), b(u"abd");
    std::vector<int> got = {
        a == MString(u"abc"), a == u"abc",           u"abc" == a, a != b,
        a != u"abc",          a<b, u"abd" < a, b> a, a > u"abd",  MString(u"ABC") < a,
        a.CaseCmp(u"ABC"),    a.CaseCmp(b),          b.CaseCmp(a)};
    EXPECT_EQ(got, (std::vector<int>{1, 1, 1, 1, 0, 1, 0, 1, 0, 1, 1, 0, 0}));
}

TEST(MString, Format) {
    std::u16string big(6000, u'x');
    struct Case {
        std::function<void(MString&)> run;
        std::u16string expected;
    } cases[] = {
        {[](MString& s) { s.Format(u"%d%%", 50); }, u"50%"},
        {[](MString& s) { s.Format(u"%02d", 5); }, u"02d"},
        {[](MString& s) { s.Format(u"%c"); }, u"c"},
        {[](MString& s) { s.Format(u"%s!", u"100%d"); }, u"100%d!"},
        {[](MString& s) { s.Format(u"%d %d", INT_MIN, INT_MAX); }, u"-2147483648 2147483647"},
        {[](MString& s) { s.Format(u"%x/%x", 255, -1); }, u"ff/ffffffff"},
        {[](MString& s) { s.Format(u"%f", 3.5); }, u"3.500000"},
        {[](MString& s) { s.Format(u"%f", -0.0000004); }, u"-0.000000"},
        {[](MString& s) { s.Format(u"%d-%f-%s-%x", 7, 0.25, u"é", 16); }, u"7-0.250000-é-10"},
        {[](MString& s) { s.Format(u""); }, u""},
        {[](MString& s) { s.Format(u"50%"); }, u"50"},
        {[](MString& s) { s.Format(u"[%s]", static_cast<const char16_t*>(nullptr)); }, u"[]"},
        // Never past the buffer of 8191 units.
        {[&](MString& s) { s.Format(u"%s%s", big.c_str(), big.c_str()); },
         std::u16string(8191, u'x')},
    };
    for (Case& c : cases) {
        MString s(u"old");
        c.run(s);
        EXPECT_EQ(Str(s), c.expected);
    }
    MString huge;  // a huge %f is written whole
    huge.Format(u"%f", 1e300);
    EXPECT_EQ(huge.GetLength(), 301 + 7);
}

TEST(MString, CutAndSplit) {
    struct Cut {
        const char16_t* text;
        int start, count, result;
        const char16_t* kept;
    } cuts[] = {
        {u"abcde", 1, 3, 3, u"bcd"}, {u"abcde", 3, 10, 2, u"de"},
        {u"abcde", 9, 2, 0, u""},    {u"abcde", 5, 1, 0, u""},
        {u"abcde", 0, 0, 0, u""},    {u"abcde", 0, 5, 5, u"abcde"},
        {u"", 0, 3, 0, u""},         {u"abc", -1, 2, 0, u""},
        {u"abc", 1, -2, 0, u""},     {u"abc", 1, INT_MAX, 2, u"bc"},
    };
    for (const Cut& c : cuts) {
        MString s(c.text);
        EXPECT_EQ(s.Cut(c.start, c.count), c.result) << c.start << "," << c.count;
        EXPECT_EQ(Str(s), c.kept);
    }
    struct Split {
        const char16_t* text;
        bool fromStart;
        const char16_t *left, *right;
    } splits[] = {
        {u"a/b/c", true, u"a", u"b/c"}, {u"a/b/c", false, u"a/b", u"c"}, {u"abc", true, u"", u"bc"},
        {u"abc", false, u"", u"bc"},    {u"", true, u"", u""},           {u"/", true, u"", u""},
        {u"ab/", false, u"ab", u""},    {u"/ab", true, u"", u"ab"},
    };
    for (const Split& c : splits) {
        MString s(c.text), l(u"junk"), r(u"junk");
        EXPECT_EQ(s.Split(u'/', l, r, c.fromStart), 0);
        EXPECT_EQ(Str(l) + u"|" + Str(r) + u"|" + Str(s),
                  c.left + (u"|" + Str(c.right)) + u"|" + c.text)
            << "left|right|source, the source left alone";
    }
    MString self(u"key=value"), right;
    self.Split(u'=', self, right, true);
    EXPECT_EQ(Str(self) + u"|" + Str(right), u"key|value") << "left may be the string itself";
}

TEST(MString, RemoveAndChangeCharacters) {
    // Wraps an operation without an answer so that its row expects true.
    auto act = [](void (*f)(MString&)) {
        return std::function<bool(MString&)>([f](MString& s) { return f(s), true; });
    };
    using Trim = void (MString::*)(bool);
    auto trim = [](Trim f, bool all) {
        return std::function<bool(MString&)>([=](MString& s) { return (s.*f)(all), true; });
    };
    auto strip = act([](MString& s) { s.StripNewline(); });
    struct Case {
        const char16_t* text;
        std::function<bool(MString&)> run;  // answers the operation's bool, or true
        bool result;
        const char16_t* after;
    } cases[] = {
        {u"ab\r\n", trim(&MString::RemoveTailCR, true), true, u"ab\r"},
        {u"ab\n\n", trim(&MString::RemoveTailCR, false), true, u"ab\n"},
        {u"ab\n\n", trim(&MString::RemoveTailCR, true), true, u"ab"},
        {u"ab  \n", trim(&MString::RemoveTailSpaceAndCR, true), true, u"ab"},
        {u"ab\n  ", trim(&MString::RemoveTailSpaceAndCR, true), true, u"ab\n"},
        {u"ab  ", trim(&MString::RemoveTailSpace, false), true, u"ab "},
        {u"ab  ", trim(&MString::RemoveTailSpace, true), true, u"ab"},
        {u"  ab", trim(&MString::RemoveHeadSpace, false), true, u" ab"},
        {u"  ab", trim(&MString::RemoveHeadSpace, true), true, u"ab"},
        {u"   ", trim(&MString::RemoveHeadSpace, true), true, u""},
        {u"line\n", strip, true, u"line"},
        {u"line\r", strip, true, u"line\r"},
        {u"abc", [](MString& s) { return s.RemoveTailChar(u'c'); }, true, u"ab"},
        {u"abc", [](MString& s) { return s.RemoveTailChar(u'b'); }, false, u"abc"},
        {u"abc", [](MString& s) { return s.RemoveHeadChar(u'a'); }, true, u"bc"},
        {u"abc", [](MString& s) { return s.RemoveHeadChar(u'b'); }, false, u"abc"},
        // The empty string: nothing to remove, not even a terminator.
        {u"", [](MString& s) { return s.RemoveTailChar(0); }, false, u""},
        {u"", [](MString& s) { return s.RemoveHeadChar(0); }, false, u""},
        {u"", strip, true, u""},
        {u"", trim(&MString::RemoveTailSpaceAndCR, true), true, u""},
        {u"", trim(&MString::RemoveHeadSpace, true), true, u""},
        {u"Hello, World 42", act([](MString& s) { s.Change2Upper(); }), true, u"HELLO, WORLD 42"},
        {u"HeLLo, 42", act([](MString& s) { s.Change2Lower(); }), true, u"hello, 42"},
        {u"hello", act([](MString& s) { s.ChangeChar(u'o', u'0'); }), true, u"hell0"},
    };
    for (const Case& c : cases) {
        MString s(c.text);
        EXPECT_EQ(c.run(s), c.result) << Str(c.text).size();
        EXPECT_EQ(Str(s), c.after);
    }
}

TEST(MString, ImportASCII) {
    struct Case {
        const char* bytes;
        int length;
        std::u16string expected;
    } cases[] = {
        {"", -1, u""},
        {"abc", 0, u""},
        {nullptr, -1, u""},
        {"abcdef", 3, u"abc"},
        {"x", -7, u""},
        {"caf\xC3\xA9 \xE2\x82\xAC", -1, u"café €"},
        {"\xFF"
         "a",
         -1,
         u"\xFFFD"
         u"a"},                                     // invalid bytes become U+FFFD
        {"\xF0\x9F\x8E\xAC", -1, u"\xD83C\xDFAC"},  // beyond the BMP: a surrogate pair
    };
    for (const Case& c : cases) {
        MString s(u"old");
        s.ImportASCII(c.bytes, c.length);
        EXPECT_EQ(Str(s), c.expected) << (c.bytes ? c.bytes : "null") << " " << c.length;
    }
}

TEST(MString, ExportsAtTheirLimits) {
    char16_t wide[12];
    struct Unicode {
        const char16_t* text;
        int result;
        std::u16string written;  // the first 10 units of the buffer
    } units[] = {
        {u"abc", 10, std::u16string(u"abc\0\0\0\0\0\0\0", 10)},
        {u"abcdefghi", 9, u"abcdefghi#"},
        {u"abcdefghijk", 9, u"abcdefghi#"},
        {u"abcdefgh", 10, std::u16string(u"abcdefgh\0\0", 10)},
        {u"", 0, std::u16string(u"\0#########", 10)},
    };
    for (const Unicode& c : units) {
        std::fill(std::begin(wide), std::end(wide), u'#');
        EXPECT_EQ(MString(c.text).ExportUnicode(wide, 10), c.result);
        EXPECT_EQ(std::u16string(wide, 10), c.written);
    }
    EXPECT_EQ(MString(u"abc").ExportUnicode(wide, 0), 0);

    // ExportASCII writes the whole text or nothing.
    char buf[16];
    struct Ascii {
        const char16_t* text;
        int size;
        character_set_type set;
        int result;
        const char* written;
    } bytes[] = {
        {u"abc", 10, kCharacterSetWindows, 3, "abc"},
        {u"abcde", 5, kCharacterSetWindows, 5, "abcde"},  // terminator at index size
        {u"abcdef", 5, kCharacterSetWindows, 0, ""},
        {u"é", 1, kCharacterSetWindows, 0, ""},  // two bytes in UTF-8
        {u"é", 2, kCharacterSetWindows, 2, "\xC3\xA9"},
        {u"é", 1, kCharacterSetMacintosh, 1, "\x8E"},
        {u"€", 4, kCharacterSetMacintosh, 1, "?"},
        {u"é", 4, static_cast<character_set_type>(7), 2, "\xC3\xA9"},
        {u"", 4, kCharacterSetWindows, 0, ""},
        {u"abc", 0, kCharacterSetWindows, 0, ""},
    };
    for (const Ascii& c : bytes) {
        std::memset(buf, '#', sizeof buf);
        EXPECT_EQ(MString(c.text).ExportASCII(buf, c.size, c.set), c.result);
        EXPECT_STREQ(buf, c.written);
    }
}

TEST(MString, MapWindowsCharacters) {
    char text[256];
    for (int i = 0; i < 256; ++i) text[i] = static_cast<char>(i);
    MString::DoMapWindowsCharactersToASCII(text, 256);
    for (int i = 0; i <= 159; ++i)
        EXPECT_EQ(static_cast<unsigned char>(text[i]), i <= 128 ? i : 0x20) << i;
    struct Pair {
        int from, to;
    } pairs[] = {{0xE9, 0x8E}, {0xA0, 0x20}, {0xA1, 0xC1}, {0xFF, 0xD8},
                 {0xDF, 0xA7}, {0xB0, 0xBC}, {0xC0, 0xCB}, {0xFE, 0x5F}};
    for (const Pair& p : pairs) EXPECT_EQ(static_cast<unsigned char>(text[p.from]), p.to);
    char untouched[] = "\xE9\xE9";
    MString::DoMapWindowsCharactersToASCII(untouched, 0);
    MString::DoMapWindowsCharactersToASCII(untouched, -4);
    EXPECT_STREQ(untouched, "\xE9\xE9");
}

}  // namespace
}  // namespace basicutils
