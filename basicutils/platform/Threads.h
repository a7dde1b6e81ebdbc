// Threads: creation (running or suspended), suspension and resumption,
// identities, exit codes.
//
// A thread created with CREATE_SUSPENDED waits at a gate before its routine
// until ResumeThread brings its suspend count to 0.
//
// SuspendThread on a running thread is real suspension: a signal stops the
// thread wherever it is, without its cooperation. SuspendThread returns at
// once, as the system call it imitates does; the thread stops at the first
// moment at which it is outside the C library, the C++ runtime, the dynamic
// loader and (in sanitizer builds) the sanitizer runtime, and holds no lock
// of this library (a CCriticalSection, StGlobalLock, the locks inside the
// handle, thread, queue and progress layers). Usually that is within
// microseconds; a thread blocked in a system call doesn't run meanwhile and
// stops once the call returns. So a suspended thread never holds the
// allocator's lock or a lock that ResumeThread, a post or a wait needs.
// A thread suspending itself outside any library lock stops before
// SuspendThread returns. Locks of the client's own code are the client's
// affair, as on the system this imitates; so are callbacks that the C
// runtime makes while it holds a lock of its own (the initialiser of a
// function-local static, a dl_iterate_phdr callback, another signal
// handler): such code counts as the client's.
//
// Signals: the library takes over one real-time signal (SuspendSignal in
// the internal headers, SIGRTMIN + 6), installed at the first CreateThread;
// signals of that number that aren't the library's own go to the handler
// installed before (and are dropped when there was none). Threads of this
// layer unblock it whatever mask they inherit from their creator; their mask
// is otherwise the creator's. A thread that blocks the signal itself can't
// be stopped until it unblocks it.
//
// Under ThreadSanitizer, whose runtime holds a signal back until the thread
// passes one of its interception points, the handler sees the address at
// which the signal arrived, not the one at which it runs. A stop then comes
// at an interception point: outside the C library and the library's locks
// still, but it could follow a lock that the C++ runtime took through an
// intercepted call (its locale or once-only initialisation, say).
//
// Thread IDs are small numbers handed out by this layer, never 0 and never
// reused within a process. Any thread has one, whether this layer created it
// or not.
//
// The main thread is the thread that loaded the library (the one that ran
// its static initialisers). An application whose main loop runs elsewhere
// names that thread once with SetMainThreadId, before it starts any task.
//
// A thread handle is signaled when the thread has ended: WaitForSingleObject
// on it joins the thread.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/platform/Handles.h>

#include <cstddef>
#include <cstdint>

namespace basicutils {

using LPTHREAD_START_ROUTINE = DWORD (*)(void* parameter);

inline constexpr DWORD CREATE_SUSPENDED = 0x00000004;
inline constexpr DWORD STILL_ACTIVE = 259;
inline constexpr int THREAD_PRIORITY_NORMAL = 0;
// The failure result of SuspendThread and ResumeThread.
inline constexpr DWORD kThreadCallFailed = 0xFFFFFFFFu;

// Creates a thread that runs routine(parameter). With CREATE_SUSPENDED it
// waits until resumed. The ID goes to *threadId when that is not null.
// nullptr when the thread can't be created (GetLastError says why).
// `security` is ignored;
// stackSize 0 means the default.
BASICUTILS_EXPORT HANDLE CreateThread(void* security, size_t stackSize,
                                      LPTHREAD_START_ROUTINE routine, void* parameter, DWORD flags,
                                      DWORD* threadId);

// Both return the suspend count before the call, kThreadCallFailed for a
// handle that is not a thread or a thread that has ended (and SuspendThread
// also when the system can't give the thread its timer). A suspension that
// hasn't taken effect when the routine returns is void: the thread ends.
BASICUTILS_EXPORT DWORD SuspendThread(HANDLE thread);
BASICUTILS_EXPORT DWORD ResumeThread(HANDLE thread);

BASICUTILS_EXPORT DWORD GetCurrentThreadId();
// The ID of the thread behind a handle, 0 for a bad handle.
BASICUTILS_EXPORT DWORD GetThreadId(HANDLE thread);
// STILL_ACTIVE while the thread runs, then its routine's result.
BASICUTILS_EXPORT BOOL GetExitCodeThread(HANDLE thread, DWORD* exitCode);
BASICUTILS_EXPORT void Sleep(DWORD milliseconds);

// The main thread: see the comment at the top.
BASICUTILS_EXPORT DWORD GetMainThreadId();
BASICUTILS_EXPORT void SetMainThreadId(DWORD threadId);
BASICUTILS_EXPORT bool IsMainThread();

}  // namespace basicutils
