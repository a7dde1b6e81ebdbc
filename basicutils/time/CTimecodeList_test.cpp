#include <basicutils/time/CTimecodeList.h>
#include <gtest/gtest.h>

#include <string>

#include "TimeTest_test.h"

namespace basicutils {
namespace {

using timetest::S;
using timetest::T;

TEST(CTimecodeList, OwnsCopiesAndWalksByItsCursor) {
    CTimecodeList list;
    CTimecode value = T(0, 0, 1, 0);
    list.Add(value);
    list.Add(T(0, 0, 2, 0));
    value.SetSecond(9);  // the list kept its own copy
    EXPECT_EQ(list.GetSize(), 2);
    EXPECT_EQ(S(list.GetHead()), "00:00:01:00@30");
    EXPECT_EQ(S(list.GetNext()), "00:00:02:00@30");
    EXPECT_EQ(list.GetNext(), nullptr);
    EXPECT_EQ(list.GetNext(), nullptr);
    EXPECT_EQ(S(list.GetTail()), "00:00:02:00@30");

    CTimecodeList other;
    other.Add(T(5, 0, 0, 0));
    other = list;
    EXPECT_EQ(list.GetNext(), nullptr);  // reading the source moved its cursor past the tail
    other.GetHead()->SetFrame(7);
    EXPECT_EQ(S(list.GetHead()), "00:00:01:00@30");
    EXPECT_EQ(S(other.GetHead()), "00:00:01:07@30");
    EXPECT_EQ(other.GetSize(), 2);
    CTimecodeList& alias = other;
    other = alias;  // self-assignment keeps the content
    EXPECT_EQ(other.GetSize(), 2);

    list.DeleteAll();
    EXPECT_EQ(list.GetSize(), 0);
    EXPECT_EQ(list.GetHead(), nullptr);
    list.Add(T(0, 0, 0, 1));
    EXPECT_EQ(list.GetSize(), 1);
}

// The list mechanics are one template for both lists; here, each Change2PAL.
TEST(CTimecodeList, Change2PALKeepsTheFigures) {
    CTimecodeList list;
    list.Change2PAL();  // empty: nothing to do
    list.Add(T(0, 0, 10, 29));
    list.Add(T(0, 0, 10, 12));
    list.Change2PAL();
    EXPECT_EQ(S(list.GetHead()), "00:00:10:24@25");
    EXPECT_EQ(S(list.GetNext()), "00:00:10:12@25");
}

TEST(CDurationList, Change2PALKeepsFiguresAndDropType) {
    CDuration d, clipped;
    d.SetStartTime(T(0, 0, 10, 0));
    d.SetDuration(T(0, 0, 5, 10));
    d.SetDropType(kDrop);
    clipped.SetStartTime(T(0, 0, 1, 28));
    clipped.SetDuration(T(0, 0, 0, 27));
    CDurationList list;
    list.Add(d);
    list.Add(clipped);
    list.Change2PAL();
    CDuration* first = list.GetHead();
    EXPECT_EQ(first->GetResolution(), kResolutionPAL);
    EXPECT_EQ(first->GetDropType(), kDrop);
    EXPECT_EQ(S(first->GetEndTime()), "00:00:15:09@25");
    EXPECT_EQ(first->GetTotalFrame(), 135);
    CDuration* second = list.GetNext();
    EXPECT_EQ(S(second->GetStartTime()) + " " + S(second->GetDuration()),
              "00:00:01:24@25 00:00:00:24@25");
}

}  // namespace
}  // namespace basicutils
