// The runtime's descriptor family on POSIX.
#include <basicutils/platform/RuntimeFiles.h>
#include <basicutils/platform/internal/Paths.h>
#include <basicutils/platform/posix/FileObject.h>
#include <fcntl.h>

#include <climits>
#include <mutex>
#include <unordered_map>

namespace basicutils {
namespace detail {
namespace {

// What the runtime knows of a descriptor beyond the system: its translation
// mode, and the handle _get_osfhandle gave for it (held by one reference of
// the table, so its address is never reused while listed).
struct DescriptorEntry {
    bool text = false;
    FileObject* handle = nullptr;
};

struct DescriptorTable {
    std::mutex lock;
    std::unordered_map<int, DescriptorEntry> entries;
};

DescriptorTable& Descriptors() {
    static auto* table = new DescriptorTable;  // never destroyed: used until exit
    return *table;
}

// Drops what the table holds for a descriptor that is being closed.
void ForgetDescriptor(int fd) {
    FileObject* handle = nullptr;
    {
        DescriptorTable& table = Descriptors();
        std::lock_guard<std::mutex> g(table.lock);
        auto it = table.entries.find(fd);
        if (it == table.entries.end()) return;
        handle = it->second.handle;
        table.entries.erase(it);
    }
    if (handle) {
        CloseHandle(handle);  // FALSE when the caller closed it already
        handle->Release();
    }
}

// "\r\n" becomes "\n" in the `count` bytes read into `buffer`; a "\r" that
// ends the read looks at the next byte of the file. The count left.
int TranslateLineEnds(int fd, char* buffer, int count) {
    int out = 0;
    for (int in = 0; in < count; ++in) {
        if (buffer[in] == '\r' && in + 1 < count && buffer[in + 1] == '\n') continue;
        buffer[out++] = buffer[in];
    }
    if (buffer[count - 1] != '\r') return out;
    Env& env = CurrentEnv();
    char next = 0;
    const ssize_t got = RetryOnEintr([&] { return env.Read(fd, &next, 1); });
    if (got == 1 && next == '\n')
        buffer[out - 1] = '\n';
    else if (got == 1)
        RetryOnEintr([&] { return env.Lseek(fd, -1, SEEK_CUR); });
    return out;
}

uint16_t ModeOf(const struct stat& status) {
    uint16_t kind = _S_IFREG;
    if (S_ISDIR(status.st_mode))
        kind = _S_IFDIR;
    else if (S_ISCHR(status.st_mode) || S_ISBLK(status.st_mode))
        kind = _S_IFCHR;
    else if (S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode))
        kind = _S_IFIFO;
    uint16_t owner = 0;
    if (status.st_mode & S_IRUSR) owner |= _S_IREAD;
    if (status.st_mode & S_IWUSR) owner |= _S_IWRITE;
    if (status.st_mode & S_IXUSR) owner |= _S_IEXEC;
    return static_cast<uint16_t>(kind | owner | owner >> 3 | owner >> 6);
}

void ToStatRecord(const struct stat& status, struct _stati64* out) {
    *out = {};
    out->st_dev = status.st_dev;
    out->st_ino = status.st_ino;
    out->st_mode = ModeOf(status);
    out->st_nlink = static_cast<int16_t>(status.st_nlink > 0x7FFF ? 0x7FFF : status.st_nlink);
    out->st_rdev = status.st_rdev;
    out->st_size = status.st_size;
    out->st_atime = status.st_atim.tv_sec;
    out->st_mtime = status.st_mtim.tv_sec;
    out->st_ctime = status.st_ctim.tv_sec;
}

// Calls a system call on one converted path: 0, or -1 with errno and the
// last error set.
template <class Call>
int OnPath(const char16_t* name, Call call) {
    SystemPath path(name);
    if (!path) return -1;
    if (RetryOnEintr([&] { return call(path.c_str()); }) != 0) return FailFromErrno(-1);
    return 0;
}

}  // namespace

bool IsTextDescriptor(int fd) {
    DescriptorTable& table = Descriptors();
    std::lock_guard<std::mutex> g(table.lock);
    auto it = table.entries.find(fd);
    return it != table.entries.end() && it->second.text;
}

}  // namespace detail

