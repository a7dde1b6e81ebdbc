#include <basicutils/containers/Handle.h>
#include <basicutils/containers/LArray.h>
#include <basicutils/containers/LArrayIterator.h>
#include <basicutils/containers/LList.h>
#include <basicutils/containers/UMemUtils.h>

#include <algorithm>
#include <cstring>
#include <memory>

namespace basicutils {
namespace {

// Largest byte count a Handle can hold.
constexpr uint64_t kMaxBytes = 0xFFFFFEFFu;

// Scratch room for one item: on the stack when small, else on the heap.
class ItemBuffer {
  public:
    explicit ItemBuffer(uint32_t size) {
        if (size > sizeof mInline) {
            mHeap.reset(new char[size]);
            mData = mHeap.get();
        }
    }
    ItemBuffer(const ItemBuffer&) = delete;
    ItemBuffer& operator=(const ItemBuffer&) = delete;
    char* Get() { return mData; }

  private:
    alignas(16) char mInline[256];
    char* mData = mInline;
    std::unique_ptr<char[]> mHeap;
};

// Holds a structure lock for a scope.
class ScopedArrayLock {
  public:
    explicit ScopedArrayLock(const LArray& array) : mArray(array) { mArray.Lock(); }
    ScopedArrayLock(const ScopedArrayLock&) = delete;
    ScopedArrayLock& operator=(const ScopedArrayLock&) = delete;
    ~ScopedArrayLock() { mArray.Unlock(); }

