// The operating-system seam.
//
// Every system call of the library goes through the current Env: the file
// services, the directory listing, the wake-up descriptors of the message
// queues, thread creation and, as they arrive, asynchronous I/O and dynamic
// loading. Nothing else in the library calls the operating system for these.
// Tests install a wrapper (see basicutils/testing/FaultEnv.h) that makes
// chosen calls fail, come back short or kill the process, without touching
// the code under test.
//
// Each operation keeps the POSIX contract of the call it is named after: the
// same arguments, the same result, errno set on failure. Nothing here retries
// or translates: EINTR comes back to the caller, which retries (RetryOnEintr),
// and callers turn errno into the Win32 number of the thread
// (SetLastErrorFromErrno).
//
// This header is internal: it is not installed, and clients never see it.
// The two entry points are exported from the shared library only so that the
// test programs, which are separate executables, can install a wrapper.
#pragma once

#include <basicutils/Export.h>
#include <dirent.h>
#include <pthread.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/types.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>

namespace basicutils::detail {

// The kinds of call, for fault injection and for counting. kAny matches every
// kind in a fault rule.
enum class SysCall : int {
    kAny = 0,
    kOpen,
    kClose,
    kRead,
    kWrite,
    kPread,
    kPwrite,
    kLseek,
    kFstat,
    kStat,
    kStatvfs,
    kFtruncate,
    kFsync,
    kRename,
    kLink,
    kUnlink,
    kMkdir,
    kRmdir,
    kChdir,
    kGetcwd,
    kChmod,
    kOpendir,
    kReaddir,
    kClosedir,
    kEventfd,
    kThreadCreate,
    kDlopen,
    kDlsym,
    kDlclose,
    kAsyncSubmit,
    kAsyncComplete,
    kMmap,
    kMunmap,
    kLstat,
    kFcntl,
    kFadvise,
    kCount  // the number of kinds; keep last
};

// The name of a kind ("open", "pwrite"...), for messages of tests.
BASICUTILS_EXPORT const char* SysCallName(SysCall call);

class BASICUTILS_EXPORT Env {
  public:
    virtual ~Env();

    virtual int Open(const char* path, int flags, mode_t mode) = 0;
    virtual int Close(int fd) = 0;
    virtual ssize_t Read(int fd, void* buffer, size_t count) = 0;
    virtual ssize_t Write(int fd, const void* buffer, size_t count) = 0;
    virtual ssize_t Pread(int fd, void* buffer, size_t count, off_t offset) = 0;
    virtual ssize_t Pwrite(int fd, const void* buffer, size_t count, off_t offset) = 0;
    virtual off_t Lseek(int fd, off_t offset, int whence) = 0;
    virtual int Fstat(int fd, struct stat* status) = 0;
    virtual int Stat(const char* path, struct stat* status) = 0;
    virtual int Statvfs(const char* path, struct statvfs* status) = 0;
    virtual int Ftruncate(int fd, off_t length) = 0;
    // fsync, or fdatasync when dataOnly is true.
    virtual int Fsync(int fd, bool dataOnly) = 0;
    virtual int Rename(const char* from, const char* to) = 0;
    virtual int Link(const char* existing, const char* newName) = 0;
    virtual int Unlink(const char* path) = 0;
    virtual int Mkdir(const char* path, mode_t mode) = 0;
    virtual int Rmdir(const char* path) = 0;
    virtual int Chdir(const char* path) = 0;
    virtual char* Getcwd(char* buffer, size_t size) = 0;
    virtual int Chmod(const char* path, mode_t mode) = 0;
    virtual DIR* Opendir(const char* path) = 0;
    // Null with errno unchanged at the end of the listing, null with errno
    // set on failure: the caller clears errno first, as with readdir.
    virtual struct dirent* Readdir(DIR* dir) = 0;
    virtual int Closedir(DIR* dir) = 0;
    virtual int Eventfd(unsigned int initial, int flags) = 0;
    // pthread_create: returns 0 or the error number (errno is not used).
    virtual int ThreadCreate(pthread_t* thread, const pthread_attr_t* attr, void* (*routine)(void*),
                             void* argument) = 0;
    // dlopen/dlsym/dlclose. dlopen and dlsym answer null on failure, and the
    // reason is then in LastDlError (dlerror's text, or the injected fault's).
    virtual void* Dlopen(const char* path, int flags) = 0;
    virtual void* Dlsym(void* library, const char* symbol) = 0;
    virtual int Dlclose(void* library) = 0;
    // Asynchronous transfers (see AsyncIo.h). AsyncSubmit is asked before a
    // transfer goes to the engine: 0 lets it go, an errno refuses it.
    // AsyncComplete sees each ending and gives the result the caller gets
    // (bytes, or -errno); the real Env passes `result` through.
    virtual int AsyncSubmit(int fd, bool write, size_t count, off_t offset) = 0;
    virtual int64_t AsyncComplete(int fd, bool write, size_t count, int64_t result) = 0;
    // Anonymous private mappings only: MAP_FAILED with errno on failure.
    virtual void* Mmap(size_t length, int protection) = 0;
    virtual int Munmap(void* address, size_t length) = 0;
    // lstat: the status of a name itself, a symbolic link not followed.
    virtual int Lstat(const char* path, struct stat* status) = 0;
    // fcntl with an int argument (F_GETFL, F_SETFL...).
    virtual int Fcntl(int fd, int command, int argument) = 0;
    // posix_fadvise: returns 0 or the error number (errno is not used).
    virtual int Fadvise(int fd, off_t offset, off_t length, int advice) = 0;
};

// The real calls. Stateless; the one instance lives for the whole process.
BASICUTILS_EXPORT Env& PosixEnv();

// The Env every call of the library goes through: PosixEnv unless a test
// installed another. Reading it is one atomic load.
BASICUTILS_EXPORT Env& CurrentEnv();

// Installs `env` (null restores PosixEnv) and returns the one it replaces.
// The caller keeps `env` alive while it is installed. Meant for tests, which
// install a wrapper before the calls they watch and restore it after.
BASICUTILS_EXPORT Env* SetEnv(Env* env);

// Forwards every call to a target Env; subclasses override what they change.
class BASICUTILS_EXPORT EnvWrapper : public Env {
  public:
    explicit EnvWrapper(Env& target) : mTarget(target) {}
    Env& Target() const { return mTarget; }

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
    Env& mTarget;
};

// The reason for the last failed Dlopen/Dlsym of the calling thread, or null.
BASICUTILS_EXPORT const char* LastDlError();
// Sets that reason; for Env implementations.
BASICUTILS_EXPORT void SetLastDlError(const char* reason);

// Calls `call` again while it fails with EINTR. For calls whose result is
// -1 on failure (ssize_t, int, off_t).
template <typename Call>
auto RetryOnEintr(Call call) -> decltype(call()) {
    decltype(call()) result;
    do {
        result = call();
    } while (result == -1 && errno == EINTR);
    return result;
}

}  // namespace basicutils::detail
