// Kernel objects behind the handles of the thread and synchronisation layer.
//
// Every HANDLE that this layer hands out (threads, events) points to a
// KernelObject. A handle stays usable until CloseHandle; the object itself
// lives on while something else still holds it (a running thread keeps its
// own record alive). Handles are checked against a registry of live objects,
// so a stale or made-up handle gets a failure and never touches freed memory.
//
// Waiting: a kernel object is "signaled" in its own sense (an event that is
// set, a thread that has ended). Waiters register themselves with the object
// and are woken when its state changes.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/platform/Handles.h>

#include <atomic>
#include <mutex>
#include <vector>

namespace basicutils::detail {

class ThreadState;

class BASICUTILS_EXPORT KernelObject {
  public:
    KernelObject();
    KernelObject(const KernelObject&) = delete;
    KernelObject& operator=(const KernelObject&) = delete;

    // Takes one more reference; the object dies with its last Release.
    void AddRef();
    void Release();

    // True when the object is signaled; for an object that resets itself
    // when a wait is satisfied (an auto-reset event), this call consumes the
    // signal. Called with no lock of the caller's held.
    virtual bool TryAcquire() = 0;

    // Waiters that want to hear of a change of state.
    void AddWaiter(ThreadState* waiter);
    void RemoveWaiter(ThreadState* waiter);

    // The live object behind a handle, with one reference taken for the
    // caller; nullptr for anything else.
    static KernelObject* Acquire(HANDLE handle);
    // Enters a new object in the registry of live handles.
    HANDLE Publish();

  protected:
    virtual ~KernelObject();
    // Wakes every registered waiter; call after the state changed.
    void WakeWaiters();

  private:
    std::atomic<int> mRefs;
    std::mutex mWaitersLock;
    std::vector<ThreadState*> mWaiters;
};

// Holds the reference that KernelObject::Acquire took.
class ObjectRef {
  public:
    explicit ObjectRef(KernelObject* object) : mObject(object) {}
    ~ObjectRef() {
        if (mObject) mObject->Release();
    }
    ObjectRef(const ObjectRef&) = delete;
    ObjectRef& operator=(const ObjectRef&) = delete;
    KernelObject* get() const { return mObject; }
    explicit operator bool() const { return mObject != nullptr; }

  private:
    KernelObject* mObject;
};

}  // namespace basicutils::detail
