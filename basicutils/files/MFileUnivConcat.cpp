// MFileUniv's concatenation: whole files and memory blocks appended to the
// overlapped output through two page-aligned buffers, a read of the next
// piece in flight while the last one is written, each piece padded with
// zeros to the block. Completion routines run on the calling thread inside
// its alertable waits.
#include <basicutils/files/MFileUniv.h>
#include <basicutils/messaging/CMessageAction.h>
#include <basicutils/messaging/CThreadStatus.h>
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/Sync.h>
#include <basicutils/platform/VirtualMemory.h>

#include <algorithm>
#include <atomic>
#include <cstring>

namespace basicutils {

namespace {

constexpr uint32_t kNoReason = 0xFFFFFFFF;
constexpr int64_t kSector = 2048;

void ConcatCompletion(DWORD error, DWORD bytes, _OVERLAPPED* overlapped) {
    auto* context = reinterpret_cast<SCompletionContext*>(overlapped);
    if (context->mMagic == kCompletionMagic) {
        context->mCompletionCode = error;
        context->mBytesTransferred = bytes;
    }
    SetEvent(overlapped->hEvent);
}

int64_t PositionOf(const SCompletionContext& context) {
    return static_cast<int64_t>((static_cast<uint64_t>(context.mOverlapped.OffsetHigh) << 32) |
                                context.mOverlapped.Offset);
}

void SetPosition(SCompletionContext& context, int64_t position) {
    context.mOverlapped.Offset = static_cast<DWORD>(static_cast<uint64_t>(position));
    context.mOverlapped.OffsetHigh = static_cast<DWORD>(static_cast<uint64_t>(position) >> 32);
}

// Moves a context's position on by a count and makes its event ready for
// the next transfer.
void MoveOn(SCompletionContext& context, uint32_t count) {
    SetPosition(context, PositionOf(context) + count);
    ResetEvent(context.mOverlapped.hEvent);
}

uint64_t RoundUp64(uint64_t size, int32_t block) {
    if (block <= 0) return size;
    const uint64_t unit = static_cast<uint32_t>(block);
    return (size + unit - 1) / unit * unit;
}

uint32_t RoundUp(uint32_t size, int32_t block) {
    return static_cast<uint32_t>(RoundUp64(size, block));
}

uint32_t ReasonOr(uint32_t fallback) {
    const uint32_t error = GetLastError();
    return error ? error : fallback;
}

// Raises the system's text for a Win32 number, when it has one.
void ReportSystemText(uint32_t error) {
    char16_t* text = nullptr;
    const uint32_t flags =
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_FROM_SYSTEM;
    if (FormatMessageW(flags, nullptr, error, 0x400, reinterpret_cast<char16_t*>(&text), 0,
                       nullptr) != 0 &&
        text)
        CMessageAction::Error(nullptr, text);
    LocalFree(text);
}

// Waits, alertable, until the context's routine has set its event. The
// answer is the wait's: 0, or WAIT_FAILED. Even then the call returns only
// once the transfer has ended and its routine has run, so that no routine
// ever reaches a context or buffer that is gone. No deadline: the transfer
// is in the engine, which ends every transfer.
DWORD AwaitContext(SCompletionContext& context) {
    DWORD answer;
    do {
        answer = WaitForSingleObjectEx(context.mOverlapped.hEvent, INFINITE, 1);
    } while (answer == WAIT_IO_COMPLETION);
    if (answer == WAIT_FAILED) {
        const uint32_t reason = GetLastError();
        while (!HasOverlappedIoCompleted(&context.mOverlapped)) SleepEx(1, 1);
        SleepEx(0, 1);  // the routine, queued before the transfer counted as ended
        SetLastError(reason);
    }
    return answer;
}

}  // namespace

int32_t MFileUniv::ConcatInitialize(int32_t blockSize, int64_t outputOffset) {
    ConcatRelease();
    SConcatState& c = mConcat;
    c.mOutputHandle = mHandle;
    c.mBlockSize = blockSize;
    SetPosition(c.mWriteContext, outputOffset);
    const int64_t bufferSize = int64_t{blockSize} * kSector;
    c.mBufferSize = static_cast<uint32_t>(bufferSize);
    c.mWriteContext.mMagic = kCompletionMagic;
    c.mWriteContext.mOverlapped.hEvent = CreateEventW(nullptr, 1, 0, nullptr);
    if (bufferSize <= 0 || bufferSize > UINT32_MAX) {
        c.mLastError = ERROR_INVALID_PARAMETER;
        return -1;
    }
    c.mBufferA =
        static_cast<char*>(VirtualAlloc(nullptr, c.mBufferSize, MEM_COMMIT, PAGE_READWRITE));
    if (!c.mBufferA) {
        c.mLastError = GetLastError();
        return -1;
    }
    c.mBufferB =
        static_cast<char*>(VirtualAlloc(nullptr, c.mBufferSize, MEM_COMMIT, PAGE_READWRITE));
    if (!c.mBufferB) {
        c.mLastError = GetLastError();
        VirtualFree(c.mBufferA, 0, MEM_RELEASE);
        c.mBufferA = nullptr;
        return -1;
    }
    return 0;
}

void MFileUniv::ConcatRelease() {
    // Nothing is in flight here: every run waits for its transfers to end.
    SConcatState& c = mConcat;
    if (c.mBufferA) VirtualFree(c.mBufferA, 0, MEM_RELEASE);
    if (c.mBufferB) VirtualFree(c.mBufferB, 0, MEM_RELEASE);
    if (c.mWriteContext.mOverlapped.hEvent) CloseHandle(c.mWriteContext.mOverlapped.hEvent);
    c = SConcatState();
}

int64_t MFileUniv::ConcatPosition() const {
    return PositionOf(mConcat.mWriteContext);
}

void MFileUniv::StartConcatWrite() {
    SConcatState& c = mConcat;
    c.mWriteBuffer = c.mReadBuffer;
    c.mWriteSize = c.mReadSize;
    if (c.mReadSize < c.mBufferSize) {  // the last piece: pad it to the block
        const uint32_t padding = c.mPaddedSize - c.mSourceSize;
        std::memset(c.mWriteBuffer + c.mWriteSize, 0, padding);
        c.mWriteSize += padding;
    }
    if (!WriteFileEx(c.mOutputHandle, c.mWriteBuffer, c.mWriteSize, &c.mWriteContext.mOverlapped,
                     &ConcatCompletion))
        c.mLastError = ReasonOr(kNoReason);
}

bool MFileUniv::StartConcatRead(SCompletionContext& read) {
    SConcatState& c = mConcat;
    c.mReadSize = std::min(c.mBufferSize, c.mBytesToRead);
    c.mReadBuffer = c.mReadBuffer == c.mBufferA ? c.mBufferB : c.mBufferA;
    if (ReadFileEx(c.mSourceHandle, c.mReadBuffer, c.mReadSize, &read.mOverlapped,
                   &ConcatCompletion))
        return true;
    c.mLastError = ReasonOr(kNoReason);
    return false;
}

uint32_t MFileUniv::WaitForContext(SCompletionContext& context) {
    const DWORD answer = AwaitContext(context);
    if (answer == WAIT_FAILED) mConcat.mLastError = ReasonOr(answer);
    return answer;
}

void MFileUniv::RecordCountFailure(const SCompletionContext& context, bool write) {
    // The transfer's own reason first: several routines may have run in the
    // wait, each leaving its code in GetLastError. A transfer that ended short
    // without one ran into the end of the source or out of disk space.
    const uint32_t shortReason = write ? ERROR_DISK_FULL : ERROR_HANDLE_EOF;
    mConcat.mLastError = context.mCompletionCode ? context.mCompletionCode : shortReason;
}

void MFileUniv::AccountWrite(uint32_t count, bool progress) {
    SConcatState& c = mConcat;
    c.mBytesWritten += count;
    MoveOn(c.mWriteContext, count);
    if (progress) CThreadStatus::AdvancePosition(count >> 11);
    c.mWriteContext.mBytesTransferred = 0;
}

void MFileUniv::SettleConcat(SCompletionContext& read) {
    SConcatState& c = mConcat;
    if (c.mReadPending) {  // its data is not wanted any more
        CancelIo(c.mSourceHandle);
        AwaitContext(read);
        c.mReadPending = 0;
    }
    if (c.mWritePending) {  // a write that was started is kept, and counted
        AwaitContext(c.mWriteContext);
        c.mWritePending = 0;
        if (c.mWriteContext.mBytesTransferred == c.mWriteSize)
            AccountWrite(c.mWriteSize, true);
        else if (c.mLastError == 0)
            RecordCountFailure(c.mWriteContext, true);
    }
}

int32_t MFileUniv::ConcatFile(const char16_t* path, int32_t, bool& cancel, int32_t) {
    SConcatState& c = mConcat;
    if (!c.mBufferA || !c.mBufferB) return -1;
    SCompletionContext read{};
    read.mOverlapped.hEvent = CreateEventW(nullptr, 1, 0, nullptr);
    read.mMagic = kCompletionMagic;
    int32_t result = -1;
    c.mWriteContext.mCompletionCode = 0;
    c.mWriteContext.mBytesTransferred = 0;
    c.mLastError = 0;
    c.mReadPending = 0;
    c.mWritePending = 0;

    c.mSourceHandle = CreateFileW(path, GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                                  FILE_FLAG_OVERLAPPED | FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    if (c.mSourceHandle == INVALID_HANDLE_VALUE) {
        CloseHandle(read.mOverlapped.hEvent);
        return -1;
    }
    DWORD high = 0;
    const DWORD low = GetFileSize(c.mSourceHandle, &high);
    const uint64_t size = (uint64_t{high} << 32) | low;
    if (low == INVALID_FILE_SIZE && GetLastError() != ERROR_SUCCESS) {
        result = static_cast<int32_t>(GetLastError());
    } else if (size == 0) {
        result = 0;
    } else if (RoundUp64(size, c.mBlockSize) > UINT32_MAX) {
        result = static_cast<int32_t>(ERROR_NOT_SUPPORTED);  // see the header
    } else {
        result = RunConcat(read, static_cast<uint32_t>(size), cancel);
    }
    CloseHandle(read.mOverlapped.hEvent);
    CloseHandle(c.mSourceHandle);
    c.mSourceHandle = INVALID_HANDLE_VALUE;
    if (c.mLastError != 0) ReportSystemText(c.mLastError);
    return result;
}

int32_t MFileUniv::RunConcat(SCompletionContext& read, uint32_t size, bool& cancel) {
    SConcatState& c = mConcat;
    c.mSourceSize = size;
    c.mPaddedSize = RoundUp(size, c.mBlockSize);
    c.mBytesWritten = 0;
    c.mBytesToRead = size;
    c.mReadSize = std::min(c.mBufferSize, size);
    c.mReadBuffer = c.mBufferA;
    if (!ReadFileEx(c.mSourceHandle, c.mReadBuffer, c.mReadSize, &read.mOverlapped,
                    &ConcatCompletion)) {
        c.mLastError = ReasonOr(kNoReason);
        return -1;
    }
    c.mReadPending = 1;
    bool waitFailed = false;
    for (bool more = true;;) {
        if (c.mReadPending) {
            if (WaitForContext(read) != 0) {
                waitFailed = true;
                break;
            }
            c.mReadPending = 0;
            if (read.mBytesTransferred != c.mReadSize) {
                RecordCountFailure(read, false);
                break;
            }
            c.mBytesToRead -= read.mBytesTransferred;
            MoveOn(read, read.mBytesTransferred);
            read.mBytesTransferred = 0;
        }
        if (c.mWritePending) {
            if (WaitForContext(c.mWriteContext) != 0) {
                waitFailed = true;
                break;
            }
            c.mWritePending = 0;
            if (c.mWriteContext.mBytesTransferred != c.mWriteSize) {
                RecordCountFailure(c.mWriteContext, true);
                break;
            }
            AccountWrite(c.mWriteSize, true);
        }
        if (c.mBytesWritten < c.mPaddedSize) {
            StartConcatWrite();
            if (c.mLastError != 0) break;
            c.mWritePending = 1;
        } else {
            more = false;
        }
        if (c.mBytesToRead > 0) {
            if (!StartConcatRead(read)) break;
            c.mReadPending = 1;
        }
        // Another thread may set the flag: it is read as an atomic, once a pass.
        if (std::atomic_ref<bool>(cancel).load(std::memory_order_relaxed) || !more) break;
    }
    SettleConcat(read);
    if (waitFailed) return -1;
    return c.mLastError == 0 ? 0 : -1;
}

int32_t MFileUniv::ConcatBufferSynchronously(char* buffer, int32_t size) {
    SConcatState& c = mConcat;
    if (!c.mBufferA || size < 0 || static_cast<uint32_t>(size) > c.mBufferSize) return -1;
    c.mReadBuffer = c.mBufferA;
    std::memcpy(c.mReadBuffer, buffer, static_cast<size_t>(size));
    c.mReadSize = c.mSourceSize = static_cast<uint32_t>(size);
    c.mPaddedSize = RoundUp(c.mSourceSize, c.mBlockSize);
    c.mLastError = 0;
    c.mWriteContext.mBytesTransferred = 0;
    StartConcatWrite();
    if (c.mLastError != 0) return -1;
    c.mWritePending = 1;
    const DWORD answer = AwaitContext(c.mWriteContext);
    c.mWritePending = 0;
    if (answer != 0 || c.mWriteContext.mBytesTransferred != c.mWriteSize) return -1;
    MoveOn(c.mWriteContext, c.mWriteSize);
    c.mWriteContext.mBytesTransferred = 0;
    return 0;
}

}  // namespace basicutils
