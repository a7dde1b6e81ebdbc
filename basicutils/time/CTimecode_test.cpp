// CTimecode: validation and notification of every setter, frame counting,
// the arithmetic's bounds, the packed and millisecond forms, and stepping.
#include <basicutils/time/CTimecode.h>
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "TimeTest_test.h"

namespace basicutils {
namespace {
using timetest::Recorder;
using timetest::S;
using timetest::T;

TEST(CTimecode, SettersClampAndNotifyOnlyOnChange) {
    using Setter = bool (CTimecode::*)(uint16_t);
    using Getter = uint16_t (CTimecode::*)() const;
    const Setter kH = &CTimecode::SetHour, kM = &CTimecode::SetMinute, kS = &CTimecode::SetSecond,
                 kF = &CTimecode::SetFrame;
    // before: the value the field holds first (set silently)
    // clang-format off
    const struct { double rate; Setter set; Getter get; uint16_t before, input, stored; bool changed; } cases[] = {
        {30.0, kH, &CTimecode::GetHour, 0, 65535, 65535, true},
        {30.0, kM, &CTimecode::GetMinute, 0, 75, 59, true},
        {30.0, kM, &CTimecode::GetMinute, 59, 75, 59, false},  // clamps to what it holds
        {30.0, kS, &CTimecode::GetSecond, 0, 60, 59, true},
        {30.0, kS, &CTimecode::GetSecond, 12, 12, 12, false},
        {30.0, kF, &CTimecode::GetFrame, 0, 30, 29, true},
        {25.0, kF, &CTimecode::GetFrame, 0, 30, 24, true},
        {24.0, kF, &CTimecode::GetFrame, 0, 23, 23, true},
        {29.97, kF, &CTimecode::GetFrame, 0, 29, 29, true},
        {29.97, kF, &CTimecode::GetFrame, 0, 30, 28, true},
        {1200.0, kF, &CTimecode::GetFrame, 0, 1199, 1199, true},
        {1200.0, kF, &CTimecode::GetFrame, 0, 65535, 1199, true},
    };
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "rate " << c.rate << " input " << c.input);
        CTimecode tc(0, 0, 0, 0, c.rate);
        Recorder counter;
        (tc.*c.set)(c.before);
        tc.AddResponder(&counter);
        EXPECT_EQ((tc.*c.set)(c.input), c.changed);
        EXPECT_EQ((tc.*c.get)(), c.stored);
        EXPECT_EQ(counter.codes, std::vector<int32_t>(c.changed ? 1 : 0, kNotifyTimecodeChanged));
    }
}

TEST(CTimecode, FrameRateIsClampedAndGivesTheFrameType) {
    CTimecode zero;
    EXPECT_EQ(S(zero), "00:00:00:00@30");
    EXPECT_TRUE(zero.IsZero());
    // clang-format off
    const struct { double input, stored; } cases[] = {
        {10.0, 24.0}, {2000.0, 1200.0}, {24.0, 24.0}, {29.97, 29.97}, {-1.0, 24.0}, {std::nan(""), 24.0}, {1200.0, 1200.0}};
    const struct { frame_type_t set; double rate; } sets[] = {
        {kFrameType24, 24.0}, {kFrameType25, 25.0}, {kFrameTypeUnused, 30.0}, {kFrameType30, 30.0}, {kFrameTypeKeep, 30.0}};
    const struct { double rate; frame_type_t type; } gets[] = {
        {24.0, kFrameType24}, {25.0, kFrameType25}, {30.0, kFrameType30}, {29.97, kFrameType30}, {24.5, kFrameType30}, {1200.0, kFrameType30}};
    // clang-format on
    for (const auto& c : cases) {
        CTimecode tc;
        tc.SetFrameRate(c.input);
        EXPECT_EQ(tc.GetFrameRate(), c.stored) << c.input;
    }
    CTimecode tc(0, 0, 0, 0, 24.0);      // the store step the setters' table checks
    EXPECT_FALSE(tc.SetFrameRate(3.0));  // clamps to the 24.0 it holds
    for (const auto& s : sets) {
        CTimecode typed(0, 0, 0, 0, 1000.0);
        typed.SetFrameType(s.set);
        EXPECT_EQ(typed.GetFrameRate(), s.rate);
    }
    for (const auto& g : gets) EXPECT_EQ(CTimecode(0, 0, 0, 0, g.rate).GetFrameType(), g.type);
}

