// What stands behind a file handle on POSIX, and the small pieces the file
// services share. Internal to the platform layer.
#pragma once

#include <basicutils/platform/Errors.h>
#include <basicutils/platform/FileApi.h>
#include <basicutils/platform/internal/Env.h>
#include <basicutils/platform/internal/KernelObject.h>
#include <sys/stat.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <mutex>
#include <string_view>

namespace basicutils::detail {

// An open file: the descriptor and what the opening asked for, so that the
// transfers (synchronous or overlapped) know how to treat it.
class FileObject final : public KernelObject {
  public:
    // `owned` false: the descriptor belongs to the runtime's descriptor table
    // (_get_osfhandle) and is not closed with the object.
    FileObject(int fd, bool owned, DWORD access, DWORD flags, bool direct)
        : mFd(fd), mOwned(owned), mAccess(access), mFlags(flags), mDirect(direct) {}

    // A file handle is never waited on for a state of its own.
    bool TryAcquire() override { return true; }

    int Descriptor() const { return mFd; }
    bool CanWrite() const { return (mAccess & GENERIC_WRITE) != 0; }
    // Access 0 opens for reading.
    bool CanRead() const { return (mAccess & GENERIC_READ) != 0 || !CanWrite(); }
    DWORD Flags() const { return mFlags; }
    bool Overlapped() const { return (mFlags & FILE_FLAG_OVERLAPPED) != 0; }
    // Whether direct I/O (O_DIRECT) is on: FILE_FLAG_NO_BUFFERING was asked
    // and the file system allowed it. Transfers must then be aligned.
    bool Direct() const { return mDirect; }
    // For a direct file, a second descriptor of the same file without direct
    // I/O, opened at the first call, for the transfers that direct I/O
    // cannot take (see FileIo.h); -1 when it cannot be opened. For any other
    // file the descriptor itself.
    int BufferedDescriptor();
    // That descriptor if it was opened, else -1; opens nothing.
    int OpenedBufferedDescriptor() const { return mBufferedFd.load(std::memory_order_acquire); }

  protected:
    ~FileObject() override;

  private:
    const int mFd;
    const bool mOwned;
    const DWORD mAccess;
    const DWORD mFlags;
    const bool mDirect;
    std::mutex mBufferedLock;  // guards the opening of mBufferedFd
    std::atomic<int> mBufferedFd{-1};
    bool mBufferedTried = false;
};

// Cancels the file's transfers that have not started (see CancelIo).
void CancelTransfers(FileObject& file);

// The file object behind a handle with a reference held, or empty with
// ERROR_INVALID_HANDLE set.
class FileRef {
  public:
    explicit FileRef(HANDLE handle);
    ~FileRef() {
        if (mFile) mFile->Release();
    }
    FileRef(const FileRef&) = delete;
    FileRef& operator=(const FileRef&) = delete;
    explicit operator bool() const { return mFile != nullptr; }
    FileObject* operator->() const { return mFile; }

  private:
    FileObject* mFile;
};

// Opens a regular file with open(2) flags (O_CLOEXEC and O_NONBLOCK are
// added: nothing waits in the open). Anything but a regular file is closed
// again and refused with EACCES. The descriptor, or -1 with errno set.
int OpenRegularFile(const char* path, int flags, mode_t mode);

// Deletes a file, refusing (EACCES) a folder and a read-only file as the
// legacy system does. 0, or -1 with errno set.
int RemoveFile(const char* path);

// Whether a descriptor reads in text mode (opened by _wopen without
// _O_BINARY). Descriptors the runtime did not open read in binary.
bool IsTextDescriptor(int fd);

// Stores errno as the thread's last error; answers `failure`.
template <typename Result>
Result FailFromErrno(Result failure) {
    SetLastErrorFromErrno(errno);
    return failure;
}
// Sets errno (and the last error) to `error`; answers `failure`.
template <typename Result>
Result FailWith(int error, Result failure) {
    errno = error;
    return FailFromErrno(failure);
}

// Stores the Win32 number for a failure of a call on `path`: as errno maps,
// except that a missing name whose folder is missing too gives
// ERROR_PATH_NOT_FOUND, as the legacy system tells the two apart. errno is
// left as it was. Answers `failure`.
uint32_t SetLastErrorForPath(int error, const char* path);
template <typename Result>
Result FailForPath(const char* path, Result failure) {
    SetLastErrorForPath(errno, path);
    return failure;
}

// The FILE_ATTRIBUTE_ bits of an entry (lstat data) called `name`.
DWORD AttributesOf(const struct stat& status, std::string_view name);
// A time as 100-nanosecond intervals since 1601-01-01 UTC.
FILETIME ToFileTime(const struct timespec& time);
// Whether the owner may not write: the legacy system's read-only attribute.
inline bool IsReadOnly(const struct stat& status) {
    return (status.st_mode & S_IWUSR) == 0;
}

}  // namespace basicutils::detail
