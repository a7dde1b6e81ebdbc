// Folder listings: FindFirstFileW, FindNextFileW, FindClose.
#include <basicutils/platform/FileApi.h>
#include <basicutils/platform/internal/Paths.h>
#include <basicutils/platform/posix/FileObject.h>

#include <cstring>
#include <mutex>
#include <string>

namespace basicutils {
namespace detail {

bool MatchesPattern(std::u16string_view pattern, std::u16string_view name) {
    // Classic wildcard matching; `star` remembers the last `*` to widen.
    size_t p = 0, n = 0, star = std::u16string_view::npos, resume = 0;
    while (n < name.size()) {
        if (p < pattern.size() && (pattern[p] == u'?' || pattern[p] == name[n])) {
            ++p;
            ++n;
        } else if (p < pattern.size() && pattern[p] == u'*') {
            star = p++;
            resume = n;
        } else if (star != std::u16string_view::npos) {
            p = star + 1;
            n = ++resume;
        } else {
            break;
        }
    }
    while (p < pattern.size() && pattern[p] == u'*') ++p;
    if (n == name.size() && p == pattern.size()) return true;
    // "x.*" also matches "x" without any dot, so "*.*" matches every name.
    const size_t cut = pattern.size() - 2;
    return pattern.size() >= 2 && pattern.substr(cut) == u".*" &&
           name.find(u'.') == std::u16string_view::npos &&
           MatchesPattern(pattern.substr(0, cut), name);
}

namespace {

// The data of the entry `name` of a folder, links not followed. False with
// errno set when it cannot be asked (it vanished, most often).
bool FillEntry(const std::string& folder, const std::string& name, WIN32_FIND_DATAW* data) {
    std::string path = folder;
    if (!path.empty() && path.back() != '/') path += '/';
    path += name;
    struct stat status;
    if (RetryOnEintr([&] { return CurrentEnv().Lstat(path.c_str(), &status); }) != 0) return false;
    *data = {};
    data->dwFileAttributes = AttributesOf(status, name);
    data->ftCreationTime = ToFileTime(status.st_ctim);
    data->ftLastAccessTime = ToFileTime(status.st_atim);
    data->ftLastWriteTime = ToFileTime(status.st_mtim);
    if (!S_ISDIR(status.st_mode)) {
        const auto size = static_cast<uint64_t>(status.st_size);
        data->nFileSizeHigh = static_cast<DWORD>(size >> 32);
        data->nFileSizeLow = static_cast<DWORD>(size);
    }
    const std::u16string wide = FromSystemName(name);
    wide.copy(data->cFileName, wide.size() < MAX_PATH - 1 ? wide.size() : MAX_PATH - 1);
    return true;
}

// A listing in progress. Without a folder stream it has nothing more to
// give: the listing of a name without wildcards holds one entry.
class Listing final : public KernelObject {
  public:
    Listing(std::string folder, std::u16string pattern, DIR* dir)
        : mFolder(std::move(folder)), mPattern(std::move(pattern)), mDir(dir), mNext(dir ? 0 : 2) {}

    bool TryAcquire() override { return true; }

    // The next matching entry into `data`; false with the last error set
    // (ERROR_NO_MORE_FILES at the end).
    bool Next(WIN32_FIND_DATAW* data) {
        std::lock_guard<std::mutex> g(mLock);
        while (mNext < 2) {
            const char* name = mNext++ == 0 ? "." : "..";
            if (MatchesPattern(mPattern, FromSystemName(name)) && FillEntry(mFolder, name, data))
                return true;
        }
        while (mDir) {
            struct dirent* entry;
            do {
                errno = 0;
                entry = CurrentEnv().Readdir(mDir);
            } while (!entry && errno == EINTR);
            if (!entry) {
                if (errno != 0) return FailFromErrno(false);
                break;
            }
            const char* name = entry->d_name;
            if (!std::strcmp(name, ".") || !std::strcmp(name, "..")) continue;
            if (MatchesPattern(mPattern, FromSystemName(name)) && FillEntry(mFolder, name, data))
                return true;
        }
        SetLastError(ERROR_NO_MORE_FILES);
        return false;
    }

  protected:
    ~Listing() override {
        if (mDir) CurrentEnv().Closedir(mDir);
    }

  private:
    std::mutex mLock;
    const std::string mFolder;
    const std::u16string mPattern;
    DIR* const mDir;
    int mNext;  // 0: "." comes next, 1: "..", 2: the system's entries
};

Listing* AsListing(KernelObject* object) {
    return dynamic_cast<Listing*>(object);
}

}  // namespace
}  // namespace detail

HANDLE FindFirstFileW(const char16_t* fileName, WIN32_FIND_DATAW* findFileData) {
    if (!fileName || !findFileData) return detail::FailWith(EINVAL, INVALID_HANDLE_VALUE);
    const std::u16string whole(fileName);
    const size_t split = whole.find_last_of(u"\\/");
    const std::u16string folderPart =
        split == std::u16string::npos ? u"." : whole.substr(0, split + 1);
    std::u16string pattern = split == std::u16string::npos ? whole : whole.substr(split + 1);
    detail::SystemPath folder(folderPart.c_str());
    if (!folder) return INVALID_HANDLE_VALUE;

    if (pattern.find_first_of(u"*?") == std::u16string::npos) {
        detail::SystemPath name(pattern.c_str());
        if (!name) return INVALID_HANDLE_VALUE;
        if (pattern.empty()) {  // "folder\" names no entry
            errno = ENOENT;
            return detail::FailForPath((folder.str() + "/").c_str(), INVALID_HANDLE_VALUE);
        }
        if (!detail::FillEntry(folder.str(), name.str(), findFileData)) {
            const std::string path = folder.str() + "/" + name.str();
            return detail::FailForPath(path.c_str(), INVALID_HANDLE_VALUE);
        }
        return (new detail::Listing(folder.str(), std::move(pattern), nullptr))->Publish();
    }
    DIR* dir = detail::CurrentEnv().Opendir(folder.c_str());
    if (!dir) {
        if (errno == ENOENT || errno == ENOTDIR) {
            SetLastError(ERROR_PATH_NOT_FOUND);
            return INVALID_HANDLE_VALUE;
        }
        return detail::FailFromErrno(INVALID_HANDLE_VALUE);
    }
    auto* listing = new detail::Listing(folder.str(), std::move(pattern), dir);
    if (listing->Next(findFileData)) return listing->Publish();
    if (GetLastError() == ERROR_NO_MORE_FILES) SetLastError(ERROR_FILE_NOT_FOUND);
    listing->Release();
    return INVALID_HANDLE_VALUE;
}

BOOL FindNextFileW(HANDLE findFile, WIN32_FIND_DATAW* findFileData) {
    detail::ObjectRef ref(detail::KernelObject::Acquire(findFile));
    detail::Listing* listing = detail::AsListing(ref.get());
    if (!listing || !findFileData) {
        SetLastError(ERROR_INVALID_HANDLE);
        return 0;
    }
    return listing->Next(findFileData) ? 1 : 0;
}

BOOL FindClose(HANDLE findFile) {
    {
        detail::ObjectRef ref(detail::KernelObject::Acquire(findFile));
        if (!detail::AsListing(ref.get())) {
            SetLastError(ERROR_INVALID_HANDLE);
            return 0;
        }
    }
    return CloseHandle(findFile);
}

}  // namespace basicutils
