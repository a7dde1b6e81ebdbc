// CWinThread: worker threads and threads with a message loop.
#include <basicutils/platform/WinThread.h>

namespace basicutils {

IMPLEMENT_DYNCREATE(CWinThread, CObject)

CWinThread::CWinThread()
    : m_hThread(nullptr),
      m_nThreadID(0),
      m_bAutoDelete(1),
      m_pfnThreadProc(nullptr),
      m_pThreadParams(nullptr) {}

CWinThread::CWinThread(AFX_THREADPROC routine, void* parameter) : CWinThread() {
    m_pfnThreadProc = routine;
    m_pThreadParams = parameter;
}

CWinThread::~CWinThread() {
    if (m_hThread) CloseHandle(m_hThread);
}

BOOL CWinThread::CreateThread(DWORD flags, size_t stackSize) {
    if (m_hThread) return 0;
    // Always created suspended, so that the handle and ID are stored before
    // the thread can use (or delete) this object.
    DWORD id = 0;
    HANDLE h = basicutils::CreateThread(nullptr, stackSize, &CWinThread::ThreadEntry, this,
                                        flags | CREATE_SUSPENDED, &id);
    if (!h) return 0;
    m_hThread = h;
    m_nThreadID = id;
    if (!(flags & CREATE_SUSPENDED)) basicutils::ResumeThread(h);
    return 1;
}

DWORD CWinThread::SuspendThread() {
    return basicutils::SuspendThread(m_hThread);
}
DWORD CWinThread::ResumeThread() {
    return basicutils::ResumeThread(m_hThread);
}

BOOL CWinThread::PostThreadMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    return PostThreadMessageW(m_nThreadID, message, wParam, lParam);
}

BOOL CWinThread::InitInstance() {
    return 1;
}
int CWinThread::ExitInstance() {
    return 0;
}
BOOL CWinThread::OnIdle(int32_t) {
    return 0;
}
BOOL CWinThread::OnThreadMessage(const MSG&) {
    return 0;
}

int CWinThread::Run() {
    MSG message;
    for (;;) {
        int32_t idleCount = 0;
        while (!PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE) && OnIdle(idleCount++)) {
        }
        do {
            if (!GetMessageW(&message, nullptr, 0, 0)) return ExitInstance();
            if (message.hwnd)
                DispatchMessageW(&message);
            else
                OnThreadMessage(message);
        } while (PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE));
    }
}

DWORD CWinThread::ThreadEntry(void* self) {
    auto* thread = static_cast<CWinThread*>(self);
    DWORD code;
    if (thread->m_pfnThreadProc)
        code = thread->m_pfnThreadProc(thread->m_pThreadParams);
    else
        code = static_cast<DWORD>(thread->InitInstance() ? thread->Run() : thread->ExitInstance());
    if (thread->m_bAutoDelete) delete thread;
    return code;
}

CWinThread* AfxBeginThread(AFX_THREADPROC routine, void* parameter, int, size_t stackSize,
                           DWORD flags, void*) {
    auto* thread = new CWinThread(routine, parameter);
    if (!thread->CreateThread(flags, stackSize)) {
        delete thread;
        return nullptr;
    }
    return thread;
}

CWinThread* AfxBeginThread(const CRuntimeClass* threadClass, int, size_t stackSize, DWORD flags,
                           void*) {
    CObject* object = threadClass ? threadClass->CreateObject() : nullptr;
    auto* thread = dynamic_cast<CWinThread*>(object);
    if (!thread) {
        delete object;
        return nullptr;
    }
    if (!thread->CreateThread(flags, stackSize)) {
        delete thread;
        return nullptr;
    }
    return thread;
}

}  // namespace basicutils
