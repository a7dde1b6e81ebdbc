// File handles on POSIX: CreateFileW and the calls on an open handle,
// DeleteFileW, and the pieces the other file services share.
#include <basicutils/platform/FileApi.h>
#include <basicutils/platform/internal/Paths.h>
#include <basicutils/platform/posix/FileObject.h>
#include <fcntl.h>

#include <limits>
#include <string>

namespace basicutils {
namespace detail {

FileObject::~FileObject() {
    // Nobody is left to hear of a failed close; see FileApi.h.
    if (mOwned) CurrentEnv().Close(mFd);
    if (mBufferedFd >= 0) CurrentEnv().Close(mBufferedFd);
}

FileRef::FileRef(HANDLE handle) : mFile(nullptr) {
    KernelObject* object = KernelObject::Acquire(handle);
    mFile = dynamic_cast<FileObject*>(object);
    if (!mFile) {
        if (object) object->Release();
        SetLastError(ERROR_INVALID_HANDLE);
    }
}

int OpenRegularFile(const char* path, int flags, mode_t mode) {
    Env& env = CurrentEnv();
    const int fd =
        RetryOnEintr([&] { return env.Open(path, flags | O_CLOEXEC | O_NONBLOCK, mode); });
    if (fd < 0) {
        if (errno == EISDIR) errno = EACCES;
        return -1;
    }
    struct stat status;
    const bool known = RetryOnEintr([&] { return env.Fstat(fd, &status); }) == 0;
    if (!known || !S_ISREG(status.st_mode)) {
        const int error = known ? EACCES : errno;
        env.Close(fd);
        errno = error;
        return -1;
    }
    return fd;
}

uint32_t SetLastErrorForPath(int error, const char* path) {
    if (error == ENOENT) {
        std::string folder(path);
        const size_t slash = folder.find_last_of('/');
        folder = slash == std::string::npos ? "." : slash == 0 ? "/" : folder.substr(0, slash);
        struct stat status;
        if (RetryOnEintr([&] { return CurrentEnv().Stat(folder.c_str(), &status); }) != 0 ||
            !S_ISDIR(status.st_mode)) {
            SetLastError(ERROR_PATH_NOT_FOUND);
            return ERROR_PATH_NOT_FOUND;
        }
    }
    return SetLastErrorFromErrno(error);
}

DWORD AttributesOf(const struct stat& status, std::string_view name) {
    DWORD attributes = 0;
    if (S_ISDIR(status.st_mode))
        attributes |= FILE_ATTRIBUTE_DIRECTORY;
    else if (S_ISLNK(status.st_mode))
        attributes |= FILE_ATTRIBUTE_REPARSE_POINT;
    else if (!S_ISREG(status.st_mode))
        attributes |= FILE_ATTRIBUTE_SYSTEM;
    if (!S_ISLNK(status.st_mode) && IsReadOnly(status)) attributes |= FILE_ATTRIBUTE_READONLY;
    if (name.size() > 1 && name[0] == '.' && name != "..") attributes |= FILE_ATTRIBUTE_HIDDEN;
    return attributes ? attributes : FILE_ATTRIBUTE_NORMAL;
}

FILETIME ToFileTime(const struct timespec& time) {
    constexpr int64_t kSecondsFrom1601To1970 = 11644473600;
    const int64_t ticks = (time.tv_sec + kSecondsFrom1601To1970) * 10000000 + time.tv_nsec / 100;
    const auto value = static_cast<uint64_t>(ticks < 0 ? 0 : ticks);
    return FILETIME{static_cast<DWORD>(value), static_cast<DWORD>(value >> 32)};
}

int RemoveFile(const char* path) {
    Env& env = CurrentEnv();
    struct stat status;
    if (RetryOnEintr([&] { return env.Lstat(path, &status); }) != 0) return -1;
    if (S_ISDIR(status.st_mode) || (S_ISREG(status.st_mode) && IsReadOnly(status))) {
        errno = EACCES;
        return -1;
    }
    return RetryOnEintr([&] { return env.Unlink(path); });
}

namespace {

// Opens with O_CREAT, telling whether the file was there before. A name
// that appears and vanishes between the two tries is tried again, a few
// times; then a plain O_CREAT open decides.
int OpenOrCreate(const char* path, int flags, mode_t mode, bool truncate, bool& existed) {
    for (int attempt = 0; attempt < 3; ++attempt) {
        int fd = OpenRegularFile(path, flags | O_CREAT | O_EXCL, mode);
        if (fd >= 0 || errno != EEXIST) {
            existed = false;
            return fd;
        }
        fd = OpenRegularFile(path, flags | (truncate ? O_TRUNC : 0), mode);
        if (fd >= 0 || errno != ENOENT) {
            existed = true;
            return fd;
        }
    }
    existed = false;
    return OpenRegularFile(path, flags | O_CREAT | (truncate ? O_TRUNC : 0), mode);
}

// Turns on O_DIRECT; false when the file system refuses it (EINVAL), which
// leaves the descriptor buffered. Other failures answer -1.
int EnableDirectIo(int fd) {
    Env& env = CurrentEnv();
    const int flags = RetryOnEintr([&] { return env.Fcntl(fd, F_GETFL, 0); });
    if (flags < 0) return -1;
    if (RetryOnEintr([&] { return env.Fcntl(fd, F_SETFL, flags | O_DIRECT); }) == 0) return 1;
    return errno == EINVAL ? 0 : -1;
}

int FileSize(int fd, int64_t& size) {
    struct stat status;
    if (RetryOnEintr([&] { return CurrentEnv().Fstat(fd, &status); }) != 0) return -1;
    size = status.st_size;
    return 0;
}

}  // namespace
}  // namespace detail

using detail::CurrentEnv;
using detail::FailFromErrno;
using detail::FailWith;
using detail::FileRef;
using detail::RetryOnEintr;

HANDLE CreateFileW(const char16_t* fileName, DWORD desiredAccess, DWORD /*shareMode*/,
                   void* /*securityAttributes*/, DWORD creationDisposition,
                   DWORD flagsAndAttributes, HANDLE /*templateFile*/) {
    detail::SystemPath path(fileName);
    if (!path) return INVALID_HANDLE_VALUE;
    const bool reads = desiredAccess & GENERIC_READ, writes = desiredAccess & GENERIC_WRITE;
    int flags = writes ? (reads ? O_RDWR : O_WRONLY) : O_RDONLY;
    if (flagsAndAttributes & FILE_FLAG_WRITE_THROUGH) flags |= O_DSYNC;
    const mode_t mode = (flagsAndAttributes & FILE_ATTRIBUTE_READONLY) ? 0444 : 0666;
    bool existed = false;
    int fd = -1;
    switch (creationDisposition) {
        case CREATE_NEW:
            fd = detail::OpenRegularFile(path.c_str(), flags | O_CREAT | O_EXCL, mode);
            break;
        case CREATE_ALWAYS:
        case OPEN_ALWAYS:
            fd = detail::OpenOrCreate(path.c_str(), flags, mode,
                                      creationDisposition == CREATE_ALWAYS, existed);
            break;
        case OPEN_EXISTING:
            fd = detail::OpenRegularFile(path.c_str(), flags, mode);
            break;
        case TRUNCATE_EXISTING:
            if (!writes) return FailWith(EINVAL, INVALID_HANDLE_VALUE);
            fd = detail::OpenRegularFile(path.c_str(), flags | O_TRUNC, mode);
            break;
        default:
            return FailWith(EINVAL, INVALID_HANDLE_VALUE);
    }
    if (fd < 0) return detail::FailForPath(path.c_str(), INVALID_HANDLE_VALUE);

    int direct = 0;
    if (flagsAndAttributes & FILE_FLAG_NO_BUFFERING) direct = detail::EnableDirectIo(fd);
    if (direct < 0) {
        const int error = errno;
        CurrentEnv().Close(fd);
        return FailWith(error, INVALID_HANDLE_VALUE);
    }
    // Advice only: a refusal changes nothing the caller could see.
    if (flagsAndAttributes & FILE_FLAG_SEQUENTIAL_SCAN)
        CurrentEnv().Fadvise(fd, 0, 0, POSIX_FADV_SEQUENTIAL);
    else if (flagsAndAttributes & FILE_FLAG_RANDOM_ACCESS)
        CurrentEnv().Fadvise(fd, 0, 0, POSIX_FADV_RANDOM);

    if (creationDisposition == CREATE_ALWAYS || creationDisposition == OPEN_ALWAYS)
        SetLastError(existed ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
    auto* file = new detail::FileObject(fd, true, desiredAccess, flagsAndAttributes, direct == 1);
    return file->Publish();
}

DWORD GetFileSize(HANDLE file, DWORD* fileSizeHigh) {
    FileRef ref(file);
    if (!ref) return INVALID_FILE_SIZE;
    int64_t size = 0;
    if (detail::FileSize(ref->Descriptor(), size) != 0) return FailFromErrno(INVALID_FILE_SIZE);
    const auto value = static_cast<uint64_t>(size);
    if (fileSizeHigh) *fileSizeHigh = static_cast<DWORD>(value >> 32);
    if (static_cast<DWORD>(value) == INVALID_FILE_SIZE) SetLastError(ERROR_SUCCESS);
    return static_cast<DWORD>(value);
}

DWORD SetFilePointer(HANDLE file, LONG distanceToMove, LONG* distanceToMoveHigh, DWORD moveMethod) {
    FileRef ref(file);
    if (!ref) return INVALID_SET_FILE_POINTER;
    const int fd = ref->Descriptor();
    const int64_t distance =
        distanceToMoveHigh
            ? static_cast<int64_t>((static_cast<uint64_t>(*distanceToMoveHigh) << 32) |
                                   static_cast<uint32_t>(distanceToMove))
            : distanceToMove;
    int64_t base = 0;
    if (moveMethod == FILE_CURRENT) {
        base = RetryOnEintr([&] { return CurrentEnv().Lseek(fd, 0, SEEK_CUR); });
        if (base < 0) return FailFromErrno(INVALID_SET_FILE_POINTER);
    } else if (moveMethod == FILE_END) {
        if (detail::FileSize(fd, base) != 0) return FailFromErrno(INVALID_SET_FILE_POINTER);
    } else if (moveMethod != FILE_BEGIN) {
        return FailWith(EINVAL, INVALID_SET_FILE_POINTER);
    }
    if (distance > 0 && base > std::numeric_limits<int64_t>::max() - distance)
        return FailWith(EINVAL, INVALID_SET_FILE_POINTER);
    const int64_t target = base + distance;
    if (target < 0) {
        SetLastError(ERROR_NEGATIVE_SEEK);
        return INVALID_SET_FILE_POINTER;
    }
    if (!distanceToMoveHigh && target > 0xFFFFFFFFll)
        return FailWith(EINVAL, INVALID_SET_FILE_POINTER);
    if (RetryOnEintr([&] { return CurrentEnv().Lseek(fd, target, SEEK_SET); }) < 0)
        return FailFromErrno(INVALID_SET_FILE_POINTER);
    if (distanceToMoveHigh) *distanceToMoveHigh = static_cast<LONG>(target >> 32);
    if (static_cast<DWORD>(target) == INVALID_SET_FILE_POINTER) SetLastError(ERROR_SUCCESS);
    return static_cast<DWORD>(target);
}

BOOL SetEndOfFile(HANDLE file) {
    FileRef ref(file);
    if (!ref) return 0;
    if (!ref->CanWrite()) return FailWith(EACCES, 0);
    const int fd = ref->Descriptor();
    const off_t position = RetryOnEintr([&] { return CurrentEnv().Lseek(fd, 0, SEEK_CUR); });
    if (position < 0) return FailFromErrno(0);
    if (RetryOnEintr([&] { return CurrentEnv().Ftruncate(fd, position); }) != 0)
        return FailFromErrno(0);
    return 1;
}

BOOL FlushFileBuffers(HANDLE file) {
    FileRef ref(file);
    if (!ref) return 0;
    const int fd = ref->Descriptor();
    if (RetryOnEintr([&] { return CurrentEnv().Fsync(fd, false); }) != 0) return FailFromErrno(0);
    return 1;
}

BOOL CancelIo(HANDLE file) {
    FileRef ref(file);
    if (!ref) return 0;
    detail::CancelTransfers(*ref.operator->());
    return 1;
}

BOOL DeleteFileW(const char16_t* fileName) {
    detail::SystemPath path(fileName);
    if (!path) return 0;
    if (detail::RemoveFile(path.c_str()) != 0) {
        if (errno == EACCES) return FailWith(EACCES, 0);
        return detail::FailForPath(path.c_str(), 0);
    }
    return 1;
}

}  // namespace basicutils
