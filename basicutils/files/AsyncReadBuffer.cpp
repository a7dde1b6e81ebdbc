// AsyncReadBuffer: a ring of two sector-aligned buffers over an overlapped
// MFileUniv, with the next buffer's read always in flight.
#include <basicutils/containers/UMemUtils.h>
#include <basicutils/files/AsyncReadBuffer.h>
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/Sync.h>
#include <basicutils/platform/VirtualMemory.h>

#include <algorithm>

namespace basicutils {

namespace {

constexpr int kFront = 2048;             // room before the data area
constexpr int64_t kAround = 2 * kFront;  // room before and behind it
constexpr DWORD kSeconds = 120;

// Whether a finished read delivered `size` bytes from `offset`, counting
// the part of the first sector that precedes it.
bool Delivered(const _OVERLAPPED& overlapped, int64_t offset, int size) {
    return overlapped.Internal == ERROR_SUCCESS &&
           overlapped.InternalHigh >= static_cast<ULONG_PTR>(offset % kFront + size);
}

// Returns once the transfer of `overlapped` has ended. No deadline (see the
// header): the end is told by the request block itself, so an event that
// was reset after a timed-out wait cannot make this wait miss it.
void AwaitEnd(_OVERLAPPED& overlapped, HANDLE event) {
    while (!HasOverlappedIoCompleted(&overlapped))
        if (WaitForSingleObject(event, 100) == WAIT_FAILED) SleepEx(1, 0);  // no event to wait on
    ResetEvent(event);
}

char* Allocate(int64_t size) {
    return static_cast<char*>(
        VirtualAlloc(nullptr, static_cast<size_t>(size), MEM_COMMIT, PAGE_READWRITE));
}

}  // namespace

AsyncReadBuffer::AsyncReadBuffer()
    : mFile(nullptr),
      mCurrentBuffer(nullptr),
      mBufferOne(nullptr),
      mBufferTwo(nullptr),
      mValidBytes(0),
      mBufferSize(0),
      mBytesLeft(0),
      mFileSize(0),
      mBufferPosition(0),
      mEvent(CreateEventW(nullptr, 1, 0, nullptr)),
      mReadPending(false),
      mPendingBytes(0),
      mOverlapped() {}

AsyncReadBuffer::~AsyncReadBuffer() {
    SettleReadAhead();
    ReleaseBuffers();
    CloseHandle(mEvent);
}

void AsyncReadBuffer::SettleReadAhead() {
    if (!mInFlight) return;
    AwaitEnd(mOverlapped, mEvent);
    mInFlight = false;
}

void AsyncReadBuffer::ReleaseBuffers() {
    if (mBufferOne) VirtualFree(mBufferOne, 0, MEM_RELEASE);
    if (mBufferTwo) VirtualFree(mBufferTwo, 0, MEM_RELEASE);
    mBufferOne = mBufferTwo = mCurrentBuffer = nullptr;
    mAllocatedSize = 0;
}

char* AsyncReadBuffer::FreeBuffer() const {
    return mCurrentBuffer == mBufferOne ? mBufferTwo : mBufferOne;
}

int AsyncReadBuffer::CopyOut(int64_t from, char* destination, int count) const {
    if (count > 0)
        UMemUtils::memcpy(destination, mCurrentBuffer + kFront + (from - mBufferPosition),
                          static_cast<unsigned>(count));
    return count;
}

uint32_t AsyncReadBuffer::StartReadAhead() {
    const int size = static_cast<int>(std::min<int64_t>(mBufferSize, mBytesLeft));
    mReadPending = true;
    mPendingBytes = 0;
    const uint32_t error = mFile->FReadOverlapped(
        mBufferPosition + mBufferSize, FreeBuffer() + kFront, size, &mOverlapped, mEvent);
    if (error == 0) {
        mPendingBytes = size;
        mInFlight = true;
    }
    return error;
}

int AsyncReadBuffer::InitReadBuffer(MFileUniv* file, int64_t start, int bufferSize, int) {
    SettleReadAhead();
    mReadPending = false;
    mPendingBytes = 0;
    mFile = file;
    mBufferSize = bufferSize;
    if (mBufferOne && bufferSize > mAllocatedSize) ReleaseBuffers();
    if (!mBufferOne) {
        if (bufferSize < 1) return -2;
        mBufferOne = Allocate(bufferSize + kAround);
        if (!mBufferOne) return -2;
        mBufferTwo = Allocate(bufferSize + kAround);
        if (!mBufferTwo) {
            ReleaseBuffers();
            return -2;
        }
        mAllocatedSize = bufferSize;
    }
    mFileSize = file->GetSize();
    mCurrentBuffer = mBufferOne;
    mBytesLeft = mFileSize - start;
    mValidBytes = 0;
    mBufferPosition = start;
    if (mBytesLeft <= 0) return -4;

    const int size = static_cast<int>(std::min<int64_t>(mBufferSize, mBytesLeft));
    if (file->FReadOverlapped(start, mBufferOne + kFront, size, &mOverlapped, mEvent) != 0) {
        ReleaseBuffers();
        return -3;
    }
    mInFlight = true;
    const bool ended = file->FWaitOverlappedCompletion(mEvent, kSeconds) == WAIT_OBJECT_0;
    SettleReadAhead();
    if (!ended || !Delivered(mOverlapped, start, size)) {
        ReleaseBuffers();
        return -3;
    }
    mValidBytes = size;
    mBytesLeft -= size;
    if (mBytesLeft == 0) return 0;
    if (StartReadAhead() != 0) {
        mReadPending = false;
        ReleaseBuffers();
        return -3;
    }
    return 0;
}

int AsyncReadBuffer::FillInReadBuffer(int& filled) {
    filled = 0;
    if (!mCurrentBuffer) return -1;
    if (mReadPending && !mInFlight && StartReadAhead() != 0) return -1;  // start it again
    if (mReadPending) {
        // A read that ended after an earlier wait timed out left no event.
        if (!HasOverlappedIoCompleted(&mOverlapped) &&
            mFile->FWaitOverlappedCompletion(mEvent, kSeconds) != WAIT_OBJECT_0)
            return -1;
        mInFlight = false;
        if (!Delivered(mOverlapped, mBufferPosition + mBufferSize, mPendingBytes)) {
            mPendingBytes = 0;  // to be started again
            return -1;
        }
        mValidBytes = mPendingBytes;
        mBytesLeft -= mPendingBytes;
        mBufferPosition += mBufferSize;
        filled = mPendingBytes;
        mPendingBytes = 0;
        mReadPending = false;
        mCurrentBuffer = FreeBuffer();
    }
    if (mBytesLeft <= 0) return 0;
    return StartReadAhead() == 0 ? 0 : -1;
}

int AsyncReadBuffer::ReadBuffer(int64_t position, char* destination, int count) {
    if (!mCurrentBuffer || position < 0) return -1;
    if (position >= mFileSize) return 0;
    if (count <= 0) return count;
    const int64_t distance = mBufferPosition - position;
    if (distance > 0) {  // starts before the current buffer
        if (distance >= count)
            return DoReadPieceOutsideOfBuffer(position, destination, count) == 0 ? count : -1;
        const int before = static_cast<int>(distance);
        if (DoReadPieceOutsideOfBuffer(position, destination, before) != 0) return -1;
        return before + CopyOut(mBufferPosition, destination + before,
                                std::min(count - before, mValidBytes));
    }
    const int64_t available = mValidBytes + distance;
    if (available < 0) {  // a forward jump
        const int64_t next = mBufferPosition + mBufferSize;
        const bool inReadAhead =
            mReadPending && position < next + std::min<int64_t>(mBufferSize, mBytesLeft);
        int filled = 0;
        if (inReadAhead ? FillInReadBuffer(filled) != 0
                        : InitReadBuffer(mFile, position, mBufferSize, 0) != 0)
            return mCurrentBuffer && position >= mFileSize ? 0 : -1;
        return ReadBuffer(position, destination, count);
    }
    if (available >= count) return CopyOut(position, destination, count);
    const int head = CopyOut(position, destination, static_cast<int>(available));
    int filled = 0;
    if (FillInReadBuffer(filled) != 0) return -1;
    return head + CopyOut(mBufferPosition, destination + head, std::min(filled, count - head));
}

int AsyncReadBuffer::DoReadPieceOutsideOfBuffer(int64_t position, char* destination, int count) {
    HANDLE event = CreateEventW(nullptr, 1, 0, nullptr);
    _OVERLAPPED own{};
    char* block = Allocate(int64_t{count} + kAround);
    if (!block) {
        CloseHandle(event);
        return -2;
    }
    int result = -3;
    if (mFile->FReadOverlapped(position, block + kFront, count, &own, event) == 0) {
        const bool ended = mFile->FWaitOverlappedCompletion(event, kSeconds) == WAIT_OBJECT_0;
        AwaitEnd(own, event);
        if (ended && Delivered(own, position, count)) {
            UMemUtils::memcpy(destination, block + kFront, static_cast<unsigned>(count));
            result = 0;
        }
    }
    VirtualFree(block, 0, MEM_RELEASE);
    CloseHandle(event);
    return result;
}

}  // namespace basicutils
