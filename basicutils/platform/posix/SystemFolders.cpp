// Home, data and settings folders, the running program's path.
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/SystemFolders.h>
#include <basicutils/platform/internal/Env.h>
#include <basicutils/platform/internal/Paths.h>
#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <vector>

namespace basicutils {
namespace detail {
namespace {

// The Win32 sizing rule: see SystemFolders.h.
UINT CopyWithSizeRule(const std::u16string& text, char16_t* buffer, UINT size) {
    const auto length = static_cast<UINT>(text.size());
    if (!buffer || size <= length) return length + 1;
    text.copy(buffer, length);
    buffer[length] = u'\0';
    return length;
}

// An environment variable that holds an absolute path, or empty.
std::string AbsoluteVariable(const char* name) {
    const char* value = std::getenv(name);
    return value && value[0] == '/' ? std::string(value) : std::string();
}

std::string Under(const std::string& variable, const char* fallback) {
    std::string folder = AbsoluteVariable(variable.c_str());
    if (!folder.empty()) return folder;
    const std::string home = HomeFolder();
    return home.empty() ? std::string() : home + fallback;
}

UINT Answer(const std::string& folder, char16_t* buffer, UINT size) {
    if (folder.empty()) {
        SetLastError(ERROR_PATH_NOT_FOUND);
        return 0;
    }
    return CopyWithSizeRule(FromSystemPath(folder), buffer, size);
}

}  // namespace

std::string HomeFolder() {
    std::string home = AbsoluteVariable("HOME");
    if (!home.empty()) return home;
    long size = ::sysconf(_SC_GETPW_R_SIZE_MAX);
    std::vector<char> buffer(size > 0 ? static_cast<size_t>(size) : 16384);
    struct passwd entry;
    struct passwd* found = nullptr;
    if (::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found &&
        found->pw_dir && found->pw_dir[0] == '/')
        home = found->pw_dir;
    return home;
}

std::string UserDataFolder() {
    return Under("XDG_DATA_HOME", "/.local/share");
}

std::string UserConfigFolder() {
    return Under("XDG_CONFIG_HOME", "/.config");
}

std::string ProgramPath() {
    std::vector<char> buffer(256);
    for (;;) {
        const ssize_t n = CurrentEnv().Readlink("/proc/self/exe", buffer.data(), buffer.size());
        if (n < 0) return {};
        if (static_cast<size_t>(n) < buffer.size()) return std::string(buffer.data(), size_t(n));
        buffer.resize(buffer.size() * 2);  // the link may be longer than the buffer
    }
}

std::string ProgramName() {
    std::string name = ProgramPath();
    name.erase(0, name.rfind('/') + 1);
    const size_t dot = name.rfind('.');
    if (dot != std::string::npos && dot > 0) name.erase(dot);
    return name;
}

bool MakeFolders(std::string folder, unsigned mode) {
    while (folder.size() > 1 && folder.back() == '/') folder.pop_back();
    if (folder.empty()) return false;
    struct stat status;
    if (CurrentEnv().Stat(folder.c_str(), &status) == 0) return S_ISDIR(status.st_mode);
    const size_t slash = folder.find_last_of('/');
    if (slash != std::string::npos && slash > 0) MakeFolders(folder.substr(0, slash), mode);
    if (CurrentEnv().Mkdir(folder.c_str(), static_cast<mode_t>(mode)) == 0 || errno == EEXIST)
        return true;
    SetLastErrorFromErrno(errno);
    return false;
}

}  // namespace detail

UINT GetSystemDirectoryW(char16_t* buffer, UINT size) {
    return detail::Answer(detail::UserDataFolder(), buffer, size);
}

UINT GetSystemDriveW(char16_t* buffer, UINT size) {
    return detail::Answer(detail::HomeFolder(), buffer, size);
}

}  // namespace basicutils
