// The settings file: whole-file reads, locked read-modify-write, atomic
// replace (temporary file, fsync, rename, fsync of the folder).
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/SystemFolders.h>
#include <basicutils/platform/internal/Env.h>
#include <basicutils/platform/internal/IniDocument.h>
#include <basicutils/platform/internal/ProfileStore.h>
#include <fcntl.h>
#include <sys/file.h>

namespace basicutils::detail {
namespace {

// Closes a descriptor when it goes out of scope.
class Descriptor {
  public:
    explicit Descriptor(int fd) : mFd(fd) {}
    ~Descriptor() {
        if (mFd >= 0) CurrentEnv().Close(mFd);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return mFd; }
    // Closes now; false (errno set) when the close reports an error.
    bool Close() {
        const int fd = mFd;
        mFd = -1;
        return CurrentEnv().Close(fd) == 0;
    }

  private:
    int mFd;
};

// The whole file; false with errno set when it can't be read (ENOENT for a
// missing file).
bool ReadWhole(const std::string& file, std::string& text) {
    Descriptor fd(
        RetryOnEintr([&] { return CurrentEnv().Open(file.c_str(), O_RDONLY | O_CLOEXEC, 0); }));
    if (fd.get() < 0) return false;
    text.clear();
    char buffer[16384];
    for (;;) {
        const ssize_t n =
            RetryOnEintr([&] { return CurrentEnv().Read(fd.get(), buffer, sizeof buffer); });
        if (n < 0) return false;
        if (n == 0) return true;
        text.append(buffer, static_cast<size_t>(n));
    }
}

bool WriteWhole(int fd, const std::string& text) {
    size_t done = 0;
    while (done < text.size()) {
        const ssize_t n = RetryOnEintr(
            [&] { return CurrentEnv().Write(fd, text.data() + done, text.size() - done); });
        if (n < 0) return false;
        if (n == 0) {
            errno = ENOSPC;
            return false;
        }
        done += static_cast<size_t>(n);
    }
    return true;
}

std::string FolderOf(const std::string& file) {
    const size_t slash = file.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : file.substr(0, slash);
}

// Writes `text` to the file by way of "<file>.tmp"; the caller holds the lock.
bool ReplaceFile(const std::string& file, const std::string& text) {
    struct stat old;
    const bool hadFile = CurrentEnv().Stat(file.c_str(), &old) == 0;
    const std::string temporary = file + ".tmp";
    Descriptor fd(RetryOnEintr([&] {
        return CurrentEnv().Open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    }));
    bool ok = fd.get() >= 0;
    if (ok && hadFile) ok = CurrentEnv().Chmod(temporary.c_str(), old.st_mode & 07777) == 0;
    ok = ok && WriteWhole(fd.get(), text) && CurrentEnv().Fsync(fd.get(), false) == 0 && fd.Close();
    ok = ok && CurrentEnv().Rename(temporary.c_str(), file.c_str()) == 0;
    if (!ok) {
        const int error = errno;
        CurrentEnv().Unlink(temporary.c_str());
        errno = error;
        return false;
    }
    // The rename itself reaches the disk only with the folder.
    Descriptor folder(RetryOnEintr([&] {
        return CurrentEnv().Open(FolderOf(file).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0);
    }));
    if (folder.get() >= 0) CurrentEnv().Fsync(folder.get(), false);
    return true;
}

}  // namespace

std::optional<std::u16string> ReadProfileValue(const std::string& file, const char16_t* section,
                                               const char16_t* key) {
    std::string text;
    if (!section || !key || !ReadWhole(file, text)) return std::nullopt;
    IniDocument document;
    document.Parse(text);
    return document.Get(section, key);
}

bool WriteProfileValue(const std::string& file, const char16_t* section, const char16_t* key,
                       const char16_t* value, bool makeFolder) {
    if (!section || !IniDocument::IsValidSection(section) ||
        (key && (!IniDocument::IsValidKey(key) || (value && !IniDocument::IsValidValue(value))))) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    if (makeFolder && !MakeFolders(FolderOf(file), 0700)) return false;
    const std::string lockName = file + ".lock";
    Descriptor lock(RetryOnEintr(
        [&] { return CurrentEnv().Open(lockName.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666); }));
    if (lock.get() < 0 ||
        RetryOnEintr([&] { return CurrentEnv().Flock(lock.get(), LOCK_EX); }) != 0) {
        SetLastErrorFromErrno(errno);
        return false;
    }
    std::string text;
    if (!ReadWhole(file, text) && errno != ENOENT) {
        SetLastErrorFromErrno(errno);
        return false;
    }
    IniDocument document;
    document.Parse(text);
    const std::string before = document.Text();
    if (!key)
        document.RemoveSection(section);
    else if (!value)
        document.Remove(section, key);
    else
        document.Set(section, key, value);
    const std::string changed = document.Text();
    if (changed == before) return true;
    if (!ReplaceFile(file, changed)) {
        SetLastErrorFromErrno(errno);
        return false;
    }
    return true;  // the lock goes with its descriptor
}

}  // namespace basicutils::detail
