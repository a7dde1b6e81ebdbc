// CThreadAction: the scheduler of background tasks and the registry of the
// tasks alive; CThreadDispatcher: the bridge of task ends to the main thread.
//
// The one scheduling rule: a task that is not single-run starts at once; a
// single-run task waits (first come, first served) while a single-run task
// of exactly its class runs, and starts when that one ends. Two tasks are of
// one class when their most derived classes are the same type; a subclass is
// another class. Listeners hear 29000 when a task is listed and 29001 when it
// leaves (still alive), with the task as the parameter.
//
// Every operation here holds mCriticalSection (recursive) for its whole
// length, broadcasts included; so do the counts and GetThread, which give a
// snapshot. A listener runs with the section held and must not wait for a
// thread that calls in here. Attach listeners through GetThreadAction(): its
// AddListener and RemoveListener take the section too, so they are safe
// while tasks end on other threads.
//
// CThreadDispatcher is a hidden window on the thread that first calls
// GetThreadDispatcher (the application's main thread, at start). Messages:
//   1313 OnThreadStarted    lParam a task: AddThread;
//   1314 OnThreadFinished   lParam a task: CleanUp(true) (posted by Finish);
//   1315 OnBroadcastMessage lParam an SBroadcastRequest: one message to one
//                           listener; the record stays the poster's.
// Choice of this implementation: no task end is lost for want of a
// dispatcher. An end posted while no dispatcher exists, or still queued
// when the dispatcher goes, is kept; the next GetThreadDispatcher posts it
// to the new window, and a dispatcher deleted on its own thread cleans up
// its queued ends before it goes. Queued 1313 and 1315 messages go with it.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/containers/LList.h>
#include <basicutils/messaging/LBroadcaster.h>
#include <basicutils/platform/MessageQueue.h>
#include <basicutils/platform/Sync.h>
#include <basicutils/tasks/CVelmorantThread.h>

#include <atomic>
#include <cstdint>

namespace basicutils {

inline constexpr int32_t kMsgThreadAdded = 29000;
inline constexpr int32_t kMsgThreadRemoved = 29001;

inline constexpr UINT kWmThreadStarted = 1313;
inline constexpr UINT kWmThreadFinished = 1314;
inline constexpr UINT kWmBroadcastMessage = 1315;

class BASICUTILS_EXPORT CThreadAction : public LBroadcaster {
  public:
    CThreadAction();
    ~CThreadAction() override;
    CThreadAction(const CThreadAction&) = delete;
    CThreadAction& operator=(const CThreadAction&) = delete;

    static CThreadAction* GetThreadAction();

    void AddThread(CVelmorantThread* task);
    void Start(CVelmorantThread* task);
    void RemoveThread(CVelmorantThread* task);
    CVelmorantThread* FindRunningThread(CVelmorantThread* task);
    CVelmorantThread* FindWaitingThread(CVelmorantThread* task);
    CVelmorantThread* FindThread(LList* list, CVelmorantThread* task);
    CVelmorantThread* FindThread(unsigned int threadId);
    int32_t GetThreadCount();
    int32_t GetVisibleCount();
    CVelmorantThread* GetThread(int32_t index);
    // 1-based place in the task list of the first task of that type, or 0.
    int32_t IsThreadTypeRunning(int32_t type);

    void AddListener(LListener* listener);
    void RemoveListener(LListener* listener);

    static CThreadAction sThreadAction;

  protected:
    friend class CVelmorantThread;

    LList mThreads;
    LList mVisibleThreads;
    LList mRunningThreads;
    LList mWaitingThreads;
    CCriticalSection mCriticalSection;
};

struct SBroadcastRequest {
    LListener* mListener;
    int32_t mMessage;
    void* mParam;
};

class BASICUTILS_EXPORT CThreadDispatcher : public CFrameWnd {
    DECLARE_DYNCREATE(CThreadDispatcher)
  public:
    ~CThreadDispatcher() override;

    // The dispatcher; made (with its window, on the calling thread) on first
    // use.
    static CThreadDispatcher* GetThreadDispatcher();
    static void DeleteAll();

    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;

    static std::atomic<CThreadDispatcher*> sThreadDispatcher;

  protected:
    CThreadDispatcher();
    LRESULT OnThreadStarted(WPARAM wParam, LPARAM lParam);
    LRESULT OnThreadFinished(WPARAM wParam, LPARAM lParam);
    LRESULT OnBroadcastMessage(WPARAM wParam, LPARAM lParam);
};

namespace detail {
// Carries the end of a self-deleting worker task to the main thread.
void PostTaskFinished(CVelmorantThread* task);
}  // namespace detail

}  // namespace basicutils
