// Suspension that never deadlocks. Each scenario runs in a child process with
// a deadline (see Deadline_test.h), so that a thread stopped in the wrong
// place fails its test instead of hanging the run.
#include <basicutils/platform/Deadline_test.h>
#include <basicutils/platform/MessageQueue.h>
#include <basicutils/platform/Sync.h>
#include <basicutils/platform/Threads.h>
#include <basicutils/platform/internal/Suspension.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <string>
#include <thread>

namespace basicutils {
namespace {

using testing_support::WaitUntil;
constexpr unsigned kDeadlineSeconds = 60;
constexpr DWORD kStopLimitMs = 20000;

// Runs `work` in a loop on a library thread until stopped.
struct Looper {
    std::atomic<bool> stop{false};
    std::atomic<uint64_t> rounds{0};
    std::atomic<DWORD> id{0};
    void (*work)(Looper*) = nullptr;
    HANDLE events[2] = {CreateEventW(nullptr, 1, 0, nullptr), CreateEventW(nullptr, 0, 0, nullptr)};
    std::array<std::atomic<void*>, 64> blocks{};

    ~Looper() {
        for (HANDLE e : events) CloseHandle(e);
        for (auto& slot : blocks) std::free(slot.exchange(nullptr));
    }
    static DWORD Run(void* p) {
        auto* self = static_cast<Looper*>(p);
        self->id = GetCurrentThreadId();
        while (!self->stop.load()) {
            self->work(self);
            self->rounds.fetch_add(1);
        }
        return 7;
    }
    bool Progresses() {
        const uint64_t start = rounds.load();
        return WaitUntil([&] { return rounds.load() > start + 10; });
    }
};

// Suspends, checks that the thread really stops, runs `meanwhile` on this
// thread while it is stopped, and resumes; `times` over.
std::string Toggle(HANDLE thread, Looper& looper, int times, void (*meanwhile)(Looper&)) {
    for (int i = 0; i < times; ++i) {
        if (SuspendThread(thread) != 0) return "suspend count out of step at " + std::to_string(i);
        if (!detail::WaitForThreadStop(thread, kStopLimitMs))
            return "no stop at round " + std::to_string(i);
        const uint64_t frozen = looper.rounds.load();
        if (meanwhile) meanwhile(looper);
        if (looper.rounds.load() != frozen) return "a stopped thread ran";
        if (ResumeThread(thread) != 1) return "resume count out of step";
    }
    return looper.Progresses() ? "" : "no progress after the last resume";
}

// Starts a looper (from a thread that blocks every signal, if `masked`),
// hands it to `drive`, then ends it.
template <class Drive>
std::string WithLooper(void (*work)(Looper*), Drive drive, bool masked = false) {
    Looper looper;
    looper.work = work;
    HANDLE h = nullptr;
    std::thread([&] {
        sigset_t all;
        sigfillset(&all);
        if (masked) pthread_sigmask(SIG_BLOCK, &all, nullptr);
        h = CreateThread(nullptr, 0, &Looper::Run, &looper, 0, nullptr);
    }).join();
    if (!h) return "no thread";
    std::string failure = looper.Progresses() ? drive(h, looper) : "no start";
    looper.stop = true;
    if (WaitForSingleObject(h, kStopLimitMs) != WAIT_OBJECT_0) failure += "; the thread didn't end";
    CloseHandle(h);
    return failure;
}

void Yield(Looper*) {
    Sleep(0);
}

// Calls that take the handle registry, an event's lock, the thread and queue
// registries and a queue's lock.
void LibraryCalls(Looper* looper) {
    SetEvent(looper->events[0]);
    ResetEvent(looper->events[0]);
    WaitForSingleObject(looper->events[1], 0);
    CloseHandle(CreateEventW(nullptr, 0, 0, nullptr));
    PostThreadMessageW(GetCurrentThreadId(), WM_USER, 0, 0);
    MSG m;
    while (PeekMessageW(&m, nullptr, 0, 0, PM_REMOVE)) {
    }
}

void SameCallsFromOutside(Looper& looper) {
    SetEvent(looper.events[1]);
    ResetEvent(looper.events[0]);
    CloseHandle(CreateEventW(nullptr, 1, 0, nullptr));
    PostThreadMessageW(looper.id, WM_USER, 0, 1);
}

// Blocks above the allocator's per-thread cache, so that freeing them from
// another thread needs the lock of the arena that the looper allocates from.
void Allocations(Looper* looper) {
    const uint64_t round = looper->rounds.load();
    const size_t size = 2048 + (round * 4099) % 60000;
    void* fresh = std::malloc(size);
    static_cast<char*>(fresh)[size - 1] = 1;
    std::free(looper->blocks[round % looper->blocks.size()].exchange(fresh));
}

void FreeTheLoopersBlocks(Looper& looper) {
    for (auto& slot : looper.blocks) std::free(slot.exchange(nullptr));
    std::free(std::malloc(40000));
}

// Counts nest from creation on; a thread runs only while its count is 0.
TEST(Suspension, CountsNestFromCreationOn) {
    Looper looper;
    looper.work = &Yield;
    DWORD id = 0, code = 0;
    HANDLE h = CreateThread(nullptr, 0, &Looper::Run, &looper, CREATE_SUSPENDED, &id);
    ASSERT_NE(h, nullptr);
    EXPECT_EQ(GetThreadId(h), id);
    EXPECT_EQ(SuspendThread(h), 1u);
    EXPECT_EQ(ResumeThread(h), 2u);
    Sleep(2);
    EXPECT_EQ(looper.id.load(), 0u) << "ran before its count reached 0";
    EXPECT_EQ(ResumeThread(h), 1u);
    ASSERT_TRUE(looper.Progresses());
    EXPECT_EQ(ResumeThread(h), 0u);  // not suspended: nothing to do
    GetExitCodeThread(h, &code);
    EXPECT_EQ(code, STILL_ACTIVE);
    for (int round = 0; round < 20; ++round) {
        EXPECT_EQ(SuspendThread(h) + SuspendThread(h), 1u);
        ASSERT_TRUE(detail::WaitForThreadStop(h, kStopLimitMs)) << "round " << round;
        const uint64_t frozen = looper.rounds.load();
        EXPECT_EQ(ResumeThread(h), 2u);
        Sleep(2);
        EXPECT_EQ(looper.rounds.load(), frozen) << "one Resume of two must not release it";
        EXPECT_EQ(ResumeThread(h), 1u);
        ASSERT_TRUE(looper.Progresses());
    }
    looper.stop = true;
    EXPECT_EQ(WaitForSingleObject(h, kStopLimitMs), WAIT_OBJECT_0);
    EXPECT_TRUE(GetExitCodeThread(h, &code));
    EXPECT_EQ(code, 7u);
    EXPECT_EQ(SuspendThread(h), kThreadCallFailed) << "an ended thread can't be suspended";
    CloseHandle(h);
}

// The first hang: a Suspend that comes right after a Resume, before the
// thread has left its stop.
TEST(Suspension, SuspendRightAfterResumeNeverHangs) {
    EXPECT_COMPLETES_WITHIN(kDeadlineSeconds, [] {
        return WithLooper(&Yield, [](HANDLE h, Looper& looper) -> std::string {
            for (int i = 0; i < 3000; ++i)
                if (SuspendThread(h) != 0 || ResumeThread(h) != 1) return "count out of step";
            return Toggle(h, looper, 3, nullptr);
        });
    });
}

// The second and third hangs: a thread stopped while it held a registry lock
// of this library, or the allocator's lock, blocked whoever needed it next.
TEST(Suspension, AStoppedThreadHoldsNoLibraryOrAllocatorLock) {
    // clang-format off
    struct Case { const char* name; void (*work)(Looper*); void (*meanwhile)(Looper&); } cases[] = {
        {"library calls", &LibraryCalls, &SameCallsFromOutside},
        {"allocations", &Allocations, &FreeTheLoopersBlocks}};
    // clang-format on
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_COMPLETES_WITHIN(kDeadlineSeconds, [&] {
            return WithLooper(c.work, [&](HANDLE h, Looper& looper) {
                return Toggle(h, looper, 200, c.meanwhile);
            });
        });
    }
}

std::atomic<int> gForeignSignals{0};
void CountForeignSignal(int) {
    gForeignSignals.fetch_add(1);
}

// The fourth hang: a thread created while its creator blocked every signal
// inherited the mask and never stopped. Also: a handler that was installed
// before the library's still gets the signals that aren't the library's.
TEST(Suspension, MaskOfTheCreatorAndForeignHandlersDoNotGetInTheWay) {
    EXPECT_COMPLETES_WITHIN(kDeadlineSeconds, [] {
        struct sigaction foreign {};
        foreign.sa_handler = &CountForeignSignal;
        sigemptyset(&foreign.sa_mask);
        sigaction(detail::SuspendSignal(), &foreign, nullptr);

        std::string failure = WithLooper(
            &Yield, [](HANDLE h, Looper& looper) { return Toggle(h, looper, 5, nullptr); }, true);

        pthread_kill(pthread_self(), detail::SuspendSignal());
        sigval value{};
        pthread_sigqueue(pthread_self(), detail::SuspendSignal(), value);
        if (gForeignSignals.load() != 2) failure += "; foreign signals not passed on";
        return failure;
    });
}

// A thread that suspends itself stops before SuspendThread returns; one that
// holds a critical section goes on until it leaves the section, and stops
// there; one whose routine ends first, the section still held, just ends.
TEST(Suspension, ASelfSuspendedThreadStopsOnceOutsideTheLibrarysLocks) {
    struct Holder {
        CCriticalSection section;
        HANDLE self = nullptr;
        bool lock = false, leave = false;
        std::atomic<int> stage{0};
        static DWORD Run(void* p) {
            auto* h = static_cast<Holder*>(p);
            if (h->lock) h->section.Lock();
            SuspendThread(h->self);
            h->stage = 1;
            if (h->lock && h->leave) h->section.Unlock();
            h->stage = 2;
            return 0;
        }
    };
    // stopsAtStage -1: never stops
    // clang-format off
    struct Case { bool lock, leave; int stopsAtStage; } cases[] = {
        {false, false, 0}, {true, true, 1}, {true, false, -1}};
    // clang-format on
    for (const Case& c : cases) {
        Holder holder;
        holder.lock = c.lock;
        holder.leave = c.leave;
        HANDLE h = CreateThread(nullptr, 0, &Holder::Run, &holder, CREATE_SUSPENDED, nullptr);
        holder.self = h;
        ResumeThread(h);
        if (c.stopsAtStage >= 0) {
            ASSERT_TRUE(detail::WaitForThreadStop(h, kStopLimitMs)) << c.lock;
            EXPECT_EQ(holder.stage.load(), c.stopsAtStage);
            EXPECT_TRUE(holder.section.Lock(0)) << "stopped with the section free";
            holder.section.Unlock();
            EXPECT_EQ(ResumeThread(h), 1u);
        }
        EXPECT_EQ(WaitForSingleObject(h, kStopLimitMs), WAIT_OBJECT_0);
        EXPECT_EQ(holder.stage.load(), 2);
        CloseHandle(h);
    }
}

}  // namespace
}  // namespace basicutils
