// Hidden windows, posting across threads, the pump and its descriptor,
// threads with a message loop, run-time classes.
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/MessageQueue.h>
#include <basicutils/platform/Sync.h>
#include <basicutils/platform/WinThread.h>
#include <gtest/gtest.h>
#include <poll.h>

#include <atomic>
#include <thread>
#include <vector>

namespace basicutils {
namespace {

struct Recorder : CWnd {
    std::vector<std::pair<UINT, LPARAM>> seen;
    std::vector<DWORD> threads;
    LRESULT WindowProc(UINT message, WPARAM, LPARAM lParam) override {
        seen.emplace_back(message, lParam);
        threads.push_back(GetCurrentThreadId());
        return 0;
    }
};

bool Readable(int fd) {
    pollfd p{fd, POLLIN, 0};
    return ::poll(&p, 1, 0) == 1 && (p.revents & POLLIN);
}

TEST(MessageQueue, PostsFromManyThreadsArriveInOrderOnTheOwner) {
    Recorder window;
    ASSERT_TRUE(window.CreateHidden());
    EXPECT_FALSE(window.CreateHidden());
    constexpr int kPosters = 4, kEach = 500;
    std::vector<std::thread> posters;
    for (int p = 0; p < kPosters; ++p)
        posters.emplace_back([&, p] {
            for (int i = 0; i < kEach; ++i)
                ASSERT_TRUE(PostMessageW(window.GetSafeHwnd(), WM_USER + p, 0, i));
        });
    for (auto& t : posters) t.join();
    EXPECT_TRUE(window.seen.empty()) << "nothing runs before the owner pumps";
    EXPECT_EQ(PumpMessages(0), kPosters * kEach);
    ASSERT_EQ(window.seen.size(), size_t(kPosters * kEach));
    std::vector<LPARAM> next(kPosters, 0);
    for (auto& [message, value] : window.seen) EXPECT_EQ(value, next[message - WM_USER]++);
    for (DWORD id : window.threads) EXPECT_EQ(id, GetCurrentThreadId());
}

TEST(MessageQueue, DescriptorIsReadableExactlyWhileMessagesWait) {
    Recorder window;
    window.CreateHidden();
    const int fd = GetMessageQueueFd();
    ASSERT_GE(fd, 0);
    EXPECT_EQ(GetMessageQueueFd(), fd);
    EXPECT_FALSE(Readable(fd));
    std::thread([&] { window.PostMessage(WM_USER + 1, 0, 1); }).join();
    window.PostMessage(WM_USER + 1, 0, 2);
    EXPECT_TRUE(Readable(fd));
    MSG m;
    ASSERT_TRUE(PeekMessageW(&m, nullptr, 0, 0, PM_REMOVE));
    EXPECT_TRUE(Readable(fd)) << "one message still waits";
    DispatchMessageW(&m);
    EXPECT_EQ(PumpMessages(0), 1);
    EXPECT_FALSE(Readable(fd));
    EXPECT_EQ(window.seen.size(), 2u);
    EXPECT_EQ(PumpMessages(1), 0) << "a wait that times out handles nothing";
    std::thread late([&] {
        Sleep(5);
        window.PostMessage(WM_USER, 0, 9);
    });
    EXPECT_EQ(PumpMessages(20000), 1) << "a wait takes a late message";
    late.join();
}

TEST(MessageQueue, DestroyedWindowsAndUnknownThreadsRefusePosts) {
    auto* window = new Recorder;
    window->CreateHidden();
    HWND h = window->GetSafeHwnd();
    EXPECT_TRUE(PostMessageW(h, WM_USER, 0, 1));
    EXPECT_TRUE(window->DestroyWindow());
    EXPECT_FALSE(window->DestroyWindow());
    EXPECT_FALSE(PostMessageW(h, WM_USER, 0, 2));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_WINDOW_HANDLE);
    delete window;
    EXPECT_EQ(PumpMessages(0), 1) << "the stale message is taken";  // and dropped
    EXPECT_FALSE(PostMessageW(nullptr, WM_USER, 0, 0));
    EXPECT_FALSE(PostThreadMessageW(0x7ffffff0u, WM_USER, 0, 0));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_THREAD_ID);
    MSG m;
    EXPECT_EQ(GetMessageW(&m, h, 0, 0), -1) << "filters are not offered";
}

class LoopThread : public CWinThread {
    DECLARE_DYNCREATE(LoopThread)
  public:
    static std::vector<LPARAM>* sSeen;
    static std::atomic<DWORD> sRanOn;
    BOOL OnThreadMessage(const MSG& m) override {
        sRanOn = GetCurrentThreadId();
        if (m.message == WM_USER + 1) PostQuitMessage(0);
        sSeen->push_back(m.lParam);
        return 1;
    }
    int ExitInstance() override { return 42; }

  protected:
    LoopThread() = default;
};
std::vector<LPARAM>* LoopThread::sSeen = nullptr;
std::atomic<DWORD> LoopThread::sRanOn{0};
IMPLEMENT_DYNCREATE(LoopThread, CWinThread)

TEST(MessageQueue, ThreadWithLoopHandlesItsMessagesThenQuits) {
    std::vector<LPARAM> seen;
    LoopThread::sSeen = &seen;
    CWinThread* thread =
        AfxBeginThread(RUNTIME_CLASS(LoopThread), THREAD_PRIORITY_NORMAL, 0, CREATE_SUSPENDED);
    ASSERT_NE(thread, nullptr);
    thread->m_bAutoDelete = 0;
    const DWORD id = thread->m_nThreadID;
    // Posting works before the loop runs: the queue exists from creation.
    for (LPARAM i = 0; i < 10; ++i) EXPECT_TRUE(PostThreadMessageW(id, WM_USER, 0, i));
    EXPECT_TRUE(thread->PostThreadMessage(WM_USER + 1, 0, 10));
    thread->ResumeThread();
    EXPECT_EQ(WaitForSingleObject(thread->m_hThread, 20000), WAIT_OBJECT_0);
    DWORD code = 0;
    GetExitCodeThread(thread->m_hThread, &code);
    EXPECT_EQ(code, 42u);
    ASSERT_EQ(seen.size(), 11u);
    for (LPARAM i = 0; i <= 10; ++i) EXPECT_EQ(seen[i], i);
    EXPECT_EQ(LoopThread::sRanOn.load(), id);
    delete thread;
}

TEST(RuntimeClass, DynamicCreationAndNames) {
    const CRuntimeClass* rc = RUNTIME_CLASS(LoopThread);
    EXPECT_STREQ(rc->m_lpszClassName, "LoopThread");
    EXPECT_TRUE(rc->IsDerivedFrom(RUNTIME_CLASS(CObject)));
    EXPECT_FALSE(RUNTIME_CLASS(CWinThread)->IsDerivedFrom(rc));
    EXPECT_EQ(CObject::classCObject.CreateObject(), nullptr) << "no dynamic creation";
    CObject* made = rc->CreateObject();
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->GetRuntimeClass(), rc);
    EXPECT_TRUE(made->IsKindOf(RUNTIME_CLASS(CWinThread)));
    delete made;
}

}  // namespace
}  // namespace basicutils
