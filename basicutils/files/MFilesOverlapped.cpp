// MFiles: asynchronous reading at logical offsets, and the concatenation
// operations of the open segment.
#include <basicutils/files/MFiles.h>
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/Sync.h>

namespace basicutils {

namespace {
constexpr uint32_t kFailed = 0xFFFFFFFF;
constexpr uint32_t kPieceWaitSeconds = 120;
}  // namespace

void MFiles::LookUpSegment() {
    mSegmentSize = mCurrentFile.GetSize();
    mSegmentEnd = mSegmentSize;
    for (int i = 1; i < mCurrentFileNum; ++i) {
        MFileUniv segment;
        struct _stati64 status {};
        if (segment.FStat(*SpecAt(i), &status) == 0) mSegmentEnd += status.st_size;
    }
}

uint32_t MFiles::NextSegmentOverlapped() {
    const int opened = MoveTo(mCurrentFileNum + 1, mOpenMode);
    if (opened < 0) return static_cast<uint32_t>(opened);
    mSegmentSize = mCurrentFile.GetSize();
    mSegmentEnd += mSegmentSize;
    return 0;
}

// Where the read starts is found from mSegmentEnd and mSegmentSize, one
// segment at a time. A read that crosses segment ends is read piece by
// piece, each waited for on an event of its own, and only the last piece
// goes out through the caller's overlapped record and event.
uint32_t MFiles::FReadOverlapped(int64_t offset, char* buffer, int32_t& size,
                                 _OVERLAPPED* overlapped, void* event) {
    if (mCurrentFileNum < 1) return kFailed;
    if (mSegmentEnd == 0) LookUpSegment();
    while (offset < mSegmentEnd - mSegmentSize) {
        if (mCurrentFileNum == 1) return kFailed;
        const int64_t leaving = mSegmentSize;
        const int opened = MoveTo(mCurrentFileNum - 1, mOpenMode);
        if (opened < 0) return static_cast<uint32_t>(opened);
        mSegmentEnd -= leaving;
        mSegmentSize = mCurrentFile.GetSize();
    }
    while (offset >= mSegmentEnd) {
        if (mCurrentFileNum >= GetFileNum()) {
            size = 0;
            return ERROR_HANDLE_EOF;
        }
        if (const uint32_t failed = NextSegmentOverlapped()) return failed;
    }
    int64_t local = offset - (mSegmentEnd - mSegmentSize);
    int64_t available = mSegmentEnd - offset;
    if (size <= available)
        return mCurrentFile.FReadOverlapped(local, buffer, size, overlapped, event);

    HANDLE piece = CreateEventW(nullptr, 1, 0, nullptr);
    int32_t done = 0;
    uint32_t answer = 0;
    while (size - done > available) {
        const auto part = static_cast<int32_t>(available);
        answer = mCurrentFile.FReadOverlapped(local, buffer + done, part, overlapped, piece);
        if (answer == 0) answer = mCurrentFile.FWaitOverlappedCompletion(piece, kPieceWaitSeconds);
        if (answer != 0) break;
        done += part;
        if (mCurrentFileNum >= GetFileNum()) {
            size = done;
            answer = ERROR_HANDLE_EOF;
            break;
        }
        answer = NextSegmentOverlapped();
        if (answer != 0) break;
        local = 0;
        available = mSegmentSize;
    }
    CloseHandle(piece);
    if (answer != 0) return answer;
    return mCurrentFile.FReadOverlapped(local, buffer + done, size - done, overlapped, event);
}

uint32_t MFiles::FWaitOverlappedCompletion(void* event, uint32_t seconds) {
    return mCurrentFile.FWaitOverlappedCompletion(event, seconds);
}

int32_t MFiles::ConcatInitialize(int32_t blockSize, int64_t outputOffset) {
    return mCurrentFile.ConcatInitialize(blockSize, outputOffset);
}

int32_t MFiles::ConcatFile(char16_t* path, int32_t unused, bool& cancel) {
    return mCurrentFile.ConcatFile(path, unused, cancel, -1);
}

int32_t MFiles::ConcatBufferSynchronously(char* buffer, int32_t size) {
    return mCurrentFile.ConcatBufferSynchronously(buffer, size);
}

}  // namespace basicutils
