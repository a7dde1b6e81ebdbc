// Threads with a loop that quit on 1219; scoped locks.
#include <basicutils/tasks/CVelmorantWinThread.h>
#include <basicutils/tasks/StGlobalLock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <thread>
#include <vector>

namespace basicutils {
namespace {

class Recording : public CVelmorantWinThread {
    DECLARE_DYNCREATE(Recording)
  public:
    static inline std::mutex sLock;
    static inline std::vector<UINT> sSeen;
    static inline std::atomic<int> sQuits{0};
    BOOL OnThreadMessage(const MSG& message) override {
        {
            std::lock_guard<std::mutex> g(sLock);
            sSeen.push_back(message.message);
        }
        return CVelmorantWinThread::OnThreadMessage(message);
    }
    void OnQuit(UINT wParam, LPARAM lParam) override {
        sQuits.fetch_add(1);
        CVelmorantWinThread::OnQuit(wParam, lParam);
    }

  protected:
    Recording() = default;
};
IMPLEMENT_DYNCREATE(Recording, CVelmorantWinThread)

TEST(CVelmorantWinThread, MessagesBeforeQuitAreHandledAndNoneAfter) {
    Recording::sSeen.clear();
    Recording::sQuits = 0;
    auto* thread = static_cast<Recording*>(
        AfxBeginThread(RUNTIME_CLASS(Recording), THREAD_PRIORITY_NORMAL, 0, CREATE_SUSPENDED));
    ASSERT_NE(thread, nullptr);
    thread->m_bAutoDelete = 0;
    EXPECT_FALSE(thread->OnIdle(0)) << "no idle time wanted";
    thread->SelfMessage(WM_USER + 1, 0, 0);
    thread->SelfMessage(WM_USER + 2, 0, 0);
    thread->Quit();
    thread->SelfMessage(WM_USER + 3, 0, 0);  // dropped: quitting
    thread->Quit();                          // a second 1219
    thread->ResumeThread();
    ASSERT_EQ(WaitForSingleObject(thread->m_hThread, 20000), WAIT_OBJECT_0);
    std::lock_guard<std::mutex> g(Recording::sLock);
    EXPECT_EQ(Recording::sSeen,
              (std::vector<UINT>{WM_USER + 1, WM_USER + 2, kWmVelmorantQuit, kWmVelmorantQuit}));
    EXPECT_EQ(Recording::sQuits.load(), 2);
    delete thread;
}

// Both guards nest on one thread, exclude others, and leave nothing held.
TEST(ScopedLocks, NestOnOneThreadAndExcludeOthers) {
    CCriticalSection section;
    std::atomic<int> otherGot{-1};
    auto tryBoth = [&] {
        otherGot = section.Lock(0) + StGlobalLock::sSafe.Lock(0);
        if (otherGot == 2) section.Unlock(), StGlobalLock::sSafe.Unlock();
    };
    {
        StSingleLock a(&section), b(&section);
        StGlobalLock outer, inner;
        std::thread(tryBoth).join();
        EXPECT_EQ(otherGot, 0);
    }
    std::thread(tryBoth).join();
    EXPECT_EQ(otherGot, 2) << "the destructors leave both free";
}

}  // namespace
}  // namespace basicutils
