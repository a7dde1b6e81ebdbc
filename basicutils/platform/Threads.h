// Threads: creation (running or suspended), suspension and resumption,
// identities, exit codes.
//
// A thread created with CREATE_SUSPENDED waits at a gate before its routine
// until ResumeThread brings its suspend count to 0. SuspendThread on a running
// thread is real suspension: the thread is stopped by a signal wherever it
// is, without its cooperation, and SuspendThread returns only once it has
// stopped. As with the operating system this imitates, a thread suspended
// while it holds a lock (the allocator's included) keeps holding it; suspend
// only threads whose work you know.
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
// nullptr when the thread can't be created. `security` is ignored;
// stackSize 0 means the default.
BASICUTILS_EXPORT HANDLE CreateThread(void* security, size_t stackSize,
                                      LPTHREAD_START_ROUTINE routine, void* parameter, DWORD flags,
                                      DWORD* threadId);

// Both return the suspend count before the call, kThreadCallFailed for a
// handle that is not a thread or a thread that has ended.
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

namespace detail {
// Makes the next `count` thread creations fail as if the system had no
// resources left; for tests of the callers' failure paths.
BASICUTILS_EXPORT void FailThreadCreations(int count);
}  // namespace detail

}  // namespace basicutils
