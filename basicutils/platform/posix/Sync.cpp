// Kernel objects, events, waits, asynchronous procedure calls, locks.
#include <basicutils/platform/Sync.h>
#include <basicutils/platform/internal/KernelObject.h>
#include <basicutils/platform/internal/Suspension.h>
#include <basicutils/platform/posix/ThreadState.h>

#include <algorithm>
#include <chrono>
#include <unordered_set>

namespace basicutils {
namespace detail {
namespace {

struct HandleRegistry {
    std::mutex lock;
    std::unordered_set<KernelObject*> live;
};

HandleRegistry& Handles() {
    static HandleRegistry* registry = new HandleRegistry;
    return *registry;
}

class Event final : public KernelObject {
  public:
    Event(bool manual, bool initial) : mManual(manual), mSignaled(initial) {}
    bool TryAcquire() override {
        LibraryLock g(mLock);
        if (!mSignaled) return false;
        if (!mManual) mSignaled = false;
        return true;
    }
    void Set() {
        {
            LibraryLock g(mLock);
            mSignaled = true;
        }
        WakeWaiters();
    }
    void Reset() {
        LibraryLock g(mLock);
        mSignaled = false;
    }

  private:
    std::mutex mLock;
    const bool mManual;
    bool mSignaled;
};

// The wait shared by every wait function; `object` null waits for calls only.
DWORD Wait(KernelObject* object, DWORD milliseconds, bool alertable) {
    auto self = CurrentThreadState();
    const bool infinite = milliseconds == INFINITE;
    const auto deadline =
        std::chrono::steady_clock::now() + std::chrono::milliseconds(infinite ? 0 : milliseconds);
    if (object) object->AddWaiter(self.get());
    DWORD result = WAIT_TIMEOUT;
    for (;;) {
        const uint64_t seen = self->WakeCount();
        if (alertable && self->RunApcs()) {
            result = WAIT_IO_COMPLETION;
            break;
        }
        if (object && object->TryAcquire()) {
            result = WAIT_OBJECT_0;
            break;
        }
        if (!self->WaitForWake(seen, infinite, deadline)) {
            if (object && object->TryAcquire()) result = WAIT_OBJECT_0;
            break;
        }
    }
    if (object) object->RemoveWaiter(self.get());
    return result;
}

}  // namespace

KernelObject::KernelObject() : mRefs(1) {}
KernelObject::~KernelObject() = default;

void KernelObject::AddRef() {
    mRefs.fetch_add(1, std::memory_order_relaxed);
}

void KernelObject::Release() {
    if (mRefs.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
}

void KernelObject::AddWaiter(ThreadState* waiter) {
    LibraryLock g(mWaitersLock);
    mWaiters.push_back(waiter);
}

void KernelObject::RemoveWaiter(ThreadState* waiter) {
    LibraryLock g(mWaitersLock);
    auto it = std::find(mWaiters.begin(), mWaiters.end(), waiter);
    if (it != mWaiters.end()) mWaiters.erase(it);
}

void KernelObject::WakeWaiters() {
    LibraryLock g(mWaitersLock);
    for (ThreadState* waiter : mWaiters) waiter->Wake();
}

HANDLE KernelObject::Publish() {
    HandleRegistry& r = Handles();
    LibraryLock g(r.lock);
    r.live.insert(this);
    return this;
}

KernelObject* KernelObject::Acquire(HANDLE handle) {
    HandleRegistry& r = Handles();
    LibraryLock g(r.lock);
    auto it = r.live.find(static_cast<KernelObject*>(handle));
    if (it == r.live.end()) return nullptr;
    (*it)->AddRef();
    return *it;
}

}  // namespace detail

using detail::KernelObject;
using detail::ObjectRef;

BOOL CloseHandle(HANDLE handle) {
    detail::HandleRegistry& r = detail::Handles();
    KernelObject* object = nullptr;
    {
        detail::LibraryLock g(r.lock);
        auto it = r.live.find(static_cast<KernelObject*>(handle));
        if (it == r.live.end()) return 0;
        object = *it;
        r.live.erase(it);
    }
    object->Release();
    return 1;
}

HANDLE CreateEventW(void*, BOOL manualReset, BOOL initialState, const char16_t*) {
    return (new detail::Event(manualReset != 0, initialState != 0))->Publish();
}

namespace {
// Calls `action` on the event behind a handle; FALSE for any other handle.
template <class Action>
BOOL WithEvent(HANDLE handle, Action action) {
    ObjectRef ref(KernelObject::Acquire(handle));
    auto* event = dynamic_cast<detail::Event*>(ref.get());
    if (!event) return 0;
    action(*event);
    return 1;
}
}  // namespace

BOOL SetEvent(HANDLE event) {
    return WithEvent(event, [](detail::Event& e) { e.Set(); });
}

BOOL ResetEvent(HANDLE event) {
    return WithEvent(event, [](detail::Event& e) { e.Reset(); });
}

DWORD WaitForSingleObject(HANDLE object, DWORD milliseconds) {
    return WaitForSingleObjectEx(object, milliseconds, 0);
}

DWORD WaitForSingleObjectEx(HANDLE object, DWORD milliseconds, BOOL alertable) {
    ObjectRef ref(KernelObject::Acquire(object));
    if (!ref) return WAIT_FAILED;
    return detail::Wait(ref.get(), milliseconds, alertable != 0);
}

DWORD SleepEx(DWORD milliseconds, BOOL alertable) {
    DWORD r = detail::Wait(nullptr, milliseconds, alertable != 0);
    return r == WAIT_IO_COMPLETION ? r : 0;
}

BOOL QueueUserAPCToThreadId(PAPCFUNC function, DWORD threadId, ULONG_PTR data) {
    if (!function) return 0;
    auto state = detail::FindThreadState(threadId);
    return state && state->QueueApc(function, data) ? 1 : 0;
}

// A section counts as a library lock from the moment it is requested until
// the Unlock that matches it, so that no thread is stopped while it holds one.
BOOL CCriticalSection::Lock(DWORD timeout) {
    const std::thread::id me = std::this_thread::get_id();
    detail::EnterLockRegion();
    detail::LibraryLock l(mLock);
    if (mCount > 0 && mOwner == me) {
        ++mCount;
        return 1;
    }
    auto free = [&] { return mCount == 0; };
    if (timeout == INFINITE) {
        mFree.wait(l.Held(), free);
    } else if (!mFree.wait_for(l.Held(), std::chrono::milliseconds(timeout), free)) {
        detail::LeaveLockRegion();
        return 0;
    }
    mOwner = me;
    mCount = 1;
    return 1;
}

BOOL CCriticalSection::Unlock() {
    {
        detail::LibraryLock g(mLock);
        if (mCount == 0 || mOwner != std::this_thread::get_id()) return 0;
        if (--mCount == 0) {
            mOwner = std::thread::id();
            mFree.notify_one();
        }
    }
    detail::LeaveLockRegion();
    return 1;
}

CSingleLock::CSingleLock(CSyncObject* object, BOOL initialLock) : mObject(object), mHeld(0) {
    if (initialLock) Lock();
}

CSingleLock::~CSingleLock() {
    while (mHeld > 0) Unlock();
}

BOOL CSingleLock::Lock(DWORD timeout) {
    if (!mObject || !mObject->Lock(timeout)) return 0;
    ++mHeld;
    return 1;
}

BOOL CSingleLock::Unlock() {
    if (!mObject || mHeld == 0) return 0;
    --mHeld;
    return mObject->Unlock();
}

}  // namespace basicutils
