// MFiles: construction and copies, the reader of the info file, opening and
// closing, deleting, status and sizes, and the header test.
#include <basicutils/files/MFiles.h>
#include <basicutils/files/internal/InfoFile.h>

#include <string>

namespace basicutils {

namespace {

constexpr int64_t kNoLimit = 0x3FFFFFFFFFFFFFFF;

void Append(LList& list, const MFileSpecWin& spec) {
    auto* item = new MFileSpecWin(spec);
    list.InsertItemsAt(1, kLastIndex, &item, sizeof item);
}

MFileSpecWin* ItemAt(const LList& list, int index) {
    MFileSpecWin* item = nullptr;
    if (index < 1 || index > static_cast<int>(list.GetCount())) return nullptr;
    list.FetchItemAt(index, &item);
    return item;
}

void FreeItems(LList& list) {
    for (int i = static_cast<int>(list.GetCount()); i >= 1; --i) delete ItemAt(list, i);
    list.RemoveItemsAt(list.GetCount(), 1);
}

// The segments an info file lists, into `list`: 0, or -1 past 2,048 paths.
int ReadSegmentList(MFileUniv& file, LList& list) {
    std::u16string line(2 * detail::kInfoLineLimit, u'\0');
    file.FSeek(0, kSeekBegin);
    while (file.FGetts(line.data(), detail::kInfoLineLimit) == 0) {
        if (line[0] == u'#') continue;
        if (list.GetCount() >= detail::kMaxSegments) return -1;
        const size_t length = std::char_traits<char16_t>::length(line.data());
        if (length > 0 && line[length - 1] == u'\n') line[length - 1] = 0;
        MFileSpecWin spec;
        spec.SetFilePathName(line.data());
        Append(list, spec);
    }
    return 0;
}

}  // namespace

MFiles::MFiles()
    : mCurrentFileNum(-1),
      mOpenMode(kOpenReadBinary),
      mVideoFileCount(0),
      mMaxFileSize(kNoLimit),
      mInfoFilesOnly(false),
      mSegmentEnd(0),
      mSegmentSize(0) {}

MFiles::MFiles(const MFiles& other) : MFiles() {
    MFile::operator=(other);
    CopySettings(other);
}

MFiles& MFiles::operator=(const MFiles& other) {
    if (this == &other) return *this;
    FClose();
    MFile::operator=(other);
    CopySettings(other);
    return *this;
}

void MFiles::CopySettings(const MFiles& other) {
    mOpenMode = other.mOpenMode;
    mInfoFileSpec = other.mInfoFileSpec;
    mVideoFileCount = other.mVideoFileCount;
    mMaxFileSize = other.mMaxFileSize;
    mInfoFilesOnly = other.mInfoFilesOnly;
    mInfoFilesNameList.DeleteAll();
    mInfoFilesNameList.AddList(const_cast<MStringList*>(&other.mInfoFilesNameList));
}

MFiles::~MFiles() {
    MFiles::FClose();
    DeleteAll();
}

MFileSpecWin* MFiles::SpecAt(int index) const {
    return ItemAt(mFileList, index);
}

void MFiles::AppendSpec(const MFileSpecWin& spec) {
    Append(mFileList, spec);
}

void MFiles::DeleteAll() {
    FreeItems(mFileList);
}

void MFiles::CloseAfterFailure() {
    mCurrentFile.FClose();
    mCurrentFileNum = -1;
    DeleteAll();
}

int MFiles::FCreate() {
    return 0;
}

int MFiles::FOpen(MFileSpecWin& spec, file_open_t mode) {
    SetFileSpec(spec);
    return FOpen(mode);
}

int MFiles::FOpen(const char16_t* path, file_open_t mode) {
    GetFileSpec().SetFilePathName(path);
    return FOpen(mode);
}

int MFiles::FOpen(file_open_t mode) {
    mSegmentEnd = mSegmentSize = 0;
    MFileSpecWin& spec = GetFileSpec();
    LList list;
    MFileUniv file;
    struct _stati64 status {};
    if (file.FStat(spec, &status) == -1 && !FinishSwitch(spec.GetFilePath())) {
        Append(list, spec);  // nothing there: a new plain file
    } else {
        if (file.FOpen(spec, kOpenReadText) == -1) return -1;
        char16_t first[2 * detail::kInfoHeaderTest] = {};
        if (file.FGetts(first, detail::kInfoHeaderTest) != 0 || !detail::IsInfoHeader(first)) {
            Append(list, spec);
        } else {
            mInfoFileSpec = spec;
            if (ReadSegmentList(file, list) != 0) {
                file.FClose();
                FreeItems(list);
                CloseAfterFailure();
                return -1;
            }
        }
        file.FClose();
    }
    const int answer = FOpen(list, mode);
    FreeItems(list);
    return answer;
}

int MFiles::FOpen(LList& list, file_open_t mode) {
    for (int i = 1; i <= static_cast<int>(list.GetCount()); ++i) AppendSpec(*ItemAt(list, i));
    if (GetFileNum() == 0) return -1;
    mCurrentFile.FClose();
    if (mCurrentFile.FOpen(*SpecAt(1), mode) != 0) {
        CloseAfterFailure();
        return -1;
    }
    mCurrentFileNum = 1;
    mOpenMode = mode;
    if (mode == kOpenAppendBinary || mode == kOpenAppendBinaryAlt || mode == kOpenAppendText) {
        if (FSeek64(0, kSeekEnd) == -1) {
            CloseAfterFailure();
            return -1;
        }
    }
    return 0;
}

void MFiles::FClose() {
    if (mCurrentFileNum < 0) return;
    mCurrentFile.FClose();
    mCurrentFileNum = -1;
    mSegmentEnd = mSegmentSize = 0;
    DeleteAll();
}

int MFiles::FDelete() {
    mCurrentFile.FClose();
    mCurrentFileNum = -1;
    for (int i = 1; i <= GetFileNum(); ++i) _wremove(SpecAt(i)->GetFilePath());
    DeleteAll();
    if (mInfoFileSpec.GetFilePath()[0] != 0) _wremove(mInfoFileSpec.GetFilePath());
    return 0;
}

int MFiles::FStat(struct _stati64* status) {
    int answer = -1;
    int64_t total = 0;
    for (int i = 1; i <= GetFileNum(); ++i) {
        MFileUniv segment;
        answer = segment.FStat(*SpecAt(i), status);
        if (answer < 0) return answer;
        total += status->st_size;
    }
    if (answer >= 0) status->st_size = total;
    return answer;
}

int MFiles::FStat(MFileSpecWin& spec, struct _stati64* status) {
    return FStat(spec.GetFilePath(), status);
}

int MFiles::FStat(const char16_t* path, struct _stati64* status) {
    if (mCurrentFileNum >= 0) return -1;
    const int opened = FOpen(path, kOpenReadBinary);
    if (opened < 0) return opened;
    const int answer = FStat(status);
    FClose();
    return answer;
}

int64_t MFiles::FGetFileSize() {
    int64_t total = 0;
    for (int i = 1; i <= GetFileNum(); ++i) {
        MFileUniv segment;
        struct _stati64 status {};
        const int answer = segment.FStat(*SpecAt(i), &status);
        if (answer < 0) return answer;
        total += status.st_size;
    }
    return total;
}

int64_t MFiles::GetSize() {
    int64_t total = 0;
    for (int i = 1; i <= GetFileNum(); ++i) {
        MFileUniv segment;
        if (segment.FOpen(*SpecAt(i), kOpenReadBinary) != 0) return -1;
        total += segment.GetSize();
        segment.FClose();
    }
    return total;
}

MString MFiles::GetFilePath() {
    return mCurrentFile.GetFilePath();
}

int32_t MFiles::SetInfoFilesOnly() {
    mInfoFilesOnly = true;
    return 0;
}

int32_t MFiles::UnSetInfoFilesOnly() {
    mInfoFilesOnly = false;
    return 0;
}

int32_t MFiles::SetInfoFilesNameList(MStringList* list) {
    if (list) mInfoFilesNameList.AddList(list);
    return 0;
}

bool MFiles::FileExist(const char16_t* path) {
    MFiles files;
    struct _stati64 status {};
    return files.FStat(path, &status) > -1;
}

bool MFiles::IsVelmorantMFiles(MString& path) {
    MFileSpecWin spec(path);
    return basicutils::IsVelmorantMFiles(spec) == 1;
}

int IsVelmorantMFiles(MFileSpecWin& spec) {
    MFileUniv file;
    struct _stati64 status {};
    if (file.FStat(spec, &status) != 0) return 0;
    if (file.FOpen(spec, kOpenReadBinary) != 0) return 0;
    char16_t first[2 * detail::kInfoHeaderTest] = {};
    const bool header =
        file.FGetts(first, detail::kInfoHeaderTest) == 0 && detail::IsInfoHeader(first);
    file.FClose();
    return header ? 1 : 0;
}
}  // namespace basicutils
