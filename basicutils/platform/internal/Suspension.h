// Internals of thread suspension, shared by the library's own code and its
// tests; not installed.
//
// A thread is never stopped while it holds a lock of this library. Every
// lock the library takes is therefore taken through LibraryLock (or is a
// CCriticalSection, which counts itself): the count of held library locks
// is per thread, rises before the lock is requested and falls after it is
// released, so that the count is never lower than the truth. When the last
// lock is released and a suspension waits, the thread stops right there.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/platform/Handles.h>

#include <mutex>

namespace basicutils::detail {

// The calling thread enters or leaves a region that holds a library lock.
// EnterLockRegion returns true, for use in member initialisers.
bool EnterLockRegion();
void LeaveLockRegion();

// A moment at which the calling thread may stop: code of the library that
// has just come back from the kernel (a sleep) and holds no lock calls it, so
// that a thread which spends its time in such calls still stops promptly.
void SafePoint();

// std::unique_lock with the region counted around it.
template <class Mutex>
class LibraryLock {
  public:
    explicit LibraryLock(Mutex& mutex) : mCounted(EnterLockRegion()), mLock(mutex) {}
    ~LibraryLock() { Unlock(); }
    LibraryLock(const LibraryLock&) = delete;
    LibraryLock& operator=(const LibraryLock&) = delete;

    // Leaves the lock before the end of the scope.
    void Unlock() {
        if (!mCounted) return;
        if (mLock.owns_lock()) mLock.unlock();
        mCounted = false;
        LeaveLockRegion();
    }
    // For condition variables, which release and retake it while waiting.
    std::unique_lock<Mutex>& Held() { return mLock; }

  private:
    bool mCounted;  // declared first: counted before the lock is requested
    std::unique_lock<Mutex> mLock;
};

// The real-time signal that stops threads.
BASICUTILS_EXPORT int SuspendSignal();

// Waits until the thread behind `thread` has actually stopped after a
// SuspendThread; false when it hasn't within `milliseconds` (or the handle
// is not a thread). For tests.
BASICUTILS_EXPORT bool WaitForThreadStop(HANDLE thread, DWORD milliseconds);

}  // namespace basicutils::detail
