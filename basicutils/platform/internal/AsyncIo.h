// The engine under overlapped file I/O: it runs positioned reads and writes
// in the background and tells a callback when each one ends.
//
// Two backends do the same work. io_uring hands the transfers to the kernel
// and one reaper thread collects the completions; where the kernel refuses a
// ring (an old kernel, a sandbox that forbids it) a small pool of I/O threads
// runs them with pread and pwrite instead. The choice is made once, at the
// first transfer; SelectAsyncBackend overrides it (tests run their suite on
// both).
//
// Contract of a transfer:
// - Submit either starts it and returns true, after which `done` runs exactly
//   once, on a backend thread, with the byte count or -errno; or it returns
//   false with errno set, and `done` never runs.
// - The transfer, its buffer and whatever `done` touches stay alive until
//   `done` has run. Nothing here copies the buffer.
// - Cancel(fd) ends the transfers of that descriptor that have not started
//   with -ECANCELED; one that is already running finishes normally. It does
//   not wait: the callbacks still come.
// - Drain(fd) waits until no transfer of the descriptor is left in the engine
//   (used before a descriptor is closed, so that no completion outlives it).
//
// Both backends go through the operating-system seam: a wrapper can fail a
// submission (SysCall::kAsyncSubmit) or rewrite a completion's result
// (SysCall::kAsyncComplete), and the pool's pread/pwrite are ordinary seam
// calls.
#pragma once

#include <basicutils/Export.h>

#include <cstddef>
#include <cstdint>

namespace basicutils::detail {

struct AsyncTransfer {
    int fd = -1;
    bool write = false;
    void* buffer = nullptr;
    uint32_t count = 0;
    int64_t offset = 0;
    // Called once when the transfer ends: bytes moved, or -errno.
    void (*done)(AsyncTransfer* transfer, int64_t result) = nullptr;
    void* context = nullptr;  // the caller's, untouched
    // The descriptor does direct I/O. io_uring starts a direct read from the
    // submitting thread, which the kernel does without blocking; every other
    // transfer goes to the kernel's workers, so that a copy through the page
    // cache runs beside the caller instead of inside its submission, and a
    // direct write that must allocate blocks does not hold the caller up.
    bool direct = false;
};

class BASICUTILS_EXPORT AsyncBackend {
  public:
    virtual ~AsyncBackend();
    virtual const char* Name() const = 0;
    virtual bool Submit(AsyncTransfer* transfer) = 0;
    virtual void Cancel(int fd) = 0;
    virtual void Drain(int fd) = 0;
};

enum class AsyncBackendKind { kAutomatic, kIoUring, kThreadPool };

// The engine in use; made on first call.
BASICUTILS_EXPORT AsyncBackend& TheAsyncBackend();
// Chooses the engine for the transfers to come. kIoUring falls back to the
// pool when no ring can be made; the answer is the kind now in use. Meant for
// start-up and tests: transfers in flight finish on the engine they started on.
BASICUTILS_EXPORT AsyncBackendKind SelectAsyncBackend(AsyncBackendKind kind);

}  // namespace basicutils::detail
