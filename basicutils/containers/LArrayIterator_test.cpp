#include <basicutils/containers/ArrayContents_test.h>
#include <basicutils/containers/LArray.h>
#include <basicutils/containers/LArrayIterator.h>
#include <basicutils/containers/LList.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace basicutils {
namespace {

using test::Insert;

std::unique_ptr<LArray> MakeArray(int32_t n) {
    auto array = std::make_unique<LArray>(4, nullptr, false);
    for (int32_t v = 1; v <= n; ++v) Insert(*array, v, kLastIndex);
    return array;
}

// One edit made mid-walk: remove `count` items at `index`, or insert 99 there
// when `count` is 0. kCur and kCur + 1 stand for the iterator's index and the
// one after it.
constexpr int32_t kCur = -100;
struct Edit {
    int32_t count, index;
};

void Apply(LArray& array, const LArrayIterator& it, const Edit& e) {
    const int32_t index =
        e.index >= kCur && e.index <= kCur + 1 ? it.GetCurrentIndex() + (e.index - kCur) : e.index;
    if (e.count == 0) {
        Insert(array, 99, index);
    } else {
        array.RemoveItemsAt(static_cast<uint32_t>(e.count), index);
    }
}

// A walk from position 0 over items 1..5 that edits the array when it
// reaches a given value; what it visits shows how the iterator followed.
TEST(LArrayIteratorWalk, EditsDuringAWalk) {
    // clang-format off
    const struct {
        const char* what;
        int32_t at;
        std::vector<Edit> edits;
        std::vector<int32_t> visited;
    } cases[] = {
        {"insert at the current index pushes it up, not visited", 2, {{0, kCur}}, {1, 2, 3, 4, 5}},
        {"insert just after the current index is visited next", 2, {{0, kCur + 1}}, {1, 2, 99, 3, 4, 5}},
        {"insert before the walk's position is not visited", 3, {{0, 1}}, {1, 2, 3, 4, 5}},
        {"append while on the last item is visited", 5, {{0, kLastIndex}}, {1, 2, 3, 4, 5, 99}},
        {"remove the current item: the walk goes on with the next", 2, {{1, kCur}}, {1, 2, 3, 4, 5}},
        {"remove a later item: it is not visited", 2, {{1, 4}}, {1, 2, 3, 5}},
        {"remove earlier items: the walk stays on its item", 4, {{2, 1}}, {1, 2, 3, 4, 5}},
        {"remove a range covering current and next", 2, {{2, 2}}, {1, 2, 4, 5}},
        {"remove current, then an earlier one: nothing is skipped", 3, {{1, kCur}, {1, 1}}, {1, 2, 3, 4, 5}},
        {"remove current, then the next one: the walk skips only that", 3, {{1, 3}, {1, 3}}, {1, 2, 3, 5}},
        {"remove current, then insert at the next index: not visited", 3, {{1, 3}, {0, 3}}, {1, 2, 3, 4, 5}},
        {"remove the last item while on it, then append: not visited", 5, {{1, 5}, {0, kLastIndex}}, {1, 2, 3, 4, 5}},
        {"remove the next item when it is the last: the walk ends", 4, {{1, 5}}, {1, 2, 3, 4}},
    };
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        auto array = MakeArray(5);
        LArrayIterator it(*array, 0);
        std::vector<int32_t> visited;
        int32_t v = 0;
        while (it.Next(&v)) {
            visited.push_back(v);
            if (v == c.at)
                for (const Edit& e : c.edits) Apply(*array, it, e);
        }
        EXPECT_EQ(visited, c.visited);
        // Past the end, or one above the count when the next index went stale.
        const int32_t end = it.GetCurrentIndex();
        EXPECT_TRUE(end == kIteratorPastEnd || end == static_cast<int32_t>(array->GetCount()) + 1);
    }
}

