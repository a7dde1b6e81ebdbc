// Threads on pthreads. The suspension of running threads is in
// Suspension.cpp; this file keeps each thread's record: its suspend count,
// the gate of a thread created suspended, its end and exit code.
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/Sync.h>
#include <basicutils/platform/Threads.h>
#include <basicutils/platform/internal/Env.h>
#include <basicutils/platform/internal/KernelObject.h>
#include <basicutils/platform/internal/Suspension.h>
#include <basicutils/platform/posix/Suspension.h>
#include <basicutils/platform/posix/ThreadState.h>
#include <pthread.h>
#include <time.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace basicutils {
namespace detail {
namespace {

std::atomic<DWORD> gMainThreadId{0};

class ThreadRecord final : public KernelObject {
  public:
    ThreadRecord(LPTHREAD_START_ROUTINE routine, void* parameter, bool suspended)
        : mState(NewThreadState()),
          mRoutine(routine),
          mParameter(parameter),
          mSuspendCount(suspended ? 1 : 0) {}

    bool TryAcquire() override {
        LibraryLock g(mLock);
        return mEnded;
    }

    DWORD Id() const { return mState->Id(); }

    static void* Entry(void* self) {
        auto* record = static_cast<ThreadRecord*>(self);
        AdoptThreadState(record->mState);
        tRecord = record;
        record->mSlot.Attach();
        {
            LibraryLock l(record->mLock);
            record->mGate.wait(l.Held(), [&] { return record->mSuspendCount == 0; });
            record->mStarted = true;
            record->mSlot.SetRunning(true);
        }
        DWORD code = record->mRoutine(record->mParameter);
        {
            LibraryLock g(record->mLock);
            record->mSlot.Detach();
            record->mExitCode = code;
            record->mEnded = true;
        }
        tRecord = nullptr;
        record->WakeWaiters();
        record->Release();  // the running thread's reference
        return nullptr;
    }

    bool Launch(size_t stackSize) {
        pthread_attr_t attr;
        pthread_attr_init(&attr);
        pthread_attr_setdetachstate(&attr, PTHREAD_CREATE_DETACHED);
        if (stackSize)
            pthread_attr_setstacksize(&attr, std::max<size_t>(stackSize, PTHREAD_STACK_MIN));
        AddRef();
        pthread_t native;
        const int rc = CurrentEnv().ThreadCreate(&native, &attr, &Entry, this);
        pthread_attr_destroy(&attr);
        if (rc != 0) {
            SetLastErrorFromErrno(rc);
            mState->Retire();
            Release();
            return false;
        }
        return true;
    }

    // Raises the count; a running thread is asked to stop and stops at its
    // next safe moment (a thread suspending itself outside any other library
    // lock: as it leaves this one).
    DWORD Suspend() {
        LibraryLock l(mLock);
        if (mEnded) return kThreadCallFailed;
        const DWORD previous = mSuspendCount;
        if (mStarted && previous == 0 && !mSlot.Request(tRecord == this)) {
            SetLastError(ERROR_NOT_ENOUGH_MEMORY);
            return kThreadCallFailed;
        }
        ++mSuspendCount;
        return previous;
    }

    DWORD Resume() {
        LibraryLock l(mLock);
        if (mEnded) return kThreadCallFailed;
        const DWORD previous = mSuspendCount;
        if (previous == 0) return 0;
        if (--mSuspendCount == 0) {
            if (!mStarted)
                mGate.notify_all();
            else
                mSlot.Release();
        }
        return previous;
    }

    bool ExitCode(DWORD* code) {
        LibraryLock g(mLock);
        *code = mEnded ? mExitCode : STILL_ACTIVE;
        return true;
    }

    bool IsStopped() const { return mSlot.IsStopped(); }

  private:
    static thread_local ThreadRecord* tRecord;

    std::shared_ptr<ThreadState> mState;
    LPTHREAD_START_ROUTINE mRoutine;
    void* mParameter;
    std::mutex mLock;
    std::condition_variable mGate;
    DWORD mSuspendCount;
    bool mStarted = false;
    bool mEnded = false;
    DWORD mExitCode = STILL_ACTIVE;
    SuspendSlot mSlot;
};

thread_local ThreadRecord* ThreadRecord::tRecord = nullptr;

ThreadRecord* AsThread(KernelObject* object) {
    return dynamic_cast<ThreadRecord*>(object);
}

// The thread that runs the library's static initialisers is the main thread.
const bool gMainThreadRecorded = [] {
    gMainThreadId.store(CurrentThreadState()->Id());
    return true;
}();

}  // namespace

bool WaitForThreadStop(HANDLE thread, DWORD milliseconds) {
    ObjectRef ref(KernelObject::Acquire(thread));
    auto* record = AsThread(ref.get());
    if (!record) return false;
    const auto deadline =
        std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    while (!record->IsStopped()) {
        if (std::chrono::steady_clock::now() >= deadline) return false;
        std::this_thread::sleep_for(std::chrono::microseconds(50));
    }
    return true;
}

}  // namespace detail

using detail::KernelObject;
using detail::ObjectRef;

HANDLE CreateThread(void*, size_t stackSize, LPTHREAD_START_ROUTINE routine, void* parameter,
                    DWORD flags, DWORD* threadId) {
    if (!routine) return nullptr;
    detail::InstallSuspendHandler();
    auto* record = new detail::ThreadRecord(routine, parameter, (flags & CREATE_SUSPENDED) != 0);
    if (!record->Launch(stackSize)) {
        record->Release();
        return nullptr;
    }
    if (threadId) *threadId = record->Id();
    return record->Publish();
}

DWORD SuspendThread(HANDLE thread) {
    ObjectRef ref(KernelObject::Acquire(thread));
    auto* record = detail::AsThread(ref.get());
    return record ? record->Suspend() : kThreadCallFailed;
}

DWORD ResumeThread(HANDLE thread) {
    ObjectRef ref(KernelObject::Acquire(thread));
    auto* record = detail::AsThread(ref.get());
    return record ? record->Resume() : kThreadCallFailed;
}

DWORD GetCurrentThreadId() {
    return detail::CurrentThreadState()->Id();
}

DWORD GetThreadId(HANDLE thread) {
    ObjectRef ref(KernelObject::Acquire(thread));
    auto* record = detail::AsThread(ref.get());
    return record ? record->Id() : 0;
}

BOOL GetExitCodeThread(HANDLE thread, DWORD* exitCode) {
    ObjectRef ref(KernelObject::Acquire(thread));
    auto* record = detail::AsThread(ref.get());
    if (!record || !exitCode) return 0;
    return record->ExitCode(exitCode) ? 1 : 0;
}

void Sleep(DWORD milliseconds) {
    struct timespec ts;
    ts.tv_sec = milliseconds / 1000;
    ts.tv_nsec = static_cast<long>(milliseconds % 1000) * 1000000L;
    while (nanosleep(&ts, &ts) != 0 && errno == EINTR) {
    }
    detail::SafePoint();
}

DWORD GetMainThreadId() {
    return detail::gMainThreadId.load();
}
void SetMainThreadId(DWORD threadId) {
    detail::gMainThreadId.store(threadId);
}
bool IsMainThread() {
    return GetCurrentThreadId() == GetMainThreadId();
}

DWORD QueueUserAPC(PAPCFUNC function, HANDLE thread, ULONG_PTR data) {
    DWORD id = GetThreadId(thread);
    return id ? static_cast<DWORD>(QueueUserAPCToThreadId(function, id, data)) : 0;
}

}  // namespace basicutils
