// The asynchronous transfer engine: io_uring, or a pool of I/O threads.
//
// Both backends finish a transfer as one whole: a piece that comes back short
// before the end of the file is followed by the rest, so a caller sees the
// full count, the bytes up to the end of the file, or the bytes up to an
// error (the error itself when nothing moved), as the system the callers were
// written for reports a transfer.
#include <basicutils/platform/internal/AsyncIo.h>
#include <basicutils/platform/internal/Env.h>
#include <liburing.h>
#include <pthread.h>
#include <signal.h>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <unordered_map>

namespace basicutils::detail {
namespace {

// Starts a detached thread with every signal blocked: the engine's threads
// never take a signal meant for the application. false when none can start.
bool StartEngineThread(void* (*routine)(void*), void* argument) {
    sigset_t all, previous;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &previous);  // the new thread inherits it
    pthread_attr_t attr;
    pthread_attr_init(&attr);
    pthread_attr_setdetachstate(&attr, PTHREAD_CREATE_DETACHED);
    pthread_t thread;
    const int rc = CurrentEnv().ThreadCreate(&thread, &attr, routine, argument);
    pthread_attr_destroy(&attr);
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
    return rc == 0;
}

// What both backends share: the count of transfers in the engines per
// descriptor, for Drain (one count for both, so that a switch of engines
// cannot hide a transfer), and the bookkeeping of a transfer's pieces.
class EngineBase : public AsyncBackend {
  public:
    void Drain(int fd) override {
        Counts& c = TheCounts();
        std::unique_lock<std::mutex> l(c.lock);
        // No deadline: every transfer in the engine ends (the kernel or an
        // I/O thread completes it), and the caller must not free its buffer
        // before that.
        c.idle.wait(l, [&] { return c.inEngine.find(fd) == c.inEngine.end(); });
    }

  protected:
    // A transfer with the progress of its pieces.
    struct Job {
        AsyncTransfer* transfer;
        uint32_t moved = 0;
    };

    // Asks the seam whether the transfer may go, and counts it in.
    bool Admit(AsyncTransfer* t) {
        if (const int refusal = CurrentEnv().AsyncSubmit(t->fd, t->write, t->count,
                                                         static_cast<off_t>(t->offset))) {
            errno = refusal;
            return false;
        }
        Counts& c = TheCounts();
        std::lock_guard<std::mutex> g(c.lock);
        ++c.inEngine[t->fd];
        return true;
    }
    // Undoes Admit for a transfer that could not be handed on.
    void Refuse(AsyncTransfer* t) { CountOut(t->fd); }

    // One piece ended with `result` (bytes or -errno). True when the job is
    // finished (and reported); false when the rest must go out again.
    bool PieceEnded(Job* job, int64_t result) {
        AsyncTransfer* t = job->transfer;
        if (result > 0) {
            job->moved += static_cast<uint32_t>(result);
            if (job->moved < t->count) return false;
        }
        const int64_t whole = job->moved > 0 || result >= 0 ? job->moved : result;
        Finish(t, whole);
        return true;
    }

    // Reports the end of a transfer through the seam and to its owner.
    void Finish(AsyncTransfer* t, int64_t result) {
        const int fd = t->fd;
        result = CurrentEnv().AsyncComplete(fd, t->write, t->count, result);
        t->done(t, result);  // t may be gone from here on
        CountOut(fd);
    }

  private:
    void CountOut(int fd) {
        Counts& c = TheCounts();
        std::lock_guard<std::mutex> g(c.lock);
        auto it = c.inEngine.find(fd);
        if (it != c.inEngine.end() && --it->second == 0) {
            c.inEngine.erase(it);
            c.idle.notify_all();
        }
    }

