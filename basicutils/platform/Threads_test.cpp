// Threads: IDs, the main thread and bad handles.
// Suspension is tested in Suspension_test.cpp.
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/Sync.h>
#include <basicutils/platform/Threads.h>
#include <gtest/gtest.h>

#include <thread>

namespace basicutils {
namespace {

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

TEST(Threads, BadHandlesGiveFailures) {
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
}

}  // namespace
}  // namespace basicutils
