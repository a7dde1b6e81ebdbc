#include <basicutils/files/MDirectory.h>
#include <basicutils/files/internal/Reports.h>
#include <basicutils/platform/FileApi.h>
#include <basicutils/platform/RuntimeFiles.h>
#include <basicutils/text/WideString.h>

namespace basicutils {

namespace {

bool IsDotEntry(const char16_t* name) {
    return wcscmp(name, u".") == 0 || wcscmp(name, u"..") == 0;
}

enum class Listing { kFailed, kEmpty, kEntry };

// The first entry of `pattern` other than "." and "..". kFailed when the
// listing cannot be made; kEmpty when nothing else is in it, or it cannot be
// read on.
Listing FirstRealEntry(const MString& pattern, WIN32_FIND_DATAW& entry) {
    HANDLE listing = FindFirstFileW(pattern, &entry);
    if (listing == INVALID_HANDLE_VALUE) return Listing::kFailed;
    bool found = !IsDotEntry(entry.cFileName);
    while (!found && FindNextFileW(listing, &entry)) found = !IsDotEntry(entry.cFileName);
    FindClose(listing);
    return found ? Listing::kEntry : Listing::kEmpty;
}

}  // namespace

MDirectory::MDirectory(const char16_t* path) : mPath(path) {}
MDirectory::~MDirectory() = default;

void MDirectory::SetPath(const char16_t* path) {
    mPath = path;
}
void MDirectory::SetPath(MString& path) {
    mPath = path;
}

bool MDirectory::ExistsOnDisk() {
    return ExistsOnDisk(mPath);
}
bool MDirectory::ExistsOnDisk(const char16_t* path) {
    return _wchdir(path) == 0;
}

bool MDirectory::CreateNew() {
    return false;
}
void MDirectory::GetFileList(LList*) {}
void MDirectory::GetDirectoryList(LList*) {}

int32_t MDirectory::GetDiskFreeSpaceW() {
    char16_t drive[_MAX_DRIVE];
    _wsplitpath(mPath, drive, nullptr, nullptr, nullptr);
    char16_t current[2048] = {};
    basicutils::GetCurrentDirectoryW(2048, current);
    MString root;
    const bool currentDrive = drive[0] == current[0];
    if (!currentDrive) root = MString(drive) + MString(u"\\");
    DWORD sectorsPerCluster = 0, bytesPerSector = 0, freeClusters = 0, totalClusters = 0;
    if (!basicutils::GetDiskFreeSpaceW(currentDrive ? nullptr : static_cast<const char16_t*>(root),
                                       &sectorsPerCluster, &bytesPerSector, &freeClusters,
                                       &totalClusters))
        return -1;
    if (freeClusters == 0) return 0;
    const double bytes = static_cast<double>(sectorsPerCluster) *
                         static_cast<double>(bytesPerSector) * static_cast<double>(freeClusters);
    return static_cast<int32_t>(bytes * 0.0009765625);
}

MString DeleteTailCharacter(const char16_t* path, char16_t character) {
    if (!path) return MString();
    size_t end = wcslen(path);
    while (end > 0 && path[end - 1] == character) --end;
    return end == 0 ? MString() : MString(path, static_cast<int>(end));
}

MString DeleteTailDirectorySeparator(const char16_t* path) {
    return DeleteTailCharacter(path, u'\\');
}

MString AddDirectorySeparator(const char16_t* path, bool removeExisting, uint32_t count) {
    if (!path || path[0] == 0) return MString();
    MString result = removeExisting ? DeleteTailDirectorySeparator(path) : MString(path);
    for (uint32_t i = 0; i < count; ++i) result += u"\\";
    return result;
}

int DeleteDirectory(const char16_t* path) {
    if (!path || path[0] == 0) return -1;
    const MString dir = AddDirectorySeparator(path, true, 1);
    const MString pattern = dir + MString(u"*.*");
    WIN32_FIND_DATAW entry;
    for (;;) {
        const Listing found = FirstRealEntry(pattern, entry);
        if (found == Listing::kFailed) return 0;
        if (found == Listing::kEmpty) break;
        MString name = dir + MString(entry.cFileName);
        if (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) {
            name += u"\\";
            const int result = DeleteDirectory(name);
            if (result != 0) return result;
        } else if (!DeleteFileW(name)) {
            detail::ReportError(u"%s could not be deleted", name);
            return -1;
        }
    }
    MString folder(dir);
    folder.Cut(0, folder.GetLength() - 1);
    if (_wrmdir(folder) != 0) {
        detail::ReportError(u"Directory %s could not be deleted", folder);
        CMessageAction::Inform(nullptr, u"Check if it is open in an Explorer window");
        return -1;
    }
    return 0;
}

}  // namespace basicutils
