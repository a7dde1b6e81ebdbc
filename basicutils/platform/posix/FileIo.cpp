// ReadFile, WriteFile and their overlapped and completion-routine forms on
// the file objects of CreateFileW, over the asynchronous engine.
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/FileIo.h>
#include <basicutils/platform/Sync.h>
#include <basicutils/platform/internal/AsyncIo.h>
#include <basicutils/platform/posix/FileObject.h>
#include <basicutils/platform/posix/ThreadState.h>
#include <fcntl.h>
#include <unistd.h>

#include <memory>
#include <string>

namespace basicutils {
namespace detail {

int FileObject::BufferedDescriptor() {
    if (!mDirect) return mFd;
    const int known = mBufferedFd.load(std::memory_order_acquire);
    if (known >= 0) return known;
    std::lock_guard<std::mutex> g(mBufferedLock);
    if (!mBufferedTried) {
        mBufferedTried = true;
        // The descriptor's own entry reaches the same file even after a
        // rename or an unlink of its name.
        const std::string self = "/proc/self/fd/" + std::to_string(mFd);
        int flags = CanWrite() ? (CanRead() ? O_RDWR : O_WRONLY) : O_RDONLY;
        if (mFlags & FILE_FLAG_WRITE_THROUGH) flags |= O_DSYNC;
        const int fd =
            RetryOnEintr([&] { return CurrentEnv().Open(self.c_str(), flags | O_CLOEXEC, 0); });
        mBufferedFd.store(fd, std::memory_order_release);
    }
    return mBufferedFd.load(std::memory_order_relaxed);
}

void CancelTransfers(FileObject& file) {
    AsyncBackend& engine = TheAsyncBackend();
    engine.Cancel(file.Descriptor());
    const int buffered = file.OpenedBufferedDescriptor();
    if (buffered >= 0) engine.Cancel(buffered);
}

namespace {

constexpr uintptr_t kDirectAlignment = 512;

int64_t OffsetOf(const _OVERLAPPED& overlapped) {
    return static_cast<int64_t>((static_cast<uint64_t>(overlapped.OffsetHigh) << 32) |
                                overlapped.Offset);
}

// Whether the page cache holds every page of a range; asking reads nothing.
bool Cached(int fd, int64_t offset, DWORD count) {
    static const int64_t page = ::sysconf(_SC_PAGESIZE);
    const int64_t first = offset / page, end = (offset + count + page - 1) / page;
    uint64_t cached = 0;
    return count > 0 &&
           CurrentEnv().CachedPages(fd, first * page, (end - first) * page, &cached) == 0 &&
           cached == static_cast<uint64_t>(end - first);
}

// The descriptor a transfer goes through: the direct one when it can take
// the transfer as it is and, for a read, the page cache does not already
// hold the range; else the buffered one (or, when none can be had, the direct
// one, which then refuses what it cannot take).
int DescriptorFor(FileObject& file, bool write, const void* buffer, DWORD count, int64_t offset) {
    if (!file.Direct()) return file.Descriptor();
    const bool aligned = reinterpret_cast<uintptr_t>(buffer) % kDirectAlignment == 0 &&
                         count % kDirectAlignment == 0 &&
                         static_cast<uint64_t>(offset) % kDirectAlignment == 0;
    if (aligned && (write || !Cached(file.Descriptor(), offset, count))) return file.Descriptor();
    const int buffered = file.BufferedDescriptor();
    return buffered >= 0 ? buffered : file.Descriptor();
}

// Whether a failure of direct I/O should be tried again buffered.
bool RetryBuffered(FileObject& file, int fd, int error) {
    return error == EINVAL && file.Direct() && fd == file.Descriptor() &&
           file.BufferedDescriptor() >= 0;
}

// The Win32 code for the end of a transfer: bytes moved, or -errno.
DWORD CompletionError(bool write, DWORD count, int64_t result) {
    if (result < 0) return ErrnoToWin32Error(static_cast<int>(-result));
    if (!write && result == 0 && count > 0) return ERROR_HANDLE_EOF;
    return ERROR_SUCCESS;
}

void Complete(_OVERLAPPED* overlapped, DWORD error, DWORD bytes) {
    overlapped->InternalHigh = bytes;
    std::atomic_ref<ULONG_PTR>(overlapped->Internal).store(error, std::memory_order_release);
}

// ---- overlapped transfers ---------------------------------------------------

// A transfer in the engine, with what its end must reach. It holds the file
// (so the descriptor outlives it) and the event (so its handle cannot be
// reused for another object before the end).
struct Request {
    AsyncTransfer transfer;
    FileObject* file;
    _OVERLAPPED* overlapped;
    KernelObject* event;  // with hEvent; null for the routine forms
    LPOVERLAPPED_COMPLETION_ROUTINE routine;
    std::shared_ptr<ThreadState> issuer;  // for a routine
    bool retried = false;

