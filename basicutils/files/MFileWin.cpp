#include <basicutils/files/MFileWin.h>

namespace basicutils {

namespace {

UINT ModeFlags(file_open_t mode) {
    switch (mode) {
        case kOpenReadText:
        case kOpenReadBinary:
            return CFile::modeRead;
        case kOpenWriteBinary:
            return CFile::modeWrite;
        case kOpenUpdateBinary:
            return CFile::modeReadWrite;
        default:
            return CFile::modeReadWrite | CFile::shareDenyNone;
    }
}

UINT SeekFrom(file_seek_t origin) {
    if (origin == kSeekBegin) return CFile::begin;
    if (origin == kSeekEnd) return CFile::end;
    return CFile::current;
}

}  // namespace

MFileWin::MFileWin() = default;
MFileWin::~MFileWin() = default;

int MFileWin::FCreate() {
    if (!CFile::Open(GetFileSpec().GetFilePath(), CFile::modeCreate)) return 0;
    try {
        CFile::Close();
    } catch (CFileException&) {
        return 0;
    }
    return 1;
}

int MFileWin::FDelete() {
    return 0;
}

int MFileWin::FOpen(file_open_t mode) {
    if (mode < 0) return 0;
    return CFile::Open(GetFileSpec().GetFilePath(), ModeFlags(mode)) ? 1 : 0;
}

int MFileWin::FRead(void* buffer, int count) {
    if (count < 0) return -1;
    try {
        return static_cast<int>(CFile::Read(buffer, static_cast<UINT>(count)));
    } catch (CFileException&) {
        return -1;
    }
}

int MFileWin::FWrite(void* buffer, int count) {
    if (count < 0) return 0;
    try {
        CFile::Write(buffer, static_cast<UINT>(count));
    } catch (CFileException&) {
        return 0;
    }
    return count;
}

int MFileWin::FSeek(int32_t offset, file_seek_t origin) {
    try {
        return CFile::Seek(offset, SeekFrom(origin));
    } catch (CFileException&) {
        return -1;
    }
}

int64_t MFileWin::FSeek(int64_t offset, file_seek_t origin) {
    return FSeek(static_cast<int32_t>(static_cast<uint32_t>(offset)), origin);
}

int MFileWin::FTell(int& position) {
    try {
        position = static_cast<int>(CFile::GetPosition());
    } catch (CFileException&) {
        return 0;
    }
    return 1;
}

int MFileWin::FTell(int64_t& position) {
    int low = 0;
    if (!FTell(low)) return 0;
    position = low;
    return 1;
}

void MFileWin::FClose() {
    try {
        CFile::Close();
    } catch (CFileException&) {
        // Closed all the same: the handle is gone.
    }
}

int64_t MFileWin::GetSize() {
    try {
        return static_cast<int64_t>(CFile::GetLength());
    } catch (CFileException&) {
        return -1;
    }
}

CDateTime MFileWin::StatusTime(Stamp which) {
    CFileStatus status;
    if (!CFile::GetStatus(status)) return CDateTime(0.0);
    const CTime& time = which == Stamp::kCreate   ? status.m_ctime
                        : which == Stamp::kModify ? status.m_mtime
                                                  : status.m_atime;
    CDateTime date;
    date.SetDate(time.GetYear(), time.GetMonth(), time.GetDay());
    date.SetTime(time.GetHour(), time.GetMinute(), time.GetSecond());
    return date;
}

CDateTime MFileWin::GetCreateTime() {
    return StatusTime(Stamp::kCreate);
}
CDateTime MFileWin::GetModifyTime() {
    return StatusTime(Stamp::kModify);
}
CDateTime MFileWin::GetAccessTime() {
    return StatusTime(Stamp::kAccess);
}

}  // namespace basicutils
