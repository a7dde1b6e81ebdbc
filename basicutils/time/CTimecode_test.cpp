// CTimecode: validation and notification of every setter, frame counting,
// the arithmetic's bounds, the packed and millisecond forms, and stepping.
#include <basicutils/time/CTimecode.h>

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

namespace basicutils {
namespace {

// Counts the change notifications of the timecodes it listens to.
struct Counter : LResponder {
    bool Respond(int32_t message, LNotifier*, int32_t, intptr_t) override {
        codes.push_back(message);
        return true;
    }
    size_t Count() const { return codes.size(); }
    std::vector<int32_t> codes;
};

struct Fields {
    uint16_t h, m, s, f;
};

void ExpectFields(const CTimecode& tc, Fields want) {
    EXPECT_EQ(tc.GetHour(), want.h);
    EXPECT_EQ(tc.GetMinute(), want.m);
    EXPECT_EQ(tc.GetSecond(), want.s);
    EXPECT_EQ(tc.GetFrame(), want.f);
}

TEST(CTimecode, DefaultIsZeroAtThirty) {
    CTimecode tc;
    ExpectFields(tc, {0, 0, 0, 0});
    EXPECT_EQ(tc.GetFrameRate(), 30.0);
    EXPECT_EQ(tc.GetTotalFrame(), 1);
    EXPECT_TRUE(tc.IsZero());
}

enum class Field { Hour, Minute, Second, Frame };

struct SetterCase {
    double rate;
    Field field;
    uint16_t before;  // value the field holds first (set silently)
    uint16_t input;
    uint16_t stored;
    bool changed;
};

TEST(CTimecode, SettersClampAndNotifyOnlyOnChange) {
    const SetterCase cases[] = {
        {30.0, Field::Hour, 0, 65535, 65535, true},
        {30.0, Field::Minute, 0, 75, 59, true},
        {30.0, Field::Minute, 59, 75, 59, false},  // clamps to what it holds
        {30.0, Field::Second, 0, 60, 59, true},
        {30.0, Field::Second, 12, 12, 12, false},
        {30.0, Field::Frame, 0, 30, 29, true},
        {25.0, Field::Frame, 0, 30, 24, true},
        {24.0, Field::Frame, 0, 23, 23, true},
        {29.97, Field::Frame, 0, 29, 29, true},
        {29.97, Field::Frame, 0, 30, 28, true},
        {1200.0, Field::Frame, 0, 1199, 1199, true},
        {1200.0, Field::Frame, 0, 65535, 1199, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "rate " << c.rate << " field " << int(c.field)
                                        << " input " << c.input);
        CTimecode tc(0, 0, 0, 0, c.rate);
        Counter counter;
        bool changed = false;
        uint16_t got = 0;
        switch (c.field) {
            case Field::Hour:
                tc.SetHour(c.before);
                tc.AddResponder(&counter);
                changed = tc.SetHour(c.input);
                got = tc.GetHour();
                break;
            case Field::Minute:
                tc.SetMinute(c.before);
                tc.AddResponder(&counter);
                changed = tc.SetMinute(c.input);
                got = tc.GetMinute();
                break;
            case Field::Second:
                tc.SetSecond(c.before);
                tc.AddResponder(&counter);
                changed = tc.SetSecond(c.input);
                got = tc.GetSecond();
                break;
            case Field::Frame:
                tc.SetFrame(c.before);
                tc.AddResponder(&counter);
                changed = tc.SetFrame(c.input);
                got = tc.GetFrame();
                break;
        }
        EXPECT_EQ(got, c.stored);
        EXPECT_EQ(changed, c.changed);
        EXPECT_EQ(counter.Count(), c.changed ? 1u : 0u);
        for (int32_t code : counter.codes) EXPECT_EQ(code, kNotifyTimecodeChanged);
    }
}

TEST(CTimecode, FrameRateIsClampedToItsRange) {
    const struct {
        double input, stored;
    } cases[] = {{10.0, 24.0}, {2000.0, 1200.0}, {24.0, 24.0}, {29.97, 29.97},
                 {-1.0, 24.0}, {std::nan(""), 24.0},      {1200.0, 1200.0}};
    for (const auto& c : cases) {
        CTimecode tc;
        tc.SetFrameRate(c.input);
        EXPECT_EQ(tc.GetFrameRate(), c.stored) << c.input;
    }
    CTimecode tc(0, 0, 0, 0, 24.0);
    Counter counter;
    tc.AddResponder(&counter);
    EXPECT_FALSE(tc.SetFrameRate(24.0));
    EXPECT_FALSE(tc.SetFrameRate(3.0));  // clamps to the 24.0 it holds
    EXPECT_EQ(counter.Count(), 0u);
}

TEST(CTimecode, FrameTypeIsDerivedFromTheRate) {
    const struct {
        frame_type_t set;
        double rate;
    } sets[] = {{kFrameType24, 24.0}, {kFrameType25, 25.0}, {kFrameTypeUnused, 30.0},
                {kFrameType30, 30.0}, {kFrameTypeKeep, 30.0}};
    for (const auto& s : sets) {
        CTimecode tc(0, 0, 0, 0, 1000.0);
        tc.SetFrameType(s.set);
        EXPECT_EQ(tc.GetFrameRate(), s.rate);
    }
    const struct {
        double rate;
        frame_type_t type;
    } gets[] = {{24.0, kFrameType24}, {25.0, kFrameType25}, {30.0, kFrameType30},
                {29.97, kFrameType30}, {24.5, kFrameType30}, {1200.0, kFrameType30}};
    for (const auto& g : gets) EXPECT_EQ(CTimecode(0, 0, 0, 0, g.rate).GetFrameType(), g.type);
}

TEST(CTimecode, SetTimeCallsEverySetterAndNotifiesPerChange) {
    CTimecode tc;
    Counter counter;
    tc.AddResponder(&counter);
    EXPECT_TRUE(tc.SetTime(1, 2, 3, 4));
    EXPECT_EQ(counter.Count(), 4u);
    EXPECT_TRUE(tc.SetTime(1, 2, 3, 5));
    EXPECT_EQ(counter.Count(), 5u);
    EXPECT_FALSE(tc.SetTime(1, 2, 3, 5));
    EXPECT_EQ(counter.Count(), 5u);

    // The rate comes first, so the frame is validated against it.
    EXPECT_TRUE(tc.SetTime(0, 0, 0, 29, 25.0));
    ExpectFields(tc, {0, 0, 0, 24});
    EXPECT_TRUE(tc.SetTime(0, 0, 0, 29, kFrameType30));
    ExpectFields(tc, {0, 0, 0, 29});
    // Only the rate changes: still true.
    EXPECT_TRUE(tc.SetTime(0, 0, 0, 29, 1000.0));
}

TEST(CTimecode, ChangingTheRateKeepsTheFrame) {
    CTimecode tc(0, 0, 0, 29, 30.0);
    tc.SetFrameType(kFrameType25);
    EXPECT_EQ(tc.GetFrame(), 29);
    EXPECT_EQ(tc.GetTotalFrame(), 30);
}

TEST(CTimecode, TypedConstructorSetsTheRateFirst) {
    CTimecode tc(1, 75, 60, 29, kFrameType25);
    ExpectFields(tc, {1, 59, 59, 24});
    EXPECT_EQ(tc.GetFrameRate(), 25.0);
}

struct CountCase {
    Fields f;
    double rate;
    int32_t count;
};

TEST(CTimecode, TotalFrameIsOneBased) {
    const CountCase cases[] = {
        {{0, 0, 0, 0}, 30.0, 1},        {{0, 0, 1, 0}, 30.0, 31},
        {{0, 0, 1, 0}, 25.0, 26},       {{1, 0, 0, 0}, 30.0, 108001},
        {{0, 0, 1, 0}, 29.97, 30},      {{23, 59, 59, 29}, 30.0, 2592000},
        {{0, 1, 0, 0}, 24.0, 1441},
    };
    for (const auto& c : cases) {
        CTimecode tc(c.f.h, c.f.m, c.f.s, c.f.f, c.rate);
        EXPECT_EQ(tc.GetTotalFrame(), c.count) << c.f.h << ":" << c.f.m << ":" << c.f.s;
    }
    // 65535 hours at 30 frames is beyond 32 bits: the low 32 bits are kept.
    CTimecode big(65535, 59, 59, 29, 30.0);
    EXPECT_EQ(big.GetTotalFrame(), static_cast<int32_t>(static_cast<uint32_t>(7077888000LL)));
}

TEST(CTimecode, SetTotalFrameInvertsGetTotalFrame) {
    const struct {
        int32_t total;
        frame_type_t type;
        Fields want;
        double rate;
    } cases[] = {
        {1, kFrameType30, {0, 0, 0, 0}, 30.0},
        {0, kFrameType30, {0, 0, 0, 0}, 30.0},
        {-5, kFrameType30, {0, 0, 0, 0}, 30.0},
        {31, kFrameType30, {0, 0, 1, 0}, 30.0},
        {26, kFrameType25, {0, 0, 1, 0}, 25.0},
        {108001, kFrameType30, {1, 0, 0, 0}, 30.0},
        {2592001, kFrameType30, {24, 0, 0, 0}, 30.0},
        // 16-bit total minutes: 65536 minutes start again from hour 0.
        {65536 * 60 * 30 + 1, kFrameType30, {0, 0, 0, 0}, 30.0},
        {65535 * 60 * 30 + 1, kFrameType30, {1092, 15, 0, 0}, 30.0},
    };
    for (const auto& c : cases) {
        CTimecode tc(5, 5, 5, 5, 24.0);
        tc.SetTotalFrame(c.total, c.type);
        ExpectFields(tc, c.want);
        EXPECT_EQ(tc.GetFrameRate(), c.rate);
    }
    // Every count below the 16-bit minute limit survives the round trip.
    for (double rate : {24.0, 25.0, 30.0}) {
        CTimecode tc(0, 0, 0, 0, rate);
        for (int32_t n = 1; n < 65535 * 60 * 24; n += 997) {
            tc.SetTotalFrame(n, kFrameTypeKeep);
            ASSERT_EQ(tc.GetTotalFrame(), n) << rate;
        }
    }
    CTimecode keep(0, 0, 0, 0, 29.97);
    keep.SetTotalFrame(100, kFrameTypeKeep);
    EXPECT_EQ(keep.GetFrameRate(), 29.97);
}

struct ArithmeticCase {
    const char* what;
    CTimecode result;
    Fields want;
    double rate;
};

TEST(CTimecode, ArithmeticWorksOnZeroBasedCountsAndStopsAtZero) {
    CTimecode zero;
    CTimecode a(0, 0, 10, 0, 30.0), b(0, 0, 20, 15, 30.0);
    CTimecode pal(0, 0, 1, 0, 25.0), odd(0, 0, 1, 0, 29.97);
    const ArithmeticCase cases[] = {
        {"a - a", a - a, {0, 0, 0, 0}, 30.0},
        {"a - b (earlier minus later)", a - b, {0, 0, 0, 0}, 30.0},
        {"0 + 0", zero + zero, {0, 0, 0, 0}, 30.0},
        {"a + b", a + b, {0, 0, 30, 15}, 30.0},
        {"b - a", b - a, {0, 0, 10, 15}, 30.0},
        {"23:59:59:29 + 1", CTimecode(23, 59, 59, 29, 30.0) + 1, {24, 0, 0, 0}, 30.0},
        {"a - 1", a - 1, {0, 0, 9, 29}, 30.0},
        {"a - 1000", a - 1000, {0, 0, 0, 0}, 30.0},
        {"a + -30", a + -30, {0, 0, 9, 0}, 30.0},
        {"pal + b (right counted at its own rate)", pal + b, {0, 0, 25, 15}, 25.0},
        // 29.97 counts 30 at its own rate; the result is relabelled at 30.0.
        {"29.97 + 0 comes back at 30", odd + zero, {0, 0, 0, 29}, 30.0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        ExpectFields(c.result, c.want);
        EXPECT_EQ(c.result.GetFrameRate(), c.rate);
    }
}

TEST(CTimecode, OperandsAreNeitherChangedNorNotified) {
    CTimecode a(0, 0, 10, 0, 30.0), b(0, 0, 1, 0, 30.0);
    Counter counter;
    a.AddResponder(&counter);
    b.AddResponder(&counter);
    CTimecode sum = a + b;
    CTimecode difference = a - b;
    EXPECT_EQ(counter.Count(), 0u);
    ExpectFields(a, {0, 0, 10, 0});
    ExpectFields(b, {0, 0, 1, 0});
}

TEST(CTimecode, ComparisonsUseCountsEqualityUsesFields) {
    CTimecode pal(0, 0, 1, 0, 25.0), ntsc(0, 0, 1, 0, 30.0), palAsNtsc(0, 0, 0, 25, 30.0);
    EXPECT_TRUE(pal < ntsc);
    EXPECT_TRUE(ntsc > pal);
    EXPECT_TRUE(pal <= palAsNtsc);
    EXPECT_TRUE(pal >= palAsNtsc);
    EXPECT_FALSE(pal < palAsNtsc);
    EXPECT_FALSE(pal == palAsNtsc);
    EXPECT_TRUE(pal != palAsNtsc);
    CTimecode same(0, 0, 1, 0, 25.0);
    EXPECT_TRUE(pal == same);
}

TEST(CTimecode, AssignmentNotifiesOnceWhenAnythingDiffers) {
    CTimecode target;
    Counter counter;
    target.AddResponder(&counter);
    target = CTimecode();  // equal: nothing
    EXPECT_EQ(counter.Count(), 0u);
    target = CTimecode(1, 2, 3, 4, 25.0);
    EXPECT_EQ(counter.Count(), 1u);
    ExpectFields(target, {1, 2, 3, 4});
    EXPECT_EQ(target.GetFrameRate(), 25.0);

    // Assignment copies fields only, never listeners.
    CTimecode copy(target);
    EXPECT_TRUE(copy == target);
    copy.SetHour(9);
    EXPECT_EQ(counter.Count(), 1u);
}

TEST(CTimecode, PackedFormRoundTrips) {
    EXPECT_EQ(static_cast<double>(CTimecode()), 13000.0);
    EXPECT_EQ(static_cast<double>(CTimecode(0, 0, 1, 0, 25.0)), 262500.0);
    CTimecode back(13000.0);
    ExpectFields(back, {0, 0, 0, 0});
    EXPECT_EQ(back.GetFrameRate(), 30.0);

    for (double rate : {24.0, 25.0, 30.0}) {
        for (uint16_t h : {0, 1, 23, 99, 1000}) {
            CTimecode tc(h, 17, 42, 11, rate);
            CTimecode copy(static_cast<double>(tc));
            EXPECT_TRUE(copy == tc) << rate << " " << h;
        }
    }
    // Other rates come back at 30.0: the count is set by frame type.
    CTimecode odd(0, 0, 1, 0, 29.97);
    CTimecode unpacked(static_cast<double>(odd));
    EXPECT_EQ(unpacked.GetFrameRate(), 30.0);
    EXPECT_EQ(unpacked.GetTotalFrame(), odd.GetTotalFrame());

    // Nonsense packed values are clamped, never undefined.
    const double kBad[] = {-1.0, std::nan(""), HUGE_VAL, -HUGE_VAL, 1e300};
    for (double bad : kBad) {
        CTimecode tc(bad);
        EXPECT_GE(tc.GetFrameRate(), 24.0);
        EXPECT_LE(tc.GetFrameRate(), 1200.0);
    }
}

TEST(CTimecode, MillisecondsAndSeconds) {
    const struct {
        CTimecode tc;
        uint32_t ms;
    } cases[] = {
        {CTimecode(), 0},
        {CTimecode(0, 0, 1, 0, 25.0), 1000},
        {CTimecode(0, 0, 0, 1, 25.0), 40},
        {CTimecode(1, 0, 0, 0, 30.0), 3600000},
        {CTimecode(0, 0, 0, 1, 30.0), 33},
    };
    for (const auto& c : cases) EXPECT_EQ(static_cast<uint32_t>(c.tc), c.ms);
    CTimecode zero;
    EXPECT_DOUBLE_EQ(zero.GetTotalSecond(), 1.0 / 30.0);
    EXPECT_DOUBLE_EQ(CTimecode(0, 1, 0, 0, 30.0).GetTotalMinute(), 1801.0 / 30.0 / 60.0);
}

TEST(CTimecode, SteppingCarriesByEqualityOnly) {
    const struct {
        const char* what;
        CTimecode start;
        int32_t step;  // 0 means DecreaseFrame
        Fields want;
    } cases[] = {
        {"carry through every field", CTimecode(0, 59, 59, 29, 30.0), 1, {1, 0, 0, 0}},
        {"a jump over the limit carries nothing", CTimecode(0, 0, 0, 27, 30.0), 5,
         {0, 0, 0, 32}},
        {"PAL limit", CTimecode(0, 0, 0, 24, 25.0), 1, {0, 0, 1, 0}},
        {"low 16 bits of the step", CTimecode(0, 0, 0, 1, 30.0), 65536, {0, 0, 0, 1}},
        {"borrow at 25", CTimecode(0, 1, 0, 0, 25.0), 0, {0, 0, 59, 24}},
        {"borrow at 24", CTimecode(2, 0, 0, 0, 24.0), 0, {1, 59, 59, 23}},
        {"below zero wraps the hour", CTimecode(), 0, {65535, 59, 59, 29}},
        {"plain step back", CTimecode(0, 0, 0, 5, 30.0), 0, {0, 0, 0, 4}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        CTimecode tc(c.start);
        Counter counter;
        tc.AddResponder(&counter);
        if (c.step == 0)
            tc.DecreaseFrame();
        else
            tc.IncreaseFrame(c.step);
        ExpectFields(tc, c.want);
        EXPECT_EQ(counter.Count(), 0u);
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