// Every transition of the iterator's state table, and where ResetTo (which
// the constructor calls) places it, one row each.
TEST(LArrayIteratorStates, TransitionTable) {
    enum Op { kNext, kPrevious, kCurrent };
    // clang-format off
    const struct {
        const char* what;
        int32_t items;
        int32_t resetTo;          // ResetTo first unless 0
        std::vector<Edit> edits;  // then these edits
        std::vector<Op> ops;      // the last one's answer is checked
        bool result;
        int32_t value;  // item fetched when result is true
        int32_t index;  // GetCurrentIndex afterwards
    } rows[] = {
        {"before first, Next", 3, 0, {}, {kNext}, true, 1, 1},
        {"before first, Next on empty", 0, 0, {}, {kNext}, false, 0, kIteratorPastEnd},
        {"on item, Next", 3, 2, {}, {kNext}, true, 3, 3},
        {"on last, Next", 3, 3, {}, {kNext}, false, 0, kIteratorPastEnd},
        {"on item, Previous", 3, 2, {}, {kPrevious}, true, 1, 1},
        {"on item 1, Previous", 3, 1, {}, {kPrevious}, false, 0, 0},
        {"before first, Previous", 3, 0, {}, {kPrevious}, false, 0, 0},
        {"past end, Next", 3, -1, {}, {kNext}, false, 0, kIteratorPastEnd},
        {"past end, Previous", 3, -1, {}, {kPrevious}, true, 3, 3},
        {"past end, Previous on empty", 0, -1, {}, {kPrevious}, false, 0, 0},
        {"item removed, Current", 4, 2, {{1, kCur}}, {kCurrent}, false, 0, kIteratorItemRemoved},
        {"item removed, Next", 4, 2, {{2, 2}}, {kNext}, true, 4, 2},
        {"item removed, Next with nothing after", 3, 2, {{2, 2}}, {kNext}, false, 0, kIteratorPastEnd},
        {"item removed, Previous", 4, 3, {{2, 2}}, {kPrevious}, true, 1, 1},
        {"item removed from item 1, Previous", 4, 1, {{2, 1}}, {kPrevious}, false, 0, 0},
        {"item removed with nothing after, Previous", 4, 4, {{2, 3}}, {kPrevious}, true, 2, 2},
        {"last removed while on it, append, Previous", 3, 3, {{1, 3}, {0, kLastIndex}}, {kPrevious}, true, 99, 3},
        {"stale next after the last was removed, Next", 3, 2, {{1, 3}}, {kNext}, false, 0, 3},
        {"stale next, Next then Previous returns to the last", 3, 2, {{1, 3}}, {kNext, kPrevious}, true, 2, 2},
        {"past end on empty sees no later insertion", 0, -1, {{0, 1}}, {kNext}, false, 0, kIteratorPastEnd},
        {"reset below 0", 3, -5, {}, {}, false, 0, 0},
        {"reset to the last", 3, 3, {}, {}, false, 0, 3},
        {"reset past the count", 3, 4, {}, {}, false, 0, kIteratorPastEnd},
        {"reset to kLastIndex", 3, kLastIndex, {}, {}, false, 0, kIteratorPastEnd},
    };
    // clang-format on
    for (const auto& r : rows) {
        SCOPED_TRACE(r.what);
        auto array = MakeArray(r.items);
        LArrayIterator it(*array, 0);
        if (r.resetTo != 0) it.ResetTo(r.resetTo);
        for (const Edit& e : r.edits) Apply(*array, it, e);
        bool got = false;
        int32_t v = 0;
        for (Op op : r.ops)
            got = op == kNext ? it.Next(&v) : op == kPrevious ? it.Previous(&v) : it.Current(&v);
        EXPECT_EQ(got, r.result);
        if (r.result) {
            EXPECT_EQ(v, r.value);
        }
        EXPECT_EQ(it.GetCurrentIndex(), r.index);
    }
}

TEST(LArrayIteratorLife, ArrayDestroyedDuringAWalk) {
    auto array = MakeArray(4);
    auto outer = std::make_unique<LArrayIterator>(*array, 0);
    LArrayIterator inner(*array, 3);
    std::vector<int32_t> visited;
    int32_t v = 0;
    while (outer->Next(&v)) {
        visited.push_back(v);
        if (v == 2) array.reset();
    }
    EXPECT_EQ(visited, (std::vector<int32_t>{1, 2}));
    for (LArrayIterator* it : {outer.get(), &inner}) {
        uint32_t size = 4;
        EXPECT_EQ(it->GetCurrentIndex(), kIteratorArrayDead);
        EXPECT_FALSE(it->Next(&v));
        EXPECT_FALSE(it->Previous(&v, size));
        EXPECT_FALSE(it->Current(&v, size));
        it->ResetTo(1);
        EXPECT_EQ(it->GetCurrentIndex(), kIteratorArrayDead);
    }
    outer.reset();  // must not touch the dead array (ASan would see it)
}

}  // namespace
}  // namespace basicutils
