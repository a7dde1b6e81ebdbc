#include <basicutils/text/MString.h>
#include <basicutils/text/WideString.h>
#include <basicutils/time/CTimecodeParser.h>
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>

#include "TimeTest_test.h"

namespace basicutils {
namespace {

std::u16string U(const MString& s) {
    return std::u16string(static_cast<const char16_t*>(s));
}

std::string Fields(const CTimecode& t) {
    char buf[48];
    std::snprintf(buf, sizeof buf, "%d:%d:%d:%d@%g", t.GetHour(), t.GetMinute(), t.GetSecond(),
                  t.GetFrame(), t.GetFrameRate());
    return buf;
}

// How Parse splits and reads the fields is held to a model by the parser
// fuzz replay; here, the texts are kept as written and copied, and GetTime
// validates.
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
    EXPECT_EQ(Fields(p.GetTime()), "65535:59:1:29@30");
    p.SetFrameType(kFrameType25);
    EXPECT_EQ(Fields(p.GetTime()), "65535:59:1:24@25");
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
    EXPECT_EQ(Fields(p.GetTime()), "0:0:1:23@24");
    p.Parse(u"00:00:01:23", false);
    EXPECT_EQ(Fields(p.GetTime()), "0:0:1:23@30");
    // A timecode written and read back keeps its rate at 25 and 30 only.
    for (double rate : {24.0, 25.0, 30.0}) {
        CTimecode t(1, 2, 3, 4, rate);
        p.SetTime(t);
        CTimecodeParser back;
        back.Parse(p.GetString(), false);
        EXPECT_EQ(back.GetTime().GetFrameRate(), rate == 24.0 ? 30.0 : rate);
        EXPECT_EQ(back.GetTime().GetTotalFrame(),
                  CTimecode(1, 2, 3, 4, rate == 24.0 ? 30.0 : rate).GetTotalFrame());
    }
}

TEST(CTimecodeText, GetTimeWritesTheForm) {
    struct {
        CTimecode t;
        const char16_t* text;
    } cases[] = {{CTimecode(0, 0, 1, 5, 25.0), u"00:00:01;05"},
                 {CTimecode(0, 0, 1, 5, 24.0), u"00:00:01:05"},
                 {CTimecode(0, 0, 1, 5, 30.0), u"00:00:01:05"},
                 {CTimecode(0, 0, 1, 5, 29.97), u"00:00:01:05"},
                 {CTimecode(100, 0, 0, 0, 30.0), u"100:00:00:00"}};
    for (auto& c : cases) {
        MString s;
        c.t.GetTime(&s);
        EXPECT_EQ(U(s), c.text);
        char16_t buffer[16];
        c.t.GetTime(buffer);
        EXPECT_EQ(std::u16string(buffer), c.text);
    }
}

// How SetTime reads up to 31 units is held to a model by the SetTime fuzz
// replay; here, what lies outside it.
TEST(CTimecodeText, SetTimeReadsNoNullAndNothingPast31Units) {
    CTimecode t;
    EXPECT_FALSE(t.SetTime(static_cast<const char16_t*>(nullptr)));
    std::u16string longText = u"1:2:3:" + std::u16string(25, u'0') + u"456";
    t.SetTime(longText.c_str());
    EXPECT_EQ(Fields(t), "1:2:3:0@30");
    t.SetTime(u"0:0:0:0:0:0:0:0:0:0:0:0:0:0:0:1:2");
    EXPECT_EQ(Fields(t), "0:0:0:0@30");
}

TEST(CTimecodeText, SetTimeWithTypeChoosesTheRate) {
    struct {
        frame_type_t type;
        double rate;
    } cases[] = {{kFrameType24, 24.0},
                 {kFrameType25, 25.0},
                 {kFrameType30, 30.0},
                 {kFrameTypeKeep, 29.97},
                 {kFrameTypeUnused, 29.97}};
    for (auto& c : cases) {
        CTimecode t(0, 0, 0, 0, 29.97);
        t.SetTimeWithType(u"1:2:3:4", c.type);
        EXPECT_EQ(t.GetFrameRate(), c.rate);
        EXPECT_EQ(t.GetFrame(), 4);
    }
    CTimecode t;
    t.SetTime(u"0:0:1:29", 25.0);
    EXPECT_EQ(Fields(t), "0:0:1:24@25");
}

// The readers as they were written (string pieces, wcstok and _wtoi), kept
// here to hold the one-pass readers to them.
struct OpenParser : CTimecodeParser {
    std::u16string Texts() const {
        return U(mHourText) + u'|' + U(mMinuteText) + u'|' + U(mSecondText) + u'|' + U(mFrameText) +
               static_cast<char16_t>(u'0' + mFrameType);
    }
    void OldParse(const char16_t* text, bool keep) {
        MString* fields[] = {&mFrameText, &mSecondText, &mMinuteText};
        for (MString* f : {fields[0], fields[1], fields[2], &mHourText}) *f = u"";
        std::u16string_view rest(text);
        size_t semicolon = rest.rfind(u';');
        if (!keep) mFrameType = semicolon != rest.npos ? kFrameType25 : kFrameType30;
        size_t cut = semicolon != rest.npos ? semicolon : rest.rfind(u':');
        for (MString* field : fields) {
            if (cut == rest.npos) return void(*field = std::u16string(rest).c_str());
            *field = std::u16string(rest.substr(cut + 1)).c_str();
            rest = rest.substr(0, cut);
            cut = rest.rfind(u':');
        }
        mHourText = std::u16string(rest).c_str();
    }
};
struct SlowTimecode : CTimecode {  // not exactly a CTimecode: every setter goes through its calls
    uint16_t ValidateHour(uint16_t h) override { return CTimecode::ValidateHour(h); }
};
void OldSetTime(CTimecode& t, const char16_t* text) {
    char16_t work[32] = {};
    for (int i = 0; i < 31 && text[i]; ++i) work[i] = text[i];
    uint16_t v[4] = {0, 0, 0, 0};
    char16_t* context = nullptr;
    char16_t* token = wcstok_r(work, u":;", &context);
    for (int i = 0; i < 4 && token; ++i, token = wcstok_r(nullptr, u":;", &context)) {
        v[i] = static_cast<uint16_t>(_wtoi(token));
    }
    t.SetTime(v[0], v[1], v[2], v[3]);
}

// Random texts over the units that matter (separators, blanks, signs, digits
// in long runs, other letters), one parser and two timecodes reused
// throughout, so that fields grow, shrink and empty.
TEST(CTimecodeText, ReadersGiveWhatTheyGaveBefore) {
    std::mt19937 rng(3);
    const std::u16string units = u"0123456789::;; \t-+x";
    OpenParser parser, old;
    CTimecode fast(0, 0, 0, 0, 25.0);
    SlowTimecode slow;
    slow.SetFrameRate(25.0);
    timetest::Recorder heardFast, heardSlow;
    fast.AddResponder(&heardFast);
    slow.AddResponder(&heardSlow);
    for (int i = 0; i < 50000; ++i) {
        std::u16string text;
        for (size_t n = rng() % 40; n > 0; --n) text += units[rng() % units.size()];
        const bool keep = rng() % 4 == 0;
        parser.Parse(text.c_str(), keep);
        old.OldParse(text.c_str(), keep);
        ASSERT_EQ(parser.Texts(), old.Texts());
        fast.SetTime(text.c_str());
        OldSetTime(slow, text.c_str());
        ASSERT_EQ(timetest::S(fast), timetest::S(slow));
        ASSERT_EQ(heardFast.Count(), heardSlow.Count());
    }
}

}  // namespace
}  // namespace basicutils
