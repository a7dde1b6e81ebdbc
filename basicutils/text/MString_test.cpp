#include <basicutils/text/MString.h>

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <functional>
#include <string>

namespace basicutils {
namespace {

std::u16string Str(const MString& s) { return std::u16string(static_cast<const char16_t*>(s)); }

TEST(MString, ConstructionAndAssignment) {
    MString empty;
    ASSERT_NE(static_cast<const char16_t*>(empty), nullptr);
    EXPECT_EQ(empty.GetLength(), 0);

    EXPECT_EQ(Str(MString(u"abcde", 3)), u"abc");
    EXPECT_EQ(Str(MString(u"ab", 3)), u"ab");
    EXPECT_EQ(Str(MString(u"abcde")), u"abcde");

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
    EXPECT_EQ(Str(t), u"keep");
    MString copy(t);
    copy = u"changed";
    EXPECT_EQ(Str(t), u"keep") << "copies share nothing";
}

TEST(MString, ComparisonsAnswerOneOrZero) {
    MString a(u"abc"), b(u"abd");
    EXPECT_EQ(a == MString(u"abc"), 1);
    EXPECT_EQ(a == u"abc", 1);
    EXPECT_EQ(u"abc" == a, 1);
    EXPECT_EQ(a != b, 1);
    EXPECT_EQ(a != u"abc", 0);
    EXPECT_EQ(a < b, 1);
    EXPECT_EQ(u"abd" < a, 0);
    EXPECT_EQ(b > a, 1);
    EXPECT_EQ(a > u"abd", 0);
    EXPECT_EQ(MString(u"ABC") < a, 1) << "with case: upper sorts first";

    EXPECT_EQ(a.CaseCmp(u"ABC"), 1);
    EXPECT_EQ(a.CaseCmp(b), 0);
    EXPECT_EQ(b.CaseCmp(a), 0) << "not a three-way order";
}

TEST(MString, Concatenation) {
    MString s(u"ab");
    s += MString(u"cd");
    s += u"ef";
    EXPECT_EQ(Str(s), u"abcdef");
    s += s;
    EXPECT_EQ(Str(s), u"abcdefabcdef") << "appending itself";
    EXPECT_EQ(Str(MString(u"x") + MString(u"yz")), u"xyz");
    EXPECT_EQ(Str(MString() + MString()), u"");
}

TEST(MString, Format) {
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
    };
    for (Case& c : cases) {
        MString s(u"old");
        c.run(s);
        EXPECT_EQ(Str(s), c.expected);
    }
}

TEST(MString, FormatNeverWritesPastItsBuffer) {
    std::u16string big(6000, u'x');
    MString s;
    s.Format(u"%s%s", big.c_str(), big.c_str());
    EXPECT_EQ(s.GetLength(), 8191);
    s.Format(u"%f", 1e300);
    EXPECT_EQ(s.GetLength(), 301 + 7);
}

TEST(MString, CutTable) {
    struct Case {
        const char16_t* text;
        int start, count, result;
        const char16_t* kept;
    } cases[] = {
        {u"abcde", 1, 3, 3, u"bcd"}, {u"abcde", 3, 10, 2, u"de"}, {u"abcde", 9, 2, 0, u""},
        {u"abcde", 5, 1, 0, u""},    {u"abcde", 0, 0, 0, u""},    {u"abcde", 0, 5, 5, u"abcde"},
        {u"", 0, 3, 0, u""},         {u"abc", -1, 2, 0, u""},     {u"abc", 1, -2, 0, u""},
        {u"abc", 1, INT_MAX, 2, u"bc"},
    };
    for (const Case& c : cases) {
        MString s(c.text);
        EXPECT_EQ(s.Cut(c.start, c.count), c.result) << c.start << "," << c.count;
        EXPECT_EQ(Str(s), c.kept);
    }
}

TEST(MString, SplitTable) {
    struct Case {
        const char16_t* text;
        bool fromStart;
        const char16_t* left;
        const char16_t* right;
    } cases[] = {
        {u"a/b/c", true, u"a", u"b/c"}, {u"a/b/c", false, u"a/b", u"c"},
        {u"abc", true, u"", u"bc"},     {u"abc", false, u"", u"bc"},
        {u"", true, u"", u""},          {u"/", true, u"", u""},
        {u"ab/", false, u"ab", u""},    {u"/ab", true, u"", u"ab"},
    };
    for (const Case& c : cases) {
        MString s(c.text), l(u"junk"), r(u"junk");
        EXPECT_EQ(s.Split(u'/', l, r, c.fromStart), 0);
        EXPECT_EQ(Str(l), c.left) << Str(s).size();
        EXPECT_EQ(Str(r), c.right);
        EXPECT_EQ(Str(s), c.text) << "the source is left alone";
    }
    MString self(u"key=value"), right;
    self.Split(u'=', self, right, true);
    EXPECT_EQ(Str(self), u"key") << "left may be the string itself";
    EXPECT_EQ(Str(right), u"value");
}

TEST(MString, RemoveFamilyTable) {
    struct Case {
        const char16_t* text;
        std::function<bool(MString&)> run;  // answers the operation's bool, or true
        bool result;
        const char16_t* after;
    } cases[] = {
        {u"ab\r\n", [](MString& s) { s.RemoveTailCR(true); return true; }, true, u"ab\r"},
        {u"ab\n\n", [](MString& s) { s.RemoveTailCR(false); return true; }, true, u"ab\n"},
        {u"ab\n\n", [](MString& s) { s.RemoveTailCR(true); return true; }, true, u"ab"},
        {u"ab  \n", [](MString& s) { s.RemoveTailSpaceAndCR(true); return true; }, true, u"ab"},
        {u"ab\n  ", [](MString& s) { s.RemoveTailSpaceAndCR(true); return true; }, true, u"ab\n"},
        {u"ab  ", [](MString& s) { s.RemoveTailSpace(false); return true; }, true, u"ab "},
        {u"ab  ", [](MString& s) { s.RemoveTailSpace(true); return true; }, true, u"ab"},
        {u"  ab", [](MString& s) { s.RemoveHeadSpace(false); return true; }, true, u" ab"},
        {u"  ab", [](MString& s) { s.RemoveHeadSpace(true); return true; }, true, u"ab"},
        {u"   ", [](MString& s) { s.RemoveHeadSpace(true); return true; }, true, u""},
        {u"line\n", [](MString& s) { s.StripNewline(); return true; }, true, u"line"},
        {u"line\r", [](MString& s) { s.StripNewline(); return true; }, true, u"line\r"},
        {u"abc", [](MString& s) { return s.RemoveTailChar(u'c'); }, true, u"ab"},
        {u"abc", [](MString& s) { return s.RemoveTailChar(u'b'); }, false, u"abc"},
        {u"abc", [](MString& s) { return s.RemoveHeadChar(u'a'); }, true, u"bc"},
        {u"abc", [](MString& s) { return s.RemoveHeadChar(u'b'); }, false, u"abc"},
        // The empty string: nothing to remove, not even a terminator.
        {u"", [](MString& s) { return s.RemoveTailChar(0); }, false, u""},
        {u"", [](MString& s) { return s.RemoveHeadChar(0); }, false, u""},
        {u"", [](MString& s) { return s.RemoveTailChar(u' '); }, false, u""},
        {u"", [](MString& s) { s.StripNewline(); s.RemoveTailSpaceAndCR(true); return true; },
         true, u""},
        {u"", [](MString& s) { s.RemoveHeadSpace(true); return true; }, true, u""},
    };
    for (const Case& c : cases) {
        MString s(c.text);
        EXPECT_EQ(c.run(s), c.result) << Str(MString(c.text)).size();
        EXPECT_EQ(Str(s), c.after);
    }
}

TEST(MString, CharacterChanges) {
    MString s(u"Hello, World 42");
    s.Change2Upper();
    EXPECT_EQ(Str(s), u"HELLO, WORLD 42");
    s.Change2Lower();
    EXPECT_EQ(Str(s), u"hello, world 42");
    s.ChangeChar(u'o', u'0');
    EXPECT_EQ(Str(s), u"hell0, w0rld 42");
}

TEST(MString, ImportASCII) {
    MString s(u"old");
    s.ImportASCII("", -1);
    EXPECT_EQ(Str(s), u"");
    s = u"old";
    s.ImportASCII("abc", 0);
    EXPECT_EQ(Str(s), u"");
    s.ImportASCII(nullptr, -1);
    EXPECT_EQ(Str(s), u"");
    s.ImportASCII("abcdef", 3);
    EXPECT_EQ(Str(s), u"abc");
    s.ImportASCII("caf\xC3\xA9 \xE2\x82\xAC", -1);
    EXPECT_EQ(Str(s), u"café €");
    s.ImportASCII("\xFF" "a", -1);
    EXPECT_EQ(Str(s), u"\xFFFD" u"a") << "invalid bytes become U+FFFD";
    s.ImportASCII("\xF0\x9F\x8E\xAC", -1);
    EXPECT_EQ(Str(s), u"\xD83C\xDFAC") << "a character beyond the BMP is a surrogate pair";
    s.ImportASCII("x", -7);
    EXPECT_EQ(Str(s), u"");
}

TEST(MString, ExportUnicodeAtItsLimits) {
    char16_t buf[12];
    struct Case {
        const char16_t* text;
        int size;
        int result;
        std::u16string written;  // the first size units of buf
    } cases[] = {
        {u"abc", 10, 10, std::u16string(u"abc\0\0\0\0\0\0\0", 10)},
        {u"abcdefghi", 10, 9, u"abcdefghi#"},
        {u"abcdefghijk", 10, 9, u"abcdefghi#"},
        {u"abcdefgh", 10, 10, std::u16string(u"abcdefgh\0\0", 10)},
        {u"", 10, 0, std::u16string(u"\0#########", 10)},
    };
    for (const Case& c : cases) {
        std::fill(std::begin(buf), std::end(buf), u'#');
        EXPECT_EQ(MString(c.text).ExportUnicode(buf, c.size), c.result);
        EXPECT_EQ(std::u16string(buf, c.size), std::u16string(c.written.data(), c.size));
    }
    EXPECT_EQ(MString(u"abc").ExportUnicode(buf, 0), 0);
}

TEST(MString, ExportASCIIWholeOrNothing) {
    char buf[16];
    struct Case {
        const char16_t* text;
        int size;
        character_set_type set;
        int result;
        const char* written;
    } cases[] = {
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
    for (const Case& c : cases) {
        std::memset(buf, '#', sizeof buf);
        EXPECT_EQ(MString(c.text).ExportASCII(buf, c.size, c.set), c.result);
        EXPECT_STREQ(buf, c.written);
    }
}

TEST(MString, MapWindowsCharacters) {
    char text[256];
    for (int i = 0; i < 256; ++i) text[i] = static_cast<char>(i);
    MString::DoMapWindowsCharactersToASCII(text, 256);
    for (int i = 0; i <= 128; ++i) EXPECT_EQ(static_cast<unsigned char>(text[i]), i);
    for (int i = 129; i <= 159; ++i) EXPECT_EQ(static_cast<unsigned char>(text[i]), 0x20);
    struct Pair {
        int from, to;
    } pairs[] = {{0xE9, 0x8E}, {0xA0, 0x20}, {0xA1, 0xC1}, {0xFF, 0xD8}, {0xDF, 0xA7},
                 {0xB0, 0xBC}, {0xC0, 0xCB}, {0xFE, 0x5F}};
    for (const Pair& p : pairs) EXPECT_EQ(static_cast<unsigned char>(text[p.from]), p.to);

    char untouched[] = "\xE9\xE9";
    MString::DoMapWindowsCharactersToASCII(untouched, 0);
    MString::DoMapWindowsCharactersToASCII(untouched, -4);
    EXPECT_STREQ(untouched, "\xE9\xE9");
}

}  // namespace
}  // namespace basicutils
