// Transfers on file handles: ReadFile and WriteFile, synchronous or
// overlapped, and the completion-routine forms ReadFileEx and WriteFileEx.
//
// Overlapped handles (CreateFileW with FILE_FLAG_OVERLAPPED). A transfer
// needs an _OVERLAPPED whose Offset and OffsetHigh say where it happens;
// there is no file pointer. ReadFile and WriteFile reset hEvent, hand the
// transfer to the asynchronous engine and answer FALSE with ERROR_IO_PENDING
// at once, also for a read at or past the end of the file. When it ends:
//   - InternalHigh holds the bytes moved and Internal the Win32 error code
//     (0 for success; this port stores Win32 codes there, not kernel status
//     values); while it runs Internal holds STATUS_PENDING;
//   - hEvent, when not null, is set (the fields are written before);
//   - a read that starts at or past the end moves 0 bytes and ends with
//     ERROR_HANDLE_EOF; one that reaches the end ends with success and the
//     bytes up to it (a short count);
//   - a transfer that fails part-way ends with success and the bytes moved
//     before the failure, as the system does; the error itself comes only
//     when nothing moved.
// The caller keeps the buffer, the _OVERLAPPED and the event alive until the
// transfer has ended, and issues one transfer per _OVERLAPPED at a time.
//
// ReadFileEx and WriteFileEx (overlapped handles only) do not touch hEvent,
// which is the caller's to use. At the end they queue the completion routine
// to the thread that issued the transfer; it runs there only inside an
// alertable wait (WaitForSingleObjectEx, SleepEx with alertable TRUE), which
// then answers WAIT_IO_COMPLETION. The routine gets the error code, the count
// and the _OVERLAPPED, whose Internal fields are already filled, and finds
// the error code also in GetLastError, so code that reads GetLastError after
// its wait sees why the transfer ended. A routine whose thread has ended is
// dropped.
//
// Failures found before the transfer starts answer FALSE with the reason in
// GetLastError, and nothing is signalled or queued: a bad handle
// (ERROR_INVALID_HANDLE), a missing _OVERLAPPED or routine, or an Ex call on
// a synchronous handle (ERROR_INVALID_PARAMETER), reading a handle opened
// for writing only or the reverse (ERROR_ACCESS_DENIED), and a refusal of
// the engine (its errno, translated).
//
// Synchronous handles. The transfer runs in the call and the bytes moved go
// to *bytes (which may be null). Without an _OVERLAPPED it starts at the
// handle's position; with one at its offset, and its fields and event are
// filled as above. Either way the position ends behind the bytes moved. At
// the end of the file a plain read answers TRUE with 0 bytes, a read with an
// _OVERLAPPED FALSE with ERROR_HANDLE_EOF.
//
// Direct I/O. On a handle with FILE_FLAG_NO_BUFFERING that the file system
// let go direct, a transfer whose buffer, offset and count are all
// multiples of 512 bytes goes direct; any other, and one the device refuses
// (EINVAL), is done buffered through a second descriptor of the same file,
// opened at the first such need. The caller sees the same bytes either way.
//
// GetOverlappedResult answers the outcome of an overlapped transfer: TRUE
// with the count, or FALSE with its error; while it runs FALSE with
// ERROR_IO_INCOMPLETE, or, with `wait`, after waiting for its event (which a
// transfer with a null hEvent lacks: ERROR_INVALID_PARAMETER).
#pragma once

#include <basicutils/Export.h>
#include <basicutils/platform/Handles.h>

#include <atomic>
#include <cstdint>

namespace basicutils {

inline constexpr ULONG_PTR STATUS_PENDING = 0x103;

// The request block of an overlapped transfer, with the fields that Win64
// makes pointer-wide kept pointer-wide.
struct _OVERLAPPED {
    ULONG_PTR Internal;      // STATUS_PENDING, then the Win32 error code
    ULONG_PTR InternalHigh;  // the bytes moved
    DWORD Offset;
    DWORD OffsetHigh;
    HANDLE hEvent;
};
using OVERLAPPED = _OVERLAPPED;
using LPOVERLAPPED = _OVERLAPPED*;

using LPOVERLAPPED_COMPLETION_ROUTINE = void (*)(DWORD errorCode, DWORD bytesTransferred,
                                                 _OVERLAPPED* overlapped);

BASICUTILS_EXPORT BOOL ReadFile(HANDLE file, void* buffer, DWORD count, DWORD* bytesRead,
                                _OVERLAPPED* overlapped);
BASICUTILS_EXPORT BOOL WriteFile(HANDLE file, const void* buffer, DWORD count, DWORD* bytesWritten,
                                 _OVERLAPPED* overlapped);
// TRUE when the transfer started; the routine then runs exactly once.
BASICUTILS_EXPORT BOOL ReadFileEx(HANDLE file, void* buffer, DWORD count, _OVERLAPPED* overlapped,
                                  LPOVERLAPPED_COMPLETION_ROUTINE routine);
BASICUTILS_EXPORT BOOL WriteFileEx(HANDLE file, const void* buffer, DWORD count,
                                   _OVERLAPPED* overlapped,
                                   LPOVERLAPPED_COMPLETION_ROUTINE routine);
BASICUTILS_EXPORT BOOL GetOverlappedResult(HANDLE file, _OVERLAPPED* overlapped, DWORD* bytes,
                                           BOOL wait);

// Whether an overlapped transfer has ended; safe to ask from any thread.
inline bool HasOverlappedIoCompleted(_OVERLAPPED* overlapped) {
    return std::atomic_ref<ULONG_PTR>(overlapped->Internal).load(std::memory_order_acquire) !=
           STATUS_PENDING;
}

}  // namespace basicutils