// That SetTime notifies once per changed field, as the four setters do, the
// SetTime fuzz replay checks.
TEST(CTimecode, SetTimeValidatesAgainstTheNewRate) {
    CTimecode tc;
    EXPECT_TRUE(tc.SetTime(1, 2, 3, 4));
    EXPECT_FALSE(tc.SetTime(1, 2, 3, 4));
    EXPECT_TRUE(tc.SetTime(0, 0, 0, 29, 25.0));
    EXPECT_EQ(S(tc), "00:00:00:24@25");
    EXPECT_TRUE(tc.SetTime(0, 0, 0, 29, kFrameType30));
    EXPECT_EQ(S(tc), "00:00:00:29@30");
    EXPECT_TRUE(tc.SetTime(0, 0, 0, 29, 1000.0)) << "only the rate changes: still true";
    EXPECT_EQ(S(CTimecode(1, 75, 60, 29, kFrameType25)), "01:59:59:24@25");
    // Changing the rate afterwards keeps the frame, even past the new limit.
    CTimecode kept(0, 0, 0, 29, 30.0);
    kept.SetFrameType(kFrameType25);
    EXPECT_EQ(S(kept), "00:00:00:29@25");
    EXPECT_EQ(kept.GetTotalFrame(), 30);
}

TEST(CTimecode, TotalFrameIsOneBasedAndSetTotalFrameInvertsIt) {
    // clang-format off
    const struct { CTimecode tc; int32_t count; } counts[] = {
        {T(0, 0, 0, 0), 1},
        {T(0, 0, 1, 0), 31},
        {T(0, 0, 1, 0, 25.0), 26},
        {T(1, 0, 0, 0), 108001},
        {T(0, 0, 1, 0, 29.97), 30},
        {T(23, 59, 59, 29), 2592000},
        {T(0, 1, 0, 0, 24.0), 1441},
        // 65535 hours at 30 frames is beyond 32 bits: the low 32 bits are kept.
        {T(65535, 59, 59, 29), static_cast<int32_t>(static_cast<uint32_t>(7077888000LL))},
    };
    // clang-format on
    for (const auto& c : counts) EXPECT_EQ(c.tc.GetTotalFrame(), c.count) << S(c.tc);
    // clang-format off
    const struct { int32_t total; frame_type_t type; const char* want; } cases[] = {
        {1, kFrameType30, "00:00:00:00@30"},
        {0, kFrameType30, "00:00:00:00@30"},
        {-5, kFrameType30, "00:00:00:00@30"},
        {31, kFrameType30, "00:00:01:00@30"},
        {26, kFrameType25, "00:00:01:00@25"},
        {108001, kFrameType30, "01:00:00:00@30"},
        {2592001, kFrameType30, "24:00:00:00@30"},
        // 16-bit total minutes: 65536 minutes start again from hour 0.
        {65536 * 60 * 30 + 1, kFrameType30, "00:00:00:00@30"},
        {65535 * 60 * 30 + 1, kFrameType30, "1092:15:00:00@30"},
    };
    // clang-format on
    for (const auto& c : cases) {
        CTimecode tc(5, 5, 5, 5, 24.0);
        tc.SetTotalFrame(c.total, c.type);
        EXPECT_EQ(S(tc), c.want) << c.total;
    }
    CTimecode keep(0, 0, 0, 0, 29.97);
    keep.SetTotalFrame(100, kFrameTypeKeep);
    EXPECT_EQ(keep.GetFrameRate(), 29.97);
    // Every count below the 16-bit minute limit survives the round trip.
    for (double rate : {24.0, 25.0, 30.0}) {
        CTimecode tc(0, 0, 0, 0, rate);
        for (int32_t n = 1; n < 65535 * 60 * 24; n += 997) {
            tc.SetTotalFrame(n, kFrameTypeKeep);
            ASSERT_EQ(tc.GetTotalFrame(), n) << rate;
        }
    }
}

