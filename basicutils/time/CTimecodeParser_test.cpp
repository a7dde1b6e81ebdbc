#include <basicutils/text/MString.h>
#include <basicutils/time/CTimecodeParser.h>
#include <gtest/gtest.h>

#include <string>

#include "TimeTest_test.h"

namespace basicutils {
namespace {

using timetest::S;

std::u16string U(const MString& s) {
    return std::u16string(static_cast<const char16_t*>(s));
}

// How Parse splits the text into four texts, kept as written, and reads
// them is held to a model by the parser fuzz replay; here, a copy keeps
// them, GetString writes them back, the setters write two digits at least,
// and GetTime validates.
TEST(CTimecodeParser, TextsAreKeptAsWrittenAndGetTimeValidates) {
    // clang-format off
    struct { const char16_t *text, *raw, *written; } cases[] = {
        {u"1:2:3:4:5", u"1:2345", u"1:2:3:4:5"}, {u"12", u"12", u":::12"},
        {u"", u"", u":::"}, {nullptr, u"", u":::"}, {u"ab:cd", u"abcd", u"::ab:cd"},
    };
    // clang-format on
    for (const auto& c : cases) {
        CTimecodeParser p;
        p.SetHour(9);
        p.Parse(c.text, false);
        CTimecodeParser q(p);
        EXPECT_EQ(U(q.GetString()), c.written);
        EXPECT_EQ(U(q.GetRawString()), c.raw);
    }
    CTimecodeParser p;
    p.Parse(u" -1:75:1:30", false);
    EXPECT_EQ(S(p.GetTime()), "65535:59:01:29@30");
    p.SetFrameType(kFrameType25);
    EXPECT_EQ(S(p.GetTime()), "65535:59:01:24@25");
    p.Parse(u"1:2:3:4", false);
    p.SetSecond(3);
    EXPECT_EQ(U(p.GetString()), u"1:2:03:4");
    struct {
        uint16_t value;
        const char16_t* text;
    } numbers[] = {{7, u"07"}, {0, u"00"}, {123, u"123"}, {65535, u"65535"}};
    for (auto& n : numbers) {
        p.SetHour(n.value);
        EXPECT_EQ(U(p.GetRawString()).substr(0, std::u16string(n.text).size()), n.text);
    }
}

TEST(CTimecodeParser, KeepFrameTypeDecidesTheRate) {
    CTimecodeParser p;
    p.SetFrameType(kFrameType24);
    p.Parse(u"00:00:01:23", true);
    EXPECT_EQ(S(p.GetTime()), "00:00:01:23@24");
    p.Parse(u"00:00:01:23", false);
    EXPECT_EQ(S(p.GetTime()), "00:00:01:23@30");
    // A timecode written and read back keeps its rate at 25 and 30 only.
    for (double rate : {24.0, 25.0, 30.0}) {
        p.SetTime(CTimecode(1, 2, 3, 4, rate));
        CTimecodeParser back;
        back.Parse(p.GetString(), false);
        EXPECT_EQ(S(back.GetTime()), S(CTimecode(1, 2, 3, 4, rate == 24.0 ? 30.0 : rate)));
    }
}

TEST(CTimecodeText, GetTimeWritesTheForm) {
    // clang-format off
    struct { CTimecode t; const char16_t* text; } cases[] = {
        {CTimecode(0, 0, 1, 5, 25.0), u"00:00:01;05"}, {CTimecode(0, 0, 1, 5, 24.0), u"00:00:01:05"},
        {CTimecode(0, 0, 1, 5, 29.97), u"00:00:01:05"}, {CTimecode(100, 0, 0, 0, 30.0), u"100:00:00:00"},
    };
    // clang-format on
    for (auto& c : cases) {
        MString s;
        c.t.GetTime(&s);
        EXPECT_EQ(U(s), c.text);
        char16_t buffer[16];
        c.t.GetTime(buffer);
        EXPECT_EQ(std::u16string(buffer), c.text);
    }
}

// How SetTime reads up to 31 units, and that it notifies as the numeric
// setters do, is held to a model by the SetTime fuzz replay; here, what lies
// outside it, and the rate taken with the text.
TEST(CTimecodeText, SetTimeReadsNoNullNothingPast31UnitsAndTakesTheRate) {
    CTimecode t;
    EXPECT_FALSE(t.SetTime(static_cast<const char16_t*>(nullptr)));
    std::u16string longText = u"1:2:3:" + std::u16string(25, u'0') + u"456";
    t.SetTime(longText.c_str());
    EXPECT_EQ(S(t), "01:02:03:00@30");
    t.SetTime(u"0:0:0:0:0:0:0:0:0:0:0:0:0:0:0:1:2");
    EXPECT_EQ(S(t), "00:00:00:00@30");
    t.SetTime(u"0:0:1:29", 25.0);
    EXPECT_EQ(S(t), "00:00:01:24@25");
    // clang-format off
    struct { frame_type_t type; double rate; } cases[] = {
        {kFrameType24, 24.0}, {kFrameType25, 25.0}, {kFrameType30, 30.0}, {kFrameTypeKeep, 29.97}, {kFrameTypeUnused, 29.97}};
    // clang-format on
    for (auto& c : cases) {
        CTimecode typed(0, 0, 0, 0, 29.97);
        typed.SetTimeWithType(u"1:2:3:4", c.type);
        EXPECT_EQ(typed.GetFrameRate(), c.rate);
        EXPECT_EQ(typed.GetFrame(), 4);
    }
}

}  // namespace
}  // namespace basicutils
