// Fault injection through the operating-system seam, for tests.
//
// A FaultEnv forwards every call to the Env it wraps and counts the calls of
// each kind. Rules make chosen calls misbehave instead:
//
//   FaultEnv faults;                              // wraps the current Env
//   ScopedEnv use(faults);                        // installed until scope end
//   faults.FailNth(SysCall::kWrite, 2, ENOSPC);   // the 2nd write fails
//   faults.FailFrom(SysCall::kOpen, 1, EMFILE);   // every open from now on
//   faults.ShortNth(SysCall::kRead, 1);           // the 1st read comes back short
//   faults.KillAt(SysCall::kAny, 7);              // SIGKILL before the 7th call
//
// Calls are counted from the moment a FaultEnv is made (or Reset), 1-based,
// per kind; SysCall::kAny counts every call. A failing call does not reach
// the wrapped Env; it returns the call's failure value with errno set (or
// the error number for thread creation, and a reason for LastDlError for the
// loader). A short transfer forwards read, write, pread or pwrite with half
// the count, rounded down, so a 1-byte transfer moves nothing. A kill stops
// the process before the call is made: crash tests fork a child, kill it at
// the N-th call and look at what it left on disk.
//
// Asynchronous transfers: a failing kAsyncSubmit refuses the transfer with
// the errno; a failing kAsyncComplete turns its result into -errno, and a
// short one halves the bytes it reports.
//
// A hold makes a call wait, on whatever thread makes it, until the test
// releases it: HoldNth(SysCall::kAsyncComplete, 2) keeps the second transfer
// in flight (its completion waits in the engine) while the test looks at the
// code that must cope with it; WaitUntilHeld tells when the call has arrived,
// Release lets it and every later hold go, and returns once the held calls
// have left. A test releases before the FaultEnv goes away.
//
// By default every thread's calls count. LimitToThisThread makes the rules
// and counters see only the calling thread, so that a test's background
// threads (message queues, other tasks) do not shift the numbers.
//
// Not installed: this lives in the test-support library.
#pragma once

#include <basicutils/platform/internal/Env.h>

#include <array>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace basicutils::testing {

using detail::Env;
using detail::SysCall;

class FaultEnv : public detail::EnvWrapper {
  public:
    FaultEnv();  // wraps detail::CurrentEnv()
    explicit FaultEnv(Env& target);

    // The nth call of the kind fails with `error`, once.
    FaultEnv& FailNth(SysCall call, int nth, int error);
    // Every call of the kind from the nth on fails with `error`.
    FaultEnv& FailFrom(SysCall call, int nth, int error);
    // The nth call of the kind (read, write, pread, pwrite) transfers half.
    FaultEnv& ShortNth(SysCall call, int nth);
    // The process dies by SIGKILL just before the nth call of the kind.
    FaultEnv& KillAt(SysCall call, int nth);
    FaultEnv& LimitToThisThread();
    // The nth call of the kind waits until Release.
    FaultEnv& HoldNth(SysCall call, int nth);
    // True once a call waits in a hold; false when `seconds` pass first.
    bool WaitUntilHeld(int seconds);
    void Release();

    // Calls seen of a kind (kAny: all kinds), and faults injected so far.
    int Count(SysCall call) const;
    int Injected() const;
    // Forgets the rules and the counts.
    void Reset();

    int Open(const char* path, int flags, mode_t mode) override;
    int Close(int fd) override;
    ssize_t Read(int fd, void* buffer, size_t count) override;
    ssize_t Write(int fd, const void* buffer, size_t count) override;
    ssize_t Pread(int fd, void* buffer, size_t count, off_t offset) override;
    ssize_t Pwrite(int fd, const void* buffer, size_t count, off_t offset) override;
    off_t Lseek(int fd, off_t offset, int whence) override;
    int Fstat(int fd, struct stat* status) override;
    int Stat(const char* path, struct stat* status) override;
    int Statvfs(const char* path, struct statvfs* status) override;
    int Ftruncate(int fd, off_t length) override;
    int Fsync(int fd, bool dataOnly) override;
    int Rename(const char* from, const char* to) override;
    int Link(const char* existing, const char* newName) override;
    int Unlink(const char* path) override;
    int Mkdir(const char* path, mode_t mode) override;
    int Rmdir(const char* path) override;
    int Chdir(const char* path) override;
    char* Getcwd(char* buffer, size_t size) override;
    int Chmod(const char* path, mode_t mode) override;
    DIR* Opendir(const char* path) override;
    struct dirent* Readdir(DIR* dir) override;
    int Closedir(DIR* dir) override;
    int Eventfd(unsigned int initial, int flags) override;
    int ThreadCreate(pthread_t* thread, const pthread_attr_t* attr, void* (*routine)(void*),
                     void* argument) override;
    void* Dlopen(const char* path, int flags) override;
    void* Dlsym(void* library, const char* symbol) override;
    int Dlclose(void* library) override;
    int AsyncSubmit(int fd, bool write, size_t count, off_t offset) override;
    int64_t AsyncComplete(int fd, bool write, size_t count, int64_t result) override;
    void* Mmap(size_t length, int protection) override;
    int Munmap(void* address, size_t length) override;
    int Lstat(const char* path, struct stat* status) override;
    int Fcntl(int fd, int command, int argument) override;
    int Fadvise(int fd, off_t offset, off_t length, int advice) override;

  private:
    enum class Action { kFail, kShort, kKill, kHold };
    struct Rule {
        SysCall call;
        int nth;
        bool fromThenOn;
        Action action;
        int error;
    };
    // What the current call should do: nothing (0), fail with an errno
    // (> 0) or come back short (kShortTransfer).
    static constexpr int kShortTransfer = -1;
    int Check(SysCall call);
    FaultEnv& Add(Rule rule);

    mutable std::mutex mLock;
    std::vector<Rule> mRules;
    std::array<int, static_cast<size_t>(SysCall::kCount)> mCounts{};
    int mInjected = 0;
    bool mOneThread = false;
    std::thread::id mThread;
    std::condition_variable mHoldChanged;
    int mHeld = 0;
    bool mReleased = false;
};

// Installs an Env for the length of a scope and puts the previous one back.
class ScopedEnv {
  public:
    explicit ScopedEnv(Env& env) : mPrevious(detail::SetEnv(&env)) {}
    ~ScopedEnv() { detail::SetEnv(mPrevious); }
    ScopedEnv(const ScopedEnv&) = delete;
    ScopedEnv& operator=(const ScopedEnv&) = delete;

  private:
    Env* mPrevious;
};

}  // namespace basicutils::testing