TEST(CTimecode, ArithmeticWorksOnZeroBasedCountsAndStopsAtZero) {
    CTimecode zero;
    CTimecode a(0, 0, 10, 0, 30.0), b(0, 0, 20, 15, 30.0);
    CTimecode pal(0, 0, 1, 0, 25.0), odd(0, 0, 1, 0, 29.97);
    Recorder counter;
    a.AddResponder(&counter);
    b.AddResponder(&counter);
    // clang-format off
    const struct { const char* what; CTimecode result; const char* want; } cases[] = {
        {"a - a", a - a, "00:00:00:00@30"},
        {"a - b (earlier minus later)", a - b, "00:00:00:00@30"},
        {"0 + 0", zero + zero, "00:00:00:00@30"},
        {"a + b", a + b, "00:00:30:15@30"},
        {"b - a", b - a, "00:00:10:15@30"},
        {"23:59:59:29 + 1", CTimecode(23, 59, 59, 29, 30.0) + 1, "24:00:00:00@30"},
        {"a - 1", a - 1, "00:00:09:29@30"},
        {"a - 1000", a - 1000, "00:00:00:00@30"},
        {"a + -30", a + -30, "00:00:09:00@30"},
        {"pal + b (right counted at its own rate)", pal + b, "00:00:25:15@25"},
        // 29.97 counts 30 at its own rate; the result is relabelled at 30.0.
        {"29.97 + 0 comes back at 30", odd + zero, "00:00:00:29@30"},
    };
    // clang-format on
    for (const auto& c : cases) EXPECT_EQ(S(c.result), c.want) << c.what;
    EXPECT_EQ(counter.Count(), 0u) << "operands are neither changed nor notified";
    EXPECT_EQ(S(a) + " " + S(b), "00:00:10:00@30 00:00:20:15@30");
}

TEST(CTimecode, ComparisonsUseCountsEqualityUsesFields) {
    CTimecode pal(0, 0, 1, 0, 25.0), ntsc(0, 0, 1, 0, 30.0), palAsNtsc(0, 0, 0, 25, 30.0);
    EXPECT_TRUE(pal < ntsc && ntsc > pal);
    EXPECT_TRUE(pal <= palAsNtsc && pal >= palAsNtsc);
    EXPECT_FALSE(pal < palAsNtsc);
    EXPECT_FALSE(pal == palAsNtsc);
    EXPECT_TRUE(pal != palAsNtsc);
    EXPECT_TRUE(pal == CTimecode(0, 0, 1, 0, 25.0));
}

TEST(CTimecode, AssignmentNotifiesOnceWhenAnythingDiffers) {
    CTimecode target;
    Recorder counter;
    target.AddResponder(&counter);
    target = CTimecode();  // equal: nothing
    EXPECT_EQ(counter.Count(), 0u);
    target = CTimecode(1, 2, 3, 4, 25.0);
    EXPECT_EQ(counter.Count(), 1u);
    EXPECT_EQ(S(target), "01:02:03:04@25");
    // Assignment copies fields only, never listeners.
    CTimecode copy(target);
    EXPECT_TRUE(copy == target);
    copy.SetHour(9);
    EXPECT_EQ(counter.Count(), 1u);
}