    // Made once and never destroyed, like the engines: an engine thread may
    // still be counting a transfer out while the process exits.
    struct Counts {
        std::mutex lock;
        std::condition_variable idle;
        std::unordered_map<int, int> inEngine;
    };
    static Counts& TheCounts() {
        static Counts* counts = new Counts;
        return *counts;
    }
};

// ---- the pool ---------------------------------------------------------------

class ThreadPoolEngine final : public EngineBase {
  public:
    const char* Name() const override { return "thread pool"; }

    bool Submit(AsyncTransfer* t) override {
        if (!Admit(t)) return false;
        std::lock_guard<std::mutex> g(mLock);
        if (!EnsureWorkers()) {
            Refuse(t);
            errno = EAGAIN;
            return false;
        }
        mQueue.push_back(t);
        mWork.notify_one();
        return true;
    }

    void Cancel(int fd) override {
        std::deque<AsyncTransfer*> cancelled;
        {
            std::lock_guard<std::mutex> g(mLock);
            for (auto it = mQueue.begin(); it != mQueue.end();) {
                if ((*it)->fd == fd) {
                    cancelled.push_back(*it);
                    it = mQueue.erase(it);
                } else {
                    ++it;
                }
            }
        }
        for (AsyncTransfer* t : cancelled) Finish(t, -ECANCELED);
    }

  private:
    static constexpr int kWorkers = 4;

    bool EnsureWorkers() {
        while (mWorkers < kWorkers) {
            if (!StartEngineThread(&WorkerEntry, this)) return mWorkers > 0;
            ++mWorkers;
        }
        return true;
    }

    static void* WorkerEntry(void* self) {
        static_cast<ThreadPoolEngine*>(self)->Work();
        return nullptr;
    }

    [[noreturn]] void Work() {
        for (;;) {
            AsyncTransfer* t;
            {
                std::unique_lock<std::mutex> l(mLock);
                // No deadline: an idle I/O thread has nothing else to do.
                mWork.wait(l, [&] { return !mQueue.empty(); });
                t = mQueue.front();
                mQueue.pop_front();
            }
            Job job{t};
            bool finished = false;
            while (!finished) {
                char* at = static_cast<char*>(t->buffer) + job.moved;
                const size_t left = t->count - job.moved;
                const off_t where = static_cast<off_t>(t->offset + job.moved);
                Env& env = CurrentEnv();
                const ssize_t n = RetryOnEintr([&] {
                    return t->write ? env.Pwrite(t->fd, at, left, where)
                                    : env.Pread(t->fd, at, left, where);
                });
                finished = PieceEnded(&job, n >= 0 ? n : -errno);
            }
        }
    }

    std::mutex mLock;
    std::condition_variable mWork;
    std::deque<AsyncTransfer*> mQueue;
    int mWorkers = 0;
};

// ---- io_uring -----------------------------------------------------------------

class UringEngine final : public EngineBase {
  public:
    // Null when the kernel gives no ring.
    static UringEngine* Make() {
        auto* engine = new UringEngine;
        if (io_uring_queue_init(kEntries, &engine->mRing, 0) != 0) {
            delete engine;
            return nullptr;
        }
        if (!StartEngineThread(&ReaperEntry, engine)) {
            io_uring_queue_exit(&engine->mRing);
            delete engine;
            return nullptr;
        }
        return engine;
    }

    const char* Name() const override { return "io_uring"; }

    bool Submit(AsyncTransfer* t) override {
        if (!Admit(t)) return false;
        auto* job = new Job{t};
        if (!Queue(job)) {
            const int error = errno;
            delete job;
            Refuse(t);
            errno = error;
            return false;
        }
        return true;
    }

    void Cancel(int fd) override {
        std::lock_guard<std::mutex> g(mLock);
        io_uring_sqe* sqe = NextSqe();
        if (!sqe) return;  // nothing can be cancelled; the transfers end anyway
        io_uring_prep_cancel_fd(sqe, fd, IORING_ASYNC_CANCEL_ALL);
        io_uring_sqe_set_data(sqe, nullptr);
        io_uring_submit(&mRing);
    }

  private:
    static constexpr unsigned kEntries = 256;

