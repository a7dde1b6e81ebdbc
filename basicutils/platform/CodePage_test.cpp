// Size queries, too-small destinations, strict decoding, the UTF-8 and Mac
// Roman round trips and the replacement of lone surrogates are checked
// against a model by fuzz/CodePage_fuzz.cpp (CTest: fuzz.CodePage). Here:
// how many replacements bad bytes give, the arguments refused, and the
// fixed points of the Mac Roman table.
#include <basicutils/platform/CodePage.h>
#include <basicutils/platform/Errors.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace basicutils {
namespace {

std::u16string Decode(const std::string& bytes, uint32_t cp = CP_UTF8) {
    std::u16string out(bytes.size() + 1, u'#');
    int got = MultiByteToWideChar(cp, 0, bytes.data(), static_cast<int>(bytes.size()), out.data(),
                                  static_cast<int>(out.size()));
    out.resize(static_cast<size_t>(got));
    return out;
}

// One U+FFFD per maximal subpart of a bad sequence, the Unicode practice.
TEST(CodePage, Utf8DecodeReplacesMaximalSubparts) {
    // clang-format off
    struct { std::string bytes; std::u16string text; } cases[] = {
        {"\x80", u"\xFFFD"},
        {"\xC0\xAF", u"\xFFFD\xFFFD"},                        // C0 starts nothing
        {"\xE0\x80\x80", u"\xFFFD\xFFFD\xFFFD"},              // overlong: E0 needs A0..BF
        {"\xED\xA0\x80", u"\xFFFD\xFFFD\xFFFD"},              // an encoded surrogate
        {"\xF4\x90\x80\x80", u"\xFFFD\xFFFD\xFFFD\xFFFD"},    // beyond U+10FFFF
        {"\xF5\x80", u"\xFFFD\xFFFD"},
        {"\xE2\x82", u"\xFFFD"},                              // truncated at the end: one
        {"\xE2\x82" "A", u"\xFFFD" u"A"},                     // the breaking byte is read again
        {"\xF0\x9F\x8E" "\xC3\xA9", u"\xFFFD" u"é"},
    };
    // clang-format on
    for (const auto& c : cases) EXPECT_EQ(Decode(c.bytes), c.text) << c.bytes;
}

TEST(CodePage, TerminatedSourceCountsTheTerminator) {
    char16_t wide[8];
    char narrow[8];
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, MB_PRECOMPOSED, "ab", -1, wide, 8), 3);
    EXPECT_EQ(std::u16string(wide), u"ab");
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, u"é", -1, nullptr, 0, nullptr, nullptr), 3);
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, u"é", -1, narrow, 8, nullptr, nullptr), 3);
    EXPECT_STREQ(narrow, "\xC3\xA9");
}

TEST(CodePage, BadArgumentsAndStrictMode) {
    char16_t wide[8];
    char narrow[8];
    int used = 0;
    using Call = std::function<int()>;
    // clang-format off
    const std::pair<Call, uint32_t> cases[] = {
        {[&] { return MultiByteToWideChar(CP_UTF8, 0, "a", 0, wide, 8); }, ERROR_INVALID_PARAMETER},
        {[&] { return MultiByteToWideChar(CP_UTF8, 0, "a", -2, wide, 8); }, ERROR_INVALID_PARAMETER},
        {[&] { return MultiByteToWideChar(CP_UTF8, 0, nullptr, 1, wide, 8); }, ERROR_INVALID_PARAMETER},
        {[&] { return MultiByteToWideChar(CP_UTF8, 0, "a", 1, nullptr, 8); }, ERROR_INVALID_PARAMETER},
        {[&] { return MultiByteToWideChar(1252, 0, "a", 1, wide, 8); }, ERROR_INVALID_PARAMETER},
        {[&] { return MultiByteToWideChar(CP_UTF8, 0x40, "a", 1, wide, 8); }, ERROR_INVALID_FLAGS},
        {[&] { return WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, u"\xDC00", 1, narrow, 8, nullptr, nullptr); }, ERROR_NO_UNICODE_TRANSLATION},
        {[&] { return WideCharToMultiByte(CP_UTF8, 0, u"a", 1, narrow, 8, nullptr, &used); }, ERROR_INVALID_PARAMETER},
        {[&] { return WideCharToMultiByte(CP_UTF8, 0, u"a", 1, narrow, -1, nullptr, nullptr); }, ERROR_INVALID_PARAMETER},
    };
    // clang-format on
    for (size_t i = 0; i < std::size(cases); ++i) {
        SetLastError(0);
        EXPECT_EQ(cases[i].first(), 0) << "case " << i;
        EXPECT_EQ(GetLastError(), cases[i].second) << "case " << i;
    }
}

TEST(CodePage, MacRomanLandmarksAndDefaultCharacter) {
    std::string all;
    for (int b = 1; b < 256; ++b) all.push_back(static_cast<char>(b));
    std::u16string text = Decode(all, CP_MACCP);
    // clang-format off
    const std::pair<int, char16_t> landmarks[] = {{0x8E, u'é'}, {0xA5, 0x2022}, {0xDB, 0x00A4}, {0xF0, 0xF8FF}, {0xFF, 0x02C7}};
    // clang-format on
    for (auto [byte, unit] : landmarks) EXPECT_EQ(text[byte - 1], unit) << byte;
    char narrow[8];
    int used = 0;
    EXPECT_EQ(WideCharToMultiByte(CP_MACCP, 0,
                                  u"a€\xD83C\xDFAC"
                                  u"b",
                                  5, narrow, 8, nullptr, &used),
              4)
        << "a surrogate pair is one character";
    EXPECT_EQ(std::string(narrow, 4), "a??b");
    EXPECT_EQ(used, 1);
    EXPECT_EQ(WideCharToMultiByte(CP_MACCP, 0, u"x€", 2, narrow, 8, "*", &used), 2);
    EXPECT_EQ(std::string(narrow, 2), "x*");
}

}  // namespace
}  // namespace basicutils
