// Events, alertable waits with queued calls, recursive critical sections.
#include <basicutils/platform/Deadline_test.h>
#include <basicutils/platform/Sync.h>
#include <basicutils/platform/Threads.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace basicutils {
namespace {

using testing_support::WaitUntil;
constexpr DWORD kLimitMs = 20000;

// A manual event stays set; an auto-reset one lets one waiter through per set.
TEST(Sync, ManualAndAutoResetEvents) {
    HANDLE manual = CreateEventW(nullptr, 1, 0, nullptr);
    EXPECT_EQ(WaitForSingleObject(manual, 0), WAIT_TIMEOUT);
    EXPECT_TRUE(SetEvent(manual));
    EXPECT_EQ(WaitForSingleObject(manual, 0) + WaitForSingleObject(manual, 1), 2 * WAIT_OBJECT_0);
    EXPECT_TRUE(ResetEvent(manual));
    EXPECT_EQ(WaitForSingleObject(manual, 0), WAIT_TIMEOUT);
    CloseHandle(manual);

    HANDLE e = CreateEventW(nullptr, 0, 0, nullptr);
    std::atomic<int> passed{0};
    std::vector<std::thread> waiters;
    for (int i = 0; i < 4; ++i)
        waiters.emplace_back([&] {
            if (WaitForSingleObject(e, kLimitMs) == WAIT_OBJECT_0) passed.fetch_add(1);
        });
    for (int i = 1; i <= 4; ++i) {
        SetEvent(e);
        EXPECT_TRUE(WaitUntil([&] { return passed.load() >= i; }));
        EXPECT_EQ(passed.load(), i);
    }
    for (auto& t : waiters) t.join();
    EXPECT_EQ(WaitForSingleObject(e, 0), WAIT_TIMEOUT) << "each set was taken";
    CloseHandle(e);
}

struct ApcLog {
    std::atomic<DWORD> ranOn{0};
    std::atomic<int> calls{0};
};

void RecordApc(ULONG_PTR data) {
    auto* log = reinterpret_cast<ApcLog*>(data);
    log->ranOn = GetCurrentThreadId();
    log->calls.fetch_add(1);
}

TEST(Sync, QueuedCallsRunOnlyInAlertableWaitsOfTheirThread) {
    ApcLog log;
    std::atomic<DWORD> waiterId{0};
    std::atomic<bool> queued{false};
    DWORD nonAlertable = 0, alertable = 0, afterwards = 0;
    HANDLE never = CreateEventW(nullptr, 1, 0, nullptr);
    std::thread waiter([&] {
        waiterId = GetCurrentThreadId();
        WaitUntil([&] { return queued.load(); });
        nonAlertable = WaitForSingleObjectEx(never, 1, 0);
        alertable = WaitForSingleObjectEx(never, kLimitMs, 1);
        afterwards = SleepEx(0, 1);
    });
    ASSERT_TRUE(WaitUntil([&] { return waiterId.load() != 0; }));
    ASSERT_TRUE(QueueUserAPCToThreadId(&RecordApc, waiterId, reinterpret_cast<ULONG_PTR>(&log)));
    ASSERT_TRUE(QueueUserAPCToThreadId(&RecordApc, waiterId, reinterpret_cast<ULONG_PTR>(&log)));
    queued = true;
    waiter.join();
    EXPECT_EQ(nonAlertable, WAIT_TIMEOUT);
    EXPECT_EQ(alertable, WAIT_IO_COMPLETION);
    EXPECT_EQ(afterwards, 0u) << "both calls ran in the first alertable wait";
    EXPECT_EQ(log.calls.load(), 2);
    EXPECT_EQ(log.ranOn.load(), waiterId.load());
    EXPECT_FALSE(QueueUserAPCToThreadId(&RecordApc, waiterId, 0)) << "thread has ended";
    CloseHandle(never);
}

TEST(Sync, ThreadHandleWaitIsAJoinAndTakesCalls) {
    struct Worker {
        static DWORD Run(void*) {
            SleepEx(kLimitMs, 1);
            return 3;
        }
    };
    ApcLog log;
    HANDLE h = CreateThread(nullptr, 0, &Worker::Run, nullptr, 0, nullptr);
    EXPECT_EQ(QueueUserAPC(&RecordApc, h, reinterpret_cast<ULONG_PTR>(&log)), 1u);
    EXPECT_EQ(WaitForSingleObject(h, kLimitMs), WAIT_OBJECT_0);
    EXPECT_EQ(log.calls.load(), 1);
    EXPECT_EQ(log.ranOn.load(), GetThreadId(h));
    CloseHandle(h);
}

TEST(Sync, CriticalSectionIsRecursiveAndExclusive) {
    CCriticalSection section;
    std::atomic<BOOL> otherGot{1};
    {
        CSingleLock outer(&section, 1);
        CSingleLock inner(&section);
        EXPECT_TRUE(inner.Lock() && inner.IsLocked());
        EXPECT_TRUE(inner.Unlock());
        EXPECT_FALSE(inner.Unlock()) << "an Unlock without a Lock leaves nothing";
        std::thread([&] { otherGot = section.Unlock(); }).join();
        EXPECT_FALSE(otherGot) << "only the owner can leave the section";
        std::thread([&] { otherGot = section.Lock(0); }).join();
        EXPECT_FALSE(otherGot) << "the outer guard still holds it";
    }
    std::thread([&] {
        otherGot = section.Lock(0);
        if (otherGot) section.Unlock();
    }).join();
    EXPECT_TRUE(otherGot);

    int64_t total = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < 10000; ++i) {
                CSingleLock lock(&section, 1);
                CSingleLock again(&section, 1);
                ++total;
            }
        });
    for (auto& t : threads) t.join();
    EXPECT_EQ(total, 40000);
}

}  // namespace
}  // namespace basicutils
