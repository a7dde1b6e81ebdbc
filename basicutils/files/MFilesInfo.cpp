// MFiles: the writers of the info file, and the switch of a plain file to a
// segmented one.
#include <basicutils/files/MFiles.h>
#include <basicutils/files/internal/InfoFile.h>
#include <basicutils/platform/internal/DurableNames.h>

#include <string>

namespace basicutils {

namespace detail {

namespace {

// The working file with the two things an info file needs beyond its
// interface: its text goes out in one write, and it can be synced.
class InfoWriter : public MFileUniv {
  public:
    int Sync() { return SyncDescriptor(mDescriptor); }
};

// The system code page's form of `text`, as FPutts writes it.
std::string Narrow(const MString& text) {
    const int room = 3 * text.GetLength();
    std::string bytes(static_cast<size_t>(room) + 1, '\0');
    bytes.resize(static_cast<size_t>(text.ExportASCII(bytes.data(), room, kCharacterSetWindows)));
    return bytes;
}

}  // namespace

int WriteInfoText(const char16_t* path, file_open_t mode, const MString& text) {
    InfoWriter file;
    const int opened = file.FOpen(path, mode);
    if (opened < 0) return opened;
    std::string bytes = Narrow(text);
    const int size = static_cast<int>(bytes.size());
    int answer = file.FWrite(bytes.data(), size) == size ? 0 : -1;
    if (answer == 0 && file.Sync() != 0) answer = -1;
    file.FClose();
    return answer;
}

int ReplaceInfoFile(const char16_t* path, const MString& text) {
    MString beside(path);
    beside += kSwitchExtension;
    if (WriteInfoText(beside, kOpenWriteText, text) == 0 && ReplaceName(beside, path) == 0)
        return 0;
    _wremove(beside);
    return -1;
}

}  // namespace detail

namespace {

// Only an info file is ever replaced: something else at `spec` is refused.
bool MayWriteInfo(MFileSpecWin& spec) {
    MFileUniv probe;
    struct _stati64 status {};
    return probe.FStat(spec, &status) < 0 || IsVelmorantMFiles(spec) == 1;
}

MString Header() {
    return detail::InfoLine(u"%s\n", detail::kInfoHeader);
}

}  // namespace

int MFiles::NewInfo(MFileSpecWin& spec) {
    if (!MayWriteInfo(spec)) return -1;
    const int answer = detail::WriteInfoText(spec.GetFilePath(), kOpenWriteText, Header());
    if (answer < 0) return answer;
    mInfoFileSpec = spec;
    return 0;
}

int MFiles::AddToInfoFile(MFileSpecWin& spec) {
    if (mInfoFileSpec.GetFilePath()[0] == 0) return -1;
    if (!mInfoFileSpec.FileExist()) {
        const int made = NewInfo(mInfoFileSpec);
        if (made < 0) return made;
    }
    return detail::WriteInfoText(mInfoFileSpec.GetFilePath(), kOpenAppendText,
                                 detail::InfoLine(u"%s\n", spec.GetFilePath()));
}

int MFiles::AddVideoFile(MFileSpecWin& spec) {
    if (mInfoFileSpec.GetFilePath()[0] == 0) {
        MString path = spec.GetFilePath();
        path += detail::kSegmentExtension;
        mInfoFileSpec.SetFilePathName(path);
    }
    const MString& info = mInfoFileSpec.GetFilePath();
    if (mVideoFileCount == 0) {
        const int answer = detail::WriteInfoText(info, kOpenWriteText,
                                                 detail::InfoLine(u"%s \n", detail::kInfoHeader));
        if (answer < 0) return answer;
    }
    const int answer =
        detail::WriteInfoText(info, kOpenAppendText, detail::InfoLine(u"%s\n", spec.GetFilePath()));
    if (answer < 0) return answer;
    ++mVideoFileCount;
    return 0;
}

void MFiles::ChangeAllFilesDirectory(const char16_t* directory) {
    MFileSpecWin info = mInfoFileSpec;
    MString text = Header();
    for (int i = 1; i <= GetFileNum(); ++i) {
        MString moved;
        moved.Format(u"%s\\%s", directory, static_cast<const char16_t*>(SpecAt(i)->GetFilePath()));
        text += detail::InfoLine(u"%s\n", moved);
    }
    FClose();
    if (info.GetFilePath()[0] == 0 || !MayWriteInfo(info)) return;
    detail::ReplaceInfoFile(info.GetFilePath(), text);
}

// The plain file keeps its bytes as P.cfx.0 through a second link made
// first; the info file is written beside P, synced and renamed over it. So P
// names the plain file or the whole info file at every moment.
int MFiles::DoSwitchToInfoFile() {
    MFileSpecWin* last = SpecAt(GetFileNum());
    if (!last) return -1;
    const MString plain = last->GetFilePath();
    MString first;
    first.Format(u"%s%s.0", static_cast<const char16_t*>(plain), detail::kSegmentExtension);
    const MFileSpecWin before = mInfoFileSpec;
    last->SetFilePathName(first);
    mInfoFileSpec.SetFilePathName(plain);
    MString text = Header();
    for (int i = 1; i <= GetFileNum(); ++i)
        text += detail::InfoLine(u"%s\n", SpecAt(i)->GetFilePath());

    _wremove(first);
    bool switched;
    if (detail::LinkName(plain, first) == 0) {
        switched = detail::ReplaceInfoFile(plain, text) == 0;
        if (!switched) _wremove(first);
    } else {
        switched = SwitchWithoutLink(plain, first, text) == 0;
    }
    if (switched) return 0;
    last->SetFilePathName(plain);
    mInfoFileSpec = before;
    return -1;
}

// Where the file system gives no second name (FAT, exFAT), the info file is
// written whole and synced beside P before P moves to P.cfx.0 and the info
// file takes its name. A process killed between the two renames leaves
// nothing at P: FOpen finishes the switch.
int MFiles::SwitchWithoutLink(const MString& plain, const MString& first, const MString& text) {
    MString beside = plain;
    beside += detail::kSwitchExtension;
    int answer = detail::WriteInfoText(beside, kOpenWriteText, text) == 0 ? 0 : -1;
    if (answer == 0 && _wrename(plain, first) != 0) answer = -1;
    if (answer == 0 && detail::ReplaceName(beside, plain) != 0) {
        _wrename(first, plain);
        answer = -1;
    }
    if (answer != 0) _wremove(beside);
    return answer;
}

bool MFiles::FinishSwitch(const MString& path) {
    MString beside = path;
    beside += detail::kSwitchExtension;
    MFileUniv probe;
    struct _stati64 status {};
    if (probe.FStat(beside, &status) != 0) return false;
    MFiles switched;
    if (switched.FOpen(beside, kOpenReadBinary) != 0 || switched.GetInfoFilePath()[0] == 0)
        return false;
    switched.FClose();
    return detail::ReplaceName(beside, path) == 0;
}

}  // namespace basicutils