    // A free submission entry, flushing the queue once when it is full.
    io_uring_sqe* NextSqe() {
        io_uring_sqe* sqe = io_uring_get_sqe(&mRing);
        if (!sqe) {
            io_uring_submit(&mRing);
            sqe = io_uring_get_sqe(&mRing);
        }
        return sqe;
    }

    // Hands the job's remaining piece to the kernel.
    bool Queue(Job* job) {
        AsyncTransfer* t = job->transfer;
        std::lock_guard<std::mutex> g(mLock);
        io_uring_sqe* sqe = NextSqe();
        if (!sqe) {
            errno = EAGAIN;
            return false;
        }
        char* at = static_cast<char*>(t->buffer) + job->moved;
        const unsigned left = t->count - job->moved;
        const uint64_t where = static_cast<uint64_t>(t->offset) + job->moved;
        if (t->write) {
            io_uring_prep_write(sqe, t->fd, at, left, where);
        } else {
            io_uring_prep_read(sqe, t->fd, at, left, where);
        }
        if (!t->direct || t->write) sqe->flags |= IOSQE_ASYNC;
        io_uring_sqe_set_data(sqe, job);
        const int submitted = io_uring_submit(&mRing);
        if (submitted < 0) {
            errno = -submitted;
            return false;
        }
        return true;
    }

    static void* ReaperEntry(void* self) {
        static_cast<UringEngine*>(self)->Reap();
        return nullptr;
    }

    [[noreturn]] void Reap() {
        for (;;) {
            io_uring_cqe* cqe = nullptr;
            // No deadline: the reaper waits for the kernel and nothing else.
            if (io_uring_wait_cqe(&mRing, &cqe) != 0 || !cqe) continue;
            auto* job = static_cast<Job*>(io_uring_cqe_get_data(cqe));
            const int64_t result = cqe->res;
            io_uring_cqe_seen(&mRing, cqe);
            if (!job) continue;  // the answer to a cancellation
            // The job was written under mLock before it went to the kernel;
            // taking the lock once makes that order visible to tools that do
            // not see the ring's own barriers (ThreadSanitizer).
            { std::lock_guard<std::mutex> g(mLock); }
            if (PieceEnded(job, result)) {
                delete job;
            } else if (!Queue(job)) {
                const int error = errno;
                Finish(job->transfer, job->moved > 0 ? job->moved : -error);
                delete job;
            }
        }
    }

    std::mutex mLock;  // guards the submission queue
    io_uring mRing{};
};

std::mutex gSelectLock;
std::atomic<AsyncBackend*> gEngine{nullptr};
ThreadPoolEngine* gPool = nullptr;  // engines live for the whole process:
UringEngine* gUring = nullptr;      // transfers may be in flight at exit
bool gUringTried = false;

AsyncBackend* PickLocked(AsyncBackendKind kind) {
    if (kind != AsyncBackendKind::kThreadPool) {
        if (!gUringTried) {
            gUringTried = true;
            gUring = UringEngine::Make();
        }
        if (gUring) return gUring;
    }
    if (!gPool) gPool = new ThreadPoolEngine;
    return gPool;
}

}  // namespace

AsyncBackend::~AsyncBackend() = default;

AsyncBackend& TheAsyncBackend() {
    if (AsyncBackend* engine = gEngine.load(std::memory_order_acquire)) return *engine;
    std::lock_guard<std::mutex> g(gSelectLock);
    if (!gEngine.load()) gEngine.store(PickLocked(AsyncBackendKind::kAutomatic));
    return *gEngine.load();
}

AsyncBackendKind SelectAsyncBackend(AsyncBackendKind kind) {
    std::lock_guard<std::mutex> g(gSelectLock);
    AsyncBackend* engine = PickLocked(kind);
    gEngine.store(engine, std::memory_order_release);
    return engine == gUring ? AsyncBackendKind::kIoUring : AsyncBackendKind::kThreadPool;
}

}  // namespace basicutils::detail
