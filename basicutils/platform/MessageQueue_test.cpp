// Hidden windows, posting across threads, the pump and its descriptor,
// threads with a message loop.
#include <basicutils/platform/Deadline_test.h>
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/MessageQueue.h>
#include <basicutils/platform/Sync.h>
#include <basicutils/platform/WinThread.h>
#include <basicutils/platform/internal/WindowMessages.h>
#include <gtest/gtest.h>
#include <poll.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

namespace basicutils {
namespace {

using testing_support::WaitUntil;

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
    BOOL OnThreadMessage(const MSG& m) override {
        if (m.message == WM_USER + 1) PostQuitMessage(0);
        sSeen->push_back(m.lParam);
        return 1;
    }
    int ExitInstance() override { return 42; }

  protected:
    LoopThread() = default;
};
std::vector<LPARAM>* LoopThread::sSeen = nullptr;
IMPLEMENT_DYNCREATE(LoopThread, CWinThread)

TEST(MessageQueue, ThreadWithLoopHandlesItsMessagesThenQuits) {
    std::vector<LPARAM> seen;
    LoopThread::sSeen = &seen;
    CWinThread* thread =
        AfxBeginThread(RUNTIME_CLASS(LoopThread), THREAD_PRIORITY_NORMAL, 0, CREATE_SUSPENDED);
    ASSERT_NE(thread, nullptr);
    thread->m_bAutoDelete = 0;
    EXPECT_STREQ(thread->GetRuntimeClass()->m_lpszClassName, "LoopThread");
    EXPECT_TRUE(thread->IsKindOf(RUNTIME_CLASS(CWinThread)));
    EXPECT_FALSE(RUNTIME_CLASS(CWinThread)->IsDerivedFrom(RUNTIME_CLASS(LoopThread)));
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
    delete thread;
}

// The limits: a full queue, a pump racing a taker on another thread, a
// window destroyed elsewhere while its WindowProc runs, and a quit that a
// poll loop has already been told of.
TEST(MessageQueueLimits, AFullQueueRefusesPostsWithTheSystemsError) {
    Recorder window;
    window.CreateHidden();
    const DWORD self = GetCurrentThreadId();
    for (int i = 0; i < 10000; ++i) ASSERT_TRUE(PostThreadMessageW(self, WM_USER, 0, i)) << i;
    for (bool full : {true, false}) {  // a thread message, then a window message
        SetLastError(0);
        EXPECT_EQ(PostThreadMessageW(self, WM_USER, 0, 0) != 0, !full);
        EXPECT_EQ(GetLastError(), full ? ERROR_NOT_ENOUGH_QUOTA : 0u);
        EXPECT_EQ(window.PostMessage(WM_USER) != 0, !full);
        EXPECT_EQ(GetLastError(), full ? ERROR_NOT_ENOUGH_QUOTA : 0u);
        EXPECT_EQ(PumpMessages(0), full ? 10000 : 2);
    }
}

// ~CThreadDispatcher takes a window's messages on whatever thread deletes it.
// The pump and a taker on another thread go for the same messages: each one
// is handled or taken, never both. (A race detector: a pump that looked and
// then took could lose the race in between, and hand on a message that the
// taker had already had.)
TEST(MessageQueueLimits, APumpAndATakerElsewhereNeverBothGetAMessage) {
    Recorder window;
    window.CreateHidden();
    constexpr int kMessages = 40000;
    std::atomic<bool> done{false};
    std::vector<LPARAM> taken;
    std::thread taker([&] {
        for (int i = 0; i < kMessages; ++i) {
            while (!window.PostMessage(WM_USER, 0, i)) std::this_thread::yield();  // queue full
            if (i % 8 == 7)
                for (const MSG& m : detail::TakeWindowMessages(window.GetSafeHwnd()))
                    taken.push_back(m.lParam);
        }
        done = true;
    });
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!done && std::chrono::steady_clock::now() < deadline) PumpMessages(0);
    taker.join();
    PumpMessages(0);
    std::vector<int> count(kMessages, 0);
    for (auto& [message, v] : window.seen) ++count[v];
    for (LPARAM v : taken) ++count[v];
    for (int i = 0; i < kMessages; ++i) ASSERT_EQ(count[i], 1) << "message " << i;
}

