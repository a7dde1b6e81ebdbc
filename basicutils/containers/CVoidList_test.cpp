#include <basicutils/containers/CVoidList.h>
#include <gtest/gtest.h>

#include <vector>

namespace basicutils {
namespace {

int gItems[8];
void* P(int i) {
    return &gItems[i];
}

// Fills a list with elements 0..n-1; the cursor ends on the tail.
void Fill(CVoidList& list, int n) {
    for (int i = 0; i < n; ++i) ASSERT_EQ(list.AddList(P(i)), i + 1);
}

std::vector<void*> Walk(CVoidList& list) {
    std::vector<void*> out;
    for (void* e = list.GetHead(); e; e = list.GetNext()) out.push_back(e);
    return out;
}

TEST(CVoidList, NullIsRefusedAndEmptyListGivesNull) {
    CVoidList list;
    EXPECT_EQ(list.AddList(nullptr), 0);
    EXPECT_EQ(list.AddListToHead(nullptr), 0);
    EXPECT_EQ(list.AddListAfterCurrent(nullptr), 0);
    EXPECT_EQ(list.AddListBeforeCurrent(nullptr), 0);
    EXPECT_EQ(list.GetCount(), 0);
    for (void* e : {list.GetHead(), list.GetTail(), list.GetNext(), list.GetPrev(),
                    list.GetCurrent(), list.ViewHead(), list.ViewTail(), list.GetAt(1)})
        EXPECT_EQ(e, nullptr);
    EXPECT_EQ(list.DeleteList(), -1);
    EXPECT_EQ(list.DeleteList(P(0)), -1);
}

TEST(CVoidList, WalkOffTheTailEndsTheCursorButHeadStaysAtHead) {
    CVoidList list;
    Fill(list, 3);
    EXPECT_EQ(list.GetCurrent(), P(2));
    EXPECT_EQ(list.GetPosition(), 3);
    EXPECT_EQ(list.GetNext(), nullptr);
    EXPECT_EQ(list.GetCurrent(), nullptr);
    EXPECT_EQ(list.GetNext(), nullptr);
    EXPECT_EQ(list.AddListAfterCurrent(P(5)), -1);  // no cursor in a non-empty list
    EXPECT_EQ(list.AddListBeforeCurrent(P(5)), -1);
    EXPECT_EQ(list.GetHead(), P(0));
    EXPECT_EQ(list.GetPrev(), nullptr);
    EXPECT_EQ(list.GetCurrent(), P(0));
    EXPECT_EQ(list.GetPosition(), 1);
    EXPECT_EQ(list.GetNext(), P(1));
}

TEST(CVoidList, GetAtStepsFromTheCursorAndIgnoresBadPositions) {
    CVoidList list;
    Fill(list, 4);
    struct Step {
        int position;
        void* expected;
        int positionAfter;
    } steps[] = {{3, P(2), 3},    {2, P(1), 2}, {4, P(3), 4},    {0, nullptr, 4},
                 {5, nullptr, 4}, {1, P(0), 1}, {-1, nullptr, 1}};
    for (const Step& s : steps) {
        EXPECT_EQ(list.GetAt(s.position), s.expected) << s.position;
        EXPECT_EQ(list.GetPosition(), s.positionAfter) << s.position;
    }
    // From the "position cleared" state GetAt restarts at the head.
    list.GetTail();
    EXPECT_EQ(list.ViewNext(), nullptr);
    EXPECT_EQ(list.GetPosition(), 0);
    EXPECT_EQ(list.GetCurrent(), P(3));
    EXPECT_EQ(list.GetAt(2), P(1));
    EXPECT_EQ(list.GetPosition(), 2);
}

TEST(CVoidList, InsertionsAroundTheCursor) {
    CVoidList list;
    EXPECT_EQ(list.AddListBeforeCurrent(P(1)), 1);  // empty list: becomes the only node
    EXPECT_EQ(list.AddListAfterCurrent(P(3)), 2);
    EXPECT_EQ(list.AddListBeforeCurrent(P(2)), 2);
    EXPECT_EQ(list.GetCurrent(), P(2));
    EXPECT_EQ(list.AddListToHead(P(0)), 1);
    EXPECT_EQ(list.AddListToTail(P(4)), 5);
    EXPECT_EQ(Walk(list), (std::vector<void*>{P(0), P(1), P(2), P(3), P(4)}));
    EXPECT_EQ(list.ViewTail(), P(4));
    list.GetHead();
    EXPECT_EQ(list.AddListBeforeCurrent(P(5)), 1);
    EXPECT_EQ(list.ViewHead(), P(5));
    list.GetTail();
    EXPECT_EQ(list.AddListAfterCurrent(P(6)), 7);
    EXPECT_EQ(list.ViewTail(), P(6));
    EXPECT_EQ(list.ViewPrev(), P(4));
}

TEST(CVoidList, ElementFormsMeanTheFirstOccurrence) {
    CVoidList list;
    for (int i : {0, 1, 0, 2}) list.AddList(P(i));
    EXPECT_EQ(list.GetPosition(P(0)), 1);
    EXPECT_EQ(list.GetCurrent(), P(0));  // the query moves the cursor with it
    EXPECT_EQ(list.GetPosition(P(2)), 4);
    EXPECT_EQ(list.GetPosition(P(7)), 0);
    EXPECT_EQ(list.GetCurrent(), P(2));  // not found: cursor unchanged
    EXPECT_EQ(list.GetPosition(), 4);
    EXPECT_EQ(list.ViewNext(P(0)), P(1));
    EXPECT_EQ(list.ViewPrev(P(0)), nullptr);
    EXPECT_EQ(list.GetNext(P(0)), P(1));
    EXPECT_EQ(list.GetPosition(), 2);
    EXPECT_EQ(list.GetPrev(P(2)), P(0));
    EXPECT_EQ(list.GetPosition(), 3);
    EXPECT_EQ(list.DeleteList(P(0)), 3);
    EXPECT_EQ(Walk(list), (std::vector<void*>{P(1), P(0), P(2)}));
}

TEST(CVoidList, ElementFormsAtTheEnds) {
    CVoidList list;
    Fill(list, 3);
    list.GetAt(2);
    EXPECT_EQ(list.GetPrev(P(0)), nullptr);  // head: cursor goes to the head
    EXPECT_EQ(list.GetCurrent(), P(0));
    EXPECT_EQ(list.GetPosition(), 1);
    EXPECT_EQ(list.GetPrev(P(7)), nullptr);  // unknown: position cleared, node kept
    EXPECT_EQ(list.GetCurrent(), P(0));
    EXPECT_EQ(list.GetPosition(), 0);
    EXPECT_EQ(list.GetNext(P(2)), nullptr);  // tail: cursor gone
    EXPECT_EQ(list.GetCurrent(), nullptr);
    EXPECT_EQ(list.ViewNext(P(2)), nullptr);
}

TEST(CVoidList, DeletionEndsTheWalk) {
    CVoidList list;
    Fill(list, 3);
    list.GetAt(2);
    EXPECT_EQ(list.DeleteList(), 2);
    EXPECT_EQ(list.GetNext(), nullptr);
    EXPECT_EQ(Walk(list), (std::vector<void*>{P(0), P(2)}));
    CVoidList one;
    one.AddList(P(0));
    EXPECT_EQ(one.DeleteList(), 0);
    EXPECT_EQ(one.ViewHead(), nullptr);
    EXPECT_EQ(one.ViewTail(), nullptr);
    EXPECT_EQ(one.AddList(P(1)), 1);  // usable again
}

TEST(CVoidList, CopyToReplacesTargetAndSharesElements) {
    CVoidList source, target;
    Fill(source, 3);
    target.AddList(P(7));
    EXPECT_EQ(source.CopyTo(&target), 0);
    EXPECT_EQ(source.GetCurrent(), nullptr);
    EXPECT_EQ(target.GetCurrent(), P(2));
    EXPECT_EQ(Walk(target), Walk(source));
    EXPECT_EQ(source.CopyTo(nullptr), -1);
    EXPECT_EQ(source.CopyTo(&source), 0);
    EXPECT_EQ(source.GetCount(), 3);
}

TEST(CVoidList, CopyOwnsNewNodesAndKeepsTheCursor) {
    CVoidList source;
    Fill(source, 3);
    source.GetAt(2);
    CVoidList copy(source);
    EXPECT_EQ(copy.GetCurrent(), P(1));
    EXPECT_EQ(copy.GetPosition(), 2);
    copy.DeleteList();
    EXPECT_EQ(source.GetCount(), 3);
    EXPECT_EQ(source.GetCurrent(), P(1));
    source = copy;
    EXPECT_EQ(Walk(source), (std::vector<void*>{P(0), P(2)}));
    EXPECT_EQ(copy.GetCount(), 2);
}

}  // namespace
}  // namespace basicutils
