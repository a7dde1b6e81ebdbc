// CThreadAction: task lists and the single-run rule. CThreadDispatcher:
// the main thread's end of the task road.
#include <basicutils/platform/Threads.h>
#include <basicutils/platform/internal/Suspension.h>
#include <basicutils/platform/internal/WindowMessages.h>
#include <basicutils/tasks/CThreadAction.h>

#include <mutex>
#include <typeinfo>
#include <vector>

namespace basicutils {
namespace {

CVelmorantThread* ItemAt(LList& list, int32_t index) {
    CVelmorantThread* task = nullptr;
    if (!list.FetchItemAt(index, &task)) return nullptr;
    return task;
}

void Append(LList& list, CVelmorantThread* task) {
    list.InsertItemsAt(1, kLastIndex, &task, 0);
}
void Drop(LList& list, CVelmorantThread* task) {
    list.Remove(&task, 0);
}

bool SameClass(CVelmorantThread* a, CVelmorantThread* b) {
    return typeid(*a) == typeid(*b);
}

}  // namespace

CThreadAction::CThreadAction() = default;
CThreadAction::~CThreadAction() = default;

CThreadAction* CThreadAction::GetThreadAction() {
    return &sThreadAction;
}

void CThreadAction::AddListener(LListener* listener) {
    CSingleLock lock(&mCriticalSection, 1);
    LBroadcaster::AddListener(listener);
}

void CThreadAction::RemoveListener(LListener* listener) {
    CSingleLock lock(&mCriticalSection, 1);
    LBroadcaster::RemoveListener(listener);
}

void CThreadAction::AddThread(CVelmorantThread* task) {
    CSingleLock lock(&mCriticalSection, 1);
    Append(mThreads, task);
    if (task->IsVisible()) Append(mVisibleThreads, task);
    BroadcastMessage(kMsgThreadAdded, task);
}

void CThreadAction::Start(CVelmorantThread* task) {
    CSingleLock lock(&mCriticalSection, 1);
    if (!task->IsSingleRun()) {
        task->Start();
    } else if (FindRunningThread(task)) {
        Append(mWaitingThreads, task);
    } else {
        Append(mRunningThreads, task);
        task->Start();
    }
}

void CThreadAction::RemoveThread(CVelmorantThread* task) {
    CSingleLock lock(&mCriticalSection, 1);
    if (mRunningThreads.FetchIndexOf(&task, 0) != 0) {
        Drop(mRunningThreads, task);
        CVelmorantThread* next = FindWaitingThread(task);
        if (next) {
            task->PassInformation(next);
            Append(mRunningThreads, next);
            Drop(mWaitingThreads, next);
            next->Start();
        } else {
            task->PassInformation(nullptr);
        }
        Drop(mThreads, task);
    } else {
        Drop(mWaitingThreads, task);
        Drop(mThreads, task);
    }
    if (task->IsVisible()) Drop(mVisibleThreads, task);
    BroadcastMessage(kMsgThreadRemoved, task);
}

CVelmorantThread* CThreadAction::FindRunningThread(CVelmorantThread* task) {
    return FindThread(&mRunningThreads, task);
}

CVelmorantThread* CThreadAction::FindWaitingThread(CVelmorantThread* task) {
    return FindThread(&mWaitingThreads, task);
}

CVelmorantThread* CThreadAction::FindThread(LList* list, CVelmorantThread* task) {
    if (!list || !task) return nullptr;
    CSingleLock lock(&mCriticalSection, 1);
    const int32_t count = static_cast<int32_t>(list->GetCount());
    for (int32_t i = 1; i <= count; ++i) {
        CVelmorantThread* candidate = ItemAt(*list, i);
        if (candidate && SameClass(candidate, task)) return candidate;
    }
    return nullptr;
}

CVelmorantThread* CThreadAction::FindThread(unsigned int threadId) {
    CSingleLock lock(&mCriticalSection, 1);
    const int32_t count = static_cast<int32_t>(mRunningThreads.GetCount());
    for (int32_t i = 1; i <= count; ++i) {
        CVelmorantThread* candidate = ItemAt(mRunningThreads, i);
        if (candidate && candidate->GetThreadId() == threadId) return candidate;
    }
    return nullptr;
}

int32_t CThreadAction::GetThreadCount() {
    CSingleLock lock(&mCriticalSection, 1);
    return static_cast<int32_t>(mThreads.GetCount());
}

int32_t CThreadAction::GetVisibleCount() {
    CSingleLock lock(&mCriticalSection, 1);
    return static_cast<int32_t>(mVisibleThreads.GetCount());
}

CVelmorantThread* CThreadAction::GetThread(int32_t index) {
    CSingleLock lock(&mCriticalSection, 1);
    return ItemAt(mThreads, index);
}

int32_t CThreadAction::IsThreadTypeRunning(int32_t type) {
    CSingleLock lock(&mCriticalSection, 1);
    const int32_t count = static_cast<int32_t>(mThreads.GetCount());
    for (int32_t i = 1; i <= count; ++i) {
        CVelmorantThread* candidate = ItemAt(mThreads, i);
        if (candidate && candidate->GetThreadType() == type) return i;
    }
    return 0;
}

// ---- CThreadDispatcher ------------------------------------------------------

namespace {

// Guards the dispatcher's creation and end against posts of task ends, and
// the tasks whose end is waiting for a dispatcher.
struct DispatcherState {
    std::recursive_mutex lock;
    std::vector<CVelmorantThread*> parked;
};

DispatcherState& Dispatch() {
    static DispatcherState* state = new DispatcherState;
    return *state;
}

}  // namespace

IMPLEMENT_DYNCREATE(CThreadDispatcher, CFrameWnd)

std::atomic<CThreadDispatcher*> CThreadDispatcher::sThreadDispatcher{nullptr};

CThreadDispatcher::CThreadDispatcher() {
    sThreadDispatcher = this;
}

CThreadDispatcher::~CThreadDispatcher() {
    std::vector<CVelmorantThread*> ended;
    bool onOwner = false;
    {
        detail::LibraryLock g(Dispatch().lock);
        if (sThreadDispatcher == this) sThreadDispatcher = nullptr;
        if (m_hWnd) {
            onOwner = GetOwnerThreadId() == GetCurrentThreadId();
            for (const MSG& m : detail::TakeWindowMessages(m_hWnd))
                if (m.message == kWmThreadFinished && m.lParam)
                    ended.push_back(reinterpret_cast<CVelmorantThread*>(m.lParam));
            DestroyWindow();
        }
        if (!onOwner) Dispatch().parked.insert(Dispatch().parked.end(), ended.begin(), ended.end());
    }
    if (onOwner)
        for (CVelmorantThread* task : ended) task->CleanUp(true);
}

CThreadDispatcher* CThreadDispatcher::GetThreadDispatcher() {
    DispatcherState& state = Dispatch();
    detail::LibraryLock g(state.lock);
    if (CThreadDispatcher* existing = sThreadDispatcher) return existing;
    auto* dispatcher =
        static_cast<CThreadDispatcher*>(RUNTIME_CLASS(CThreadDispatcher)->CreateObject());
    dispatcher->Create(nullptr, u"Tasks", WS_OVERLAPPEDWINDOW, rectDefault, nullptr, nullptr,
                       WS_EX_TOOLWINDOW, nullptr);
    std::vector<CVelmorantThread*> parked;
    parked.swap(state.parked);
    for (CVelmorantThread* task : parked)
        dispatcher->PostMessage(kWmThreadFinished, 0, reinterpret_cast<LPARAM>(task));
    return dispatcher;
}

void CThreadDispatcher::DeleteAll() {
    detail::LibraryLock g(Dispatch().lock);
    delete sThreadDispatcher.load();
}

LRESULT CThreadDispatcher::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case kWmThreadStarted:
            return OnThreadStarted(wParam, lParam);
        case kWmThreadFinished:
            return OnThreadFinished(wParam, lParam);
        case kWmBroadcastMessage:
            return OnBroadcastMessage(wParam, lParam);
        default:
            return CFrameWnd::WindowProc(message, wParam, lParam);
    }
}

