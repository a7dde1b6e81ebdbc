// Fault injection through the operating-system seam.
#include <basicutils/platform/testing/FaultEnv.h>
#include <signal.h>
#include <sys/mman.h>
#include <unistd.h>

#include <chrono>
#include <cstring>

namespace basicutils::testing {

namespace {

template <typename Result>
Result FailWith(Result failure, int error) {
    errno = error;
    return failure;
}

}  // namespace

FaultEnv::FaultEnv() : FaultEnv(detail::CurrentEnv()) {}
FaultEnv::FaultEnv(Env& target) : EnvWrapper(target) {}

FaultEnv& FaultEnv::Add(Rule rule) {
    std::lock_guard<std::mutex> g(mLock);
    mRules.push_back(rule);
    return *this;
}

FaultEnv& FaultEnv::FailNth(SysCall call, int nth, int error) {
    return Add({call, nth, false, Action::kFail, error});
}
FaultEnv& FaultEnv::FailFrom(SysCall call, int nth, int error) {
    return Add({call, nth, true, Action::kFail, error});
}
FaultEnv& FaultEnv::ShortNth(SysCall call, int nth) {
    return Add({call, nth, false, Action::kShort, 0});
}
FaultEnv& FaultEnv::KillAt(SysCall call, int nth) {
    return Add({call, nth, false, Action::kKill, 0});
}

FaultEnv& FaultEnv::HoldNth(SysCall call, int nth) {
    return Add({call, nth, false, Action::kHold, 0});
}

bool FaultEnv::WaitUntilHeld(int seconds) {
    std::unique_lock<std::mutex> l(mLock);
    return mHoldChanged.wait_for(l, std::chrono::seconds(seconds), [&] { return mHeld > 0; });
}

void FaultEnv::Release() {
    std::unique_lock<std::mutex> l(mLock);
    mReleased = true;
    mHoldChanged.notify_all();
    // The held calls have left the hold when this returns, so the FaultEnv
    // can go right after.
    mHoldChanged.wait_for(l, std::chrono::seconds(10), [&] { return mHeld == 0; });
}

FaultEnv& FaultEnv::LimitToThisThread() {
    std::lock_guard<std::mutex> g(mLock);
    mOneThread = true;
    mThread = std::this_thread::get_id();
    return *this;
}

int FaultEnv::Count(SysCall call) const {
    std::lock_guard<std::mutex> g(mLock);
    return mCounts[static_cast<size_t>(call)];
}

int FaultEnv::Injected() const {
    std::lock_guard<std::mutex> g(mLock);
    return mInjected;
}

void FaultEnv::Reset() {
    std::lock_guard<std::mutex> g(mLock);
    mRules.clear();
    mCounts.fill(0);
    mInjected = 0;
}

int FaultEnv::Check(SysCall call) {
    const int saved = errno;  // counting must not disturb a caller's errno
    std::unique_lock<std::mutex> l(mLock);
    if (mOneThread && std::this_thread::get_id() != mThread) return 0;
    const int own = ++mCounts[static_cast<size_t>(call)];
    const int any = ++mCounts[static_cast<size_t>(SysCall::kAny)];
    for (const Rule& rule : mRules) {
        if (rule.call != call && rule.call != SysCall::kAny) continue;
        const int seen = rule.call == SysCall::kAny ? any : own;
        if (seen != rule.nth && !(rule.fromThenOn && seen > rule.nth)) continue;
        ++mInjected;
        switch (rule.action) {
            case Action::kKill:
                ::kill(::getpid(), SIGKILL);
                ::pause();  // not reached: SIGKILL cannot be caught
                break;
            case Action::kShort:
                return kShortTransfer;
            case Action::kFail:
                return rule.error;
            case Action::kHold:
                ++mHeld;
                mHoldChanged.notify_all();
                // No deadline of its own: the test that set the hold releases it.
                mHoldChanged.wait(l, [&] { return mReleased; });
                --mHeld;
                mHoldChanged.notify_all();
                break;
        }
    }
    errno = saved;
    return 0;
}

// A rule's answer for calls that transfer bytes: fail, or halve the count.
#define BASICUTILS_TRANSFER_CHECK(kind, count)      \
    if (const int fault = Check(kind); fault > 0) { \
        return FailWith<ssize_t>(-1, fault);        \
    } else if (fault == kShortTransfer) {           \
        count /= 2;                                 \
    }

ssize_t FaultEnv::Read(int fd, void* buffer, size_t count) {
    BASICUTILS_TRANSFER_CHECK(SysCall::kRead, count)
    return Target().Read(fd, buffer, count);
}
ssize_t FaultEnv::Write(int fd, const void* buffer, size_t count) {
    BASICUTILS_TRANSFER_CHECK(SysCall::kWrite, count)
    return Target().Write(fd, buffer, count);
}
ssize_t FaultEnv::Pread(int fd, void* buffer, size_t count, off_t offset) {
    BASICUTILS_TRANSFER_CHECK(SysCall::kPread, count)
    return Target().Pread(fd, buffer, count, offset);
}
ssize_t FaultEnv::Pwrite(int fd, const void* buffer, size_t count, off_t offset) {
    BASICUTILS_TRANSFER_CHECK(SysCall::kPwrite, count)
    return Target().Pwrite(fd, buffer, count, offset);
}
#undef BASICUTILS_TRANSFER_CHECK

// The other calls only fail: a short rule on them is ignored.
#define BASICUTILS_FAIL_CHECK(kind, failure) \
    if (const int fault = Check(kind); fault > 0) return FailWith(failure, fault);

int FaultEnv::Open(const char* path, int flags, mode_t mode) {
    BASICUTILS_FAIL_CHECK(SysCall::kOpen, -1)
    return Target().Open(path, flags, mode);
}
int FaultEnv::Close(int fd) {
    // A failed close still releases the descriptor, as on Linux.
    if (const int fault = Check(SysCall::kClose); fault > 0) {
        Target().Close(fd);
        return FailWith(-1, fault);
    }
    return Target().Close(fd);
}
off_t FaultEnv::Lseek(int fd, off_t offset, int whence) {
    BASICUTILS_FAIL_CHECK(SysCall::kLseek, off_t{-1})
    return Target().Lseek(fd, offset, whence);
}
int FaultEnv::Fstat(int fd, struct stat* status) {
    BASICUTILS_FAIL_CHECK(SysCall::kFstat, -1)
    return Target().Fstat(fd, status);
}
int FaultEnv::Stat(const char* path, struct stat* status) {
    BASICUTILS_FAIL_CHECK(SysCall::kStat, -1)
    return Target().Stat(path, status);
}
int FaultEnv::Statvfs(const char* path, struct statvfs* status) {
    BASICUTILS_FAIL_CHECK(SysCall::kStatvfs, -1)
    return Target().Statvfs(path, status);
}
int FaultEnv::Ftruncate(int fd, off_t length) {
    BASICUTILS_FAIL_CHECK(SysCall::kFtruncate, -1)
    return Target().Ftruncate(fd, length);
}
int FaultEnv::Fsync(int fd, bool dataOnly) {
    BASICUTILS_FAIL_CHECK(SysCall::kFsync, -1)
    return Target().Fsync(fd, dataOnly);
}
int FaultEnv::Rename(const char* from, const char* to) {
    BASICUTILS_FAIL_CHECK(SysCall::kRename, -1)
    return Target().Rename(from, to);
}
int FaultEnv::Link(const char* existing, const char* newName) {
    BASICUTILS_FAIL_CHECK(SysCall::kLink, -1)
    return Target().Link(existing, newName);
}
int FaultEnv::Unlink(const char* path) {
    BASICUTILS_FAIL_CHECK(SysCall::kUnlink, -1)
    return Target().Unlink(path);
}
int FaultEnv::Mkdir(const char* path, mode_t mode) {
    BASICUTILS_FAIL_CHECK(SysCall::kMkdir, -1)
    return Target().Mkdir(path, mode);
}
int FaultEnv::Rmdir(const char* path) {
    BASICUTILS_FAIL_CHECK(SysCall::kRmdir, -1)
    return Target().Rmdir(path);
}
int FaultEnv::Chdir(const char* path) {
    BASICUTILS_FAIL_CHECK(SysCall::kChdir, -1)
    return Target().Chdir(path);
}
char* FaultEnv::Getcwd(char* buffer, size_t size) {
    BASICUTILS_FAIL_CHECK(SysCall::kGetcwd, static_cast<char*>(nullptr))
    return Target().Getcwd(buffer, size);
}
int FaultEnv::Chmod(const char* path, mode_t mode) {
    BASICUTILS_FAIL_CHECK(SysCall::kChmod, -1)
    return Target().Chmod(path, mode);
}
DIR* FaultEnv::Opendir(const char* path) {
    BASICUTILS_FAIL_CHECK(SysCall::kOpendir, static_cast<DIR*>(nullptr))
    return Target().Opendir(path);
}
struct dirent* FaultEnv::Readdir(DIR* dir) {
    BASICUTILS_FAIL_CHECK(SysCall::kReaddir, static_cast<struct dirent*>(nullptr))
    return Target().Readdir(dir);
}
int FaultEnv::Closedir(DIR* dir) {
    if (const int fault = Check(SysCall::kClosedir); fault > 0) {
        Target().Closedir(dir);  // released all the same, as with close
        return FailWith(-1, fault);
    }
    return Target().Closedir(dir);
}
int FaultEnv::Eventfd(unsigned int initial, int flags) {
    BASICUTILS_FAIL_CHECK(SysCall::kEventfd, -1)
    return Target().Eventfd(initial, flags);
}
int FaultEnv::Lstat(const char* path, struct stat* status) {
    BASICUTILS_FAIL_CHECK(SysCall::kLstat, -1)
    return Target().Lstat(path, status);
}
int FaultEnv::Fcntl(int fd, int command, int argument) {
    BASICUTILS_FAIL_CHECK(SysCall::kFcntl, -1)
    return Target().Fcntl(fd, command, argument);
}
#undef BASICUTILS_FAIL_CHECK

int FaultEnv::ThreadCreate(pthread_t* thread, const pthread_attr_t* attr, void* (*routine)(void*),
                           void* argument) {
    if (const int fault = Check(SysCall::kThreadCreate); fault > 0) return fault;
    return Target().ThreadCreate(thread, attr, routine, argument);
}

void* FaultEnv::Dlopen(const char* path, int flags) {
    if (const int fault = Check(SysCall::kDlopen); fault > 0) {
        detail::SetLastDlError(std::strerror(fault));
        return nullptr;
    }
    return Target().Dlopen(path, flags);
}
void* FaultEnv::Dlsym(void* library, const char* symbol) {
    if (const int fault = Check(SysCall::kDlsym); fault > 0) {
        detail::SetLastDlError(std::strerror(fault));
        return nullptr;
    }
    return Target().Dlsym(library, symbol);
}
int FaultEnv::Dlclose(void* library) {
    if (const int fault = Check(SysCall::kDlclose); fault > 0) return fault;
    return Target().Dlclose(library);
}
int FaultEnv::Fadvise(int fd, off_t offset, off_t length, int advice) {
    if (const int fault = Check(SysCall::kFadvise); fault > 0) return fault;
    return Target().Fadvise(fd, offset, length, advice);
}

int FaultEnv::AsyncSubmit(int fd, bool write, size_t count, off_t offset) {
    if (const int fault = Check(SysCall::kAsyncSubmit); fault > 0) return fault;
    return Target().AsyncSubmit(fd, write, count, offset);
}
int64_t FaultEnv::AsyncComplete(int fd, bool write, size_t count, int64_t result) {
    result = Target().AsyncComplete(fd, write, count, result);
    const int fault = Check(SysCall::kAsyncComplete);
    if (fault > 0) return -fault;
    if (fault == kShortTransfer && result > 0) return result / 2;
    return result;
}

void* FaultEnv::Mmap(size_t length, int protection) {
    if (const int fault = Check(SysCall::kMmap); fault > 0) return FailWith(MAP_FAILED, fault);
    return Target().Mmap(length, protection);
}
int FaultEnv::Munmap(void* address, size_t length) {
    if (const int fault = Check(SysCall::kMunmap); fault > 0) return FailWith(-1, fault);
    return Target().Munmap(address, length);
}

}  // namespace basicutils::testing
