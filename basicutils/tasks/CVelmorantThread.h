// CVelmorantThread: the base class of one unit of long work.
//
// A client derives from it, overrides RunSelf (and PrePlay, PostPlay,
// KillSelf, PassInformation as it needs), creates the task with new and
// calls Execute. CThreadAction lists and schedules it; RunSelf runs on a
// worker thread of its own (SetWorkerThread(true)) or at once on the caller.
// At the end the task runs PostPlay, broadcasts 58900, leaves the lists and,
// with mAutoDelete (the default), deletes itself. Which thread does which
// step:
//   - worker task that deletes itself: RunSelf on the worker; the clean-up
//     and the deletion on the main thread, carried there by window message
//     1314 to the CThreadDispatcher (so the main thread must pump);
//   - worker task without mAutoDelete: clean-up on the worker, then 58901;
//     the client deletes the task;
//   - task without worker: everything inside Execute.
// After Execute the caller must not touch a self-deleting task.
//
// Choices of this implementation:
//   - A worker thread that can't be created: the task is marked canceled
//     (IsCanceled), an Error goes through CMessageAction, and the task ends
//     as one that was never started (PostPlay runs, 58900, it leaves the
//     lists and the next task of its class starts). Nothing waits for ever.
//   - Finish runs once per task: a second call (an Abort racing with the
//     scheduler's start of the same waiting task) does nothing.
//   - Fields that a worker writes while another thread reads them are safe to
//     read: mPos, mRange, mCanceled, mPaused, mShouldStart, mStarted and
//     mThread are atomics, so each read sees a whole value (but two fields
//     need not belong to the same moment). The texts mStatus and mDetail are
//     guarded by a lock in SetStatus / SetDetail and in CopyStatus /
//     CopyDetail; GetStatus and GetDetail return the field itself and are for
//     the task's own thread.
//   - Pause returns at once; the worker stops at its next safe moment (see
//     SuspendThread in Threads.h): never inside the C or C++ runtime, never
//     while it holds a lock of this library (the progress and report
//     channels' included), so a paused task blocks nobody who reports,
//     pumps or schedules. Pause and Continue are serialised with the
//     worker's Finish: a pause that hasn't stopped the worker by the time
//     RunSelf returned is dropped (IsPaused turns false) and the task ends.
//   - The destructor leaves a thread object that still exists (a task deleted
//     while its thread runs) to that thread, which deletes it at its end.
//   - GetDescription fills an empty description with the demangled name of
//     the most derived class, namespaces included.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/messaging/LBroadcaster.h>
#include <basicutils/platform/WinThread.h>
#include <basicutils/text/MString.h>

#include <atomic>
#include <cstdint>
#include <mutex>

namespace basicutils {

// Messages a task broadcasts to its own listeners; the parameter is the task.
inline constexpr int32_t kMsgThreadCleanedUp = 58900;
inline constexpr int32_t kMsgThreadCleanedUpOnWorker = 58901;
inline constexpr int32_t kMsgThreadDeleted = 29002;

class BASICUTILS_EXPORT CVelmorantThread : public LBroadcaster {
  public:
    explicit CVelmorantThread(bool autoDelete = true);
    CVelmorantThread(const CVelmorantThread& other);
    CVelmorantThread& operator=(const CVelmorantThread& other);
    ~CVelmorantThread() override;

    virtual bool PrePlay();
    // Called by CThreadAction only.
    virtual void Start();
    virtual bool ShouldStart();
    virtual void RunSelf();
    virtual void PostPlay();
    virtual int64_t GetRange();
    virtual int64_t GetPos();
    virtual MString& GetDescription();
    virtual MString& GetStatus();
    virtual MString& GetDetail();
    virtual int32_t GetLastEstimateTime();
    virtual int64_t GetLastPosition();
    virtual int32_t GetAverageProgress();
    virtual int32_t GetProgressStartTime();
    virtual int32_t GetStableEstimateCount();
    virtual void Pause();
    virtual void Continue();
    virtual bool KillSelf();
    virtual void PassInformation(CVelmorantThread* next);
    virtual unsigned int GetThreadId();

    // Launches the task; false when PrePlay refused it (the task is gone).
    bool Execute();
    // Takes back a task that hasn't started.
    void Abort();
    void Finish(bool runPostPlay);
    void CleanUp(bool runPostPlay);
    void Kill();
    bool CanKill();
    bool IsCanceled() const { return mCanceled; }
    bool IsPaused() const { return mPaused; }
    bool IsVisible() const { return mVisible; }
    bool HasProgress() const { return mHasProgress; }
    bool IsSingleRun() const { return mSingleRun; }
    bool IsWorkerThread() const { return mWorkerThread; }
    void SetWorkerThread(bool worker) { mWorkerThread = worker; }
    int32_t GetThreadType() const { return mThreadType; }
    void SetRange(int64_t range) { mRange = range; }
    void SetPos(int64_t pos) { mPos = pos; }
    void SetLastPosition(int64_t position) { mLastPosition = position; }
    void SetStatus(const char16_t* status);
    void SetDetail(const char16_t* detail);
    // Copies of the texts, safe while the worker writes them.
    MString CopyStatus();
    MString CopyDetail();
    void SetLastEstimateTime(int32_t t) { mLastEstimateTime = t; }
    void SetAverageProgress(int32_t p) { mAverageProgress = p; }
    void SetProgressStartTime(int32_t t) { mProgressStartTime = t; }
    void SetStableEstimateCount(int32_t c) { mStableEstimateCount = c; }
    // mPos on a scale of 0 to 1024 of mRange; 0 when the range is 0.
    int GetStatusPosition();

  protected:
    // The worker thread's routine: RunSelf, then Finish(true).
    static UINT ThreadRoutine(void* task);

    int32_t mThreadType;
    bool mAutoDelete;
    bool mWorkerThread;
    bool mSingleRun;
    bool mCanKill;
    std::atomic<bool> mCanceled;
    std::atomic<bool> mPaused;
    bool mReserved1;
    bool mHasProgress;
    std::atomic<int64_t> mRange;
    std::atomic<int64_t> mPos;
    MString mDescription;
    MString mStatus;
    MString mDetail;
    std::atomic<CWinThread*> mThread;
    bool mVisible;
    std::atomic<bool> mShouldStart;
    std::atomic<bool> mStarted;
    int32_t mProgressStartTime;
    int32_t mLastEstimateTime;
    int64_t mLastPosition;
    int32_t mAverageProgress;
    int32_t mStableEstimateCount;
    bool mReserved2;

  private:
    void CopyFields(const CVelmorantThread& other);

    std::mutex mThreadLock;  // mThread against Pause / Continue
    std::mutex mTextLock;    // mStatus, mDetail, mDescription
    std::atomic<bool> mFinishing{false};
};

}  // namespace basicutils