LRESULT CThreadDispatcher::OnThreadStarted(WPARAM, LPARAM lParam) {
    if (lParam)
        CThreadAction::GetThreadAction()->AddThread(reinterpret_cast<CVelmorantThread*>(lParam));
    return 0;
}

LRESULT CThreadDispatcher::OnThreadFinished(WPARAM, LPARAM lParam) {
    if (lParam) reinterpret_cast<CVelmorantThread*>(lParam)->CleanUp(true);
    return 0;
}

LRESULT CThreadDispatcher::OnBroadcastMessage(WPARAM, LPARAM lParam) {
    auto* request = reinterpret_cast<SBroadcastRequest*>(lParam);
    if (request && request->mListener)
        request->mListener->ListenToMessage(request->mMessage, request->mParam);
    return 0;
}

namespace detail {

void PostTaskFinished(CVelmorantThread* task) {
    DispatcherState& state = Dispatch();
    detail::LibraryLock g(state.lock);
    CThreadDispatcher* dispatcher = CThreadDispatcher::sThreadDispatcher;
    if (!dispatcher ||
        !dispatcher->PostMessage(kWmThreadFinished, 0, reinterpret_cast<LPARAM>(task)))
        state.parked.push_back(task);
}

}  // namespace detail

}  // namespace basicutils
