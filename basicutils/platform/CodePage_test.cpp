#include <basicutils/platform/CodePage.h>
#include <basicutils/platform/Errors.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace basicutils {
namespace {

// Decodes with a destination exactly as large as the size query said, and
// checks that the query and the conversion agree.
std::u16string Decode(const std::string& bytes, uint32_t cp = CP_UTF8, uint32_t flags = 0) {
    int need =
        MultiByteToWideChar(cp, flags, bytes.data(), static_cast<int>(bytes.size()), nullptr, 0);
    EXPECT_GT(need, 0);
    std::u16string out(need, u'#');
    int got = MultiByteToWideChar(cp, flags, bytes.data(), static_cast<int>(bytes.size()),
                                  out.data(), need);
    EXPECT_EQ(got, need);
    return out;
}

std::string Encode(const std::u16string& text, uint32_t cp = CP_UTF8) {
    int need = WideCharToMultiByte(cp, 0, text.data(), static_cast<int>(text.size()), nullptr, 0,
                                   nullptr, nullptr);
    EXPECT_GT(need, 0);
    std::string out(need, '#');
    int got = WideCharToMultiByte(cp, 0, text.data(), static_cast<int>(text.size()), out.data(),
                                  need, nullptr, nullptr);
    EXPECT_EQ(got, need);
    return out;
}

TEST(CodePage, Utf8DecodeReplacesMaximalSubparts) {
    struct Case {
        std::string bytes;
        std::u16string text;
    } cases[] = {
        {"plain ascii text", u"plain ascii text"},
        {"\xC3\xA9", u"é"},
        {"\xE2\x82\xAC", u"€"},
        {"\xF0\x9F\x8E\xAC", u"\xD83C\xDFAC"},
        {"\xF4\x8F\xBF\xBF", u"\xDBFF\xDFFF"},  // U+10FFFF
        {"\xEF\xBB\xBF"
         "a",
         u"\xFEFF"
         u"a"},  // a BOM is a character like any other
        // One replacement per maximal subpart, the Unicode practice.
        {"\x80", u"\xFFFD"},
        {"\xC0\xAF", u"\xFFFD\xFFFD"},                      // C0 starts nothing
        {"\xE0\x80\x80", u"\xFFFD\xFFFD\xFFFD"},            // overlong: E0 needs A0..BF
        {"\xED\xA0\x80", u"\xFFFD\xFFFD\xFFFD"},            // an encoded surrogate
        {"\xF4\x90\x80\x80", u"\xFFFD\xFFFD\xFFFD\xFFFD"},  // beyond U+10FFFF
        {"\xF5\x80", u"\xFFFD\xFFFD"},
        {"\xE2\x82", u"\xFFFD"},  // truncated at the end: one
        {"\xE2\x82"
         "A",
         u"\xFFFD"
         u"A"},  // the breaking byte is read again
        {"\xF0\x9F\x8E"
         "\xC3\xA9",
         u"\xFFFD"
         u"é"},
        {"a\xFFz", u"a\xFFFDz"},
        {std::string("a\0b", 3), std::u16string(u"a\0b", 3)},  // explicit length keeps zeros
        {"0123456789abcdef\xC3\xA9"
         "0123456789abcdef",
         u"0123456789abcdefé0123456789abcdef"},
    };
    for (const Case& c : cases) EXPECT_EQ(Decode(c.bytes), c.text) << c.bytes;
}

TEST(CodePage, Utf8EncodeReplacesLoneSurrogates) {
    struct Case {
        std::u16string text;
        std::string bytes;
    } cases[] = {
        {u"abc", "abc"},
        {u"é€", "\xC3\xA9\xE2\x82\xAC"},
        {u"\x07FF\x0800\xFFFF", "\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF"},
        {u"\xD83C\xDFAC", "\xF0\x9F\x8E\xAC"},
        {u"\xD83C", "\xEF\xBF\xBD"},
        {u"\xDFAC\xD83C", "\xEF\xBF\xBD\xEF\xBF\xBD"},  // reversed pair: two lone halves
        {u"a\xD83Cz", "a\xEF\xBF\xBDz"},
    };
    for (const Case& c : cases) EXPECT_EQ(Encode(c.text), c.bytes);
}

TEST(CodePage, TerminatedSourceCountsTheTerminator) {
    char16_t wide[8];
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, MB_PRECOMPOSED, "ab", -1, nullptr, 0), 3);
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, MB_PRECOMPOSED, "ab", -1, wide, 8), 3);
    EXPECT_EQ(std::u16string(wide), u"ab");
    char narrow[8];
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, u"é", -1, nullptr, 0, nullptr, nullptr), 3);
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, u"é", -1, narrow, 8, nullptr, nullptr), 3);
    EXPECT_STREQ(narrow, "\xC3\xA9");
}

