// LArrayIterator and LListIterator: walkers that stay valid while the array
// changes under them.
//
// The usual walk: construct at position 0, then call Next(&item) until it
// returns false. The array tells each of its iterators about every insertion
// and removal, so a walk stays on its item: items inserted at or before the
// current position push it up and are not visited, items inserted after it
// are visited. When the current item is removed the iterator is in the
// "item removed" state (kIteratorItemRemoved) and remembers where to go on:
// Next lands on the item that followed the removed range, Previous on the one
// before it. When the array is destroyed the iterator becomes dead
// (kIteratorArrayDead): every call then answers false or does nothing, and
// its destructor does not touch the array.
//
// Choices:
// - In the item-removed state a further removal is taken into account: a
//   range removed in front of the remembered next item moves it down, and a
//   range that covers it moves it to the item after that range. So a walk
//   never skips an item that is still there, even when the owner removes
//   more items before the walk moves on.
// - A dead iterator forgets its array (mArray becomes null).
// - Iterators cannot be copied: a copy would not be registered with the
//   array and would be left dangling when it dies.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/containers/Handle.h>
#include <basicutils/containers/LArray.h>
#include <basicutils/containers/LList.h>

#include <cstdint>
#include <cstring>

namespace basicutils {

class LList;

class BASICUTILS_EXPORT LArrayIterator {
  public:
    LArrayIterator(LArray& array, int32_t position);
    LArrayIterator(const LArrayIterator&) = delete;
    LArrayIterator& operator=(const LArrayIterator&) = delete;
    virtual ~LArrayIterator();

    // position: 0 before the first item, 1..count on an item, -1 or anything
    // above the count past the end; other values below 1 act as 0.
    void ResetTo(int32_t position);
    bool Current(void* buffer);
    bool Current(void* buffer, uint32_t& size);
    bool Next(void* buffer);
    bool Next(void* buffer, uint32_t& size);
    bool Previous(void* buffer);
    bool Previous(void* buffer, uint32_t& size);
    // The raw position, special values included.
    int32_t GetCurrentIndex() const { return mCurrentIndex; }

    // The walk of an iterator made at position 0 and Next(&item) until it
    // returns false, over a list whose class is exactly LList (IsPlainList):
    // visit(item) gets each pointer-sized item that Next would give, and the
    // walk's iterator passes through the same states. Between two visits
    // nothing is reloaded unless the list reported an insertion, a removal
    // or its death; then the walk resumes from the iterator's fields as Next
    // does.
    template <class Item, class Visit>
    static void WalkPlainList(LArray& list, Visit visit);

  protected:
    friend class LArray;

    void CalcNextIndex();
    bool CalcPreviousIndex();
    void SetNextIterator(LArrayIterator* next) { mNextIterator = next; }
    LArrayIterator* GetNextIterator() { return mNextIterator; }
    void ArrayDied();
    void ItemsInserted(uint32_t count, int32_t index);
    void ItemsRemoved(uint32_t count, int32_t index);

    LArrayIterator* mNextIterator;
    LArray* mArray;
    int32_t mCurrentIndex;
    int32_t mNextIndex;

  private:
    // Registers a walk standing on item 1 of a list that is not empty.
    enum WalkStart { kWalkStart };
    LArrayIterator(LArray& list, WalkStart);

    // The state of WalkPlainList. While it is kWalkUnreported the walk
    // keeps its place in registers and mNextIndex is stale; the first report
    // of the array (insertion, removal, death) restores mNextIndex from the
    // count before the edit and moves to kWalkReported, which ends the fast
    // stretch.
    enum WalkState : uint8_t { kNotWalking, kWalkUnreported, kWalkReported };
    void SyncWalk(int64_t countBeforeEdit);

