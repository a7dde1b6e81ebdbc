// The operating-system seam on POSIX: the real calls, the forwarding
// wrapper and the switch between them.
#include <basicutils/platform/internal/Env.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/eventfd.h>
#include <sys/mman.h>
#include <unistd.h>

#include <atomic>

namespace basicutils::detail {
namespace {

class RealEnv final : public Env {
  public:
    int Open(const char* path, int flags, mode_t mode) override {
        return ::open(path, flags, mode);
    }
    int Close(int fd) override { return ::close(fd); }
    ssize_t Read(int fd, void* buffer, size_t count) override { return ::read(fd, buffer, count); }
    ssize_t Write(int fd, const void* buffer, size_t count) override {
        return ::write(fd, buffer, count);
    }
    ssize_t Pread(int fd, void* buffer, size_t count, off_t offset) override {
        return ::pread(fd, buffer, count, offset);
    }
    ssize_t Pwrite(int fd, const void* buffer, size_t count, off_t offset) override {
        return ::pwrite(fd, buffer, count, offset);
    }
    off_t Lseek(int fd, off_t offset, int whence) override { return ::lseek(fd, offset, whence); }
    int Fstat(int fd, struct stat* status) override { return ::fstat(fd, status); }
    int Stat(const char* path, struct stat* status) override { return ::stat(path, status); }
    int Statvfs(const char* path, struct statvfs* status) override {
        return ::statvfs(path, status);
    }
    int Ftruncate(int fd, off_t length) override { return ::ftruncate(fd, length); }
    int Fsync(int fd, bool dataOnly) override { return dataOnly ? ::fdatasync(fd) : ::fsync(fd); }
    int Rename(const char* from, const char* to) override { return ::rename(from, to); }
    int Link(const char* existing, const char* newName) override {
        return ::link(existing, newName);
    }
    int Unlink(const char* path) override { return ::unlink(path); }
    int Mkdir(const char* path, mode_t mode) override { return ::mkdir(path, mode); }
    int Rmdir(const char* path) override { return ::rmdir(path); }
    int Chdir(const char* path) override { return ::chdir(path); }
    char* Getcwd(char* buffer, size_t size) override { return ::getcwd(buffer, size); }
    int Chmod(const char* path, mode_t mode) override { return ::chmod(path, mode); }
    DIR* Opendir(const char* path) override { return ::opendir(path); }
    struct dirent* Readdir(DIR* dir) override {
        return ::readdir(dir);
    }
    int Closedir(DIR* dir) override { return ::closedir(dir); }
    int Eventfd(unsigned int initial, int flags) override { return ::eventfd(initial, flags); }
    int ThreadCreate(pthread_t* thread, const pthread_attr_t* attr, void* (*routine)(void*),
                     void* argument) override {
        return ::pthread_create(thread, attr, routine, argument);
    }
    void* Dlopen(const char* path, int flags) override {
        void* library = ::dlopen(path, flags);
        if (!library) SetLastDlError(::dlerror());
        return library;
    }
    void* Dlsym(void* library, const char* symbol) override {
        ::dlerror();
        void* address = ::dlsym(library, symbol);
        if (!address) SetLastDlError(::dlerror());
        return address;
    }
    int Dlclose(void* library) override { return ::dlclose(library); }
    int AsyncSubmit(int, bool, size_t, off_t) override { return 0; }
    int64_t AsyncComplete(int, bool, size_t, int64_t result) override { return result; }
    void* Mmap(size_t length, int protection) override {
        return ::mmap(nullptr, length, protection, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    }
    int Munmap(void* address, size_t length) override { return ::munmap(address, length); }
    int Lstat(const char* path, struct stat* status) override { return ::lstat(path, status); }
    int Fcntl(int fd, int command, int argument) override { return ::fcntl(fd, command, argument); }
    int Fadvise(int fd, off_t offset, off_t length, int advice) override {
        return ::posix_fadvise(fd, offset, length, advice);
    }
};

std::atomic<Env*> gCurrent{nullptr};
thread_local const char* tDlError = nullptr;

}  // namespace

Env::~Env() = default;

Env& PosixEnv() {
    static RealEnv* env = new RealEnv;  // never destroyed: threads may outlive exit
    return *env;
}

Env& CurrentEnv() {
    Env* env = gCurrent.load(std::memory_order_acquire);
    return env ? *env : PosixEnv();
}

Env* SetEnv(Env* env) {
    Env* previous = gCurrent.exchange(env, std::memory_order_acq_rel);
    return previous ? previous : &PosixEnv();
}

const char* LastDlError() {
    return tDlError;
}
void SetLastDlError(const char* reason) {
    tDlError = reason;
}

const char* SysCallName(SysCall call) {
    static constexpr const char* kNames[] = {
        "any",     "open",         "close",          "read",    "write",         "pread",  "pwrite",
        "lseek",   "fstat",        "stat",           "statvfs", "ftruncate",     "fsync",  "rename",
        "link",    "unlink",       "mkdir",          "rmdir",   "chdir",         "getcwd", "chmod",
        "opendir", "readdir",      "closedir",       "eventfd", "thread_create", "dlopen", "dlsym",
        "dlclose", "async_submit", "async_complete", "mmap",    "munmap",        "lstat",  "fcntl",
        "fadvise"};
    static_assert(sizeof kNames / sizeof kNames[0] == static_cast<size_t>(SysCall::kCount));
    const auto index = static_cast<size_t>(call);
    return index < static_cast<size_t>(SysCall::kCount) ? kNames[index] : "?";
}

// ---- EnvWrapper: every call to the target ----------------------------------

int EnvWrapper::Open(const char* path, int flags, mode_t mode) {
    return mTarget.Open(path, flags, mode);
}
int EnvWrapper::Close(int fd) {
    return mTarget.Close(fd);
}
ssize_t EnvWrapper::Read(int fd, void* buffer, size_t count) {
    return mTarget.Read(fd, buffer, count);
}
ssize_t EnvWrapper::Write(int fd, const void* buffer, size_t count) {
    return mTarget.Write(fd, buffer, count);
}
ssize_t EnvWrapper::Pread(int fd, void* buffer, size_t count, off_t offset) {
    return mTarget.Pread(fd, buffer, count, offset);
}
ssize_t EnvWrapper::Pwrite(int fd, const void* buffer, size_t count, off_t offset) {
    return mTarget.Pwrite(fd, buffer, count, offset);
}
off_t EnvWrapper::Lseek(int fd, off_t offset, int whence) {
    return mTarget.Lseek(fd, offset, whence);
}
int EnvWrapper::Fstat(int fd, struct stat* status) {
    return mTarget.Fstat(fd, status);
}
int EnvWrapper::Stat(const char* path, struct stat* status) {
    return mTarget.Stat(path, status);
}
int EnvWrapper::Statvfs(const char* path, struct statvfs* status) {
    return mTarget.Statvfs(path, status);
}
int EnvWrapper::Ftruncate(int fd, off_t length) {
    return mTarget.Ftruncate(fd, length);
}
int EnvWrapper::Fsync(int fd, bool dataOnly) {
    return mTarget.Fsync(fd, dataOnly);
}
int EnvWrapper::Rename(const char* from, const char* to) {
    return mTarget.Rename(from, to);
}
int EnvWrapper::Link(const char* existing, const char* newName) {
    return mTarget.Link(existing, newName);
}
int EnvWrapper::Unlink(const char* path) {
    return mTarget.Unlink(path);
}
int EnvWrapper::Mkdir(const char* path, mode_t mode) {
    return mTarget.Mkdir(path, mode);
}
int EnvWrapper::Rmdir(const char* path) {
    return mTarget.Rmdir(path);
}
int EnvWrapper::Chdir(const char* path) {
    return mTarget.Chdir(path);
}
char* EnvWrapper::Getcwd(char* buffer, size_t size) {
    return mTarget.Getcwd(buffer, size);
}
int EnvWrapper::Chmod(const char* path, mode_t mode) {
    return mTarget.Chmod(path, mode);
}
DIR* EnvWrapper::Opendir(const char* path) {
    return mTarget.Opendir(path);
}
struct dirent* EnvWrapper::Readdir(DIR* dir) {
    return mTarget.Readdir(dir);
}
int EnvWrapper::Closedir(DIR* dir) {
    return mTarget.Closedir(dir);
}
int EnvWrapper::Eventfd(unsigned int initial, int flags) {
    return mTarget.Eventfd(initial, flags);
}
int EnvWrapper::ThreadCreate(pthread_t* thread, const pthread_attr_t* attr, void* (*routine)(void*),
                             void* argument) {
    return mTarget.ThreadCreate(thread, attr, routine, argument);
}
void* EnvWrapper::Dlopen(const char* path, int flags) {
    return mTarget.Dlopen(path, flags);
}
void* EnvWrapper::Dlsym(void* library, const char* symbol) {
    return mTarget.Dlsym(library, symbol);
}
int EnvWrapper::Dlclose(void* library) {
    return mTarget.Dlclose(library);
}
int EnvWrapper::AsyncSubmit(int fd, bool write, size_t count, off_t offset) {
    return mTarget.AsyncSubmit(fd, write, count, offset);
}
int64_t EnvWrapper::AsyncComplete(int fd, bool write, size_t count, int64_t result) {
    return mTarget.AsyncComplete(fd, write, count, result);
}

void* EnvWrapper::Mmap(size_t length, int protection) {
    return mTarget.Mmap(length, protection);
}
int EnvWrapper::Munmap(void* address, size_t length) {
    return mTarget.Munmap(address, length);
}
int EnvWrapper::Lstat(const char* path, struct stat* status) {
    return mTarget.Lstat(path, status);
}
int EnvWrapper::Fcntl(int fd, int command, int argument) {
    return mTarget.Fcntl(fd, command, argument);
}
int EnvWrapper::Fadvise(int fd, off_t offset, off_t length, int advice) {
    return mTarget.Fadvise(fd, offset, length, advice);
}

}  // namespace basicutils::detail