TEST(CodePage, DestinationAtItsLimits) {
    char16_t wide[4];
    char narrow[4];
    struct Case {
        int dst;
        int result;
        uint32_t error;
    } decodes[] = {{3, 3, 0}, {4, 3, 0}, {2, 0, ERROR_INSUFFICIENT_BUFFER}};
    for (const Case& c : decodes) {
        SetLastError(0);
        EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 0,
                                      "a\xE2\x82\xAC"
                                      "b",
                                      5, wide, c.dst),
                  c.result);
        EXPECT_EQ(GetLastError(), c.error);
    }
    // "é€" is 5 bytes: a character that would straddle the end fails the call.
    Case encodes[] = {{4, 0, ERROR_INSUFFICIENT_BUFFER}, {2, 0, ERROR_INSUFFICIENT_BUFFER}};
    for (const Case& c : encodes) {
        SetLastError(0);
        EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, u"é€", 2, narrow, c.dst, nullptr, nullptr),
                  c.result);
        EXPECT_EQ(GetLastError(), c.error);
    }
    SetLastError(0);
    EXPECT_EQ(WideCharToMultiByte(CP_MACCP, 0, u"abcde", 5, narrow, 4, nullptr, nullptr), 0);
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(MultiByteToWideChar(CP_MACCP, 0, "abcde", 5, wide, 4), 0);
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
}

TEST(CodePage, BadArgumentsAndStrictMode) {
    char16_t wide[8];
    char narrow[8];
    struct Case {
        int result;
        uint32_t error;
    };
    auto run = [](int result) { return Case{result, GetLastError()}; };
    auto check = [](Case got, uint32_t error) {
        EXPECT_EQ(got.result, 0);
        EXPECT_EQ(got.error, error);
    };
    check(run(MultiByteToWideChar(CP_UTF8, 0, "a", 0, wide, 8)), ERROR_INVALID_PARAMETER);
    check(run(MultiByteToWideChar(CP_UTF8, 0, "a", -2, wide, 8)), ERROR_INVALID_PARAMETER);
    check(run(MultiByteToWideChar(CP_UTF8, 0, nullptr, 1, wide, 8)), ERROR_INVALID_PARAMETER);
    check(run(MultiByteToWideChar(CP_UTF8, 0, "a", 1, nullptr, 8)), ERROR_INVALID_PARAMETER);
    check(run(MultiByteToWideChar(1252, 0, "a", 1, wide, 8)), ERROR_INVALID_PARAMETER);
    check(run(MultiByteToWideChar(CP_UTF8, 0x40, "a", 1, wide, 8)), ERROR_INVALID_FLAGS);
    check(run(MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, "a\xC3", 2, wide, 8)),
          ERROR_NO_UNICODE_TRANSLATION);
    check(run(WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, u"\xDC00", 1, narrow, 8, nullptr,
                                  nullptr)),
          ERROR_NO_UNICODE_TRANSLATION);
    int used = 0;
    check(run(WideCharToMultiByte(CP_UTF8, 0, u"a", 1, narrow, 8, nullptr, &used)),
          ERROR_INVALID_PARAMETER);
    check(run(WideCharToMultiByte(CP_UTF8, 0, u"a", 1, narrow, -1, nullptr, nullptr)),
          ERROR_INVALID_PARAMETER);
}

TEST(CodePage, MacRomanRoundTripsAllBytes) {
    std::string all;
    for (int b = 1; b < 256; ++b) all.push_back(static_cast<char>(b));
    std::u16string text = Decode(all, CP_MACCP);
    ASSERT_EQ(text.size(), all.size()) << "one unit per byte";
    // Every byte is a distinct character, and encoding returns the byte.
    std::u16string sorted = text;
    std::sort(sorted.begin(), sorted.end());
    EXPECT_EQ(std::adjacent_find(sorted.begin(), sorted.end()), sorted.end());
    EXPECT_EQ(Encode(text, CP_MACCP), all);
    // Landmarks of the set.
    EXPECT_EQ(text[0x8E - 1], u'é');
    EXPECT_EQ(text[0xA5 - 1], u'\x2022');
    EXPECT_EQ(text[0xDB - 1], u'\x00A4');
    EXPECT_EQ(text[0xF0 - 1], u'\xF8FF');
    EXPECT_EQ(text[0xFF - 1], u'\x02C7');
}

TEST(CodePage, MacRomanUnmappableBecomesDefault) {
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
    EXPECT_EQ(WideCharToMultiByte(CP_MACCP, 0, u"é", 1, narrow, 8, nullptr, &used), 1);
    EXPECT_EQ(used, 0);
}

TEST(CodePage, Utf8RoundTripOfEveryScalarBlock) {
    // Every BMP scalar and a sample of the other planes survive a round trip.
    std::u16string text;
    for (uint32_t c = 1; c < 0x10000; ++c)
        if (c < 0xD800 || c > 0xDFFF) text.push_back(static_cast<char16_t>(c));
    for (uint32_t c = 0x10000; c <= 0x10FFFF; c += 0x1F1) {
        text.push_back(static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10)));
        text.push_back(static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF)));
    }
    EXPECT_EQ(Decode(Encode(text)), text);
}

}  // namespace
}  // namespace basicutils
