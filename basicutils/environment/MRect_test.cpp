// The rectangle's normalisation and its inclusive hit test.
#include <basicutils/environment/MRect.h>
#include <gtest/gtest.h>

#include <tuple>

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
    MRect moved(1, 2, 3, 4);
    moved.Move(5, 5);
    moved.Move(5, 5);
    EXPECT_EQ(moved == MRect(5, 5, 3, 4), 1) << "Move is absolute";
}

TEST(MRect, HitTestReachesOnePastTheLastColumnAndRow) {
    const std::tuple<MRect, int, int, int> cases[] = {
        {{0, 0, 10, 10}, 10, 10, 1},
        {{0, 0, 10, 10}, 11, 0, 0},
        {{0, 0, 10, 10}, 0, -1, 0},
        {{}, 0, 0, 1},
        {{}, 1, 0, 0},
    };
    for (const auto& [r, x, y, inside] : cases)
        EXPECT_EQ(r.IsPointed(x, y), inside) << x << "," << y;
    EXPECT_EQ(MRect().GetBottom(), -1) << "the last row is inclusive";
}

}  // namespace
}  // namespace basicutils
