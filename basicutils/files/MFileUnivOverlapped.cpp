// MFileUniv's single overlapped transfers: the sector-widened read with its
// one retry, the write as given, and the wait on a transfer's event.
#include <basicutils/files/MFileUniv.h>
#include <basicutils/messaging/CMessageAction.h>
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/Sync.h>

#include <algorithm>
#include <cstring>

namespace basicutils {

namespace {

constexpr int64_t kSector = 2048;

// The sector of an offset as the reports print it: a 32-bit number.
int SectorOf(int64_t offset) {
    return static_cast<int>(offset / kSector);
}

MString SectorReport(const char16_t* format, int64_t offset, uint32_t error) {
    MString text;
    text.Format(format, SectorOf(offset), static_cast<int>(error));
    return text;
}

void Prepare(_OVERLAPPED* overlapped, int64_t offset, void* event) {
    std::memset(overlapped, 0, sizeof *overlapped);
    overlapped->Offset = static_cast<DWORD>(static_cast<uint64_t>(offset));
    overlapped->OffsetHigh = static_cast<DWORD>(static_cast<uint64_t>(offset) >> 32);
    overlapped->hEvent = event;
}

// The answer of a ReadFile that counts as started: 0, else the error.
uint32_t ReadStarted(BOOL answer) {
    if (answer) return 0;
    const uint32_t error = GetLastError();
    return error == ERROR_IO_PENDING || error == ERROR_HANDLE_EOF ? 0 : error;
}

}  // namespace

uint32_t MFileUniv::FReadOverlapped(int64_t offset, char* buffer, int32_t size,
                                    _OVERLAPPED* overlapped, void* event) {
    mSectorSkew = static_cast<int32_t>(offset % kSector);
    const int64_t start = offset - mSectorSkew;
    Prepare(overlapped, start, event);
    const int64_t wanted = static_cast<int64_t>(size) + mSectorSkew;
    const auto count = static_cast<DWORD>((wanted + kSector - 1) / kSector * kSector);
    char* at = buffer - mSectorSkew;
    DWORD read = 0;
    const uint32_t first = ReadStarted(ReadFile(mHandle, at, count, &read, overlapped));
    if (first == 0) return 0;
    CMessageAction::Warning(
        nullptr,
        SectorReport(u"Retry ReadFile at sector %d due to Win32 error %d ...", offset, first));
    const uint32_t second = ReadStarted(ReadFile(mHandle, at, count, &read, overlapped));
    if (second == 0) return 0;
    CMessageAction::Error(
        nullptr, SectorReport(u"ReadFile at sector %d failed, Win32 error %d", offset, second));
    return second;
}

uint32_t MFileUniv::FWriteOverlapped(int64_t offset, char* buffer, int32_t size,
                                     _OVERLAPPED* overlapped, void* event) {
    Prepare(overlapped, offset, event);
    DWORD written = 0;
    if (WriteFile(mHandle, buffer, static_cast<DWORD>(size), &written, overlapped)) return 0;
    const uint32_t error = GetLastError();
    if (error == ERROR_IO_PENDING) return 0;
    CMessageAction::Error(nullptr,
                          SectorReport(u"WriteFile failed at sector %d, error %d", offset, error));
    return error;
}

uint32_t MFileUniv::FWaitOverlappedCompletion(void* event, uint32_t seconds) {
    // The longest finite wait: a very long time-out never turns into none.
    const uint64_t ms = std::min<uint64_t>(uint64_t{seconds} * 1000, INFINITE - 1);
    const DWORD answer = WaitForSingleObject(event, static_cast<DWORD>(ms));
    ResetEvent(event);
    return answer;
}

}  // namespace basicutils
