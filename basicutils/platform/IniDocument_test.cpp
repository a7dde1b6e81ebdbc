// Reading settings text, including malformed text, and editing it in place.
// That what is stored reads back exactly, and that names and values the
// format cannot hold are refused, is checked by fuzz/IniReader_fuzz.cpp
// (CTest: fuzz.IniReader).
#include <basicutils/platform/internal/IniDocument.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace basicutils::detail {
namespace {

TEST(IniDocument, ReadsWhatMakesSenseAndIgnoresTheRest) {
    struct Case {
        const char* text;
        const char16_t* section;
        const char16_t* key;
        std::optional<std::u16string> expected;
    };
    const Case cases[] = {
        {"[A]\nk=v\n", u"A", u"k", u"v"},
        {"[A]\r\nk = v \r\n", u"a", u"K", u"v"},     // CR LF, blanks, case
        {"\xEF\xBB\xBF[A]\nk=v", u"A", u"k", u"v"},  // byte order mark, no last line end
        {"[A]\nk=\"  v \"\n", u"A", u"k", u"  v "},
        {"[A]\nk=\n", u"A", u"k", u""},
        {"[A]\nk=a=b\n", u"A", u"k", u"a=b"},
        {"k=v\n[A]\n", u"A", u"k", std::nullopt},  // a key before any section
        {"[A\nk=v\n", u"A", u"k", std::nullopt},   // `[` without `]`
        {"[A] trailing\nk=v\n", u"A", u"k", u"v"},
        {"[A]\n;k=v\n#k=w\n=x\nstray\n", u"A", u"k", std::nullopt},
        {"[A]\nk=1\n[B]\nk=2\n[A]\nk=3\n", u"A", u"k", u"1"},  // the first counts
        {"[A]\nk=1\nk=2\n", u"A", u"k", u"1"},
        {"[A]\nk=\xFF\n", u"A", u"k", u"\uFFFD"},
        {"", u"A", u"k", std::nullopt},
        {"\n\n\n[", u"A", u"k", std::nullopt},
    };
    for (const Case& c : cases) {
        IniDocument document;
        document.Parse(c.text);
        EXPECT_EQ(document.Get(c.section, c.key), c.expected) << c.text;
    }
}

TEST(IniDocument, EditsKeepEveryOtherLine) {
    IniDocument document;
    document.Parse("; head\n[A]\nx=1\n\n; about B\n[B]\ny=2\n");
    EXPECT_TRUE(document.Set(u"A", u"new", u"3"));
    EXPECT_TRUE(document.Set(u"b", u"Y", u" padded "));
    EXPECT_TRUE(document.Set(u"C", u"z", u"\"quoted\""));
    EXPECT_EQ(
        document.Text(),
        "; head\n[A]\nx=1\nnew=3\n\n; about B\n[B]\ny=\" padded \"\n\n[C]\nz=\"\"quoted\"\"\n");
    IniDocument again;
    again.Parse(document.Text());
    EXPECT_TRUE(again.Remove(u"A", u"x"));
    EXPECT_FALSE(again.Remove(u"A", u"x"));
    EXPECT_TRUE(again.RemoveSection(u"B"));
    EXPECT_EQ(again.Text(), "; head\n[A]\nnew=3\n\n; about B\n[C]\nz=\"\"quoted\"\"\n");
}

}  // namespace
}  // namespace basicutils::detail
