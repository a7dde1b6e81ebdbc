// Message queues, hidden windows and the pump.
//
// Every thread has one message queue, made the first time the thread (or a
// poster) needs it. Two kinds of message go into it, in order of arrival:
//   - window messages, posted with PostMessageW to a window (CWnd) that the
//     thread created: the owner thread hands them to the window's WindowProc;
//   - thread messages, posted with PostThreadMessageW to a thread ID, with no
//     window: the thread's own loop (CWinThread) decides what they mean.
// Posting is safe from any thread and returns at once. Handlers always run
// on the thread that owns the queue, when that thread pumps. A queue holds
// at most 10,000 messages: a post to a full queue fails with
// ERROR_NOT_ENOUGH_QUOTA, as on the system this imitates.
//
// Hosting the library in an application's own loop. The main thread must
// pump for background tasks to end. An application without a loop of this
// layer's kind does one of these on its main thread:
//   - call PumpMessages(waitMs) from its loop: it handles every message that
//     waits (waiting up to waitMs for the first) and returns their number;
//   - or watch GetMessageQueueFd() with poll, epoll or a GLib/Qt watcher: the
//     descriptor is readable exactly while PumpMessages has something to do;
//     call PumpMessages(0) when it is.
// A WM_QUIT is left for GetMessageW (or PeekMessageW): PumpMessages never
// consumes it. It stops at the quit, and from then on the quit alone no
// longer makes the descriptor readable: a loop that sees PumpMessages stop
// checks for WM_QUIT with PeekMessageW.
//
// A window belongs to the thread that created it. Messages still queued for
// a window that has been destroyed are dropped when they come up; posting to
// it fails with ERROR_INVALID_WINDOW_HANDLE. DestroyWindow may be called on
// any thread: called elsewhere while the owner runs the window's WindowProc,
// it waits for that call to return, so that the window can be freed as soon
// as DestroyWindow returns. (A WindowProc must therefore not wait for a thread
// that is destroying its window.)
#pragma once

#include <basicutils/Export.h>
#include <basicutils/platform/Handles.h>
#include <basicutils/platform/RuntimeClass.h>

#include <atomic>
#include <cstdint>

namespace basicutils {

struct HWND__;
using HWND = HWND__*;
using WPARAM = uintptr_t;
using LPARAM = intptr_t;
using LRESULT = intptr_t;

inline constexpr UINT WM_QUIT = 0x0012;
inline constexpr UINT WM_USER = 0x0400;
inline constexpr UINT PM_NOREMOVE = 0x0000;
inline constexpr UINT PM_REMOVE = 0x0001;
inline constexpr DWORD WS_OVERLAPPEDWINDOW = 0x00CF0000;
inline constexpr DWORD WS_VISIBLE = 0x10000000;
inline constexpr DWORD WS_EX_TOOLWINDOW = 0x00000080;

struct MSG {
    HWND hwnd;  // null for a thread message
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    DWORD time;  // milliseconds of a monotonic clock when posted
};

struct RECT {
    int32_t left, top, right, bottom;
};

// FALSE when the window does not exist, its thread has ended or its queue is
// full; GetLastError tells which.
BASICUTILS_EXPORT BOOL PostMessageW(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
BASICUTILS_EXPORT BOOL PostThreadMessageW(DWORD threadId, UINT message, WPARAM wParam,
                                          LPARAM lParam);
// Asks the calling thread's loop to end: GetMessageW returns 0 with this
// exit code once no other message waits (as on the system this imitates,
// messages posted after the quit still come first).
BASICUTILS_EXPORT void PostQuitMessage(int exitCode);

// Waits for a message of the calling thread. 0 for WM_QUIT, else nonzero.
// `window`, `filterMin` and `filterMax` must be 0 (no filtering); -1 if not.
BASICUTILS_EXPORT BOOL GetMessageW(MSG* message, HWND window, UINT filterMin, UINT filterMax);
// Looks without waiting; with PM_REMOVE takes the message out.
BASICUTILS_EXPORT BOOL PeekMessageW(MSG* message, HWND window, UINT filterMin, UINT filterMax,
                                    UINT removeFlags);
// Hands a window message to its window's WindowProc; 0 for thread messages
// and messages of windows that are gone.
BASICUTILS_EXPORT LRESULT DispatchMessageW(const MSG* message);

// See the top of this file. Returns the number of messages handled.
BASICUTILS_EXPORT int PumpMessages(DWORD waitMilliseconds = 0);
// The calling thread's descriptor: readable while messages wait. It belongs
// to the queue; don't read or close it. -1 (GetLastError says why) when the
// system gives none; a later call tries again.
BASICUTILS_EXPORT int GetMessageQueueFd();

// A window that is never shown: an address for messages, bound to the
// thread that created it.
class BASICUTILS_EXPORT CWnd : public CObject {
    DECLARE_DYNAMIC(CWnd)
  public:
    CWnd();
    ~CWnd() override;
    // Makes the window on the calling thread. FALSE if it exists already.
    BOOL CreateHidden();
    // Takes the window away; its queued messages are dropped. Any thread:
    // see the top of this file.
    BOOL DestroyWindow();
    HWND GetSafeHwnd() const { return m_hWnd.load(); }
    DWORD GetOwnerThreadId() const { return mOwnerThread; }
    BOOL PostMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0);
    // Called on the owner thread for each message; the message map.
    virtual LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam);

  protected:
    // Called once the window is gone (after DestroyWindow).
    virtual void PostNcDestroy() {}

    std::atomic<HWND> m_hWnd;  // null once destroyed, by whichever thread
    DWORD mOwnerThread;
};

// A frame window that stays hidden; Create takes the frame's usual arguments
// and keeps the title. WS_VISIBLE is not honoured: nothing is ever shown.
class BASICUTILS_EXPORT CFrameWnd : public CWnd {
    DECLARE_DYNAMIC(CFrameWnd)
  public:
    static const RECT rectDefault;
    BOOL Create(const char16_t* className, const char16_t* title, DWORD style = WS_OVERLAPPEDWINDOW,
                const RECT& rect = rectDefault, CWnd* parent = nullptr,
                const char16_t* menuName = nullptr, DWORD exStyle = 0, void* context = nullptr);
    const char16_t* GetTitle() const { return mTitle; }
    DWORD GetStyle() const { return mStyle; }
    DWORD GetExStyle() const { return mExStyle; }

  protected:
    char16_t mTitle[64] = {};
    DWORD mStyle = 0;
    DWORD mExStyle = 0;
};

}  // namespace basicutils
