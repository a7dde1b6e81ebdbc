#include <basicutils/containers/LArrayIterator.h>
#include <basicutils/containers/LList.h>

namespace basicutils {

bool LArrayIterator::Current(void* buffer) {
    if (mCurrentIndex == kIteratorArrayDead) return false;
    return mArray->FetchItemAt(mCurrentIndex, buffer);
}

bool LArrayIterator::Current(void* buffer, uint32_t& size) {
    if (mCurrentIndex == kIteratorArrayDead) return false;
    return mArray->FetchItemAt(mCurrentIndex, buffer, size);
}

bool LArrayIterator::Next(void* buffer) {
    if (mCurrentIndex == kIteratorArrayDead) return false;
    mCurrentIndex = mNextIndex;
    CalcNextIndex();
    return Current(buffer);
}

bool LArrayIterator::Next(void* buffer, uint32_t& size) {
    if (mCurrentIndex == kIteratorArrayDead) return false;
    mCurrentIndex = mNextIndex;
    CalcNextIndex();
    return Current(buffer, size);
}

bool LArrayIterator::Previous(void* buffer) {
    if (!CalcPreviousIndex()) return false;
    return Current(buffer);
}

bool LArrayIterator::Previous(void* buffer, uint32_t& size) {
    if (!CalcPreviousIndex()) return false;
    return Current(buffer, size);
}

bool LArrayIterator::CalcPreviousIndex() {
    if (mCurrentIndex == kIteratorArrayDead) return false;
    const auto count = static_cast<int32_t>(mArray->GetCount());
    if (mCurrentIndex == kIteratorItemRemoved) {
        mCurrentIndex = mNextIndex == kIteratorPastEnd ? count : mNextIndex - 1;
    } else if (mCurrentIndex == kIteratorPastEnd) {
        mCurrentIndex = count;
    } else if (mCurrentIndex != 0) {
        mCurrentIndex -= 1;
    }
    CalcNextIndex();
    return true;
}

void LArrayIterator::SyncWalk(int64_t countBeforeEdit) {
    if (mWalkState != kWalkUnreported) return;
    // What Next left in mNextIndex when it stepped onto mCurrentIndex.
    mNextIndex =
        mCurrentIndex + int64_t{1} > countBeforeEdit ? kIteratorPastEnd : mCurrentIndex + 1;
    mWalkState = kWalkReported;
}

void LArrayIterator::ArrayDied() {
    if (mWalkState == kWalkUnreported) mWalkState = kWalkReported;
    mCurrentIndex = kIteratorArrayDead;
    mNextIndex = kIteratorArrayDead;
    mNextIterator = nullptr;
    mArray = nullptr;
}

void LArrayIterator::ItemsInserted(uint32_t count, int32_t index) {
    SyncWalk(int64_t{mArray->GetCount()} - count);
    if (mCurrentIndex == kIteratorItemRemoved) {
        if (index <= mNextIndex) mNextIndex += static_cast<int32_t>(count);
        return;
    }
    if (index <= mCurrentIndex) mCurrentIndex += static_cast<int32_t>(count);
    CalcNextIndex();
}

void LArrayIterator::ItemsRemoved(uint32_t count, int32_t index) {
    SyncWalk(int64_t{mArray->GetCount()} + count);
    const int64_t end = int64_t{index} + count;  // first index after the range
    const auto newCount = static_cast<int64_t>(mArray->GetCount());
    if (mCurrentIndex == kIteratorItemRemoved) {
        if (mNextIndex == kIteratorPastEnd || index > mNextIndex) return;
        if (end <= mNextIndex) {
            mNextIndex -= static_cast<int32_t>(count);
        } else {
            mNextIndex = index > newCount ? kIteratorPastEnd : index;
        }
        return;
    }
    if (index > mCurrentIndex) return;
    if (end <= mCurrentIndex) {
        mCurrentIndex -= static_cast<int32_t>(count);
        CalcNextIndex();
        return;
    }
    mNextIndex = index > newCount ? kIteratorPastEnd : index;
    mCurrentIndex = kIteratorItemRemoved;
}

}  // namespace basicutils