using detail::CurrentEnv;
using detail::Env;
using detail::FailFromErrno;
using detail::FailWith;
using detail::RetryOnEintr;

int _wopen(const char16_t* path, int flags) {
    if ((flags & _O_TEXT) && (flags & _O_BINARY)) return FailWith(EINVAL, -1);
    detail::SystemPath name(path);
    if (!name) return -1;
    int system = (flags & _O_RDWR) ? O_RDWR : (flags & _O_WRONLY) ? O_WRONLY : O_RDONLY;
    if (flags & _O_APPEND) system |= O_APPEND;
    if (flags & _O_CREAT) system |= O_CREAT;
    if (flags & _O_TRUNC) system |= O_TRUNC;
    if (flags & _O_EXCL) system |= O_EXCL;
    const int fd = detail::OpenRegularFile(name.c_str(), system, 0666);
    if (fd < 0) return FailFromErrno(-1);
    detail::ForgetDescriptor(fd);  // a stale entry of a descriptor closed elsewhere
    detail::DescriptorTable& table = detail::Descriptors();
    std::lock_guard<std::mutex> g(table.lock);
    table.entries[fd] = detail::DescriptorEntry{(flags & _O_BINARY) == 0, nullptr};
    return fd;
}

int _close(int fd) {
    detail::ForgetDescriptor(fd);
    if (CurrentEnv().Close(fd) != 0) return FailFromErrno(-1);
    return 0;
}

int _read(int fd, void* buffer, unsigned int count) {
    if (count > INT_MAX) return FailWith(EINVAL, -1);
    const ssize_t got = RetryOnEintr([&] { return CurrentEnv().Read(fd, buffer, count); });
    if (got < 0) return FailFromErrno(-1);
    if (got == 0 || !detail::IsTextDescriptor(fd)) return static_cast<int>(got);
    return detail::TranslateLineEnds(fd, static_cast<char*>(buffer), static_cast<int>(got));
}

int _write(int fd, const void* buffer, unsigned int count) {
    if (count > INT_MAX) return FailWith(EINVAL, -1);
    const ssize_t put = RetryOnEintr([&] { return CurrentEnv().Write(fd, buffer, count); });
    if (put < 0) return FailFromErrno(-1);
    return static_cast<int>(put);
}

int64_t _lseeki64(int fd, int64_t offset, int origin) {
    if (origin != SEEK_SET && origin != SEEK_CUR && origin != SEEK_END) return FailWith(EINVAL, -1);
    const off_t position = RetryOnEintr([&] { return CurrentEnv().Lseek(fd, offset, origin); });
    if (position < 0) return FailFromErrno(-1);
    return position;
}

int32_t _lseek(int fd, int32_t offset, int origin) {
    // Where to go back to if the result does not fit; a seek from the start
    // always fits.
    int64_t before = 0;
    if (origin == SEEK_END && (before = _telli64(fd)) < 0) return -1;
    const int64_t position = _lseeki64(fd, offset, origin);
    if (position < 0) return -1;
    if (position <= INT32_MAX) return static_cast<int32_t>(position);
    if (origin == SEEK_CUR) before = position - offset;
    RetryOnEintr([&] { return CurrentEnv().Lseek(fd, before, SEEK_SET); });
    return FailWith(EINVAL, -1);
}

int64_t _telli64(int fd) {
    return _lseeki64(fd, 0, SEEK_CUR);
}

int32_t _tell(int fd) {
    const int64_t position = _telli64(fd);
    if (position > INT32_MAX) return FailWith(EINVAL, -1);
    return static_cast<int32_t>(position);
}

int _wchmod(const char16_t* path, int mode) {
    detail::SystemPath name(path);
    if (!name) return -1;
    Env& env = CurrentEnv();
    struct stat status;
    if (RetryOnEintr([&] { return env.Stat(name.c_str(), &status); }) != 0)
        return FailFromErrno(-1);
    mode_t permissions = status.st_mode & 07777;
    if (mode & _S_IWRITE)
        permissions |= S_IRUSR | S_IWUSR;
    else
        permissions = (permissions & ~mode_t{0222}) | S_IRUSR;
    if (RetryOnEintr([&] { return env.Chmod(name.c_str(), permissions); }) != 0)
        return FailFromErrno(-1);
    return 0;
}

