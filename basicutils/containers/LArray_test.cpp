#include <basicutils/containers/ArrayContents_test.h>
#include <basicutils/containers/Handle.h>
#include <basicutils/containers/LArray.h>
#include <basicutils/containers/LList.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <utility>
#include <vector>

namespace basicutils {
namespace {

// Reads the protected state the tests check.
class ArrayProbe : public LArray {
  public:
    using LArray::LArray;
    uint32_t Allocated() const { return mAllocatedBytes; }
    uint32_t ItemsBytes() const { return mItemsBytes; }
    const Handle* Items() const { return mItems; }
    const LComparator* Comparator() const { return mComparator; }
    bool OwnsComparator() const { return mOwnsComparator; }
};

using test::Contents;
using test::Fill;

// The growth rule: one spare item beyond each growth, slack kept on removal.
TEST(LArrayAllocation, FollowsTheOneSpareItemGrowthRule) {
    ArrayProbe array(4, nullptr, false);
    EXPECT_EQ(array.Items(), nullptr);
    const uint32_t expected[] = {8, 8, 16, 16, 24, 24};
    for (uint32_t want : expected) {
        int32_t v = 7;
        array.InsertItemsAt(1, kLastIndex, &v, 0);
        EXPECT_EQ(array.Allocated(), want) << "after " << array.GetCount() << " items";
        EXPECT_EQ(array.ItemsBytes(), 4 * array.GetCount());
    }
    EXPECT_EQ(Handle::GetAllocSize(array.Allocated()), 256u);
    array.RemoveItemsAt(2, 1);  // slack of 0 stays 0: 24 - 8
    EXPECT_EQ(array.Allocated(), 16u);
    array.RemoveItemsAt(kLastIndex, 1);
    EXPECT_EQ(array.GetCount(), 0u);
    EXPECT_NE(array.Items(), nullptr);
    EXPECT_EQ(array.Allocated(), 0u);

    ArrayProbe big(1000, nullptr, false);
    std::vector<char> item(1000, 'x');
    big.InsertItemsAt(3, kLastIndex, item.data(), 0);
    EXPECT_EQ(big.Allocated(), 4000u);
    big.InsertItemsAt(1, kLastIndex, item.data(), 0);
    EXPECT_EQ(big.Allocated(), 4000u);
    big.RemoveItemsAt(1, 2);  // slack 0 kept
    EXPECT_EQ(big.Allocated(), 3000u);
    EXPECT_EQ(big.GetItemsHandle()->GetSize(), 3000u);
}

// Insertion (of an item of the array itself too), removal, swap and move at
// any index (0, negative, past the end, kLastIndex), fetches of a given size
// and keep-sorted refusals are held to a model by the LArray fuzz replay;
// here, locking, the 32-bit bound and assignment past the end.
TEST(LArrayEditing, RefusedAndBoundedEdits) {
    LArray array(4, nullptr, false);
    int32_t v = 5;
    EXPECT_EQ(array.InsertItemsAt(0, 1, &v, 0), 0);
    EXPECT_TRUE(array.IsSorted());  // a refused insertion changes nothing
    int32_t last = kLastIndex;
    EXPECT_FALSE(array.ValidIndex(last));
    EXPECT_EQ(last, 0);
    array.RemoveItemsAt(1, kLastIndex);  // empty: nothing
    Fill(array, {1, 2, 3, 4});
    EXPECT_FALSE(array.IsSorted());

    array.Lock();
    EXPECT_EQ(array.InsertItemsAt(1, 1, &v, 0), 0);
    array.RemoveItemsAt(1, 1);
    array.AssignItemsAt(1, 1, &v, 0);  // overwriting is still allowed
    array.Unlock();
    EXPECT_EQ(Contents(array), (std::vector<int32_t>{5, 2, 3, 4}));

    array.AssignItemsAt(5, 3, &v, 0);
    EXPECT_EQ(Contents(array), (std::vector<int32_t>{5, 2, 5, 5}));
    EXPECT_EQ(array.InsertItemsAt(0xFFFFFFFFu, 1, &v, 0), 0);  // would not fit 32 bits
    EXPECT_EQ(array.GetCount(), 4u);
}

// A comparator that orders 4-byte items by their value and keys by an
// int32_t key, counting its deletions.
class IntKeyComparator : public LLongComparator {
  public:
    explicit IntKeyComparator(int* deleted = nullptr) : mDeleted(deleted) {}
    ~IntKeyComparator() override {
        if (mDeleted) ++*mDeleted;
    }
    int32_t CompareToKey(const void* item, uint32_t, const void* key) const override {
        return Compare(item, key, 4, 4);
    }

