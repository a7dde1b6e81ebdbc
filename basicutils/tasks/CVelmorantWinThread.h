// CVelmorantWinThread: a thread with a message loop that can be asked to
// end; CVelmorantUIThread: a small launcher for such threads.
//
// Quit sets mQuitting and posts thread message 1219 to the thread itself;
// the loop hands 1219 to OnQuit, which ends the loop with PostQuitMessage(0)
// (override it to clean up first). Messages posted before Quit are handled
// before 1219; SelfMessage posts nothing once Quit was called. OnIdle asks
// for no idle time. Create one with AfxBeginThread(RUNTIME_CLASS(YourClass)).
#pragma once

#include <basicutils/Export.h>
#include <basicutils/platform/WinThread.h>

#include <atomic>

namespace basicutils {

inline constexpr UINT kWmVelmorantQuit = 1219;

class BASICUTILS_EXPORT CVelmorantWinThread : public CWinThread {
    DECLARE_DYNCREATE(CVelmorantWinThread)
  public:
    virtual void Quit();
    virtual void OnQuit(UINT wParam, LPARAM lParam);
    // Posts to this thread unless it is quitting.
    void SelfMessage(UINT message, UINT wParam, LPARAM lParam);

    BOOL OnIdle(int32_t count) override;
    BOOL OnThreadMessage(const MSG& message) override;

  protected:
    CVelmorantWinThread();
    ~CVelmorantWinThread() override;

    std::atomic<bool> mQuitting;
};

// Starts threads of a run-time class; keeps the last one started.
class CVelmorantUIThread {
  public:
    virtual ~CVelmorantUIThread() = default;
    virtual CWinThread* BeginThread(const CRuntimeClass* threadClass) {
        mThread = AfxBeginThread(threadClass, THREAD_PRIORITY_NORMAL, 0, 0, nullptr);
        return mThread;
    }

  protected:
    CWinThread* mThread = nullptr;
};

}  // namespace basicutils
