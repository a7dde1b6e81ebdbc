// Per-thread state: registry, message queue, call queue and wake-ups.
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/internal/Env.h>
#include <basicutils/platform/posix/ThreadState.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <unordered_map>

namespace basicutils::detail {
namespace {

struct Registry {
    std::mutex lock;
    std::unordered_map<DWORD, std::shared_ptr<ThreadState>> states;
};

// Never destroyed: threads may outlive static destruction at exit.
Registry& TheRegistry() {
    static Registry* registry = new Registry;
    return *registry;
}

std::atomic<DWORD> gNextThreadId{1};

// Drops the thread's state from the registry when the thread ends.
struct StateHolder {
    std::shared_ptr<ThreadState> state;
    ~StateHolder() {
        if (!state) return;
        state->Retire();
        Registry& r = TheRegistry();
        LibraryLock g(r.lock);
        r.states.erase(state->Id());
    }
};

thread_local StateHolder tHolder;

}  // namespace

ThreadState::~ThreadState() {
    if (mFd >= 0) CurrentEnv().Close(mFd);
}

void ThreadState::Wake() {
    Guard g(mLock);
    ++mWakes;
    mWake.notify_all();
}

uint64_t ThreadState::WakeCount() {
    Guard g(mLock);
    return mWakes;
}

bool ThreadState::WaitForWake(uint64_t seen, bool infinite,
                              std::chrono::steady_clock::time_point deadline) {
    Guard l(mLock);
    auto changed = [&] { return mWakes != seen; };
    if (infinite) {
        mWake.wait(l.Held(), changed);
        return true;
    }
    return mWake.wait_until(l.Held(), deadline, changed);
}

bool ThreadState::AnythingLocked() const {
    return !mMessages.empty() || mQuitPending;
}

bool ThreadState::QuitAtFrontLocked() const {
    return mMessages.empty() ? mQuitPending : mMessages.front().message == WM_QUIT;
}

bool ThreadState::PumpableLocked() const {
    if (QuitAtFrontLocked()) return !mQuitSeen;
    return !mMessages.empty();
}

// The counter's 8-byte read and write go straight to the kernel: they can't
// come back short, and through the seam a test's rule for "the N-th write"
// would land on whichever thread happened to post.
void ThreadState::SyncFdLocked() {
    if (mFd < 0) return;
    bool want = PumpableLocked();
    if (want && !mFdArmed) {
        uint64_t one = 1;
        ssize_t n = ::write(mFd, &one, sizeof one);
        mFdArmed = n == static_cast<ssize_t>(sizeof one);
    } else if (!want && mFdArmed) {
        uint64_t value = 0;
        ssize_t n = ::read(mFd, &value, sizeof value);
        (void)n;
        mFdArmed = false;
    }
}

PostResult ThreadState::Post(const MSG& message) {
    Guard g(mLock);
    if (!mAlive) return PostResult::kThreadGone;
    if (mMessages.size() >= kMessageQueueLimit) return PostResult::kQueueFull;
    mMessages.push_back(message);
    SyncFdLocked();
    ++mWakes;
    mWake.notify_all();
    return PostResult::kPosted;
}

bool ThreadState::QueueApc(PAPCFUNC function, ULONG_PTR data) {
    Guard g(mLock);
    if (!mAlive) return false;
    mApcs.emplace_back(function, data);
    ++mWakes;
    mWake.notify_all();
    return true;
}

void ThreadState::PostQuit(int exitCode) {
    Guard g(mLock);
    mQuitPending = true;
    mQuitCode = exitCode;
    SyncFdLocked();
    ++mWakes;
    mWake.notify_all();
}

bool ThreadState::Take(MSG* message, bool remove, bool* quit) {
    Guard g(mLock);
    *quit = false;
    if (!mMessages.empty()) {
        *message = mMessages.front();
        *quit = message->message == WM_QUIT;
        if (remove) mMessages.pop_front();
    } else if (mQuitPending) {
        *message = MSG{nullptr, WM_QUIT, static_cast<WPARAM>(mQuitCode), 0, TickCount()};
        *quit = true;
        if (remove) mQuitPending = false;
    } else {
        return false;
    }
    if (remove && *quit) mQuitSeen = false;
    if (remove) SyncFdLocked();
    return true;
}

bool ThreadState::TakeForPump(MSG* message, bool take) {
    Guard g(mLock);
    if (QuitAtFrontLocked()) {
        mQuitSeen = true;
        SyncFdLocked();
        return false;
    }
    if (!take || mMessages.empty()) return false;
    *message = mMessages.front();
    mMessages.pop_front();
    SyncFdLocked();
    return true;
}

bool ThreadState::WaitLocked(Guard& guard, DWORD milliseconds, bool (ThreadState::*ready)() const) {
    auto isReady = [&] { return (this->*ready)(); };
    if (milliseconds == INFINITE) {
        mWake.wait(guard.Held(), isReady);
        return true;
    }
    return mWake.wait_for(guard.Held(), std::chrono::milliseconds(milliseconds), isReady);
}

bool ThreadState::WaitForMessage(DWORD milliseconds) {
    Guard l(mLock);
    return WaitLocked(l, milliseconds, &ThreadState::AnythingLocked);
}

bool ThreadState::WaitForPumpable(DWORD milliseconds) {
    Guard l(mLock);
    return WaitLocked(l, milliseconds, &ThreadState::PumpableLocked);
}

size_t ThreadState::PendingCount() {
    Guard g(mLock);
    return mMessages.size();
}

std::vector<MSG> ThreadState::TakeWindowMessages(HWND window) {
    Guard g(mLock);
    std::vector<MSG> taken;
    std::deque<MSG> kept;
    for (const MSG& m : mMessages) (m.hwnd == window ? taken.push_back(m) : kept.push_back(m));
    mMessages.swap(kept);
    SyncFdLocked();
    return taken;
}

bool ThreadState::RunApcs() {
    std::deque<std::pair<PAPCFUNC, ULONG_PTR>> calls;
    {
        Guard g(mLock);
        calls.swap(mApcs);
    }
    for (auto& [function, data] : calls) function(data);
    return !calls.empty();
}

int ThreadState::Fd() {
    Guard g(mLock);
    if (mFd < 0) {
        mFd = CurrentEnv().Eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
        if (mFd < 0) SetLastErrorFromErrno(errno);
        mFdArmed = false;
        SyncFdLocked();
    }
    return mFd;
}

void ThreadState::Retire() {
    Guard g(mLock);
    mAlive = false;
    mMessages.clear();
    mApcs.clear();
    mQuitPending = false;
    SyncFdLocked();
}

std::shared_ptr<ThreadState> NewThreadState() {
    auto state = std::make_shared<ThreadState>(gNextThreadId.fetch_add(1));
    Registry& r = TheRegistry();
    LibraryLock g(r.lock);
    r.states[state->Id()] = state;
    return state;
}

void AdoptThreadState(std::shared_ptr<ThreadState> state) {
    tHolder.state = std::move(state);
}

std::shared_ptr<ThreadState> CurrentThreadState() {
    if (!tHolder.state) tHolder.state = NewThreadState();
    return tHolder.state;
}

std::shared_ptr<ThreadState> FindThreadState(DWORD id) {
    Registry& r = TheRegistry();
    LibraryLock g(r.lock);
    auto it = r.states.find(id);
    return it == r.states.end() ? nullptr : it->second;
}

DWORD TickCount() {
    using namespace std::chrono;
    return static_cast<DWORD>(
        duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
}

}  // namespace basicutils::detail
