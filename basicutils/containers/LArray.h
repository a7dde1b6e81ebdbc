// LArray: fixed-size items stored contiguously in a single Handle, copied
// in and out by value; indices are signed and start at 1.
//
// kLastIndex stands for the last item in any index argument and appends on
// insertion. Insertion clamps its index into 1..count+1; every other
// operation ignores an invalid index. Growth is by exactly one spare item
// beyond what an insertion needs, and a removal gives back what it removed
// while keeping the slack; mAllocatedBytes records the last request made of
// the Handle.
//
// Iterators (LArrayIterator) register with the array and are told of every
// insertion and removal, and of the array's death, so that a walk survives
// edits. SwapItems, MoveItem and Sort do not report to them.
//
// The array orders and searches with its comparator. A comparator passed in
// belongs to the array; with none, 4-byte items share sLongComparator and
// all other sizes sBytesComparator. sPointerComparator serves LList's
// pointer-sized items. The three are load-time objects shared by all
// arrays; an array only keeps their address.
//
// Lock/Unlock nest a guard on the structure (not a thread lock): while it is
// held an insertion returns 0 and a removal does nothing. The searches hold
// it while they run.
//
// Choices:
// - Arrays cannot be copied: a copy would have to share the block, the
//   comparator and the iterator chain, or clone a comparator it cannot
//   clone. The copy operations are deleted.
// - An insertion in keep-sorted mode into an array whose sorted flag is
//   clear (after InvalidateSort) sorts the array first, so the new item
//   still lands in its place and the flag it leaves is true.
// - A size argument larger than the item size is cut to the item size when
//   an item is stored, so a slot never spills into its neighbour.
// - An item pointer that lies inside the array itself is copied before the
//   array changes, so inserting a copy of one of its own items is safe.
// - Passing one of the shared comparators to the constructor or to
//   SetComparator never makes the array its owner: the shared ones are
//   never deleted.
// - AssignItemsAt with a null item does nothing.
// - An insertion whose byte count would no longer fit in 32 bits is refused
//   (returns 0) with the array unchanged.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/containers/LComparator.h>

#include <cstdint>

namespace basicutils {

class Handle;
class LArrayIterator;

inline constexpr int32_t kLastIndex = 0x7fffffff;
inline constexpr int32_t kIteratorBeforeFirst = 0;
inline constexpr int32_t kIteratorPastEnd = -2;
inline constexpr int32_t kIteratorItemRemoved = -4;
inline constexpr int32_t kIteratorArrayDead = -6;

class BASICUTILS_EXPORT LArray {
  public:
    LArray(uint32_t itemSize, LComparator* comparator, bool keepSorted);
    LArray(const LArray&) = delete;
    LArray& operator=(const LArray&) = delete;
    virtual ~LArray();

    uint32_t GetCount() const { return mItemCount; }
    virtual uint32_t GetItemSize(int32_t index) const;
    bool ValidIndex(int32_t& index) const;

    virtual bool FetchItemAt(int32_t index, void* buffer, uint32_t& size) const;
    virtual bool FetchItemAt(int32_t index, void* buffer) const;
    virtual int32_t FetchIndexOf(const void* item, uint32_t size) const;
    virtual int32_t InsertItemsAt(uint32_t count, int32_t index, const void* item, uint32_t size);
    virtual void RemoveItemsAt(uint32_t count, int32_t index);
    virtual void AssignItemsAt(uint32_t count, int32_t index, const void* item, uint32_t size);
    virtual void SwapItems(int32_t a, int32_t b);
    virtual void MoveItem(int32_t from, int32_t to);
    virtual void Remove(const void* item, uint32_t size);
    virtual void* GetItemPtr(int32_t index) const;
    virtual void AdjustAllocation(uint32_t extraItems, uint32_t extraBytes);
    virtual void Sort();
    virtual int32_t FetchIndexOfKey(const void* key) const;
    virtual int32_t FetchInsertIndexOf(const void* item, uint32_t size) const;
    virtual int32_t FetchInsertIndexOfKey(const void* key) const;

    Handle* GetItemsHandle() const;
    void Lock() const;
    void Unlock() const;

    bool IsSorted() const { return mIsSorted; }
    void InvalidateSort() { mIsSorted = false; }
    bool IsKeptSorted() const { return mKeepSorted; }
    void SetKeepSorted(bool keep);
    void SetComparator(LComparator* comparator);

    static LComparator sBytesComparator;
    static LLongComparator sLongComparator;
    static LPointerComparator sPointerComparator;

  protected:
    virtual void PeekItem(int32_t index, void* buffer) const;
    virtual void PokeItem(int32_t index, const void* item, uint32_t size);
    virtual void InternalAdjustAllocation(uint32_t itemCount, uint32_t bytes);
    virtual void AdjustStorage(int32_t itemDelta, int32_t byteDelta);
    virtual void ShiftItems(int32_t first, int32_t last, int32_t delta, int32_t byteDelta);
    virtual void StoreNewItems(uint32_t count, int32_t index, const void* item, uint32_t size);
    virtual void InternalSwapItems(int32_t a, int32_t b, void* buffer);
    virtual void InternalMoveItem(int32_t from, int32_t to, void* buffer);
    virtual void InternalCopyItem(int32_t from, int32_t to);
    virtual uint32_t GrabItemSize(int32_t index) const;
    virtual uint32_t GrabItemRangeSize(int32_t first, int32_t last) const;

    int32_t LinearSearch(const void* item, uint32_t size) const;
    int32_t LinearSearchByKey(const void* key) const;
    int32_t BinarySearch(const void* item, uint32_t size) const;
    int32_t BinarySearchByKey(const void* key) const;

    void AttachIterator(LArrayIterator* iterator);
    void DetachIterator(LArrayIterator* iterator);
    void ItemsInserted(uint32_t count, int32_t index);
    void ItemsRemoved(uint32_t count, int32_t index);

    friend class LArrayIterator;

    uint32_t mItemSize;
    uint32_t mItemCount;
    uint32_t mItemsBytes;
    uint32_t mAllocatedBytes;
    Handle* mItems;
    mutable uint32_t mLockCount;
    LArrayIterator* mFirstIterator;
    LComparator* mComparator;
    bool mOwnsComparator;
    bool mIsSorted;
    bool mKeepSorted;
};

}  // namespace basicutils