  private:
    int* mDeleted;
};

// Keep-sorted insertion (its index, among equal items) is held to a model
// by the LArray fuzz replay; here, assignment and a cleared sorted flag.
TEST(LArraySorted, KeepSortedAssignAndInvalidatedSort) {
    LArray array(4, nullptr, true);
    Fill(array, {10, 20, 30});
    int32_t forty = 40;
    array.AssignItemsAt(1, 1, &forty, 0);
    EXPECT_EQ(Contents(array), (std::vector<int32_t>{20, 30, 40}));
    int32_t one = 1;
    array.AssignItemsAt(5, 2, &one, 0);  // past the end: the array grows
    EXPECT_EQ(Contents(array), (std::vector<int32_t>{1, 1, 1, 1, 1, 20}));

    // Sorted flag cleared while kept sorted: the insertion sorts first.
    LArray lax(4, nullptr, true);
    Fill(lax, {10, 20, 30});
    lax.InvalidateSort();
    int32_t fifteen = 15;
    EXPECT_EQ(lax.InsertItemsAt(1, kLastIndex, &fifteen, 0), 2);
    EXPECT_EQ(Contents(lax), (std::vector<int32_t>{10, 15, 20, 30}));
}

TEST(LArraySorted, SearchesAndInsertIndex) {
    LArray array(4, nullptr, false);
    int32_t v = 20;
    EXPECT_EQ(array.FetchInsertIndexOf(&v, 0), 1);  // sorted and empty
    Fill(array, {30, 10, 20, 10});
    EXPECT_FALSE(array.IsSorted());
    EXPECT_EQ(array.FetchInsertIndexOf(&v, 0), kLastIndex);
    int32_t ten = 10;
    EXPECT_EQ(array.FetchIndexOf(&ten, 0), 2);  // linear: the first
    EXPECT_EQ(array.FetchIndexOfKey(&ten), 0);  // plain key compare never matches
    array.Sort();
    EXPECT_EQ(Contents(array), (std::vector<int32_t>{10, 10, 20, 30}));
    EXPECT_EQ(array.FetchInsertIndexOfKey(&ten), 1);
    const struct {
        int32_t value, insertAt;
    } slots[] = {{5, 1}, {10, 2}, {15, 3}, {20, 3}, {25, 4}, {35, 5}};
    for (const auto& s : slots)
        EXPECT_EQ(array.FetchInsertIndexOf(&s.value, 0), s.insertAt) << s.value;

    int deleted = 0;
    array.SetComparator(new IntKeyComparator(&deleted));
    EXPECT_FALSE(array.IsSorted());
    EXPECT_EQ(array.FetchIndexOfKey(&v), 3);
    array.Sort();
    EXPECT_EQ(array.FetchIndexOfKey(&v), 3);  // now binary
    int32_t missing = 11;
    EXPECT_EQ(array.FetchIndexOfKey(&missing), 0);
    EXPECT_EQ(array.FetchInsertIndexOfKey(&missing), 3);
    array.SetComparator(new IntKeyComparator(&deleted));
    EXPECT_EQ(deleted, 1);
    array.SetComparator(&LArray::sLongComparator);  // shared: never owned
    EXPECT_EQ(deleted, 2);
    array.Remove(&ten, 0);
    EXPECT_EQ(Contents(array), (std::vector<int32_t>{10, 20, 30}));
}

// Records which items the sort compares, to see the increments at work.
class RecordingComparator : public LComparator {
  public:
    explicit RecordingComparator(std::vector<std::pair<int32_t, int32_t>>* log) : mLog(log) {}
    int32_t Compare(const void* a, const void* b, uint32_t, uint32_t) const override {
        int32_t x, y;
        std::memcpy(&x, a, 4);
        std::memcpy(&y, b, 4);
        mLog->emplace_back(x >> 8, y >> 8);
        return (x & 0xFF) - (y & 0xFF);
    }