// The WindowProc holds on until DestroyWindow has begun on another thread,
// then touches its window: freed memory, if DestroyWindow had returned and
// the window been deleted.
struct SlowWindow : CWnd {
    std::atomic<bool> inside{false};
    int calls = 0;
    LRESULT WindowProc(UINT, WPARAM, LPARAM) override {
        inside = true;
        WaitUntil([&] { return GetSafeHwnd() == nullptr; });
        for (int i = 0; i < 20; ++i) std::this_thread::yield();
        ++calls;
        inside = false;
        return 0;
    }
};

TEST(MessageQueueLimits, DestroyWindowElsewhereWaitsForTheWindowProcUnderWay) {
    auto* window = new SlowWindow;
    window->CreateHidden();
    ASSERT_TRUE(window->PostMessage(WM_USER));
    std::atomic<bool> procRanAfterDestroy{true};
    std::thread destroyer([&] {
        std::thread poster([&] {
            while (window->PostMessage(WM_USER + 1)) std::this_thread::yield();
        });
        WaitUntil([&] { return window->inside.load(); });
        EXPECT_TRUE(window->DestroyWindow());
        procRanAfterDestroy = window->inside.load();
        poster.join();
        delete window;
    });
    EXPECT_TRUE(WaitUntil([&] { return PumpMessages(0) > 0; }));
    destroyer.join();
    EXPECT_FALSE(procRanAfterDestroy);
    PumpMessages(0);  // the posts that got in before the end are dropped
}

TEST(MessageQueueLimits, AWindowCanDestroyItselfFromItsOwnWindowProc) {
    struct SelfDestroying : Recorder {
        LRESULT WindowProc(UINT message, WPARAM w, LPARAM l) override {
            Recorder::WindowProc(message, w, l);
            EXPECT_TRUE(DestroyWindow());
            return 0;
        }
    } window;
    window.CreateHidden();
    window.PostMessage(WM_USER, 0, 1);
    window.PostMessage(WM_USER, 0, 2);
    EXPECT_EQ(PumpMessages(0), 2);
    ASSERT_EQ(window.seen.size(), 1u) << "the second comes after the end";
    EXPECT_FALSE(window.PostMessage(WM_USER));
}

// A poll loop learns of the quit once; then only new messages wake it.
TEST(MessageQueueLimits, AQuitSeenByThePumpNoLongerWakesThePoller) {
    Recorder window;
    window.CreateHidden();
    // clang-format off
    struct Case { const char* how; void (*quit)(); WPARAM code; } cases[] = {
        {"PostQuitMessage", [] { PostQuitMessage(3); }, 3},
        {"posted WM_QUIT", [] { PostThreadMessageW(GetCurrentThreadId(), WM_QUIT, 5, 0); }, 5}};
    // clang-format on
    for (const Case& c : cases) {
        SCOPED_TRACE(c.how);
        c.quit();
        window.PostMessage(WM_USER, 0, 7);
        EXPECT_TRUE(Readable(GetMessageQueueFd()));
        const int handled = PumpMessages(0);
        EXPECT_FALSE(Readable(GetMessageQueueFd())) << "the pump has been told of the quit";
        EXPECT_EQ(PumpMessages(1), 0);
        MSG m;
        ASSERT_TRUE(PeekMessageW(&m, nullptr, 0, 0, PM_NOREMOVE));
        EXPECT_EQ(m.message, WM_QUIT);
        EXPECT_EQ(GetMessageW(&m, nullptr, 0, 0), 0);
        EXPECT_EQ(m.wParam, c.code);
        // A quit flag lets later messages pass; a posted quit keeps its place.
        EXPECT_EQ(handled + PumpMessages(0), 1);
        EXPECT_FALSE(Readable(GetMessageQueueFd()));
    }
}

}  // namespace
}  // namespace basicutils
