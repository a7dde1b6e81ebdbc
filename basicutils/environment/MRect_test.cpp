// The rectangle's normalisation, its inclusive hit test and its edges.
#include <basicutils/environment/MRect.h>
#include <gtest/gtest.h>

namespace basicutils {
namespace {

TEST(MRect, SetTurnsNegativeSizesRoundButTheConstructorDoesNot) {
    struct Case {
        int x, y, w, h;
        MRect expected;
    };
    const Case cases[] = {
        {10, 10, -4, 3, MRect(6, 10, 4, 3)},
        {10, 10, 4, -3, MRect(10, 7, 4, 3)},
        {0, 0, -1, -1, MRect(-1, -1, 1, 1)},
        {2, 3, 0, 0, MRect(2, 3, 0, 0)},
    };
    for (const Case& c : cases) {
        MRect r;
        r.Set(c.x, c.y, c.w, c.h);
        EXPECT_EQ(r == c.expected, 1) << c.x << "," << c.y << "," << c.w << "," << c.h;
    }
    const MRect raw(10, 10, -4, 3);
    EXPECT_EQ(raw.GetX(), 10);
    EXPECT_EQ(raw.GetWidth(), -4);
}

TEST(MRect, HitTestReachesOnePastTheLastColumnAndRow) {
    struct Case {
        MRect r;
        int x, y, inside;
    };
    const Case cases[] = {
        {MRect(0, 0, 10, 10), 10, 10, 1},
        {MRect(0, 0, 10, 10), 11, 0, 0},
        {MRect(0, 0, 10, 10), 0, -1, 0},
        {MRect(), 0, 0, 1},
        {MRect(), 1, 0, 0},
        {MRect(5, 5, 2, 2), 4, 6, 0},
    };
    for (const Case& c : cases) EXPECT_EQ(c.r.IsPointed(c.x, c.y), c.inside) << c.x << "," << c.y;
    EXPECT_EQ(MRect(0, 0, 10, 10).GetRight(), 9);
    EXPECT_EQ(MRect().GetRight(), -1);
    EXPECT_EQ(MRect().GetBottom(), -1);
}

TEST(MRect, MoveIsAbsoluteAndComparisonSeesEveryField) {
    MRect r(1, 2, 3, 4);
    r.Move(5, 5);
    r.Move(5, 5);
    EXPECT_EQ(r == MRect(5, 5, 3, 4), 1);
    EXPECT_EQ(r != MRect(5, 5, 3, 5), 1);
    EXPECT_EQ(r != MRect(5, 6, 3, 4), 1);
    EXPECT_EQ(r != MRect(5, 5, 3, 4), 0);
}

}  // namespace
}  // namespace basicutils
