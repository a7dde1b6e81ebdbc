#include <basicutils/time/CDuration.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "TimeTest_test.h"

namespace basicutils {
namespace {
using timetest::S;
using timetest::T;

CDuration Stretch(const CTimecode& start, const CTimecode& length) {
    CDuration d;
    d.SetStartTime(start);
    d.SetDuration(length);
    return d;
}

using timetest::Recorder;

// Exposes the two timecodes so that a test can listen to them.
class Open : public CDuration {
  public:
    CTimecode& Start() { return mStartTime; }
    CTimecode& Length() { return mDuration; }
};

TEST(CDuration, NewIsNil) {
    CDuration d;
    EXPECT_TRUE(d.IsNil());
    EXPECT_EQ(d.GetTotalFrame(), 0);
    EXPECT_EQ(S(d.GetEndTime()), "00:00:00:00@30");
    EXPECT_TRUE(d.IsInclude(T(0, 0, 0, 0)));
    EXPECT_EQ(d.GetFrameType(), kFrameType30);
}

TEST(CDuration, EndIsInclusive) {
    CDuration d = Stretch(T(0, 0, 10, 0), T(0, 0, 5, 0));
    EXPECT_EQ(S(d.GetEndTime()), "00:00:14:29@30");
    EXPECT_EQ(d.GetTotalFrame(), 150);
    // clang-format off
    struct { CTimecode t; bool inside; } probes[] = {{T(0, 0, 10, 0), true}, {T(0, 0, 14, 29), true}, {T(0, 0, 15, 0), false}, {T(0, 0, 9, 29), false}};
    // clang-format on
    for (auto& p : probes) EXPECT_EQ(d.IsInclude(p.t), p.inside) << S(p.t);
    // SetEndTime sets the length through SetDuration, whose notifying the
    // order test checks.
    EXPECT_FALSE(d.SetEndTime(T(0, 0, 14, 29)));  // same length
    EXPECT_TRUE(d.SetEndTime(T(0, 0, 10, 0)));
    EXPECT_EQ(S(d.GetDuration()), "00:00:00:01@30");
    EXPECT_FALSE(d.SetEndTime(T(0, 0, 2, 0)));  // before the start: one frame as well

    CDuration empty = Stretch(T(0, 0, 10, 0), T(0, 0, 0, 0));
    EXPECT_EQ(S(empty.GetEndTime()), "00:00:09:29@30");
    for (auto& p : probes) EXPECT_FALSE(empty.IsInclude(p.t));
}

TEST(CDuration, NotificationsComeInTheirOrder) {
    Open d;
    Recorder r;
    r.watched = &d;
    d.AddResponder(&r);
    d.Start().AddResponder(&r);
    d.Length().AddResponder(&r);
    d.SetStartTime(T(0, 0, 1, 29));
    d.SetDuration(T(0, 0, 2, 0));
    d.SetDropType(kDrop);
    d.SetResolution(kResolutionPAL);  // re-rates both timecodes first, from the hook
    EXPECT_EQ(r.log, (std::vector<std::string>{"7130*", "7202", "7130*", "7203", "7201", "7130*",
                                               "7130*", "7200"}));
    EXPECT_EQ(S(d.GetStartTime()), "00:00:01:29@25");  // digits kept
    EXPECT_FALSE(d.SetResolution(kResolutionPAL));
    EXPECT_FALSE(d.SetFrameType(kFrameType24));
    EXPECT_EQ(d.GetFrameType(), kFrameType25);
    EXPECT_TRUE(d.SetFrameType(kFrameType30));
    EXPECT_EQ(d.GetResolution(), kResolutionNTSC);
}

TEST(CDuration, DropFrameViews) {
    CDuration d = Stretch(T(0, 0, 0, 0), T(0, 1, 0, 1));
    CDuration plain(d);
    d.SetDropType(kDrop);
    EXPECT_EQ(S(d.GetEndTime()), "00:01:00:00@30");
    EXPECT_EQ(S(d.GetEndTimeUI()), "00:01:00:02@30");
    EXPECT_EQ(S(d.GetDurationUI()), "00:01:00:03@30");
    EXPECT_EQ(S(d.GetDuration()), "00:01:00:01@30");
    EXPECT_EQ(d.GetTotalFrame(), 1801);
    d.SetDuration(T(0, 0, 0, 5));
    EXPECT_TRUE(d.SetDurationUI(T(0, 1, 0, 3)));
    EXPECT_EQ(S(d.GetDuration()), "00:01:00:01@30");
    d.SetDuration(T(0, 0, 0, 5));
    EXPECT_TRUE(d.SetEndTimeUI(T(0, 1, 0, 2)));
    EXPECT_EQ(S(d.GetDuration()), "00:01:00:01@30");
    EXPECT_TRUE(d != plain);  // the drop type alone differs
    EXPECT_EQ(S(d.GetEndTime()), S(plain.GetEndTime()));

    // Without kDrop every UI form is its plain twin, left-out labels included.
    CDuration n = Stretch(T(0, 0, 0, 0), T(0, 1, 0, 1));
    EXPECT_EQ(S(n.GetEndTimeUI()), S(n.GetEndTime()));
    EXPECT_EQ(S(n.GetDurationUI()), S(n.GetDuration()));
    n.SetEndTimeUI(T(0, 1, 0, 0));
    EXPECT_EQ(S(n.GetEndTime()), "00:01:00:00@30");
    n.SetDurationUI(T(0, 2, 0, 1));
    EXPECT_EQ(S(n.GetDuration()), "00:02:00:01@30");

    // kDrop at PAL is not refused; the labels come out at 30.0.
    CDuration pal = Stretch(T(0, 0, 0, 0), T(0, 1, 0, 1));
    pal.SetResolution(kResolutionPAL);
    pal.SetDropType(kDrop);
    EXPECT_EQ(pal.GetEndTimeUI().GetFrameRate(), 30.0);
}

TEST(CDuration, OverlapIsTheSharedStretch) {
    // clang-format off
    struct Case { CTimecode startA, lengthA, startB, lengthB; bool meets; const char *from, *to; } cases[] = {
        {T(0, 0, 10, 0), T(0, 0, 10, 0), T(0, 0, 15, 0), T(0, 0, 10, 0), true, "00:00:15:00@30", "00:00:19:29@30"},  // starts inside
        {T(0, 0, 10, 0), T(0, 0, 10, 0), T(0, 0, 12, 0), T(0, 0, 2, 0), true, "00:00:12:00@30", "00:00:13:29@30"},
        {T(0, 0, 10, 0), T(0, 0, 10, 0), T(0, 0, 5, 0), T(0, 0, 10, 0), true, "00:00:10:00@30", "00:00:14:29@30"},   // ends inside
        {T(0, 0, 10, 0), T(0, 0, 2, 0), T(0, 0, 5, 0), T(0, 0, 30, 0), true, "00:00:10:00@30", "00:00:11:29@30"},    // encloses
        {T(0, 0, 10, 0), T(0, 0, 10, 0), T(0, 0, 20, 0), T(0, 0, 1, 0), false, "", ""},  // begins behind the end
        {T(0, 0, 10, 0), T(0, 0, 10, 0), T(0, 0, 1, 0), T(0, 0, 9, 0), false, "", ""},
    };
    // clang-format on
    for (const Case& c : cases) {
        CDuration a = Stretch(c.startA, c.lengthA), b = Stretch(c.startB, c.lengthB);
        CDuration result = Stretch(T(1, 0, 0, 0), T(0, 0, 0, 7));
        ASSERT_EQ(a.GetOverlapDuration(b, &result), c.meets) << S(c.startB);
        EXPECT_EQ(a.GetOverlapDuration(b, nullptr), c.meets);
        if (!c.meets) {
            EXPECT_EQ(S(result.GetStartTime()), "01:00:00:00@30");  // untouched
            continue;
        }
        EXPECT_EQ(S(result.GetStartTime()), c.from);
        EXPECT_EQ(S(result.GetEndTime()), c.to);
    }
}

// A copy is a copy of every part, the broadcasting switch included; an
// assignment leaves the target's switch and listeners as they were.
TEST(CDuration, CopyAndAssignmentCarryEverythingButListeners) {
    CDuration a = Stretch(T(0, 0, 3, 0), T(0, 0, 4, 0));
    a.SetDropType(kDrop);
    a.SetResolution(kResolutionPAL);
    a.StopBroadcasting();
    CDuration b;
    Recorder r;
    r.watched = &b;
    b.AddResponder(&r);
    b = a;
    EXPECT_TRUE(b == a && b.IsBroadcasting());
    EXPECT_TRUE(r.log.empty());  // the duration itself sends nothing
    CDuration c(a);
    EXPECT_TRUE(c == a);
    EXPECT_FALSE(c.IsBroadcasting());
}

}  // namespace
}  // namespace basicutils
