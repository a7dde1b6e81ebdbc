// CVelmorantWinThread: the thread message 1219 ends the loop.
#include <basicutils/tasks/CVelmorantWinThread.h>

namespace basicutils {

IMPLEMENT_DYNCREATE(CVelmorantWinThread, CWinThread)

CVelmorantWinThread::CVelmorantWinThread() : mQuitting(false) {}
CVelmorantWinThread::~CVelmorantWinThread() = default;

void CVelmorantWinThread::Quit() {
    mQuitting = true;
    PostThreadMessageW(m_nThreadID, kWmVelmorantQuit, 0, 0);
}

void CVelmorantWinThread::OnQuit(UINT, LPARAM) {
    PostQuitMessage(0);
}

void CVelmorantWinThread::SelfMessage(UINT message, UINT wParam, LPARAM lParam) {
    if (!mQuitting) PostThreadMessageW(m_nThreadID, message, wParam, lParam);
}

BOOL CVelmorantWinThread::OnIdle(int32_t) {
    return 0;
}

BOOL CVelmorantWinThread::OnThreadMessage(const MSG& message) {
    if (message.message != kWmVelmorantQuit) return 0;
    OnQuit(static_cast<UINT>(message.wParam), message.lParam);
    return 1;
}

}  // namespace basicutils
