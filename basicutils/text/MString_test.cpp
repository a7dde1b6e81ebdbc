// Editing, comparing, concatenating and Format are checked against a model by
// fuzz/MString_fuzz.cpp, and ImportASCII/ExportASCII against the direct
// conversions by fuzz/CodePage_fuzz.cpp (both run by CTest). Here: the
// block sizes, argument handling at the edges, and the fixed tables.
#include <basicutils/text/MString.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace basicutils {
namespace {

std::u16string Str(const MString& s) {
    return static_cast<const char16_t*>(s);
}

TEST(MString, BlocksAndAssignment) {
    EXPECT_EQ(Str(MString(u"abcde", 3)), u"abc");
    EXPECT_EQ(Str(MString(u"ab", 3)), u"ab");
    MString room(10u);
    EXPECT_EQ(room.GetLength(), 0);
    std::memcpy(static_cast<char16_t*>(room), u"0123456789", 11 * sizeof(char16_t));
    EXPECT_EQ(room.GetLength(), 10) << "the block has room for n units and a terminator";
    MString s(u"text");
    const char16_t* own = s;
    s = own;
    EXPECT_EQ(static_cast<const char16_t*>(s), own) << "assigning the own buffer changes nothing";
    MString copy(s);
    copy = u"changed";
    EXPECT_EQ(Str(s), u"text") << "copies share nothing";
    EXPECT_EQ(MString(u"abc").CaseCmp(u"ABC"), 1);
}

TEST(MString, ImportASCIIArguments) {
    // clang-format off
    struct { const char* bytes; int length; std::u16string expected; } cases[] = {
        {"", -1, u""}, {"abc", 0, u""}, {nullptr, -1, u""}, {"abcdef", 3, u"abc"}, {"x", -7, u""},
    };
    // clang-format on
    for (const auto& c : cases) {
        MString s(u"old");
        s.ImportASCII(c.bytes, c.length);
        EXPECT_EQ(Str(s), c.expected) << (c.bytes ? c.bytes : "null") << " " << c.length;
    }
}

TEST(MString, ExportsAtTheirLimits) {
    char16_t wide[12];
    // clang-format off
    struct { const char16_t* text; int result; std::u16string written; } units[] = {
        {u"abc", 10, std::u16string(u"abc\0\0\0\0\0\0\0", 10)},
        {u"abcdefghi", 9, u"abcdefghi#"},
        {u"abcdefghijk", 9, u"abcdefghi#"},
        {u"", 0, std::u16string(u"\0#########", 10)},
    };
    // clang-format on
    for (const auto& c : units) {
        std::fill(std::begin(wide), std::end(wide), u'#');
        EXPECT_EQ(MString(c.text).ExportUnicode(wide, 10), c.result);
        EXPECT_EQ(std::u16string(wide, 10), c.written);
    }
    EXPECT_EQ(MString(u"abc").ExportUnicode(wide, 0), 0);
    char buf[16];
    // clang-format off
    struct { const char16_t* text; int size; int set; int result; const char* written; } bytes[] = {
        {u"é", 1, kCharacterSetMacintosh, 1, "\x8E"},
        {u"€", 4, kCharacterSetMacintosh, 1, "?"},
        {u"é", 4, 7, 2, "\xC3\xA9"},                      // any other set: the system code page
    };
    // clang-format on
    for (const auto& c : bytes) {
        std::memset(buf, '#', sizeof buf);
        EXPECT_EQ(MString(c.text).ExportASCII(buf, c.size, static_cast<character_set_type>(c.set)),
                  c.result);
        EXPECT_STREQ(buf, c.written);
    }
}

TEST(MString, MapWindowsCharacters) {
    char text[256];
    for (int i = 0; i < 256; ++i) text[i] = static_cast<char>(i);
    MString::DoMapWindowsCharactersToASCII(text, 256);
    for (int i = 0; i <= 159; ++i)
        EXPECT_EQ(static_cast<unsigned char>(text[i]), i <= 128 ? i : 0x20) << i;
    // clang-format off
    const std::pair<int, int> pairs[] = {{0xE9, 0x8E}, {0xA0, 0x20}, {0xA1, 0xC1}, {0xFF, 0xD8},
                                         {0xDF, 0xA7}, {0xB0, 0xBC}, {0xC0, 0xCB}, {0xFE, 0x5F}};
    // clang-format on
    for (auto [from, to] : pairs) EXPECT_EQ(static_cast<unsigned char>(text[from]), to);
    char untouched[] = "\xE9\xE9";
    MString::DoMapWindowsCharactersToASCII(untouched, -4);
    EXPECT_STREQ(untouched, "\xE9\xE9");
}

}  // namespace
}  // namespace basicutils
