#include <basicutils/files/MFileSpec.h>
#include <basicutils/files/internal/Reports.h>
#include <basicutils/platform/CFile.h>
#include <basicutils/platform/FileApi.h>
#include <basicutils/platform/RuntimeFiles.h>
#include <basicutils/text/WideString.h>

namespace basicutils {

namespace {

// The index of the last `\` or `/`, or -1.
int LastSeparator(const char16_t* path) {
    int last = -1;
    for (int i = 0; path[i] != 0; ++i)
        if (path[i] == u'\\' || path[i] == u'/') last = i;
    return last;
}

bool NameExists(const char16_t* path) {
    CFileStatus status;
    return CFile::GetStatus(path, status) == 1;
}

}  // namespace

MFileSpec::~MFileSpec() = default;

MFileSpecWin::MFileSpecWin(const MString& path) : mFilePath(path) {}
MFileSpecWin::MFileSpecWin(const char16_t* path) : mFilePath(path) {}
MFileSpecWin::MFileSpecWin(const MFileSpecWin& other)
    : MFileSpec(other), mFilePath(other.mFilePath) {}
MFileSpecWin::~MFileSpecWin() = default;

MFileSpecWin& MFileSpecWin::operator=(const MFileSpecWin& other) {
    mFilePath = other.mFilePath;
    return *this;
}

void MFileSpecWin::GetFilePathName(char16_t* destination) {
    wcscpy(destination, GetFilePath());
}

bool MFileSpecWin::FileExist() {
    return NameExists(GetFilePath());
}

bool MFileSpecWin::IsNull() {
    return GetFilePath()[0] == 0;
}

void MFileSpecWin::SetFilePathName(const char16_t* path) {
    SetFilePath(path);
}

MString& MFileSpecWin::GetFilePath() {
    return mFilePath;
}

void MFileSpecWin::SetFilePath(const char16_t* path) {
    mFilePath = path;
}

void MFileSpecWin::SetFilePath(MString& path) {
    mFilePath = path;
}

bool MFileSpecWin::IsOnReadOnlyDrive() {
    return IsFileOnReadOnlyDrive(GetFilePath());
}

bool MFileSpecWin::operator==(const MFileSpecWin& other) const {
    // Through the virtual getter on both sides, so that a subclass's path counts.
    auto& self = const_cast<MFileSpecWin&>(*this);
    auto& that = const_cast<MFileSpecWin&>(other);
    return wcscmp(self.GetFilePath(), that.GetFilePath()) == 0;
}

bool MFileSpecWin::IsDriveReadOnly(const char16_t* root, bool freeSpaceOnly) {
    if (!freeSpaceOnly) {
        const UINT type = GetDriveTypeW(root);
        if (type == DRIVE_NO_ROOT_DIR || type == DRIVE_CDROM) return true;
    }
    ULARGE_INTEGER available{};
    if (!GetDiskFreeSpaceExW(root, &available, nullptr, nullptr)) return true;
    return available.LowPart == 0 && available.HighPart == 0;
}

bool MFileSpecWin::IsFileOnReadOnlyDrive(const char16_t* path) {
    char16_t drive[_MAX_DRIVE];
    _wsplitpath(path, drive, nullptr, nullptr, nullptr);
    if (drive[0] != 0) return IsDriveReadOnly(drive, false);
    MString folder(path);
    const int separator = LastSeparator(folder);
    // A separator at the head is the root and stays; no separator at all is
    // the current folder, which the empty name asks for.
    folder.Cut(0, separator == 0 ? 1 : (separator < 0 ? 0 : separator));
    return IsDriveReadOnly(folder, true);
}

bool MFileSpecWin::CreateUniqueFileSpec(MFileSpecWin& source, const char16_t* extension,
                                        MFileSpecWin* result) {
    MString& path = source.GetFilePath();
    if (IsFileOnReadOnlyDrive(path)) {
        detail::ReportError(
            u"%s is on a read-only drive. This is not supported. please copy it to a writable "
            u"disk.",
            path);
        return false;
    }
    // Drive, folder and name, joined: the path without its extension.
    MString stem(path);
    const int nameStart = LastSeparator(stem) + 1;
    const char16_t* dot = wcsrchr(static_cast<const char16_t*>(stem) + nameStart, u'.');
    if (dot) stem.Cut(0, static_cast<int>(dot - static_cast<const char16_t*>(stem)));
    if (!extension) extension = u"";

    MString candidate = stem + MString(extension);
    for (int counter = 1; NameExists(candidate); ++counter)
        candidate.Format(u"%s_%d%s", static_cast<const char16_t*>(stem), counter, extension);
    result->SetFilePath(candidate);
    return true;
}

}  // namespace basicutils
