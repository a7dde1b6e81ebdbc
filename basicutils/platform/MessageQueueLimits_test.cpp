// The message queue at its limits: a full queue, a pump racing a taker on
// another thread, a window destroyed elsewhere while its WindowProc runs, and
// a quit that a poll loop has already been told of.
#include <basicutils/platform/Deadline_test.h>
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/MessageQueue.h>
#include <basicutils/platform/Threads.h>
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

bool PollSaysReadable() {
    pollfd p{GetMessageQueueFd(), POLLIN, 0};
    return ::poll(&p, 1, 0) == 1;
}

struct Counter : CWnd {
    std::vector<LPARAM> seen;
    LRESULT WindowProc(UINT, WPARAM, LPARAM lParam) override {
        seen.push_back(lParam);
        return 0;
    }
};

TEST(MessageQueueLimits, AFullQueueRefusesPostsWithTheSystemsError) {
    Counter window;
    window.CreateHidden();
    const DWORD self = GetCurrentThreadId();
    for (int i = 0; i < 10000; ++i) ASSERT_TRUE(PostThreadMessageW(self, WM_USER, 0, i)) << i;
    struct Post {
        const char* what;
        BOOL (*post)(Counter&, DWORD);
    } posts[] = {{"thread message",
                  [](Counter&, DWORD id) { return PostThreadMessageW(id, WM_USER, 0, 0); }},
                 {"window message", [](Counter& w, DWORD) { return w.PostMessage(WM_USER); }}};
    for (const Post& p : posts) {
        SetLastError(0);
        EXPECT_FALSE(p.post(window, self)) << p.what;
        EXPECT_EQ(GetLastError(), ERROR_NOT_ENOUGH_QUOTA) << p.what;
    }
    EXPECT_EQ(PumpMessages(0), 10000);
    for (const Post& p : posts) EXPECT_TRUE(p.post(window, self)) << p.what << " after the pump";
    EXPECT_EQ(PumpMessages(0), 2);
}

// ~CThreadDispatcher takes a window's messages on whatever thread deletes it.
// The pump and a taker on another thread go for the same messages: each one
// is handled or taken, never both. (A race detector: a pump that looked and
// then took could lose the race in between, and hand on a message that the
// taker had already had.)
TEST(MessageQueueLimits, APumpAndATakerElsewhereNeverBothGetAMessage) {
    Counter window;
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
    for (LPARAM v : window.seen) ++count[v];
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
    struct SelfDestroying : Counter {
        LRESULT WindowProc(UINT message, WPARAM w, LPARAM l) override {
            Counter::WindowProc(message, w, l);
            EXPECT_TRUE(DestroyWindow());
            return 0;
        }
    } window;
    window.CreateHidden();
    window.PostMessage(WM_USER, 0, 1);
    window.PostMessage(WM_USER, 0, 2);
    EXPECT_EQ(PumpMessages(0), 2);
    EXPECT_EQ(window.seen, std::vector<LPARAM>{1}) << "the second comes after the end";
    EXPECT_FALSE(window.PostMessage(WM_USER));
}

// A poll loop learns of the quit once; then only new messages wake it.
TEST(MessageQueueLimits, AQuitSeenByThePumpNoLongerWakesThePoller) {
    Counter window;
    window.CreateHidden();
    struct Case {
        const char* how;
        void (*quit)();
        WPARAM code;
    } cases[] = {
        {"PostQuitMessage", [] { PostQuitMessage(3); }, 3},
        {"posted WM_QUIT", [] { PostThreadMessageW(GetCurrentThreadId(), WM_QUIT, 5, 0); }, 5}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.how);
        c.quit();
        window.PostMessage(WM_USER, 0, 7);
        EXPECT_TRUE(PollSaysReadable());
        const int handled = PumpMessages(0);
        EXPECT_FALSE(PollSaysReadable()) << "the pump has been told of the quit";
        EXPECT_EQ(PumpMessages(1), 0);
        MSG m;
        ASSERT_TRUE(PeekMessageW(&m, nullptr, 0, 0, PM_NOREMOVE));
        EXPECT_EQ(m.message, WM_QUIT);
        EXPECT_EQ(GetMessageW(&m, nullptr, 0, 0), 0);
        EXPECT_EQ(m.wParam, c.code);
        // A quit flag lets later messages pass; a posted quit keeps its place.
        EXPECT_EQ(handled + PumpMessages(0), 1);
        EXPECT_FALSE(PollSaysReadable());
    }
}

}  // namespace
}  // namespace basicutils
