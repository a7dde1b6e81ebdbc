// Per-thread state of the platform layer: the thread's ID, its message
// queue, its queue of asynchronous procedure calls and the wake-up used by
// every wait. Internal to the POSIX implementation.
//
// The message queue holds at most kMessageQueueLimit posted messages. A quit
// asked with PostQuitMessage is a flag, not a queued message: it comes up
// once the queue is otherwise empty. PumpMessages stops at a quit and leaves
// it for GetMessageW; the quit then no longer makes the descriptor readable,
// so that a poll loop isn't woken again and again for it.
#pragma once

#include <basicutils/platform/MessageQueue.h>
#include <basicutils/platform/Sync.h>
#include <basicutils/platform/internal/Suspension.h>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace basicutils::detail {

inline constexpr size_t kMessageQueueLimit = 10000;

enum class PostResult { kPosted, kThreadGone, kQueueFull };

class ThreadState {
  public:
    explicit ThreadState(DWORD id) : mId(id) {}
    ~ThreadState();

    DWORD Id() const { return mId; }

    // Wakes the thread from any wait of this layer.
    void Wake();
    // Queues a message, unless the thread has ended or its queue is full.
    PostResult Post(const MSG& message);
    bool QueueApc(PAPCFUNC function, ULONG_PTR data);
    void PostQuit(int exitCode);
    // Takes the next message; false when none waits (or WM_QUIT comes up).
    // *quit is set when the message taken is WM_QUIT.
    bool Take(MSG* message, bool remove, bool* quit);
    // For PumpMessages: takes the next message (when `take`) unless it is
    // WM_QUIT, which stays and is marked as seen by the pump.
    bool TakeForPump(MSG* message, bool take);
    // Waits until a message waits, the quit flag is set or the time is out.
    bool WaitForMessage(DWORD milliseconds);
    // Waits until TakeForPump has something to do (a message, or a quit that
    // the pump hasn't seen), or the time is out.
    bool WaitForPumpable(DWORD milliseconds);
    size_t PendingCount();
    // Takes the queued messages for one window out of the queue.
    std::vector<MSG> TakeWindowMessages(HWND window);
    // Runs every queued call; true when there was at least one.
    bool RunApcs();
    int Fd();
    // The thread has ended: further posts fail, queued messages are dropped.
    void Retire();

    // The wake counter of Wake(), for waits that check other conditions.
    uint64_t WakeCount();
    // Waits until the wake counter differs from `seen` or the deadline passes.
    bool WaitForWake(uint64_t seen, bool infinite, std::chrono::steady_clock::time_point deadline);

  private:
    using Guard = LibraryLock<std::mutex>;

    bool AnythingLocked() const;
    bool QuitAtFrontLocked() const;
    bool PumpableLocked() const;
    void SyncFdLocked();
    bool WaitLocked(Guard& guard, DWORD milliseconds, bool (ThreadState::*ready)() const);

    const DWORD mId;
    std::mutex mLock;
    std::condition_variable mWake;
    uint64_t mWakes = 0;
    std::deque<MSG> mMessages;
    std::deque<std::pair<PAPCFUNC, ULONG_PTR>> mApcs;
    bool mQuitPending = false;
    bool mQuitSeen = false;  // the pump has stopped at the quit at the front
    int mQuitCode = 0;
    bool mAlive = true;
    int mFd = -1;
    bool mFdArmed = false;
};

// The calling thread's state, made and registered on first use.
std::shared_ptr<ThreadState> CurrentThreadState();
// The state of a live thread by ID, or null.
std::shared_ptr<ThreadState> FindThreadState(DWORD id);
// Makes and registers the state of a thread about to be created.
std::shared_ptr<ThreadState> NewThreadState();
// Binds a state made by NewThreadState to the calling (new) thread.
void AdoptThreadState(std::shared_ptr<ThreadState> state);
// Milliseconds of the monotonic clock, for MSG::time.
DWORD TickCount();

}  // namespace basicutils::detail
