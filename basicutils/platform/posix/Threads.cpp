// Threads on pthreads, with suspension of running threads by signals.
//
// SuspendThread sends kSuspendSignal to the thread; its handler tells the
// suspender that the thread has stopped, then sleeps in sigsuspend until the
// suspend count is back to 0 and kResumeSignal arrives. kResumeSignal is
// blocked inside the handler except during sigsuspend, so a resumption that
// comes before the handler sleeps is not lost.
#include <basicutils/platform/Sync.h>
#include <basicutils/platform/Threads.h>
#include <basicutils/platform/posix/ThreadState.h>
#include <pthread.h>
#include <semaphore.h>
#include <signal.h>
#include <time.h>

#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <mutex>

namespace basicutils {
namespace detail {
namespace {

class ThreadRecord;

int SuspendSignal() {
    return SIGRTMIN + 6;
}
int ResumeSignal() {
    return SIGRTMIN + 7;
}

thread_local ThreadRecord* tRecord = nullptr;
std::atomic<int> gFailCreations{0};
std::atomic<DWORD> gMainThreadId{0};

class ThreadRecord final : public KernelObject {
  public:
    ThreadRecord(LPTHREAD_START_ROUTINE routine, void* parameter, bool suspended)
        : mState(NewThreadState()),
          mRoutine(routine),
          mParameter(parameter),
          mSuspendCount(suspended ? 1 : 0),
          mSignalCount(0) {
        sem_init(&mAck, 0, 0);
    }
    ~ThreadRecord() override { sem_destroy(&mAck); }

    bool TryAcquire() override {
        std::lock_guard<std::mutex> g(mLock);
        return mEnded;
    }

    DWORD Id() const { return mState->Id(); }

    static void* Entry(void* self) {
        auto* record = static_cast<ThreadRecord*>(self);
        AdoptThreadState(record->mState);
        tRecord = record;
        {
            std::unique_lock<std::mutex> l(record->mLock);
            record->mGate.wait(l, [&] { return record->mSuspendCount == 0; });
            record->mStarted = true;
        }
        DWORD code = record->mRoutine(record->mParameter);
        {
            std::lock_guard<std::mutex> g(record->mLock);
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
        int rc = pthread_create(&mNative, &attr, &Entry, this);
        pthread_attr_destroy(&attr);
        if (rc != 0) {
            mState->Retire();
            Release();
            return false;
        }
        return true;
    }

    DWORD Suspend() {
        std::unique_lock<std::mutex> l(mLock);
        if (mEnded) return kThreadCallFailed;
        const DWORD previous = mSuspendCount++;
        if (!mStarted || previous > 0) return previous;
        mSignalCount.store(mSuspendCount);
        if (tRecord == this) {
            l.unlock();
            pthread_kill(mNative, SuspendSignal());  // returns once resumed
            while (sem_trywait(&mAck) == 0) {
            }
            return previous;
        }
        pthread_kill(mNative, SuspendSignal());
        while (sem_wait(&mAck) != 0 && errno == EINTR) {
        }
        return previous;
    }

    DWORD Resume() {
        std::lock_guard<std::mutex> g(mLock);
        if (mEnded) return kThreadCallFailed;
        const DWORD previous = mSuspendCount;
        if (previous == 0) return 0;
        --mSuspendCount;
        if (mSuspendCount == 0) {
            if (!mStarted) {
                mGate.notify_all();
            } else {
                mSignalCount.store(0);
                pthread_kill(mNative, ResumeSignal());
            }
        }
        return previous;
    }

    bool ExitCode(DWORD* code) {
        std::lock_guard<std::mutex> g(mLock);
        *code = mEnded ? mExitCode : STILL_ACTIVE;
        return true;
    }

    // Runs in the signal handler of the suspended thread.
    void HoldWhileSuspended() {
        sem_post(&mAck);
        sigset_t mask;
        pthread_sigmask(SIG_BLOCK, nullptr, &mask);
        sigdelset(&mask, ResumeSignal());
        while (mSignalCount.load() > 0) sigsuspend(&mask);
    }

  private:
    std::shared_ptr<ThreadState> mState;
    LPTHREAD_START_ROUTINE mRoutine;
    void* mParameter;
    std::mutex mLock;
    std::condition_variable mGate;
    DWORD mSuspendCount;
    std::atomic<DWORD> mSignalCount;  // read by the signal handler
    bool mStarted = false;
    bool mEnded = false;
    DWORD mExitCode = STILL_ACTIVE;
    pthread_t mNative{};
    sem_t mAck;
};

void OnSuspendSignal(int) {
    const int savedErrno = errno;
    if (ThreadRecord* record = tRecord) record->HoldWhileSuspended();
    errno = savedErrno;
}

void OnResumeSignal(int) {}

void InstallSignalHandlers() {
    static std::once_flag once;
    std::call_once(once, [] {
        struct sigaction resume {};
        resume.sa_handler = &OnResumeSignal;
        sigemptyset(&resume.sa_mask);
        resume.sa_flags = SA_RESTART;
        sigaction(ResumeSignal(), &resume, nullptr);

        struct sigaction suspend {};
        suspend.sa_handler = &OnSuspendSignal;
        sigemptyset(&suspend.sa_mask);
        sigaddset(&suspend.sa_mask, ResumeSignal());
        suspend.sa_flags = SA_RESTART;
        sigaction(SuspendSignal(), &suspend, nullptr);
    });
}

ThreadRecord* AsThread(KernelObject* object) {
    return dynamic_cast<ThreadRecord*>(object);
}

// The thread that runs the library's static initialisers is the main thread.
const bool gMainThreadRecorded = [] {
    gMainThreadId.store(CurrentThreadState()->Id());
    return true;
}();

}  // namespace

void FailThreadCreations(int count) {
    gFailCreations.store(count);
}

}  // namespace detail

using detail::KernelObject;
using detail::ObjectRef;

HANDLE CreateThread(void*, size_t stackSize, LPTHREAD_START_ROUTINE routine, void* parameter,
                    DWORD flags, DWORD* threadId) {
    if (!routine) return nullptr;
    int failures = detail::gFailCreations.load();
    while (failures > 0 && !detail::gFailCreations.compare_exchange_weak(failures, failures - 1)) {
    }
    if (failures > 0) return nullptr;
    detail::InstallSignalHandlers();
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
