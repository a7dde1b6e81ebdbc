// Stopping a library thread by a signal, at a safe moment only. Internal to
// the POSIX implementation.
//
// The suspender raises the thread's hold word and fires the thread's own
// one-shot timer, which sends SuspendSignal() to that thread alone. The
// handler stops the thread (a futex wait on the hold word, inside the
// handler) only when the interrupted instruction lies outside the C library,
// the C++ runtime, the loader and the sanitizer runtimes, and the thread
// holds no library lock. Otherwise it re-arms the timer (50 µs, doubling up
// to 1 ms) and lets the thread run on. A thread that releases its last
// library lock while a hold waits stops there, without a signal, and so does
// one that comes back from Sleep: a thread that spends its time in the
// kernel is nearly always interrupted on its way out of a system call, in
// the C library, so these are the moments at which it can be caught.
//
// The handler chains signals that aren't the library's (told apart by the
// value the timer carries) to the handler installed before it.
#pragma once

#include <sys/types.h>
#include <time.h>

#include <atomic>
#include <cstdint>

namespace basicutils::detail {

// What the signal handler of one library thread reads: atomics and the
// timer, no locks. It lives in the thread's record, which outlives the run.
class SuspendSlot {
  public:
    SuspendSlot() = default;
    ~SuspendSlot();
    SuspendSlot(const SuspendSlot&) = delete;
    SuspendSlot& operator=(const SuspendSlot&) = delete;

    // On the thread itself: binds the slot to it and unblocks the signal,
    // whatever mask the thread inherited; then marks the span of its routine.
    void Attach();
    void SetRunning(bool running);
    // On the thread itself, as it ends. Call under the record's lock.
    void Detach();

    // From another thread (or the thread itself), under the record's lock:
    // asks the thread to stop. False when the system gives no timer.
    bool Request(bool self);
    // Lets the thread run again.
    void Release();
    bool IsStopped() const { return mStopped.load(); }

    // Signal-handler side and the release of the last library lock.
    void OnSignal(void* context);
    void HoldIfAsked();

  private:
    void Hold();
    void ArmTimer(long nanoseconds);

    std::atomic<uint32_t> mHold{0};  // futex word: 1 while a stop is asked
    std::atomic<bool> mStopped{false};
    std::atomic<bool> mRunning{false};
    std::atomic<bool> mHasTimer{false};
    pid_t mTid = 0;
    timer_t mTimer{};
    std::atomic<long> mRetryNs{0};
};

// Installs the signal handler, once, and records the code ranges in which a
// thread must not be stopped.
void InstallSuspendHandler();

}  // namespace basicutils::detail
