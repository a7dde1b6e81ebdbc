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
#include <basicutils/containers/Handle.h>
#include <basicutils/containers/LComparator.h>

#include <cstdint>
#include <cstring>
#include <typeinfo>

namespace basicutils {

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

  private:
    // True when this object is exactly an LArray or an LList, so that no
    // virtual operation is overridden, mItems (if any) is a plain Handle and
    // the inline paths below may stand in for the general ones.
    // The answer is kept: no operation of the array runs before its most
    // derived class is built, and the class does not change after.
    bool IsPlainArray() const {
        if (mPlainness == kPlainnessUnknown) {
            const std::type_info* type = &typeid(*this);
            mPlainness = type == sPlainTypes[0] || type == sPlainTypes[1] ? kPlain : kNotPlain;
        }
        return mPlainness == kPlain;
    }
    // The append of one item of mItemSize bytes where the block has room in
    // its present allocation; false, with nothing changed, elsewhere.
    bool AppendInPlace(const void* item);
    int32_t InsertItemsAtGeneral(uint32_t count, int32_t index, const void* item, uint32_t size);
    // A move of one small item through a register. Inlined into a caller
    // that passes a smaller object to an array of larger items, g++ warns of
    // the branch for the larger size, which that array never takes.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Warray-bounds"
#pragma GCC diagnostic ignored "-Wstringop-overread"
#endif
    template <size_t N>
    static void CopyItem(char* to, const void* from) {
        char bytes[N];
        std::memcpy(bytes, from, N);
        std::memcpy(to, bytes, N);
    }
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic pop
#endif

    static const std::type_info* const sPlainTypes[2];
    enum Plainness : uint8_t { kPlainnessUnknown, kPlain, kNotPlain };

  protected:
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

  private:
    mutable Plainness mPlainness;  // IsPlainArray's answer, once asked
};

// Appends by a plain LArray or LList of an item of the item size are the
// common edit of the library's lists; they are done here, in line, when no
// memory has to move, with the same effects as the general path.
inline int32_t LArray::InsertItemsAt(uint32_t count, int32_t index, const void* item,
                                     uint32_t size) {
    if (count == 1 && item != nullptr && (size == 0 || size == mItemSize) && mLockCount == 0 &&
        !mKeepSorted && static_cast<int64_t>(index) > static_cast<int64_t>(mItemCount) &&
        IsPlainArray() && AppendInPlace(item)) {
        return static_cast<int32_t>(mItemCount);
    }
    return InsertItemsAtGeneral(count, index, item, size);
}

inline bool LArray::AppendInPlace(const void* item) {
    const uint64_t newCount = uint64_t{mItemCount} + 1;
    const uint64_t newBytes = newCount * mItemSize;
    // The general path refuses counts and sizes that could overflow.
    if (mItems == nullptr || newCount > uint64_t{kLastIndex} - 1 ||
        newBytes + mItemSize > Handle::kLargestSize) {
        return false;
    }
    if (newBytes > mAllocatedBytes) {
        // Room for one more item beyond this one, as AdjustStorage asks.
        const auto request = static_cast<uint32_t>(newBytes + mItemSize);
        if (!mItems->ResizeInPlace(request)) return false;
        mAllocatedBytes = request;
    }
    // The block has not moved, so an item that lies in it is still intact.
    char* slot = mItems->mBlock + mItemsBytes;
    if (mItemSize == sizeof(void*)) {
        CopyItem<sizeof(void*)>(slot, item);
    } else if (mItemSize == 4) {
        CopyItem<4>(slot, item);
    } else {
        std::memmove(slot, item, mItemSize);
    }
    mItemsBytes = static_cast<uint32_t>(newBytes);
    mItemCount = static_cast<uint32_t>(newCount);
    mIsSorted = false;
    if (mFirstIterator != nullptr) ItemsInserted(1, static_cast<int32_t>(mItemCount));
    return true;
}

}  // namespace basicutils