    WalkState mWalkState;
};

class BASICUTILS_EXPORT LListIterator : public LArrayIterator {
  public:
    LListIterator(LList& list, int32_t position) : LArrayIterator(list, position) {}
    ~LListIterator() override = default;
};

// Kept inline: every broadcast constructs and destroys one iterator.
inline LArrayIterator::LArrayIterator(LArray& array, int32_t position)
    : mNextIterator(nullptr),
      mArray(&array),
      mCurrentIndex(kIteratorBeforeFirst),
      mNextIndex(kIteratorBeforeFirst),
      mWalkState(kNotWalking) {
    mArray->AttachIterator(this);
    ResetTo(position);
}

inline LArrayIterator::~LArrayIterator() {
    if (mCurrentIndex != kIteratorArrayDead && mArray != nullptr) mArray->DetachIterator(this);
}

inline void LArrayIterator::ResetTo(int32_t position) {
    if (mCurrentIndex == kIteratorArrayDead) return;
    if (position != -1 &&
        static_cast<int64_t>(position) <= static_cast<int64_t>(mArray->GetCount())) {
        mCurrentIndex = position >= 1 ? position : kIteratorBeforeFirst;
    } else {
        mCurrentIndex = kIteratorPastEnd;
    }
    CalcNextIndex();
}

inline void LArrayIterator::CalcNextIndex() {
    if (mCurrentIndex == kIteratorPastEnd) {
        mNextIndex = kIteratorPastEnd;
        return;
    }
    const int64_t next = int64_t{mCurrentIndex} + 1;
    mNextIndex = next > int64_t{mArray->GetCount()} ? kIteratorPastEnd : static_cast<int32_t>(next);
}

inline LArrayIterator::LArrayIterator(LArray& list, WalkStart)
    : mNextIterator(list.mFirstIterator),
      mArray(&list),
      mCurrentIndex(1),
      mNextIndex(kIteratorPastEnd),
      mWalkState(kWalkUnreported) {
    list.mFirstIterator = this;
}

template <class Item, class Visit>
void LArrayIterator::WalkPlainList(LArray& list, Visit visit) {
    static_assert(sizeof(Item) == sizeof(void*));
    // On an empty list Next gives nothing at once: no visit, nothing to see.
    if (list.mItemCount == 0) return;
    // While unreported only mCurrentIndex is kept up to date; the first
    // report of an edit or of a new allocation works out mNextIndex (see
    // SyncWalk) and ends the stretch.
    LArrayIterator walk(list, kWalkStart);
    int32_t index = 1;
    for (;;) {
        const auto* at = reinterpret_cast<const Item*>(list.mItems->mBlock) + (index - 1);
        const Item* last = at + (static_cast<int32_t>(list.mItemCount) - index);
        for (;;) {
            Item item;
            std::memcpy(&item, at, sizeof(Item));
            visit(item);
            if (walk.mWalkState != kWalkUnreported) break;
            if (at == last) {
                walk.mCurrentIndex = kIteratorPastEnd;
                walk.mNextIndex = kIteratorPastEnd;
                return;
            }
            ++at;
            walk.mCurrentIndex = ++index;
        }
        // Reported: one Next from the fields, then on.
        if (walk.mCurrentIndex == kIteratorArrayDead) return;
        walk.mCurrentIndex = walk.mNextIndex;
        walk.CalcNextIndex();
        index = walk.mCurrentIndex;
        if (index < 1 || index > static_cast<int32_t>(list.mItemCount)) return;
        walk.mWalkState = kWalkUnreported;
    }
}

inline void LArray::AttachIterator(LArrayIterator* iterator) {
    iterator->SetNextIterator(mFirstIterator);
    mFirstIterator = iterator;
}

inline void LArray::DetachIterator(LArrayIterator* iterator) {
    LArrayIterator** link = &mFirstIterator;
    while (*link != nullptr) {
        if (*link == iterator) {
            *link = iterator->GetNextIterator();
            iterator->SetNextIterator(nullptr);
            return;
        }
        link = &(*link)->mNextIterator;
    }
}

}  // namespace basicutils
