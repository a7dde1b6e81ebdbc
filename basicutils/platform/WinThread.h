// CWinThread: a thread object, either a worker running a plain routine or a
// thread with a message loop made from a run-time class.
//
// AfxBeginThread(routine, parameter, ...) starts a worker; AfxBeginThread
// (runtimeClass, ...) creates the object through the class's CreateObject and
// runs InitInstance, then the message loop Run, then ExitInstance on the new
// thread. With m_bAutoDelete (the default) the object deletes itself when
// its thread ends, so the caller must not use the pointer after that.
//
// The loop: while no message waits it calls OnIdle(0), OnIdle(1), ... until
// OnIdle returns FALSE, then waits for a message. Thread messages (no window)
// go to OnThreadMessage, the class's message map; window messages go to their
// window. WM_QUIT ends the loop, and ExitInstance's result is the thread's
// exit code.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/platform/MessageQueue.h>
#include <basicutils/platform/RuntimeClass.h>
#include <basicutils/platform/Threads.h>

#include <cstddef>

namespace basicutils {

using AFX_THREADPROC = UINT (*)(void* parameter);

class BASICUTILS_EXPORT CWinThread : public CObject {
    DECLARE_DYNCREATE(CWinThread)
  public:
    CWinThread();
    CWinThread(AFX_THREADPROC routine, void* parameter);
    ~CWinThread() override;

    // Starts the thread (suspended with CREATE_SUSPENDED). FALSE when the
    // thread can't be created; the object then stays, unstarted.
    BOOL CreateThread(DWORD flags = 0, size_t stackSize = 0);
    DWORD SuspendThread();
    DWORD ResumeThread();
    BOOL PostThreadMessage(UINT message, WPARAM wParam, LPARAM lParam);

    virtual BOOL InitInstance();
    virtual int Run();
    virtual int ExitInstance();
    // Return FALSE when no more idle time is wanted. Here: FALSE.
    virtual BOOL OnIdle(int32_t count);
    // The message map for thread messages: TRUE when handled.
    virtual BOOL OnThreadMessage(const MSG& message);

    HANDLE m_hThread;
    DWORD m_nThreadID;
    BOOL m_bAutoDelete;

  protected:
    static DWORD ThreadEntry(void* self);

    AFX_THREADPROC m_pfnThreadProc;
    void* m_pThreadParams;
};

// Worker thread running routine(parameter). nullptr when it can't be made.
BASICUTILS_EXPORT CWinThread* AfxBeginThread(AFX_THREADPROC routine, void* parameter,
                                             int priority = THREAD_PRIORITY_NORMAL,
                                             size_t stackSize = 0, DWORD flags = 0,
                                             void* security = nullptr);
// Thread with a message loop, of a class derived from CWinThread.
BASICUTILS_EXPORT CWinThread* AfxBeginThread(const CRuntimeClass* threadClass,
                                             int priority = THREAD_PRIORITY_NORMAL,
                                             size_t stackSize = 0, DWORD flags = 0,
                                             void* security = nullptr);

}  // namespace basicutils