    ~Request() {
        if (event) event->Release();
        file->Release();
    }
};

// A completion routine waiting in its thread's queue.
struct RoutineCall {
    LPOVERLAPPED_COMPLETION_ROUTINE routine;
    DWORD error;
    DWORD bytes;
    _OVERLAPPED* overlapped;
};

void RunRoutine(ULONG_PTR data) {
    std::unique_ptr<RoutineCall> call(reinterpret_cast<RoutineCall*>(data));
    SetLastError(call->error);
    call->routine(call->error, call->bytes, call->overlapped);
}

// Runs on an engine thread when a transfer ends.
void Ended(AsyncTransfer* transfer, int64_t result) {
    auto* request = static_cast<Request*>(transfer->context);
    if (result < 0 && !request->retried &&
        RetryBuffered(*request->file, transfer->fd, static_cast<int>(-result))) {
        request->retried = true;
        transfer->fd = request->file->BufferedDescriptor();
        transfer->direct = false;
        if (TheAsyncBackend().Submit(transfer)) return;
        result = -errno;
    }
    std::unique_ptr<Request> owned(request);
    const DWORD error = CompletionError(transfer->write, transfer->count, result);
    const DWORD bytes = result > 0 ? static_cast<DWORD>(result) : 0;
    _OVERLAPPED* overlapped = request->overlapped;
    HANDLE event = overlapped->hEvent;
    Complete(overlapped, error, bytes);  // the caller may free it from here on
    if (request->event) {
        SetEvent(event);
    } else if (request->routine) {
        auto* call = new RoutineCall{request->routine, error, bytes, overlapped};
        if (!request->issuer->QueueApc(&RunRoutine, reinterpret_cast<ULONG_PTR>(call)))
            delete call;  // the issuing thread has ended
    }
}

BOOL Fail(DWORD error) {
    SetLastError(error);
    return 0;
}

BOOL StartOverlapped(FileObject& file, bool write, void* buffer, DWORD count,
                     _OVERLAPPED* overlapped, LPOVERLAPPED_COMPLETION_ROUTINE routine) {
    const int64_t offset = OffsetOf(*overlapped);
    auto request = std::make_unique<Request>();
    file.AddRef();
    request->file = &file;
    request->overlapped = overlapped;
    request->routine = routine;
    request->event = nullptr;
    if (routine) {
        request->issuer = CurrentThreadState();
    } else if (overlapped->hEvent) {
        request->event = KernelObject::Acquire(overlapped->hEvent);
        ResetEvent(overlapped->hEvent);
    }
    const int fd = DescriptorFor(file, write, buffer, count, offset);
    request->transfer = AsyncTransfer{fd, write, buffer, count, offset, &Ended, request.get()};
    request->transfer.direct = file.Direct() && fd == file.Descriptor();
    overlapped->InternalHigh = 0;
    std::atomic_ref<ULONG_PTR>(overlapped->Internal).store(STATUS_PENDING);
    if (!TheAsyncBackend().Submit(&request->transfer)) {
        const DWORD error = ErrnoToWin32Error(errno);
        Complete(overlapped, error, 0);
        return Fail(error);
    }
    request.release();  // Ended owns it now
    if (!routine) return Fail(ERROR_IO_PENDING);
    SetLastError(ERROR_SUCCESS);
    return 1;
}

// ---- synchronous transfers --------------------------------------------------

BOOL Synchronous(FileObject& file, bool write, void* buffer, DWORD count, DWORD* bytes,
                 _OVERLAPPED* overlapped) {
    Env& env = CurrentEnv();
    const int own = file.Descriptor();
    int64_t offset = 0;
    if (overlapped) {
        offset = OffsetOf(*overlapped);
    } else {
        offset = RetryOnEintr([&] { return env.Lseek(own, 0, SEEK_CUR); });
        if (offset < 0) return Fail(ErrnoToWin32Error(errno));
    }
    if (overlapped && overlapped->hEvent) ResetEvent(overlapped->hEvent);
    int fd = DescriptorFor(file, write, buffer, count, offset);
    DWORD moved = 0;
    DWORD error = ERROR_SUCCESS;
    while (moved < count) {
        char* at = static_cast<char*>(buffer) + moved;
        const off_t where = static_cast<off_t>(offset + moved);
        const ssize_t n = RetryOnEintr([&] {
            return write ? env.Pwrite(fd, at, count - moved, where)
                         : env.Pread(fd, at, count - moved, where);
        });
        // Direct I/O refuses an unaligned rest too (after a short piece).
        if (n < 0 && RetryBuffered(file, fd, errno)) {
            fd = file.BufferedDescriptor();
            continue;
        }
        if (n < 0) {
            error = ErrnoToWin32Error(errno);
            break;
        }
        if (n == 0) break;
        moved += static_cast<DWORD>(n);
    }
    RetryOnEintr([&] { return env.Lseek(own, static_cast<off_t>(offset + moved), SEEK_SET); });
    if (bytes) *bytes = moved;
    if (error == ERROR_SUCCESS && overlapped && !write && moved == 0 && count > 0)
        error = ERROR_HANDLE_EOF;
    if (overlapped) {
        Complete(overlapped, error, moved);
        if (overlapped->hEvent) SetEvent(overlapped->hEvent);
    }
    return error == ERROR_SUCCESS ? 1 : Fail(error);
}

BOOL Transfer(HANDLE handle, bool write, void* buffer, DWORD count, DWORD* bytes,
              _OVERLAPPED* overlapped, LPOVERLAPPED_COMPLETION_ROUTINE routine, bool ex) {
    if (bytes) *bytes = 0;
    FileRef ref(handle);
    if (!ref) return 0;
    FileObject& file = *ref.operator->();
    if (ex && (!overlapped || !routine || !file.Overlapped())) return Fail(ERROR_INVALID_PARAMETER);
    if (write ? !file.CanWrite() : !file.CanRead()) return Fail(ERROR_ACCESS_DENIED);
    if (!file.Overlapped()) return Synchronous(file, write, buffer, count, bytes, overlapped);
    if (!overlapped) return Fail(ERROR_INVALID_PARAMETER);
    return StartOverlapped(file, write, buffer, count, overlapped, routine);
}

}  // namespace
}  // namespace detail

BOOL ReadFile(HANDLE file, void* buffer, DWORD count, DWORD* bytesRead, _OVERLAPPED* overlapped) {
    return detail::Transfer(file, false, buffer, count, bytesRead, overlapped, nullptr, false);
}

BOOL WriteFile(HANDLE file, const void* buffer, DWORD count, DWORD* bytesWritten,
               _OVERLAPPED* overlapped) {
    return detail::Transfer(file, true, const_cast<void*>(buffer), count, bytesWritten, overlapped,
                            nullptr, false);
}

BOOL ReadFileEx(HANDLE file, void* buffer, DWORD count, _OVERLAPPED* overlapped,
                LPOVERLAPPED_COMPLETION_ROUTINE routine) {
    return detail::Transfer(file, false, buffer, count, nullptr, overlapped, routine, true);
}

BOOL WriteFileEx(HANDLE file, const void* buffer, DWORD count, _OVERLAPPED* overlapped,
                 LPOVERLAPPED_COMPLETION_ROUTINE routine) {
    return detail::Transfer(file, true, const_cast<void*>(buffer), count, nullptr, overlapped,
                            routine, true);
}

BOOL GetOverlappedResult(HANDLE file, _OVERLAPPED* overlapped, DWORD* bytes, BOOL wait) {
    detail::FileRef ref(file);
    if (!ref) return 0;
    if (!overlapped) return detail::Fail(ERROR_INVALID_PARAMETER);
    if (!HasOverlappedIoCompleted(overlapped)) {
        if (!wait) return detail::Fail(ERROR_IO_INCOMPLETE);
        if (!overlapped->hEvent) return detail::Fail(ERROR_INVALID_PARAMETER);
        // No deadline: every transfer in the engine ends, and the caller
        // asked to wait for this one.
        while (!HasOverlappedIoCompleted(overlapped))
            if (WaitForSingleObject(overlapped->hEvent, INFINITE) == WAIT_FAILED)
                return detail::Fail(ERROR_INVALID_HANDLE);
    }
    if (bytes) *bytes = static_cast<DWORD>(overlapped->InternalHigh);
    const auto error = static_cast<DWORD>(
        std::atomic_ref<ULONG_PTR>(overlapped->Internal).load(std::memory_order_acquire));
    return error == ERROR_SUCCESS ? 1 : detail::Fail(error);
}

}  // namespace basicutils