  private:
    const LArray& mArray;
};

bool IsSharedComparator(const LComparator* comparator) {
    return comparator == &LArray::sBytesComparator || comparator == &LArray::sLongComparator ||
           comparator == &LArray::sPointerComparator;
}

// The binary search loop of every ordered search: probes until compare(mid)
// gives 0 or the range is used up, leaving the last probe and its result.
template <typename Compare>
bool BinaryProbe(int32_t count, Compare compare, int32_t& mid, int32_t& r) {
    int32_t lo = 1, hi = count;
    while (lo <= hi) {
        mid = lo + (hi - lo) / 2;
        r = compare(mid);
        if (r == 0) return true;
        if (r > 0) {
            hi = mid - 1;
        } else {
            lo = mid + 1;
        }
    }
    return false;
}

// The 1-based index of the first of count values of type T in block equal
// to the value at item, or 0.
template <typename T>
int32_t ScanFor(const char* block, uint32_t count, const void* item) {
    T wanted;
    std::memcpy(&wanted, item, sizeof wanted);
    const T* first = reinterpret_cast<const T*>(block);
    const T* found = std::find(first, first + count, wanted);
    return found == first + count ? 0 : static_cast<int32_t>(found - first + 1);
}

}  // namespace

LArray::LArray(uint32_t itemSize, LComparator* comparator, bool keepSorted)
    : mItemSize(itemSize),
      mItemCount(0),
      mItemsBytes(0),
      mAllocatedBytes(0),
      mItems(nullptr),
      mLockCount(0),
      mFirstIterator(nullptr),
      mComparator(comparator),
      mOwnsComparator(comparator != nullptr && !IsSharedComparator(comparator)),
      mIsSorted(true),
      mKeepSorted(keepSorted),
      mPlainness(kPlainnessUnknown) {
    if (mComparator == nullptr) {
        mComparator =
            itemSize == 4 ? static_cast<LComparator*>(&sLongComparator) : &sBytesComparator;
    }
}

LArray::~LArray() {
    if (mOwnsComparator) delete mComparator;
    mComparator = nullptr;
    delete mItems;
    mItems = nullptr;
    LArrayIterator* iterator = mFirstIterator;
    mFirstIterator = nullptr;
    while (iterator != nullptr) {
        LArrayIterator* next = iterator->GetNextIterator();
        iterator->ArrayDied();
        iterator = next;
    }
}

uint32_t LArray::GetItemSize(int32_t) const {
    return mItemSize;
}

bool LArray::ValidIndex(int32_t& index) const {
    if (index == kLastIndex) index = static_cast<int32_t>(mItemCount);
    return index >= 1 && static_cast<int64_t>(index) <= static_cast<int64_t>(mItemCount);
}

bool LArray::FetchItemAt(int32_t index, void* buffer, uint32_t& size) const {
    if (!ValidIndex(index)) return false;
    const uint32_t itemSize = GrabItemSize(index);
    if (itemSize == size) {
        PeekItem(index, buffer);
    } else {
        const uint32_t n = itemSize < size ? itemSize : size;
        UMemUtils::memcpy(buffer, GetItemPtr(index), n);
        size = n;
    }
    return true;
}

bool LArray::FetchItemAt(int32_t index, void* buffer) const {
    if (!ValidIndex(index)) return false;
    PeekItem(index, buffer);
    return true;
}

int32_t LArray::FetchIndexOf(const void* item, uint32_t size) const {
    if (size == 0) size = mItemSize;
    if (mItemCount == 0) return 0;
    if (mIsSorted) return BinarySearch(item, size);
    if (IsPlainArray()) {
        // The shared comparators' equality is a plain comparison of values
        // (or of bytes) and calls out to nothing, so a scan of the block
        // finds what LinearSearch would.
        const char* block = mItems->mBlock;
        if (mComparator == &sPointerComparator && mItemSize == sizeof(intptr_t)) {
            return ScanFor<intptr_t>(block, mItemCount, item);
        }
        if (mComparator == &sLongComparator && mItemSize == sizeof(uint32_t)) {
            return ScanFor<uint32_t>(block, mItemCount, item);
        }
        if (mComparator == &sBytesComparator) {
            if (size != mItemSize) return 0;  // blocks of other sizes never compare equal
            for (uint32_t i = 0; i < mItemCount; ++i, block += mItemSize) {
                if (std::memcmp(block, item, size) == 0) return static_cast<int32_t>(i + 1);
            }
            return 0;
        }
    }
    return LinearSearch(item, size);
}

const std::type_info* const LArray::sPlainTypes[2] = {&typeid(LArray), &typeid(LList)};

int32_t LArray::InsertItemsAtGeneral(uint32_t count, int32_t index, const void* item,
                                     uint32_t size) {
    if (count == 0 || mLockCount != 0) return 0;
    if (size == 0) size = mItemSize;
    const uint64_t newCount = uint64_t{mItemCount} + count;
    if (newCount > uint64_t{kLastIndex} - 1 || (newCount + 1) * mItemSize > kMaxBytes) return 0;

    // An item that lies inside this array would move under the edit.
    std::unique_ptr<ItemBuffer> own;
    if (item != nullptr && mItems != nullptr) {
        const char* block = mItems->GetPtr();
        const char* p = static_cast<const char*>(item);
        if (p >= block && p < block + mAllocatedBytes) {
            own = std::make_unique<ItemBuffer>(mItemSize);
            if (size > mItemSize) size = mItemSize;
            UMemUtils::memcpy(own->Get(), p, size);
            item = own->Get();
        }
    }

    if (mKeepSorted && item != nullptr) {
        if (!mIsSorted) {
            Sort();
            if (mItemCount <= 1) mIsSorted = true;
        }
        index = FetchInsertIndexOf(item, size);
    }
    if (static_cast<int64_t>(index) > static_cast<int64_t>(mItemCount)) {
        index = static_cast<int32_t>(mItemCount) + 1;
    }
    if (index < 1) index = 1;

    const uint32_t oldCount = mItemCount;
    const auto bytes = static_cast<int32_t>(count * size);
    AdjustStorage(static_cast<int32_t>(count), bytes);
    if (oldCount != 0 && static_cast<uint32_t>(index) <= oldCount) {
        ShiftItems(index, static_cast<int32_t>(oldCount), static_cast<int32_t>(count), bytes);
    }
    mIsSorted = mKeepSorted;
    StoreNewItems(count, index, item, size);
    ItemsInserted(count, index);
    return index;
}

void LArray::RemoveItemsAt(uint32_t count, int32_t index) {
    if (count == 0 || mLockCount != 0 || !ValidIndex(index)) return;
    if (static_cast<uint64_t>(index) + count > mItemCount) count = mItemCount - index + 1;
    const int32_t last = index + static_cast<int32_t>(count) - 1;
    const auto bytes = static_cast<int32_t>(GrabItemRangeSize(index, last));
    if (static_cast<uint32_t>(last) < mItemCount) {
        ShiftItems(last + 1, static_cast<int32_t>(mItemCount), -static_cast<int32_t>(count),
                   -bytes);
    }
    AdjustStorage(-static_cast<int32_t>(count), -bytes);
    ItemsRemoved(count, index);
}

void LArray::AssignItemsAt(uint32_t count, int32_t index, const void* item, uint32_t size) {
    if (!ValidIndex(index) || count == 0 || item == nullptr) return;
    if (mKeepSorted) {
        // The removal may shift the bytes that item points at if they are ours.
        ItemBuffer copy(mItemSize);
        const uint32_t n = size == 0 || size > mItemSize ? mItemSize : size;
        UMemUtils::memcpy(copy.Get(), item, n);
        RemoveItemsAt(count, index);
        InsertItemsAt(count, index, copy.Get(), n);
        return;
    }
    const int64_t last64 = static_cast<int64_t>(index) + count - 1;
    const auto last = static_cast<int32_t>(last64 < mItemCount ? last64 : mItemCount);
    if (size == 0) size = mItemSize;
    for (int32_t i = index; i <= last; ++i) PokeItem(i, item, size);
    mIsSorted = false;
}

void LArray::SwapItems(int32_t a, int32_t b) {
    if (mKeepSorted || !ValidIndex(a) || !ValidIndex(b)) return;
    ItemBuffer buffer(GrabItemSize(a));
    InternalSwapItems(a, b, buffer.Get());
    mIsSorted = false;
}

void LArray::MoveItem(int32_t from, int32_t to) {
    if (mKeepSorted || !ValidIndex(from) || !ValidIndex(to) || from == to) return;
    ItemBuffer buffer(GrabItemSize(from));
    InternalMoveItem(from, to, buffer.Get());
    mIsSorted = false;
}

void LArray::Remove(const void* item, uint32_t size) {
    const int32_t found = FetchIndexOf(item, size);
    if (found != 0) RemoveItemsAt(1, found);
}

void* LArray::GetItemPtr(int32_t index) const {
    if (mItems == nullptr) return nullptr;
    char* block = mItems->Lock();
    char* p = block + static_cast<ptrdiff_t>(index - 1) * static_cast<ptrdiff_t>(mItemSize);
    mItems->Unlock();
    return p;
}

void LArray::AdjustAllocation(uint32_t extraItems, uint32_t) {
    const uint64_t items = uint64_t{mItemCount} + extraItems;
    const uint64_t bytes = items * mItemSize;
    if (bytes > kMaxBytes) return;
    InternalAdjustAllocation(static_cast<uint32_t>(items), static_cast<uint32_t>(bytes));
}

Handle* LArray::GetItemsHandle() const {
    const_cast<LArray*>(this)->AdjustAllocation(0, 0);
    return mItems;
}

void LArray::Lock() const {
    if (++mLockCount == 1 && mItems != nullptr) mItems->Lock();
}

void LArray::Unlock() const {
    if (mLockCount == 0) return;
    if (--mLockCount == 0 && mItems != nullptr) mItems->Unlock();
}

void LArray::SetKeepSorted(bool keep) {
    mKeepSorted = keep;
    if (keep) Sort();
}

void LArray::SetComparator(LComparator* comparator) {
    if (comparator == nullptr) return;
    if (comparator != mComparator) {
        if (mOwnsComparator) delete mComparator;
        mComparator = comparator;
    }
    mOwnsComparator = !IsSharedComparator(comparator);
    if (mItemCount > 1) mIsSorted = false;
    if (mKeepSorted) Sort();
}

void LArray::Sort() {
    if (mIsSorted || mItemCount <= 1) return;
    const auto count = static_cast<int32_t>(mItemCount);
    const int32_t limit = count / 9;
    int32_t h = 1;
    if (limit > 1) {
        while (h < limit) h = 3 * h + 1;
    }
    ItemBuffer buffer(mItemSize);
    char* held = buffer.Get();
    for (; h > 0; h /= 3) {
        for (int32_t i = h + 1; i <= count; ++i) {
            PeekItem(i, held);
            int32_t j = i - h;
            while (j > 0) {
                if (mComparator->Compare(held, GetItemPtr(j), mItemSize, mItemSize) >= 0) break;
                PokeItem(j + h, GetItemPtr(j), mItemSize);
                j -= h;
            }
            PokeItem(j + h, held, mItemSize);
        }
    }
    mIsSorted = true;
}

int32_t LArray::FetchIndexOfKey(const void* key) const {
    if (mItemCount == 0) return 0;
    return mIsSorted ? BinarySearchByKey(key) : LinearSearchByKey(key);
}

int32_t LArray::FetchInsertIndexOf(const void* item, uint32_t size) const {
    if (size == 0) size = mItemSize;
    if (!mIsSorted) return kLastIndex;
    ScopedArrayLock lock(*this);
    int32_t mid = 1, r = 0;
    BinaryProbe(
        static_cast<int32_t>(mItemCount),
        [&](int32_t i) { return mComparator->Compare(GetItemPtr(i), item, GrabItemSize(i), size); },
        mid, r);
    return r >= 0 ? mid : mid + 1;
}

int32_t LArray::FetchInsertIndexOfKey(const void* key) const {
    if (!mIsSorted) return kLastIndex;
    ScopedArrayLock lock(*this);
    int32_t mid = 1, r = 0;
    BinaryProbe(
        static_cast<int32_t>(mItemCount),
        [&](int32_t i) { return mComparator->CompareToKey(GetItemPtr(i), GrabItemSize(i), key); },
        mid, r);
    return r >= 0 ? mid : mid + 1;
}

void LArray::PeekItem(int32_t index, void* buffer) const {
    const void* p = GetItemPtr(index);
    if (mItemSize == 4) {
        std::memcpy(buffer, p, 4);
    } else if (mItemSize == 8) {
        std::memcpy(buffer, p, 8);
    } else {
        UMemUtils::memcpy(buffer, p, mItemSize);
    }
}

void LArray::PokeItem(int32_t index, const void* item, uint32_t size) {
    if (size > mItemSize) size = mItemSize;
    void* p = GetItemPtr(index);
    if (size == 4) {
        std::memcpy(p, item, 4);
    } else if (size == 8) {
        std::memmove(p, item, 8);
    } else {
        UMemUtils::memcpy(p, item, size);
    }
}

void LArray::InternalAdjustAllocation(uint32_t, uint32_t bytes) {
    if (bytes == mAllocatedBytes) return;
    if (mItems != nullptr) {
        // The block may move: a walk that holds its place in it must reload.
        for (LArrayIterator* it = mFirstIterator; it != nullptr; it = it->GetNextIterator()) {
            it->SyncWalk(mItemCount);
        }
        mItems->Resize(bytes);
    } else {
        mItems = new Handle(bytes);
    }
    mAllocatedBytes = bytes;
}

void LArray::AdjustStorage(int32_t itemDelta, int32_t) {
    const uint32_t newCount = mItemCount + static_cast<uint32_t>(itemDelta);
    const uint32_t newBytes = mItemSize * newCount;
    if (newBytes > mAllocatedBytes) {
        InternalAdjustAllocation(newCount + 1, newBytes + mItemSize);
    } else if (itemDelta < 0) {
        InternalAdjustAllocation(newCount, mAllocatedBytes - mItemsBytes + newBytes);
    }
    mItemsBytes = newBytes;
    mItemCount = newCount;
}

void LArray::ShiftItems(int32_t first, int32_t last, int32_t delta, int32_t) {
    const uint32_t bytes = GrabItemRangeSize(first, last);
    UMemUtils::memcpy(GetItemPtr(first + delta), GetItemPtr(first), bytes);
}

void LArray::StoreNewItems(uint32_t count, int32_t index, const void* item, uint32_t size) {
    if (item == nullptr) return;
    const int32_t end = index + static_cast<int32_t>(count);
    for (int32_t i = index; i < end; ++i) PokeItem(i, item, size);
}

void LArray::InternalSwapItems(int32_t a, int32_t b, void* buffer) {
    PeekItem(a, buffer);
    InternalCopyItem(b, a);
    PokeItem(b, buffer, GrabItemSize(a));
}

void LArray::InternalMoveItem(int32_t from, int32_t to, void* buffer) {
    PeekItem(from, buffer);
    const uint32_t size = GrabItemSize(from);
    const auto bytes = static_cast<int32_t>(size);
    if (from < to) {
        ShiftItems(from + 1, to, -1, -bytes);
    } else {
        ShiftItems(to, from - 1, 1, bytes);
    }
    PokeItem(to, buffer, size);
}

void LArray::InternalCopyItem(int32_t from, int32_t to) {
    PokeItem(to, GetItemPtr(from), mItemSize);
}

uint32_t LArray::GrabItemSize(int32_t) const {
    return mItemSize;
}

uint32_t LArray::GrabItemRangeSize(int32_t first, int32_t last) const {
    if (last < first) return 0;
    return static_cast<uint32_t>(last - first + 1) * mItemSize;
}

int32_t LArray::LinearSearch(const void* item, uint32_t size) const {
    ScopedArrayLock lock(*this);
    const auto count = static_cast<int32_t>(mItemCount);
    const char* element = static_cast<const char*>(GetItemPtr(1));
    for (int32_t i = 1; i <= count; ++i) {
        const uint32_t elementSize = GrabItemSize(i);
        if (mComparator->IsEqualTo(item, element, size, elementSize)) return i;
        element += elementSize;
    }
    return 0;
}

int32_t LArray::LinearSearchByKey(const void* key) const {
    ScopedArrayLock lock(*this);
    const auto count = static_cast<int32_t>(mItemCount);
    const char* element = static_cast<const char*>(GetItemPtr(1));
    for (int32_t i = 1; i <= count; ++i) {
        const uint32_t elementSize = GrabItemSize(i);
        if (mComparator->IsEqualToKey(element, elementSize, key)) return i;
        element += elementSize;
    }
    return 0;
}

int32_t LArray::BinarySearch(const void* item, uint32_t size) const {
    ScopedArrayLock lock(*this);
    int32_t mid = 0, r = 0;
    const bool found = BinaryProbe(
        static_cast<int32_t>(mItemCount),
        [&](int32_t i) { return mComparator->Compare(GetItemPtr(i), item, GrabItemSize(i), size); },
        mid, r);
    return found ? mid : 0;
}

int32_t LArray::BinarySearchByKey(const void* key) const {
    ScopedArrayLock lock(*this);
    int32_t mid = 0, r = 0;
    const bool found = BinaryProbe(
        static_cast<int32_t>(mItemCount),
        [&](int32_t i) { return mComparator->CompareToKey(GetItemPtr(i), GrabItemSize(i), key); },
        mid, r);
    return found ? mid : 0;
}

void LArray::ItemsInserted(uint32_t count, int32_t index) {
    for (LArrayIterator* it = mFirstIterator; it != nullptr; it = it->GetNextIterator()) {
        it->ItemsInserted(count, index);
    }
}

void LArray::ItemsRemoved(uint32_t count, int32_t index) {
    for (LArrayIterator* it = mFirstIterator; it != nullptr; it = it->GetNextIterator()) {
        it->ItemsRemoved(count, index);
    }
}

}  // namespace basicutils
