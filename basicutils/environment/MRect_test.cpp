// The rectangle's normalisation and its inclusive hit test.
#include <basicutils/environment/MRect.h>
#include <gtest/gtest.h>

namespace basicutils {
namespace {

TEST(MRect, SetTurnsNegativeSizesRoundButTheConstructorDoesNot) {
    const std::pair<MRect, MRect> cases[] = {
        {{10, 10, -4, 3}, {6, 10, 4, 3}},
        {{10, 10, 4, -3}, {10, 7, 4, 3}},
        {{0, 0, -1, -1}, {-1, -1, 1, 1}},
    };
    for (const auto& [given, expected] : cases) {
        MRect r;
        r.Set(given.GetX(), given.GetY(), given.GetWidth(), given.GetHeight());
        EXPECT_EQ(r == expected, 1) << given.GetWidth() << "," << given.GetHeight();
        EXPECT_EQ(given != expected, 1);
    }
}

TEST(MRect, HitTestReachesOnePastTheLastColumnAndRow) {
    struct Case {
        MRect r;
        int x, y, inside;
    };
    const Case cases[] = {
        {{0, 0, 10, 10}, 10, 10, 1},
        {{0, 0, 10, 10}, 11, 0, 0},
        {{0, 0, 10, 10}, 0, -1, 0},
        {{}, 0, 0, 1},
        {{}, 1, 0, 0},
    };
    for (const Case& c : cases) EXPECT_EQ(c.r.IsPointed(c.x, c.y), c.inside) << c.x << "," << c.y;
    EXPECT_EQ(MRect(0, 0, 10, 10).GetRight(), 9);
    EXPECT_EQ(MRect().GetBottom(), -1);
    MRect moved(1, 2, 3, 4);
    moved.Move(5, 5);
    moved.Move(5, 5);
    EXPECT_EQ(moved == MRect(5, 5, 3, 4), 1) << "Move is absolute";
}

}  // namespace
}  // namespace basicutils