  private:
    std::vector<std::pair<int32_t, int32_t>>* mLog;
};

TEST(LArraySorted, ShellSortIncrementsAndStability) {
    std::mt19937 rng(7);
    for (int32_t n = 2; n <= 40; ++n) {
        std::vector<std::pair<int32_t, int32_t>> log;
        LArray array(4, new RecordingComparator(&log), false);
        // Low byte: the sort key, with many ties. Upper bits: original position.
        for (int32_t i = 1; i <= n; ++i) {
            int32_t v = (i << 8) | static_cast<int32_t>(rng() % 4);
            array.InsertItemsAt(1, kLastIndex, &v, 0);
        }
        array.Sort();
        ASSERT_TRUE(array.IsSorted());
        const int32_t firstGap = n / 9 > 1 ? 4 : 1;  // 18..40 items run 4 then 1
        ASSERT_FALSE(log.empty());
        EXPECT_EQ(log.front(), std::make_pair(firstGap + 1, 1)) << n;
        std::vector<int32_t> c = Contents(array);
        for (size_t i = 1; i < c.size(); ++i) {
            ASSERT_LE(c[i - 1] & 0xFF, c[i] & 0xFF) << n;
            if (n <= 17 && (c[i - 1] & 0xFF) == (c[i] & 0xFF)) {
                EXPECT_LT(c[i - 1] >> 8, c[i] >> 8)
                    << "ties keep their order up to 17 items, n=" << n;
            }
        }
    }
    std::vector<std::pair<int32_t, int32_t>> log;
    LArray hundred(4, new RecordingComparator(&log), false);
    for (int32_t i = 100; i >= 1; --i) {
        int32_t v = (i << 8) | (i & 0xFF);
        hundred.InsertItemsAt(1, kLastIndex, &v, 0);
    }
    hundred.Sort();
    EXPECT_EQ(log.front(), std::make_pair(100 - 13, 100));  // item 14 against item 1
}

TEST(LList, PointerItemsAndSetItemAt) {
    LList list;
    EXPECT_EQ(list.GetItemSize(1), sizeof(void*));
    int a = 0, b = 0, c = 0;
    void* pa = &a;
    void* pb = &b;
    void* pc = &c;
    list.SetItemAt(1, &pa);   // invalid index: inserts
    list.SetItemAt(99, &pb);  // appends
    list.SetItemAt(0, &pc);   // prepends
    EXPECT_EQ(list.GetCount(), 3u);
    EXPECT_EQ(list.FetchIndexOf(&pb, 0), 3);
    list.SetItemAt(3, &pa);  // valid: overwrites
    void* out = nullptr;
    list.FetchItemAt(3, &out);
    EXPECT_EQ(out, pa);
    EXPECT_EQ(list.FetchIndexOf(&pb, 0), 0);
    list.Remove(&pc, 0);
    EXPECT_EQ(list.GetCount(), 2u);
}

TEST(LArrayComparators, DefaultsFollowItemSize) {
    EXPECT_EQ(ArrayProbe(4, nullptr, false).Comparator(), &LArray::sLongComparator);
    EXPECT_EQ(ArrayProbe(8, nullptr, false).Comparator(), &LArray::sBytesComparator);
    EXPECT_FALSE(ArrayProbe(4, &LArray::sLongComparator, false).OwnsComparator());
    int deleted = 0;
    { ArrayProbe owner(4, new IntKeyComparator(&deleted), false); }
    EXPECT_EQ(deleted, 1);
}

}  // namespace
}  // namespace basicutils
