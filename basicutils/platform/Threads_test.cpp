// Threads: IDs, the main thread, bad handles and a creation that fails.
// Suspension is tested in Suspension_test.cpp.
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/Sync.h>
#include <basicutils/platform/Threads.h>
#include <basicutils/platform/testing/FaultEnv.h>
#include <gtest/gtest.h>

#include <thread>

namespace basicutils {
namespace {

DWORD Seven(void*) {
    return 7;
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
    EXPECT_EQ(CreateThread(nullptr, 0, &Seven, nullptr, 0, nullptr), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_NOT_ENOUGH_QUOTA);
    HANDLE h = CreateThread(nullptr, 0, &Seven, nullptr, 0, nullptr);
    ASSERT_NE(h, nullptr) << "only one creation was to fail";
    DWORD code = 0;
    WaitForSingleObject(h, 20000);
    EXPECT_TRUE(GetExitCodeThread(h, &code) && code == 7);
    CloseHandle(h);
}

}  // namespace
}  // namespace basicutils
