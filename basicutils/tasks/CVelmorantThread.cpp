// CVelmorantThread: the life of a task, step by step.
#include <basicutils/messaging/CMessageAction.h>
#include <basicutils/platform/RuntimeClass.h>
#include <basicutils/platform/Threads.h>
#include <basicutils/platform/internal/Suspension.h>
#include <basicutils/tasks/CThreadAction.h>
#include <basicutils/tasks/CVelmorantThread.h>

#include <typeinfo>

namespace basicutils {

CVelmorantThread::CVelmorantThread(bool autoDelete)
    : mThreadType(0),
      mAutoDelete(autoDelete),
      mWorkerThread(false),
      mSingleRun(false),
      mCanKill(true),
      mCanceled(false),
      mPaused(false),
      mReserved1(false),
      mHasProgress(false),
      mRange(0),
      mPos(0),
      mThread(nullptr),
      mVisible(true),
      mShouldStart(true),
      mStarted(false),
      mProgressStartTime(0),
      mLastEstimateTime(0),
      mLastPosition(0),
      mAverageProgress(0),
      mStableEstimateCount(0),
      mReserved2(false) {}

CVelmorantThread::CVelmorantThread(const CVelmorantThread& other) : LBroadcaster(other) {
    CopyFields(other);
}

CVelmorantThread& CVelmorantThread::operator=(const CVelmorantThread& other) {
    if (this != &other) {
        LBroadcaster::operator=(other);
        CopyFields(other);
    }
    return *this;
}

void CVelmorantThread::CopyFields(const CVelmorantThread& other) {
    mThreadType = other.mThreadType;
    mAutoDelete = other.mAutoDelete;
    mWorkerThread = other.mWorkerThread;
    mSingleRun = other.mSingleRun;
    mCanKill = other.mCanKill;
    mCanceled = other.mCanceled.load();
    mPaused = other.mPaused.load();
    mReserved1 = other.mReserved1;
    mHasProgress = other.mHasProgress;
    mRange = other.mRange.load();
    mPos = other.mPos.load();
    mDescription = other.mDescription;
    mStatus = other.mStatus;
    mDetail = other.mDetail;
    mThread = other.mThread.load();
    mVisible = other.mVisible;
    mShouldStart = other.mShouldStart.load();
    mStarted = other.mStarted.load();
    mProgressStartTime = other.mProgressStartTime;
    mLastEstimateTime = other.mLastEstimateTime;
    mLastPosition = other.mLastPosition;
    mAverageProgress = other.mAverageProgress;
    mStableEstimateCount = other.mStableEstimateCount;
    mReserved2 = other.mReserved2;
}

CVelmorantThread::~CVelmorantThread() {
    // A thread object still set belongs to a running thread, which deletes
    // it when it ends; the task only lets go of it.
    mThread = nullptr;
    BroadcastMessage(kMsgThreadDeleted, this);
}

bool CVelmorantThread::PrePlay() {
    return true;
}
bool CVelmorantThread::ShouldStart() {
    return mShouldStart;
}
void CVelmorantThread::RunSelf() {}
void CVelmorantThread::PostPlay() {}
int64_t CVelmorantThread::GetRange() {
    return mRange;
}
int64_t CVelmorantThread::GetPos() {
    return mPos;
}
MString& CVelmorantThread::GetStatus() {
    return mStatus;
}
MString& CVelmorantThread::GetDetail() {
    return mDetail;
}
int32_t CVelmorantThread::GetLastEstimateTime() {
    return mLastEstimateTime;
}
int64_t CVelmorantThread::GetLastPosition() {
    return mLastPosition;
}
int32_t CVelmorantThread::GetAverageProgress() {
    return mAverageProgress;
}
int32_t CVelmorantThread::GetProgressStartTime() {
    return mProgressStartTime;
}
int32_t CVelmorantThread::GetStableEstimateCount() {
    return mStableEstimateCount;
}
bool CVelmorantThread::KillSelf() {
    return false;
}
void CVelmorantThread::PassInformation(CVelmorantThread*) {}

MString& CVelmorantThread::GetDescription() {
    detail::LibraryLock g(mTextLock);
    if (mDescription.GetLength() == 0) {
        std::string name = DemangledClassName(typeid(*this));
        mDescription.ImportASCII(name.c_str(), -1);
    }
    return mDescription;
}

void CVelmorantThread::SetStatus(const char16_t* status) {
    detail::LibraryLock g(mTextLock);
    mStatus = status;
}

void CVelmorantThread::SetDetail(const char16_t* detail) {
    detail::LibraryLock g(mTextLock);
    mDetail = detail;
}

MString CVelmorantThread::CopyStatus() {
    detail::LibraryLock g(mTextLock);
    return mStatus;
}

MString CVelmorantThread::CopyDetail() {
    detail::LibraryLock g(mTextLock);
    return mDetail;
}

bool CVelmorantThread::Execute() {
    if (!PrePlay()) {
        delete this;
        return false;
    }
    CThreadAction* action = CThreadAction::GetThreadAction();
    action->AddThread(this);
    if (mWorkerThread) {
        action->Start(this);
        return true;
    }
    RunSelf();
    Finish(true);
    return true;
}

void CVelmorantThread::Start() {
    if (!ShouldStart()) {
        Finish(true);
        return;
    }
    detail::LibraryLock l(mThreadLock);
    CWinThread* thread = AfxBeginThread(&CVelmorantThread::ThreadRoutine, this,
                                        THREAD_PRIORITY_NORMAL, 0, CREATE_SUSPENDED);
    if (!thread) {
        l.Unlock();
        mCanceled = true;
        MString text;
        text.Format(u"The task %s can't start: no thread could be created.",
                    static_cast<const char16_t*>(GetDescription()));
        CMessageAction::Error(nullptr, text, kMessageWindowDefault);
        Finish(true);
        return;
    }
    mThread = thread;
    mStarted = true;
    // Resumed only once both fields are stored, and without touching the
    // thread object afterwards: a short task may end and delete it at once.
    HANDLE handle = thread->m_hThread;
    l.Unlock();
    ResumeThread(handle);
}

UINT CVelmorantThread::ThreadRoutine(void* task) {
    auto* self = static_cast<CVelmorantThread*>(task);
    self->RunSelf();
    self->Finish(true);
    return 0;
}

void CVelmorantThread::Finish(bool runPostPlay) {
    if (mFinishing.exchange(true)) return;
    {
        // A pause that hasn't stopped the worker by now is dropped: the
        // worker has left RunSelf, and once mThread is null no Continue
        // could reach it again.
        detail::LibraryLock g(mThreadLock);
        CWinThread* thread = mThread.exchange(nullptr);
        if (thread && mPaused.exchange(false)) thread->ResumeThread();
    }
    if (mWorkerThread && !IsMainThread()) {
        if (mAutoDelete) {
            detail::PostTaskFinished(this);
            return;
        }
        CleanUp(runPostPlay);
        BroadcastMessage(kMsgThreadCleanedUpOnWorker, this);
        return;
    }
    CleanUp(runPostPlay);
}

void CVelmorantThread::CleanUp(bool runPostPlay) {
    if (runPostPlay) PostPlay();
    BroadcastMessage(kMsgThreadCleanedUp, this);
    CThreadAction::GetThreadAction()->RemoveThread(this);
    if (mAutoDelete) delete this;
}

void CVelmorantThread::Abort() {
    // Under the scheduler's section, so that the scheduler can't start this
    // task between the test and the end.
    CSingleLock lock(&CThreadAction::GetThreadAction()->mCriticalSection, 1);
    mShouldStart = false;
    if (!mStarted) Finish(false);
}

void CVelmorantThread::Kill() {
    if (mCanKill && !mCanceled) mCanceled = KillSelf();
}

bool CVelmorantThread::CanKill() {
    return mCanKill && mThread.load() != nullptr;
}

void CVelmorantThread::Pause() {
    detail::LibraryLock g(mThreadLock);
    CWinThread* thread = mThread;
    if (mCanKill && thread && !mPaused) {
        thread->SuspendThread();
        mPaused = true;
    }
}

void CVelmorantThread::Continue() {
    detail::LibraryLock g(mThreadLock);
    CWinThread* thread = mThread;
    if (mCanKill && thread && mPaused) {
        thread->ResumeThread();
        mPaused = false;
    }
}

unsigned int CVelmorantThread::GetThreadId() {
    detail::LibraryLock g(mThreadLock);
    CWinThread* thread = mThread;
    if (mWorkerThread && thread) return thread->m_nThreadID;
    return GetCurrentThreadId();
}

int CVelmorantThread::GetStatusPosition() {
    const double scale = static_cast<double>(mRange.load()) * 0.0009765625;
    if (scale == 0) return 0;
    return static_cast<int>(static_cast<double>(mPos.load()) / scale);
}

}  // namespace basicutils
