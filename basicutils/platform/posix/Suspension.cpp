// The suspension signal: safe points, retries, chaining, the lock count.
#include <basicutils/platform/internal/Suspension.h>
#include <basicutils/platform/posix/Suspension.h>
#include <link.h>
#include <linux/futex.h>
#include <pthread.h>
#include <signal.h>
#include <sys/syscall.h>
#include <ucontext.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <mutex>

namespace basicutils::detail {
namespace {

constexpr long kFirstRetryNs = 50'000;
constexpr long kLongestRetryNs = 1'000'000;

// What the handler reads of the interrupted thread. Initial-exec, so that
// reading it in a signal handler never allocates.
struct SignalState {
    std::atomic<int> locks;
    SuspendSlot* slot;
};
thread_local SignalState tSignal __attribute__((tls_model("initial-exec"))) = {{0}, nullptr};

// Marks the library's own signals: the timer carries this address.
char gCookie;

// Code in which a thread is never stopped: the C library, the C++ runtime,
// the loader and the sanitizer runtimes. Written once before the handler is
// installed, read-only afterwards.
struct CodeRange {
    uintptr_t begin, end;
};
constexpr int kMaxRanges = 64;
CodeRange gRanges[kMaxRanges];
int gRangeCount = 0;

struct sigaction gPrevious;

bool IsRuntimeObject(const char* path) {
    static const char* const kPrefixes[] = {
        "libc.so",     "libstdc++.so", "libgcc_s.so",  "ld-linux",   "libm.so",
        "libmvec.so",  "libdl.so",     "librt.so",     "libpthread", "libatomic.so",
        "libc++.so",   "libc++abi.so", "libunwind",    "libasan.so", "libtsan.so",
        "libubsan.so", "liblsan.so",   "libhwasan.so", "linux-vdso"};
    const char* slash = std::strrchr(path, '/');
    const char* name = slash ? slash + 1 : path;
    for (const char* prefix : kPrefixes)
        if (std::strncmp(name, prefix, std::strlen(prefix)) == 0) return true;
    return false;
}

int CollectRange(struct dl_phdr_info* info, size_t, void*) {
    if (!info->dlpi_name || !IsRuntimeObject(info->dlpi_name)) return 0;
    for (int i = 0; i < info->dlpi_phnum && gRangeCount < kMaxRanges; ++i) {
        const ElfW(Phdr)& segment = info->dlpi_phdr[i];
        if (segment.p_type != PT_LOAD || !(segment.p_flags & PF_X)) continue;
        const uintptr_t begin = info->dlpi_addr + segment.p_vaddr;
        gRanges[gRangeCount++] = {begin, begin + segment.p_memsz};
    }
    return 0;
}

uintptr_t InterruptedAddress(void* context) {
    const auto* uc = static_cast<const ucontext_t*>(context);
#if defined(__x86_64__)
    return static_cast<uintptr_t>(uc->uc_mcontext.gregs[REG_RIP]);
#elif defined(__i386__)
    return static_cast<uintptr_t>(uc->uc_mcontext.gregs[REG_EIP]);
#elif defined(__aarch64__)
    return static_cast<uintptr_t>(uc->uc_mcontext.pc);
#else
    (void)uc;
    return 0;  // unknown machine: the lock count alone decides
#endif
}

bool InRuntimeCode(uintptr_t address) {
    for (int i = 0; i < gRangeCount; ++i)
        if (address >= gRanges[i].begin && address < gRanges[i].end) return true;
    return false;
}

void ChainToPrevious(int sig, siginfo_t* info, void* context) {
    if (gPrevious.sa_flags & SA_SIGINFO) {
        if (gPrevious.sa_sigaction) gPrevious.sa_sigaction(sig, info, context);
    } else if (gPrevious.sa_handler != SIG_DFL && gPrevious.sa_handler != SIG_IGN) {
        gPrevious.sa_handler(sig);
    }
}

void OnSuspendSignal(int sig, siginfo_t* info, void* context) {
    const int savedErrno = errno;
    const bool ours = info && info->si_code == SI_TIMER && info->si_value.sival_ptr == &gCookie;
    if (!ours) {
        ChainToPrevious(sig, info, context);
    } else if (SuspendSlot* slot = tSignal.slot) {
        slot->OnSignal(context);
    }
    errno = savedErrno;
}

long FutexCall(std::atomic<uint32_t>* word, int op, uint32_t value) {
    static_assert(sizeof(std::atomic<uint32_t>) == sizeof(uint32_t));
    return syscall(SYS_futex, reinterpret_cast<uint32_t*>(word), op, value, nullptr, nullptr, 0);
}

}  // namespace

int SuspendSignal() {
    return SIGRTMIN + 6;
}

bool EnterLockRegion() {
    tSignal.locks.fetch_add(1, std::memory_order_relaxed);
    std::atomic_signal_fence(std::memory_order_seq_cst);
    return true;
}

void LeaveLockRegion() {
    std::atomic_signal_fence(std::memory_order_seq_cst);
    if (tSignal.locks.fetch_sub(1, std::memory_order_relaxed) == 1 && tSignal.slot)
        tSignal.slot->HoldIfAsked();
}

void SafePoint() {
    if (tSignal.locks.load(std::memory_order_relaxed) == 0 && tSignal.slot)
        tSignal.slot->HoldIfAsked();
}

void InstallSuspendHandler() {
    static std::once_flag once;
    std::call_once(once, [] {
        dl_iterate_phdr(&CollectRange, nullptr);
        struct sigaction action {};
        action.sa_sigaction = &OnSuspendSignal;
        sigemptyset(&action.sa_mask);
        action.sa_flags = SA_SIGINFO | SA_RESTART;
        sigaction(SuspendSignal(), &action, &gPrevious);
    });
}

SuspendSlot::~SuspendSlot() {
    if (mHasTimer.load()) timer_delete(mTimer);
}

void SuspendSlot::Attach() {
    mTid = gettid();
    tSignal.slot = this;
    sigset_t own;
    sigemptyset(&own);
    sigaddset(&own, SuspendSignal());
    pthread_sigmask(SIG_UNBLOCK, &own, nullptr);
}

void SuspendSlot::SetRunning(bool running) {
    mRunning.store(running);
}

void SuspendSlot::Detach() {
    mRunning.store(false);  // first: a handler that runs now does nothing
    if (mHasTimer.exchange(false)) timer_delete(mTimer);
    tSignal.slot = nullptr;
}

bool SuspendSlot::Request(bool self) {
    if (!self && !mHasTimer.load()) {
        struct sigevent event {};
        event.sigev_notify = SIGEV_THREAD_ID;
        event.sigev_signo = SuspendSignal();
        event.sigev_value.sival_ptr = &gCookie;
        event._sigev_un._tid = mTid;
        if (timer_create(CLOCK_MONOTONIC, &event, &mTimer) != 0) return false;
        mHasTimer.store(true);
    }
    mRetryNs.store(kFirstRetryNs, std::memory_order_relaxed);
    mHold.store(1);
    if (!self) ArmTimer(1);
    return true;
}

void SuspendSlot::Release() {
    mHold.store(0);
    FutexCall(&mHold, FUTEX_WAKE_PRIVATE, INT_MAX);
    if (mHasTimer.load()) ArmTimer(0);  // a pending retry has nothing left to do
}

void SuspendSlot::ArmTimer(long nanoseconds) {
    struct itimerspec when {};
    when.it_value.tv_nsec = nanoseconds;
    timer_settime(mTimer, 0, &when, nullptr);
}

void SuspendSlot::OnSignal(void* context) {
    if (!mRunning.load() || mHold.load() == 0 || mStopped.load()) return;
    if (tSignal.locks.load(std::memory_order_relaxed) > 0 ||
        InRuntimeCode(InterruptedAddress(context))) {
        const long delay = mRetryNs.load(std::memory_order_relaxed);
        if (mHasTimer.load()) ArmTimer(delay);
        mRetryNs.store(std::min(delay * 2, kLongestRetryNs), std::memory_order_relaxed);
        return;
    }
    Hold();
}

void SuspendSlot::HoldIfAsked() {
    if (mRunning.load() && mHold.load() != 0 && !mStopped.load()) Hold();
}

void SuspendSlot::Hold() {
    mStopped.store(true);
    while (mHold.load() != 0) FutexCall(&mHold, FUTEX_WAIT_PRIVATE, 1);
    mStopped.store(false);
}

}  // namespace basicutils::detail