TEST(CTimecode, PackedMillisecondAndSecondForms) {
    EXPECT_EQ(static_cast<double>(CTimecode()), 13000.0);
    EXPECT_EQ(static_cast<double>(CTimecode(0, 0, 1, 0, 25.0)), 262500.0);
    EXPECT_EQ(S(CTimecode(13000.0)), "00:00:00:00@30");
    for (double rate : {24.0, 25.0, 30.0}) {
        for (uint16_t h : {0, 1, 23, 99, 1000}) {
            CTimecode tc(h, 17, 42, 11, rate);
            EXPECT_TRUE(CTimecode(static_cast<double>(tc)) == tc) << rate << " " << h;
        }
    }
    // Other rates come back at 30.0: the count is set by frame type.
    CTimecode odd(0, 0, 1, 0, 29.97);
    CTimecode unpacked(static_cast<double>(odd));
    EXPECT_EQ(unpacked.GetFrameRate(), 30.0);
    EXPECT_EQ(unpacked.GetTotalFrame(), odd.GetTotalFrame());
    // Nonsense packed values are clamped, never undefined.
    for (double bad : {-1.0, std::nan(""), HUGE_VAL, -HUGE_VAL, 1e300}) {
        double rate = CTimecode(bad).GetFrameRate();
        EXPECT_TRUE(rate >= 24.0 && rate <= 1200.0) << bad;
    }

    // clang-format off
    const struct { CTimecode tc; uint32_t ms; } cases[] = {
        {CTimecode(), 0}, {T(0, 0, 1, 0, 25.0), 1000}, {T(0, 0, 0, 1, 25.0), 40}, {T(1, 0, 0, 0), 3600000}, {T(0, 0, 0, 1), 33}};
    // clang-format on
    for (const auto& c : cases) EXPECT_EQ(static_cast<uint32_t>(c.tc), c.ms) << S(c.tc);
    EXPECT_DOUBLE_EQ(CTimecode().GetTotalSecond(), 1.0 / 30.0);
    EXPECT_DOUBLE_EQ(T(0, 1, 0, 0).GetTotalMinute(), 1801.0 / 30.0 / 60.0);
}

TEST(CTimecode, SteppingCarriesByEqualityOnly) {
    // A step of 0 means DecreaseFrame.
    // clang-format off
    const struct { const char* what; CTimecode start; int32_t step; const char* want; } cases[] = {
        {"carry through every field", T(0, 59, 59, 29), 1, "01:00:00:00@30"},
        {"a jump over the limit carries nothing", T(0, 0, 0, 27), 5, "00:00:00:32@30"},
        {"PAL limit", T(0, 0, 0, 24, 25.0), 1, "00:00:01:00@25"},
        {"low 16 bits of the step", T(0, 0, 0, 1), 65536, "00:00:00:01@30"},
        {"borrow at 25", T(0, 1, 0, 0, 25.0), 0, "00:00:59:24@25"},
        {"borrow at 24", T(2, 0, 0, 0, 24.0), 0, "01:59:59:23@24"},
        {"below zero wraps the hour", CTimecode(), 0, "65535:59:59:29@30"},
        {"plain step back", T(0, 0, 0, 5), 0, "00:00:00:04@30"},
    };
    // clang-format on
    for (const auto& c : cases) {
        CTimecode tc(c.start);
        Recorder counter;
        tc.AddResponder(&counter);
        c.step == 0 ? tc.DecreaseFrame() : tc.IncreaseFrame(c.step);
        EXPECT_EQ(S(tc), c.want) << c.what;
        EXPECT_EQ(counter.Count(), 0u) << c.what;
    }
}

// A derived class that overrides a getter changes the computations, and its
// hooks run before the notification.
struct Shifted : CTimecode, LResponder {
    uint16_t GetHour() const override { return 1; }
    void TrickleDownFrameChange() override { order.push_back(1); }
    bool Respond(int32_t, LNotifier*, int32_t, intptr_t) override {
        order.push_back(2);
        return true;
    }
    std::vector<int> order;
};

TEST(CTimecode, ComputationsGoThroughVirtualGettersAndHooksPrecedeNotify) {
    Shifted tc;
    tc.AddResponder(&tc);
    EXPECT_EQ(tc.GetTotalFrame(), 108001);
    EXPECT_TRUE(tc.IsZero());  // IsZero reads the fields
    tc.SetFrame(3);
    EXPECT_EQ(tc.order, (std::vector<int>{1, 2}));
    EXPECT_FALSE(tc.SetHour(1));  // the getter already answers 1
}

}  // namespace
}  // namespace basicutils
