// Threads: suspended creation, real suspension, IDs, exit codes, bad handles.
#include <basicutils/platform/Deadline_test.h>
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/Sync.h>
#include <basicutils/platform/Threads.h>
#include <basicutils/platform/internal/Suspension.h>
#include <basicutils/platform/testing/FaultEnv.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace basicutils {
namespace {

using testing_support::WaitUntil;

struct Spinner {
    std::atomic<bool> stop{false};
    std::atomic<uint64_t> count{0};
    static DWORD Run(void* p) {
        auto* s = static_cast<Spinner*>(p);
        while (!s->stop.load()) {
            s->count.fetch_add(1);
            Sleep(0);  // lets ThreadSanitizer deliver signals; no flag is read
        }
        return 7;
    }
    bool Progresses() {
        const uint64_t start = count.load();
        return WaitUntil([&] { return count.load() >= start + 10; });
    }
    // True when the count doesn't move while the caller sleeps a little.
    bool Frozen() {
        const uint64_t before = count.load();
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
        return count.load() == before;
    }
};

// Counts nest from creation on. The spinning thread never looks at a flag:
// only the signal stops it.
TEST(Threads, SuspendCountsNestAndStopARunningThread) {
    Spinner s;
    DWORD id = 0, code = 0;
    HANDLE h = CreateThread(nullptr, 0, &Spinner::Run, &s, CREATE_SUSPENDED, &id);
    ASSERT_NE(h, nullptr);
    EXPECT_EQ(GetThreadId(h), id);
    EXPECT_EQ(SuspendThread(h), 1u);
    EXPECT_EQ(ResumeThread(h), 2u);
    EXPECT_EQ(s.count.load(), 0u);
    EXPECT_EQ(ResumeThread(h), 1u);
    ASSERT_TRUE(s.Progresses());
    EXPECT_EQ(ResumeThread(h), 0u);  // not suspended: nothing to do
    GetExitCodeThread(h, &code);
    EXPECT_EQ(code, STILL_ACTIVE);
    for (int round = 0; round < 20; ++round) {
        EXPECT_EQ(SuspendThread(h), 0u);
        EXPECT_EQ(SuspendThread(h), 1u);
        ASSERT_TRUE(detail::WaitForThreadStop(h, 20000)) << "round " << round;
        EXPECT_TRUE(s.Frozen());
        EXPECT_EQ(ResumeThread(h), 2u);
        EXPECT_TRUE(s.Frozen()) << "one Resume of two must not release it";
        EXPECT_EQ(ResumeThread(h), 1u);
        ASSERT_TRUE(s.Progresses());
    }
    s.stop = true;
    EXPECT_EQ(WaitForSingleObject(h, 20000), WAIT_OBJECT_0);
    EXPECT_TRUE(GetExitCodeThread(h, &code));
    EXPECT_EQ(code, 7u);
    EXPECT_EQ(SuspendThread(h), kThreadCallFailed) << "an ended thread can't be suspended";
    CloseHandle(h);
}

TEST(Threads, IdentitiesAndTheMainThread) {
    const DWORD mine = GetCurrentThreadId();
    EXPECT_EQ(GetMainThreadId(), mine) << "the test's main thread loaded the library";
    DWORD other = 0;
    bool otherIsMain = true;
    std::thread([&] {
        other = GetCurrentThreadId();
        otherIsMain = IsMainThread();
    }).join();
    EXPECT_TRUE(other != 0 && other != mine && !otherIsMain);
    SetMainThreadId(other);
    EXPECT_FALSE(IsMainThread());
    SetMainThreadId(mine);
    EXPECT_TRUE(IsMainThread());
}

TEST(Threads, BadHandlesAndFailedCreationGiveFailures) {
    int dummy = 0;
    HANDLE bogus = &dummy;
    HANDLE event = CreateEventW(nullptr, 1, 0, nullptr);
    for (HANDLE h : {bogus, static_cast<HANDLE>(nullptr), event}) {
        EXPECT_EQ(SuspendThread(h), kThreadCallFailed);
        EXPECT_EQ(ResumeThread(h), kThreadCallFailed);
        EXPECT_EQ(GetThreadId(h), 0u);
        DWORD code;
        EXPECT_FALSE(GetExitCodeThread(h, &code));
    }
    EXPECT_TRUE(CloseHandle(event));
    EXPECT_FALSE(CloseHandle(event)) << "closed twice";
    EXPECT_EQ(WaitForSingleObject(event, 0), WAIT_FAILED);
    EXPECT_FALSE(CloseHandle(bogus));

    testing::FaultEnv faults;
    testing::ScopedEnv use(faults);
    faults.FailNth(detail::SysCall::kThreadCreate, 1, EAGAIN);
    Spinner s;
    s.stop = true;
    EXPECT_EQ(CreateThread(nullptr, 0, &Spinner::Run, &s, 0, nullptr), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_NOT_ENOUGH_QUOTA);
    HANDLE h = CreateThread(nullptr, 0, &Spinner::Run, &s, 0, nullptr);
    ASSERT_NE(h, nullptr) << "only one creation was to fail";
    WaitForSingleObject(h, 20000);
    CloseHandle(h);
}

}  // namespace
}  // namespace basicutils
