// Hidden windows, posting and pumping on per-thread queues.
#include <basicutils/platform/MessageQueue.h>
#include <basicutils/platform/posix/ThreadState.h>

#include <atomic>
#include <unordered_map>

namespace basicutils {
namespace detail {
namespace {

struct WindowEntry {
    CWnd* window;
    std::shared_ptr<ThreadState> owner;
};

struct WindowRegistry {
    std::mutex lock;
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
    std::lock_guard<std::mutex> g(r.lock);
    auto it = r.windows.find(window);
    return it == r.windows.end() ? nullptr : it->second.owner;
}

}  // namespace

std::vector<MSG> TakeWindowMessages(HWND window) {
    auto owner = OwnerOf(window);
    return owner ? owner->TakeWindowMessages(window) : std::vector<MSG>{};
}

}  // namespace detail

BOOL PostMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto owner = detail::OwnerOf(window);
    if (!owner) return 0;
    return owner->Post(MSG{window, message, wParam, lParam, detail::TickCount()}) ? 1 : 0;
}

BOOL PostThreadMessageW(DWORD threadId, UINT message, WPARAM wParam, LPARAM lParam) {
    auto state = detail::FindThreadState(threadId);
    if (!state) return 0;
    return state->Post(MSG{nullptr, message, wParam, lParam, detail::TickCount()}) ? 1 : 0;
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
    CWnd* target = nullptr;
    {
        detail::WindowRegistry& r = detail::Windows();
        std::lock_guard<std::mutex> g(r.lock);
        auto it = r.windows.find(message->hwnd);
        if (it == r.windows.end() || it->second.owner != detail::CurrentThreadState()) return 0;
        target = it->second.window;
    }
    return target->WindowProc(message->message, message->wParam, message->lParam);
}

int PumpMessages(DWORD waitMilliseconds) {
    auto self = detail::CurrentThreadState();
    if (waitMilliseconds) self->WaitForMessage(waitMilliseconds);
    size_t budget = self->PendingCount();
    int handled = 0;
    MSG message;
    bool quit = false;
    while (budget-- > 0) {
        if (!self->Take(&message, false, &quit) || quit) break;
        self->Take(&message, true, &quit);
        DispatchMessageW(&message);
        ++handled;
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
    if (m_hWnd) {
        detail::WindowRegistry& r = detail::Windows();
        std::lock_guard<std::mutex> g(r.lock);
        r.windows.erase(m_hWnd);
    }
}

BOOL CWnd::CreateHidden() {
    if (m_hWnd) return 0;
    auto owner = detail::CurrentThreadState();
    HWND window = reinterpret_cast<HWND>(detail::gNextWindow.fetch_add(4));
    {
        detail::WindowRegistry& r = detail::Windows();
        std::lock_guard<std::mutex> g(r.lock);
        r.windows[window] = detail::WindowEntry{this, owner};
    }
    m_hWnd = window;
    mOwnerThread = owner->Id();
    return 1;
}

BOOL CWnd::DestroyWindow() {
    if (!m_hWnd) return 0;
    {
        detail::WindowRegistry& r = detail::Windows();
        std::lock_guard<std::mutex> g(r.lock);
        r.windows.erase(m_hWnd);
    }
    m_hWnd = nullptr;
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
