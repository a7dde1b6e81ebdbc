// Hidden windows, posting and pumping on per-thread queues.
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/MessageQueue.h>
#include <basicutils/platform/internal/WindowMessages.h>
#include <basicutils/platform/posix/ThreadState.h>

#include <atomic>
#include <condition_variable>
#include <unordered_map>

namespace basicutils {
namespace detail {
namespace {

struct WindowEntry {
    CWnd* window;
    std::shared_ptr<ThreadState> owner;
    int dispatching = 0;     // WindowProc calls under way on the owner
    bool destroyed = false;  // no longer an address; erased once idle
};

struct WindowRegistry {
    std::mutex lock;
    std::condition_variable idle;  // a destroyed window's last dispatch ended
    std::unordered_map<HWND, WindowEntry> windows;
};

WindowRegistry& Windows() {
    static WindowRegistry* registry = new WindowRegistry;
    return *registry;
}

// Window handles are never reused, so a stale handle can't reach a new window.
std::atomic<uintptr_t> gNextWindow{0x10000};

std::shared_ptr<ThreadState> OwnerOf(HWND window) {
    WindowRegistry& r = Windows();
    LibraryLock g(r.lock);
    auto it = r.windows.find(window);
    return it == r.windows.end() || it->second.destroyed ? nullptr : it->second.owner;
}

// Takes a window out of the registry. While its owner runs its WindowProc,
// another thread waits here for the call to return (the caller frees the
// window next); the owner itself, destroying the window from inside its own
// WindowProc, doesn't wait: the dispatch erases the entry as it ends.
void Unregister(HWND window) {
    auto self = CurrentThreadState();
    WindowRegistry& r = Windows();
    LibraryLock l(r.lock);
    auto it = r.windows.find(window);
    if (it == r.windows.end()) return;
    it->second.destroyed = true;
    if (it->second.dispatching == 0) {
        r.windows.erase(it);
    } else if (it->second.owner != self) {
        r.idle.wait(l.Held(), [&] { return r.windows.count(window) == 0; });
    }
}

BOOL Deliver(const std::shared_ptr<ThreadState>& target, const MSG& message, DWORD gone) {
    switch (target ? target->Post(message) : PostResult::kThreadGone) {
        case PostResult::kPosted:
            return 1;
        case PostResult::kQueueFull:
            SetLastError(ERROR_NOT_ENOUGH_QUOTA);
            return 0;
        default:
            SetLastError(gone);
            return 0;
    }
}

}  // namespace

std::vector<MSG> TakeWindowMessages(HWND window) {
    auto owner = OwnerOf(window);
    return owner ? owner->TakeWindowMessages(window) : std::vector<MSG>{};
}

}  // namespace detail

BOOL PostMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return detail::Deliver(detail::OwnerOf(window),
                           MSG{window, message, wParam, lParam, detail::TickCount()},
                           ERROR_INVALID_WINDOW_HANDLE);
}

BOOL PostThreadMessageW(DWORD threadId, UINT message, WPARAM wParam, LPARAM lParam) {
    return detail::Deliver(detail::FindThreadState(threadId),
                           MSG{nullptr, message, wParam, lParam, detail::TickCount()},
                           ERROR_INVALID_THREAD_ID);
}

void PostQuitMessage(int exitCode) {
    detail::CurrentThreadState()->PostQuit(exitCode);
}

BOOL GetMessageW(MSG* message, HWND window, UINT filterMin, UINT filterMax) {
    if (!message || window || filterMin || filterMax) return -1;
    auto self = detail::CurrentThreadState();
    bool quit = false;
    while (!self->Take(message, true, &quit)) self->WaitForMessage(INFINITE);
    return quit ? 0 : 1;
}

BOOL PeekMessageW(MSG* message, HWND window, UINT filterMin, UINT filterMax, UINT removeFlags) {
    if (!message || window || filterMin || filterMax) return 0;
    bool quit = false;
    return detail::CurrentThreadState()->Take(message, (removeFlags & PM_REMOVE) != 0, &quit);
}

LRESULT DispatchMessageW(const MSG* message) {
    if (!message || !message->hwnd) return 0;
    auto self = detail::CurrentThreadState();
    detail::WindowRegistry& r = detail::Windows();
    CWnd* target = nullptr;
    {
        detail::LibraryLock g(r.lock);
        auto it = r.windows.find(message->hwnd);
        if (it == r.windows.end() || it->second.destroyed || it->second.owner != self) return 0;
        ++it->second.dispatching;
        target = it->second.window;
    }
    const LRESULT result = target->WindowProc(message->message, message->wParam, message->lParam);
    detail::LibraryLock g(r.lock);
    auto it = r.windows.find(message->hwnd);
    if (--it->second.dispatching == 0 && it->second.destroyed) {
        r.windows.erase(it);
        r.idle.notify_all();
    }
    return result;
}

int PumpMessages(DWORD waitMilliseconds) {
    auto self = detail::CurrentThreadState();
    if (waitMilliseconds) self->WaitForPumpable(waitMilliseconds);
    // Only what waits now: messages posted meanwhile wait for the next call.
    size_t budget = self->PendingCount();
    int handled = 0;
    MSG message;
    while (self->TakeForPump(&message, budget > 0)) {
        DispatchMessageW(&message);
        ++handled;
        --budget;
    }
    return handled;
}

int GetMessageQueueFd() {
    return detail::CurrentThreadState()->Fd();
}

IMPLEMENT_DYNAMIC(CWnd, CObject)
IMPLEMENT_DYNAMIC(CFrameWnd, CWnd)

const RECT CFrameWnd::rectDefault = {INT32_MIN, INT32_MIN, 0, 0};

CWnd::CWnd() : m_hWnd(nullptr), mOwnerThread(0) {}

CWnd::~CWnd() {
    if (HWND window = m_hWnd.exchange(nullptr)) detail::Unregister(window);
}

BOOL CWnd::CreateHidden() {
    if (m_hWnd) return 0;
    auto owner = detail::CurrentThreadState();
    HWND window = reinterpret_cast<HWND>(detail::gNextWindow.fetch_add(4));
    {
        detail::WindowRegistry& r = detail::Windows();
        detail::LibraryLock g(r.lock);
        r.windows[window] = detail::WindowEntry{this, owner};
    }
    mOwnerThread = owner->Id();
    m_hWnd = window;
    return 1;
}

BOOL CWnd::DestroyWindow() {
    HWND window = m_hWnd.exchange(nullptr);
    if (!window) return 0;
    detail::Unregister(window);
    PostNcDestroy();
    return 1;
}

BOOL CWnd::PostMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    return PostMessageW(m_hWnd, message, wParam, lParam);
}

LRESULT CWnd::WindowProc(UINT, WPARAM, LPARAM) {
    return 0;
}

BOOL CFrameWnd::Create(const char16_t*, const char16_t* title, DWORD style, const RECT&, CWnd*,
                       const char16_t*, DWORD exStyle, void*) {
    size_t i = 0;
    for (; title && title[i] && i + 1 < sizeof mTitle / sizeof mTitle[0]; ++i) mTitle[i] = title[i];
    mTitle[i] = 0;
    mStyle = style;
    mExStyle = exStyle;
    return CreateHidden();
}

}  // namespace basicutils
