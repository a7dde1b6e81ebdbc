// Locks, events and waits.
//
// CCriticalSection is recursive: the thread that holds it may enter again,
// and leaves it after as many Unlocks. CSingleLock guards one CSyncObject
// for a scope: Lock waits (INFINITE by default), Unlock leaves only if this
// guard holds the object, and the destructor unlocks what is still held.
//
// Events follow the system they imitate: manual-reset events stay set until
// ResetEvent, auto-reset events let exactly one wait through per SetEvent.
//
// Waits are alertable on request. Every thread has a queue of asynchronous
// procedure calls (QueueUserAPC); an alertable wait runs all that wait, on
// the waiting thread, and returns WAIT_IO_COMPLETION instead of waiting on.
// This is how completion routines of asynchronous I/O reach the thread that
// issued the I/O. A non-alertable wait leaves the calls queued.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/platform/Handles.h>

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>

namespace basicutils {

inline constexpr DWORD WAIT_OBJECT_0 = 0;
inline constexpr DWORD WAIT_IO_COMPLETION = 0xC0;
inline constexpr DWORD WAIT_TIMEOUT = 258;
inline constexpr DWORD WAIT_FAILED = 0xFFFFFFFFu;

using PAPCFUNC = void (*)(ULONG_PTR data);

// Events. `security` and `name` are ignored (events are never shared by name).
BASICUTILS_EXPORT HANDLE CreateEventW(void* security, BOOL manualReset, BOOL initialState,
                                      const char16_t* name);
BASICUTILS_EXPORT BOOL SetEvent(HANDLE event);
BASICUTILS_EXPORT BOOL ResetEvent(HANDLE event);

// WAIT_OBJECT_0, WAIT_TIMEOUT, WAIT_IO_COMPLETION (alertable waits only) or
// WAIT_FAILED for a bad handle.
BASICUTILS_EXPORT DWORD WaitForSingleObject(HANDLE object, DWORD milliseconds);
BASICUTILS_EXPORT DWORD WaitForSingleObjectEx(HANDLE object, DWORD milliseconds, BOOL alertable);
// Waits for nothing but queued calls: runs them and returns
// WAIT_IO_COMPLETION, or WAIT_TIMEOUT (0 when not alertable and time ran out).
BASICUTILS_EXPORT DWORD SleepEx(DWORD milliseconds, BOOL alertable);

// Queues function(data) for the thread behind a thread handle.
BASICUTILS_EXPORT DWORD QueueUserAPC(PAPCFUNC function, HANDLE thread, ULONG_PTR data);
// The same by thread ID; any thread that has an ID can receive calls.
BASICUTILS_EXPORT BOOL QueueUserAPCToThreadId(PAPCFUNC function, DWORD threadId, ULONG_PTR data);

// Something threads can enter and leave.
class BASICUTILS_EXPORT CSyncObject {
  public:
    CSyncObject() = default;
    CSyncObject(const CSyncObject&) = delete;
    CSyncObject& operator=(const CSyncObject&) = delete;
    virtual ~CSyncObject() = default;
    // TRUE once entered, FALSE when the time ran out.
    virtual BOOL Lock(DWORD timeout = INFINITE) = 0;
    virtual BOOL Unlock() = 0;
};

// Recursive; Unlock by a thread that doesn't hold the section answers FALSE
// and changes nothing.
class BASICUTILS_EXPORT CCriticalSection : public CSyncObject {
  public:
    CCriticalSection() = default;
    BOOL Lock(DWORD timeout = INFINITE) override;
    BOOL Unlock() override;

  private:
    std::mutex mLock;
    std::condition_variable mFree;
    std::thread::id mOwner;
    int mCount = 0;
};

class BASICUTILS_EXPORT CSingleLock {
  public:
    explicit CSingleLock(CSyncObject* object, BOOL initialLock = 0);
    CSingleLock(const CSingleLock&) = delete;
    CSingleLock& operator=(const CSingleLock&) = delete;
    ~CSingleLock();
    // Entering twice through one guard enters the object once more, and the
    // guard then needs as many Unlocks.
    BOOL Lock(DWORD timeout = INFINITE);
    BOOL Unlock();
    BOOL IsLocked() const { return mHeld > 0; }

  private:
    CSyncObject* mObject;
    int mHeld;
};

}  // namespace basicutils