int _wstati64(const char16_t* path, struct _stati64* status) {
    if (!status) return FailWith(EINVAL, -1);
    struct stat system;
    const int result =
        detail::OnPath(path, [&](const char* name) { return CurrentEnv().Stat(name, &system); });
    if (result == 0) detail::ToStatRecord(system, status);
    return result;
}

int _fstati64(int fd, struct _stati64* status) {
    if (!status) return FailWith(EINVAL, -1);
    struct stat system;
    if (RetryOnEintr([&] { return CurrentEnv().Fstat(fd, &system); }) != 0)
        return FailFromErrno(-1);
    detail::ToStatRecord(system, status);
    return 0;
}

intptr_t _get_osfhandle(int fd) {
    detail::DescriptorTable& table = detail::Descriptors();
    std::lock_guard<std::mutex> g(table.lock);
    detail::DescriptorEntry& entry = table.entries[fd];
    if (entry.handle) {
        detail::ObjectRef live(detail::KernelObject::Acquire(entry.handle));
        if (live) return reinterpret_cast<intptr_t>(entry.handle);
        entry.handle->Release();  // the caller closed it: make a new one
        entry.handle = nullptr;
    }
    const int flags = RetryOnEintr([&] { return CurrentEnv().Fcntl(fd, F_GETFL, 0); });
    if (flags < 0) {
        if (!entry.text) table.entries.erase(fd);
        return FailFromErrno(intptr_t{-1});
    }
    const int access = flags & O_ACCMODE;
    const DWORD rights = access == O_RDONLY   ? GENERIC_READ
                         : access == O_WRONLY ? GENERIC_WRITE
                                              : GENERIC_READ | GENERIC_WRITE;
    entry.handle = new detail::FileObject(fd, false, rights, 0, (flags & O_DIRECT) != 0);
    entry.handle->AddRef();  // one for the table, one for the registry
    return reinterpret_cast<intptr_t>(entry.handle->Publish());
}

int _wremove(const char16_t* path) {
    return detail::OnPath(path, detail::RemoveFile);
}

int _wunlink(const char16_t* path) {
    return _wremove(path);
}

int _wrename(const char16_t* oldName, const char16_t* newName) {
    detail::SystemPath from(oldName), to(newName);
    if (!from || !to) return -1;
    Env& env = CurrentEnv();
    struct stat status;
    if (RetryOnEintr([&] { return env.Lstat(to.c_str(), &status); }) == 0)
        return FailWith(EACCES, -1);
    if (RetryOnEintr([&] { return env.Rename(from.c_str(), to.c_str()); }) != 0)
        return FailFromErrno(-1);
    return 0;
}

int _wmkdir(const char16_t* path) {
    return detail::OnPath(path, [](const char* name) { return CurrentEnv().Mkdir(name, 0777); });
}

int _wrmdir(const char16_t* path) {
    return detail::OnPath(path, [](const char* name) { return CurrentEnv().Rmdir(name); });
}

int _wchdir(const char16_t* path) {
    return detail::OnPath(path, [](const char* name) { return CurrentEnv().Chdir(name); });
}

namespace {
void CopyPart(char16_t* destination, int size, const char16_t* from, size_t length) {
    if (!destination) return;
    const size_t count = length < static_cast<size_t>(size - 1) ? length : size - 1;
    for (size_t i = 0; i < count; ++i) destination[i] = from[i];
    destination[count] = 0;
}
}  // namespace

void _wsplitpath(const char16_t* path, char16_t* drive, char16_t* dir, char16_t* fname,
                 char16_t* ext) {
    if (!path) path = u"";
    size_t length = 0, nameStart = 0;
    for (; path[length]; ++length)
        if (path[length] == u'\\' || path[length] == u'/') nameStart = length + 1;
    size_t dot = length;
    for (size_t i = nameStart; i < length; ++i)
        if (path[i] == u'.') dot = i;
    CopyPart(drive, _MAX_DRIVE, path, 0);
    CopyPart(dir, _MAX_DIR, path, nameStart);
    CopyPart(fname, _MAX_FNAME, path + nameStart, dot - nameStart);
    CopyPart(ext, _MAX_EXT, path + dot, length - dot);
}

}  // namespace basicutils
