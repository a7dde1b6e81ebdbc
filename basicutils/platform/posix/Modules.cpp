// The run-time loader over dlopen, through the seam.
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/Modules.h>
#include <basicutils/platform/SystemFolders.h>
#include <basicutils/platform/internal/Env.h>
#include <basicutils/platform/internal/Paths.h>
#include <dlfcn.h>
#include <link.h>

#include <string>
#include <vector>

namespace basicutils {
namespace {

bool EndsWithDll(const std::string& name) {
    if (name.size() < 4) return false;
    const std::string tail = name.substr(name.size() - 4);
    return (tail[0] == '.') && (tail[1] | 0x20) == 'd' && (tail[2] | 0x20) == 'l' &&
           (tail[3] | 0x20) == 'l';
}

// The file names to try for one name, in order (see Modules.h).
std::vector<std::string> Candidates(const std::string& folder, const std::string& name) {
    std::vector<std::string> names{folder + name};
    std::string stem;
    if (EndsWithDll(name))
        stem = name.substr(0, name.size() - 4);
    else if (name.find('.') == std::string::npos)
        stem = name;
    if (!stem.empty()) {
        names.push_back(folder + "lib" + stem + ".so");
        names.push_back(folder + stem + ".so");
    }
    return names;
}

struct Attempt {
    bool sawFile = false;
    HMODULE Try(const std::string& path) {
        HMODULE module = detail::CurrentEnv().Dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
        struct stat status;
        if (!module && path.find('/') != std::string::npos &&
            detail::CurrentEnv().Stat(path.c_str(), &status) == 0)
            sawFile = true;
        return module;
    }
};

}  // namespace

HMODULE LoadLibraryW(const char16_t* name) {
    if (!name) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    std::string path;
    if (!detail::ToSystemPath(name, path)) return nullptr;  // the reason is set
    const size_t slash = path.rfind('/');
    Attempt attempt;
    if (slash != std::string::npos) {
        for (const std::string& candidate :
             Candidates(path.substr(0, slash + 1), path.substr(slash + 1)))
            if (HMODULE module = attempt.Try(candidate)) return module;
    } else if (!path.empty()) {
        std::string programFolder = detail::ProgramPath();
        programFolder.erase(programFolder.rfind('/') + 1);
        for (const std::string& candidate : Candidates("", path)) {
            if (!programFolder.empty())
                if (HMODULE module = attempt.Try(programFolder + candidate)) return module;
            if (HMODULE module = attempt.Try(candidate)) return module;
        }
    }
    SetLastError(attempt.sawFile ? ERROR_BAD_EXE_FORMAT : ERROR_MOD_NOT_FOUND);
    return nullptr;
}

FARPROC GetProcAddress(HMODULE module, const char* name) {
    if (!module) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    // A value below 65536 is a Windows ordinal, which shared objects lack.
    if (reinterpret_cast<uintptr_t>(name) < 0x10000) {
        SetLastError(name ? ERROR_PROC_NOT_FOUND : ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    void* address = detail::CurrentEnv().Dlsym(module, name);
    if (!address) {
        SetLastError(ERROR_PROC_NOT_FOUND);
        return nullptr;
    }
    return reinterpret_cast<FARPROC>(address);
}

BOOL FreeLibrary(HMODULE module) {
    if (!module || detail::CurrentEnv().Dlclose(module) != 0) {
        SetLastError(ERROR_INVALID_HANDLE);
        return 0;
    }
    return 1;
}

DWORD GetModuleFileNameW(HMODULE module, char16_t* buffer, DWORD size) {
    std::string path;
    if (module) {
        struct link_map* map = nullptr;
        if (::dlinfo(module, RTLD_DI_LINKMAP, &map) != 0 || !map) {
            SetLastError(ERROR_MOD_NOT_FOUND);
            return 0;
        }
        path = map->l_name ? map->l_name : "";
    }
    if (path.empty()) path = detail::ProgramPath();  // the program itself
    if (path.empty()) {
        SetLastErrorFromErrno(errno);
        return 0;
    }
    const std::u16string text = detail::FromSystemPath(path);
    if (!buffer || size == 0) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    if (text.size() < size) {
        text.copy(buffer, text.size());
        buffer[text.size()] = u'\0';
        return static_cast<DWORD>(text.size());
    }
    text.copy(buffer, size - 1);
    buffer[size - 1] = u'\0';
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return size;
}

}  // namespace basicutils
