// Durable steps on names on POSIX: link(2), rename(2), fsync of a folder.
#include <basicutils/platform/internal/DurableNames.h>
#include <basicutils/platform/internal/Paths.h>
#include <basicutils/platform/posix/FileObject.h>
#include <fcntl.h>

#include <string>

namespace basicutils::detail {

namespace {

// The folder part of a system path: up to its last '/', "/" for a name in
// the root, "." for a bare name.
std::string FolderOf(const std::string& path) {
    const size_t slash = path.find_last_of('/');
    if (slash == std::string::npos) return ".";
    if (slash == 0) return "/";
    return path.substr(0, slash);
}

int SyncFolder(const std::string& folder) {
    Env& env = CurrentEnv();
    const int fd = RetryOnEintr(
        [&] { return env.Open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0); });
    if (fd < 0) return FailFromErrno(-1);
    const int synced = RetryOnEintr([&] { return env.Fsync(fd, false); });
    const int error = errno;
    env.Close(fd);
    if (synced != 0) return FailWith(error, -1);
    return 0;
}

}  // namespace

int LinkName(const char16_t* existing, const char16_t* newName) {
    SystemPath from(existing), to(newName);
    if (!from || !to) return -1;
    Env& env = CurrentEnv();
    if (RetryOnEintr([&] { return env.Link(from.c_str(), to.c_str()); }) != 0)
        return FailFromErrno(-1);
    return 0;
}

int ReplaceName(const char16_t* from, const char16_t* to) {
    SystemPath source(from), target(to);
    if (!source || !target) return -1;
    Env& env = CurrentEnv();
    if (RetryOnEintr([&] { return env.Rename(source.c_str(), target.c_str()); }) != 0)
        return FailFromErrno(-1);
    SyncFolder(FolderOf(target.str()));
    return 0;
}

int SyncFolderOf(const char16_t* path) {
    SystemPath name(path);
    if (!name) return -1;
    return SyncFolder(FolderOf(name.str()));
}

int SyncDescriptor(int fd) {
    if (RetryOnEintr([&] { return CurrentEnv().Fsync(fd, true); }) != 0) return FailFromErrno(-1);
    return 0;
}

}  // namespace basicutils::detail
