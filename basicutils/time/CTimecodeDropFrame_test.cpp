#include <basicutils/time/CTimecode.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <string>

#include "TimeTest_test.h"

namespace basicutils {
namespace {

struct Label {
    int h, m, s, f;
    bool operator==(const Label&) const = default;
};

std::string Text(const Label& l) {
    char buf[32];
    std::snprintf(buf, sizeof buf, "%02d:%02d:%02d:%02d", l.h, l.m, l.s, l.f);
    return buf;
}

void PrintTo(const Label& l, std::ostream* os) {
    *os << Text(l);
}

Label Of(const CTimecode& t) {
    return {t.GetHour(), t.GetMinute(), t.GetSecond(), t.GetFrame()};
}

Label OfFrame(int64_t n) {
    return {static_cast<int>(n / 108000), static_cast<int>(n / 1800 % 60),
            static_cast<int>(n / 30 % 60), static_cast<int>(n % 30)};
}

// The standard drop-frame numbering, written independently: 17982 frames
// per ten minutes, 1798 per dropping minute.
Label StandardDrop(int64_t n) {
    int64_t tens = n / 17982, rest = n % 17982;
    int64_t label = n + 18 * tens + (rest >= 2 ? 2 * ((rest - 2) / 1798) : 0);
    return OfFrame(label);
}

int64_t StandardPlain(const Label& l) {
    int64_t minutes = 60 * l.h + l.m;
    return (minutes * 60 + l.s) * 30 + l.f - 2 * (minutes - minutes / 10);
}

CTimecode Tc(const Label& l) {
    return CTimecode(static_cast<uint16_t>(l.h), static_cast<uint16_t>(l.m),
                     static_cast<uint16_t>(l.s), static_cast<uint16_t>(l.f), 30.0);
}

const CTimecode kZero;

// Every frame from 00:00:00:00 to 16:40:59:27 plain, both directions,
// against the standard formula.
TEST(DropFrame, AgreesWithTheStandardNumberingOverItsWholeRange) {
    const int64_t last = 16 * 108000 + 40 * 1800 + 59 * 30 + 27;
    CTimecode plain, label, back;
    for (int64_t n = 0; n <= last; ++n) {
        plain.SetTotalFrame(static_cast<int32_t>(n + 1), kFrameType30);
        plain.Nondrop2Drop(kZero, &label);
        Label expected = StandardDrop(n);
        ASSERT_EQ(Of(label), expected) << Text(OfFrame(n));
        ASSERT_EQ(StandardPlain(expected), n);
        label.Drop2Nondrop(kZero, &back);
        ASSERT_EQ(back.GetTotalFrame(), n + 1) << Text(expected);
    }
}

// Past the range the label can run onto a left-out label of a dropping
// minute; any other result is still the standard one, and going back lands
// within two frames of the plain time.
TEST(DropFrame, BeyondTheRangeOnlyLeftOutLabelsDiffer) {
    const int64_t first = 16 * 108000 + 40 * 1800 + 59 * 30 + 28;
    int leftOut = 0;
    CTimecode plain, label, back;
    for (int64_t n = first; n < first + 20 * 1800; ++n) {
        plain.SetTotalFrame(static_cast<int32_t>(n + 1), kFrameType30);
        plain.Nondrop2Drop(kZero, &label);
        label.Drop2Nondrop(kZero, &back);
        ASSERT_LE(std::abs(back.GetTotalFrame() - (n + 1)), 2) << Text(OfFrame(n));
        Label got = Of(label);
        if (got == StandardDrop(n)) continue;
        ASSERT_TRUE(got.s == 0 && got.f < 2 && got.m % 10 != 0)
            << Text(OfFrame(n)) << " -> " << Text(got);
        ++leftOut;
    }
    EXPECT_GT(leftOut, 0);
    plain.SetTotalFrame(static_cast<int32_t>(first + 1), kFrameType30);
    plain.Nondrop2Drop(kZero);
    EXPECT_EQ(Of(plain), (Label{16, 42, 0, 0}));  // the standard label is 16:42:00:02
}

// Valid labels from zero are the full walk's, other starts, rates and odd
// counters the fuzz replay's (against the conversion as first written); here,
// a few known labels to read: left-out labels, a later start, times before it.
TEST(DropFrame, KnownLabelsFromZeroAndFromALaterStart) {
    const CTimecode later(1, 5, 30, 0, 30.0);
    // clang-format off
    struct Case { const CTimecode* start; bool toDrop; Label in, out; } cases[] = {
        {&kZero, false, {0, 1, 0, 0}, {0, 1, 0, 0}},  // left-out labels go to frame 02
        {&kZero, false, {0, 1, 0, 1}, {0, 1, 0, 0}},
        {&later, true, {1, 10, 0, 0}, {1, 10, 0, 8}},
        {&later, true, {0, 30, 0, 0}, {0, 30, 0, 0}},  // before the start: no correction
        {&later, false, {0, 30, 0, 0}, {0, 30, 0, 0}},
        {&later, false, {1, 1, 0, 0}, {1, 1, 0, 2}},
    };
    // clang-format on
    for (const Case& c : cases) {
        CTimecode in = Tc(c.in), out;
        c.toDrop ? in.Nondrop2Drop(*c.start, &out) : in.Drop2Nondrop(*c.start, &out);
        EXPECT_EQ(Of(out), c.out) << Text(c.in) << (c.toDrop ? " to drop" : " to plain");
        EXPECT_EQ(out.GetFrameRate(), 30.0);
    }
}

TEST(DropFrame, ResultNotifiesAtMostOnceAndSourcesStay) {
    CTimecode source(1, 0, 0, 0, 30.0), start(0, 0, 0, 0, 30.0), result;
    timetest::Recorder heard, heardSource;
    result.AddResponder(&heard);
    source.AddResponder(&heardSource);
    source.Nondrop2Drop(start, &result);
    EXPECT_EQ(heard.Count(), 1u);  // four fields changed, one notification
    EXPECT_EQ(Of(source), (Label{1, 0, 0, 0}));
    EXPECT_EQ(heardSource.Count(), 0u);
    source.Nondrop2Drop(start, &result);
    EXPECT_EQ(heard.Count(), 1u);  // already equal: silent
    source.Nondrop2Drop(source);   // its own start: unchanged
    EXPECT_EQ(Of(source), (Label{1, 0, 0, 0}));
    EXPECT_EQ(heardSource.Count(), 0u);
    source.Nondrop2Drop(start);
    EXPECT_EQ(Of(source), (Label{1, 0, 3, 18}));
    EXPECT_EQ(heardSource.Count(), 1u);
    source.Drop2Nondrop(start);
    EXPECT_EQ(Of(source), (Label{1, 0, 0, 0}));
    source.Drop2Nondrop(start, nullptr);  // a null result is ignored
}

}  // namespace
}  // namespace basicutils
