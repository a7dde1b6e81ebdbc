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

// Every walk, insertion, deletion and CopyTo, null elements and the empty
// list included, is held to a model of the elements and the cursor by the
// CVoidList fuzz replay; here, what it does not drive: CopyTo onto nothing
// or itself, and the copy constructor and assignment.
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
