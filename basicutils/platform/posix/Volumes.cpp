// Drives and folders on POSIX: GetDriveTypeW, free space, the current folder.
#include <basicutils/platform/FileApi.h>
#include <basicutils/platform/internal/DriveType.h>
#include <basicutils/platform/internal/Paths.h>
#include <basicutils/platform/posix/FileObject.h>
#include <fcntl.h>
#include <sys/sysmacros.h>

#include <string>

namespace basicutils {
namespace detail {
namespace {

// The system's name for a "root": null or empty is the current folder.
bool VolumePath(const char16_t* root, std::string& out) {
    if (!root || !*root) {
        out = ".";
        return true;
    }
    return ToSystemPath(root, out);
}

// The whole of a small system file, read through the seam; empty on failure.
std::string ReadSystemFile(const char* path) {
    Env& env = CurrentEnv();
    std::string text;
    const int fd = RetryOnEintr([&] { return env.Open(path, O_RDONLY | O_CLOEXEC, 0); });
    if (fd < 0) return text;
    char chunk[4096];
    for (;;) {
        const ssize_t got = RetryOnEintr([&] { return env.Read(fd, chunk, sizeof chunk); });
        if (got <= 0) break;
        text.append(chunk, static_cast<size_t>(got));
    }
    env.Close(fd);
    return text;
}

// The type of the file system mounted as device `device`, from the mount
// table ("major:minor" is its third field, the type follows " - "). The last
// mount of a device wins, as the one on top. Empty when not found.
std::string FileSystemOf(dev_t device) {
    const std::string table = ReadSystemFile("/proc/self/mountinfo");
    const std::string id = std::to_string(major(device)) + ":" + std::to_string(minor(device));
    std::string type;
    size_t start = 0;
    while (start < table.size()) {
        size_t end = table.find('\n', start);
        if (end == std::string::npos) end = table.size();
        const std::string_view line(table.data() + start, end - start);
        start = end + 1;
        // Fields: mount ID, parent ID, major:minor, root, mount point...
        const size_t first = line.find(' ');
        const size_t second = line.find(' ', first + 1);
        const size_t third = line.find(' ', second + 1);
        if (third == std::string_view::npos || line.substr(second + 1, third - second - 1) != id)
            continue;
        const size_t dash = line.find(" - ");
        if (dash == std::string_view::npos) continue;
        const size_t typeEnd = line.find(' ', dash + 3);
        type =
            line.substr(dash + 3, typeEnd == std::string_view::npos ? typeEnd : typeEnd - dash - 3);
    }
    return type;
}

}  // namespace

UINT DriveTypeFor(std::string_view fileSystem, bool readOnly) {
    if (readOnly || fileSystem == "iso9660" || fileSystem == "udf") return DRIVE_CDROM;
    if (fileSystem == "tmpfs" || fileSystem == "ramfs") return DRIVE_RAMDISK;
    for (std::string_view remote :
         {"nfs", "nfs4", "cifs", "smb3", "smbfs", "9p", "ceph", "fuse.sshfs"})
        if (fileSystem == remote) return DRIVE_REMOTE;
    return DRIVE_FIXED;
}

}  // namespace detail

using detail::CurrentEnv;
using detail::RetryOnEintr;

UINT GetDriveTypeW(const char16_t* rootPathName) {
    std::string root;
    if (!detail::VolumePath(rootPathName, root)) return DRIVE_NO_ROOT_DIR;
    struct stat status;
    if (RetryOnEintr([&] { return CurrentEnv().Stat(root.c_str(), &status); }) != 0) {
        const int error = errno;
        detail::FailFromErrno(0);
        return error == ENOENT || error == ENOTDIR ? DRIVE_NO_ROOT_DIR : DRIVE_UNKNOWN;
    }
    if (!S_ISDIR(status.st_mode)) return DRIVE_NO_ROOT_DIR;
    struct statvfs volume;
    if (RetryOnEintr([&] { return CurrentEnv().Statvfs(root.c_str(), &volume); }) != 0)
        return detail::FailFromErrno(DRIVE_UNKNOWN);
    return detail::DriveTypeFor(detail::FileSystemOf(status.st_dev),
                                (volume.f_flag & ST_RDONLY) != 0);
}

namespace {
// statvfs of a "root"; false with the last error set.
bool AskVolume(const char16_t* root, struct statvfs& volume) {
    std::string path;
    if (!detail::VolumePath(root, path)) return false;
    if (RetryOnEintr([&] { return CurrentEnv().Statvfs(path.c_str(), &volume); }) != 0)
        return detail::FailForPath(path.c_str(), false);
    return true;
}

// The blocks the caller may still fill: none on a read-only mount.
uint64_t AvailableBlocks(const struct statvfs& volume) {
    return (volume.f_flag & ST_RDONLY) ? 0 : volume.f_bavail;
}

uint64_t FragmentSize(const struct statvfs& volume) {
    return volume.f_frsize ? volume.f_frsize : volume.f_bsize;
}

DWORD Clamp32(uint64_t value) {
    return value > 0xFFFFFFFFu ? 0xFFFFFFFFu : static_cast<DWORD>(value);
}
}  // namespace

BOOL GetDiskFreeSpaceExW(const char16_t* directoryName, ULARGE_INTEGER* freeBytesAvailableToCaller,
                         ULARGE_INTEGER* totalNumberOfBytes,
                         ULARGE_INTEGER* totalNumberOfFreeBytes) {
    struct statvfs volume;
    if (!AskVolume(directoryName, volume)) return 0;
    const uint64_t unit = FragmentSize(volume);
    if (freeBytesAvailableToCaller)
        freeBytesAvailableToCaller->QuadPart = AvailableBlocks(volume) * unit;
    if (totalNumberOfBytes) totalNumberOfBytes->QuadPart = uint64_t{volume.f_blocks} * unit;
    if (totalNumberOfFreeBytes) totalNumberOfFreeBytes->QuadPart = uint64_t{volume.f_bfree} * unit;
    return 1;
}

BOOL GetDiskFreeSpaceW(const char16_t* rootPathName, DWORD* sectorsPerCluster,
                       DWORD* bytesPerSector, DWORD* numberOfFreeClusters,
                       DWORD* totalNumberOfClusters) {
    struct statvfs volume;
    if (!AskVolume(rootPathName, volume)) return 0;
    const uint64_t cluster = FragmentSize(volume);
    const bool whole = cluster % 512 == 0;
    if (sectorsPerCluster) *sectorsPerCluster = whole ? Clamp32(cluster / 512) : 1;
    if (bytesPerSector) *bytesPerSector = whole ? 512 : Clamp32(cluster);
    if (numberOfFreeClusters) *numberOfFreeClusters = Clamp32(AvailableBlocks(volume));
    if (totalNumberOfClusters) *totalNumberOfClusters = Clamp32(volume.f_blocks);
    return 1;
}

DWORD GetCurrentDirectoryW(DWORD bufferLength, char16_t* buffer) {
    std::string folder(256, '\0');
    while (!CurrentEnv().Getcwd(folder.data(), folder.size())) {
        if (errno != ERANGE) return detail::FailFromErrno(DWORD{0});
        folder.resize(folder.size() * 2);
    }
    folder.resize(folder.find('\0'));
    const std::u16string wide = detail::FromSystemPath(folder);
    const auto length = static_cast<DWORD>(wide.size());
    if (!buffer || bufferLength <= length) return length + 1;
    wide.copy(buffer, length);
    buffer[length] = 0;
    return length;
}

}  // namespace basicutils
