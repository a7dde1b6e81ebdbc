// CFile, its status record and its failure object, over file handles.
#include <basicutils/platform/CFile.h>
#include <basicutils/platform/LocalTime.h>
#include <basicutils/platform/internal/Paths.h>
#include <basicutils/platform/posix/FileObject.h>

#include <ctime>
#include <string>

namespace basicutils {

using detail::CurrentEnv;
using detail::RetryOnEintr;

int CTime::Field(int which) const {
    std::tm parts{};
    const platform::time64_t time = mTime;
    if (platform::_localtime64_s(&parts, &time) != 0) return 0;
    const int fields[] = {parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday,    parts.tm_hour,
                          parts.tm_min,         parts.tm_sec,     parts.tm_wday + 1};
    return fields[which];
}

int CTime::GetYear() const {
    return Field(0);
}
int CTime::GetMonth() const {
    return Field(1);
}
int CTime::GetDay() const {
    return Field(2);
}
int CTime::GetHour() const {
    return Field(3);
}
int CTime::GetMinute() const {
    return Field(4);
}
int CTime::GetSecond() const {
    return Field(5);
}
int CTime::GetDayOfWeek() const {
    return Field(6);
}

CFileException::CFileException(int cause, LONG osError, const char16_t* fileName)
    : m_cause(cause), m_lOsError(osError), m_strFileName(fileName) {}

int CFileException::OsErrorToException(LONG osError) {
    switch (static_cast<uint32_t>(osError)) {
        case ERROR_SUCCESS:
            return none;
        case ERROR_FILE_NOT_FOUND:
        case ERROR_INVALID_HANDLE:
        case ERROR_NO_MORE_FILES:
            return fileNotFound;
        case ERROR_PATH_NOT_FOUND:
        case ERROR_NOT_SAME_DEVICE:
        case ERROR_BUFFER_OVERFLOW:
        case ERROR_INVALID_NAME:
        case ERROR_FILENAME_EXCED_RANGE:
        case ERROR_DIRECTORY:
        case ERROR_CANT_RESOLVE_FILENAME:
        case ERROR_NO_UNICODE_TRANSLATION:
            return badPath;
        case ERROR_TOO_MANY_OPEN_FILES:
            return tooManyOpenFiles;
        case ERROR_ACCESS_DENIED:
        case ERROR_WRITE_PROTECT:
        case ERROR_WRITE_FAULT:
        case ERROR_FILE_EXISTS:
        case ERROR_ALREADY_EXISTS:
        case ERROR_BUSY:
            return accessDenied;
        case ERROR_BAD_EXE_FORMAT:
            return invalidFile;
        case ERROR_DIR_NOT_EMPTY:
            return removeCurrentDir;
        case ERROR_SEEK:
        case ERROR_READ_FAULT:
        case ERROR_NEGATIVE_SEEK:
            return badSeek;
        case ERROR_NOT_READY:
        case ERROR_GEN_FAILURE:
        case ERROR_IO_DEVICE:
        case ERROR_OPERATION_ABORTED:
        case ERROR_IO_INCOMPLETE:
        case ERROR_IO_PENDING:
            return hardIO;
        case ERROR_SHARING_VIOLATION:
            return sharingViolation;
        case ERROR_LOCK_VIOLATION:
            return lockViolation;
        case ERROR_HANDLE_DISK_FULL:
        case ERROR_DISK_FULL:
            return diskFull;
        case ERROR_HANDLE_EOF:
            return endOfFile;
        default:
            return genericException;
    }
}

void CFileException::ThrowOsError(LONG osError, const char16_t* fileName) {
    throw CFileException(OsErrorToException(osError), osError, fileName);
}

const char* CFileException::what() const noexcept {
    static constexpr const char* kCauses[] = {"no error",
                                              "unspecified error",
                                              "file not found",
                                              "bad path",
                                              "too many open files",
                                              "access denied",
                                              "invalid file",
                                              "cannot remove the current folder",
                                              "folder full",
                                              "bad seek",
                                              "hardware I/O error",
                                              "sharing violation",
                                              "lock violation",
                                              "disk full",
                                              "end of file"};
    return m_cause >= 0 && m_cause <= endOfFile ? kCauses[m_cause] : kCauses[genericException];
}

namespace {

// A name made absolute: the current folder in front of a relative one.
CString FullName(const char16_t* name) {
    if (!name) return CString();
    if (name[0] == u'\\' || name[0] == u'/') return CString(name);
    char16_t small[1];
    const DWORD needed = GetCurrentDirectoryW(1, small);
    if (needed == 0) return CString(name);
    CString full;
    GetCurrentDirectoryW(needed, full.GetBuffer(static_cast<int>(needed)));
    full.ReleaseBuffer();
    if (full.GetLength() == 0 || full[full.GetLength() - 1] != u'\\') full += u'\\';
    return full + name;
}

void FillStatus(const struct stat& status, const char16_t* fullName, std::string_view lastName,
                CFileStatus& out) {
    out.m_ctime = CTime(status.st_ctim.tv_sec);
    out.m_mtime = CTime(status.st_mtim.tv_sec);
    out.m_atime = CTime(status.st_atim.tv_sec);
    out.m_size = static_cast<LONG>(static_cast<uint64_t>(status.st_size));
    out.m_attribute =
        static_cast<BYTE>(detail::AttributesOf(status, lastName) & ~FILE_ATTRIBUTE_NORMAL);
    int i = 0;
    for (; fullName && fullName[i] && i < MAX_PATH - 1; ++i) out.m_szFullName[i] = fullName[i];
    out.m_szFullName[i] = 0;
}

std::string_view LastName(const std::string& path) {
    const size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? std::string_view(path)
                                      : std::string_view(path).substr(slash + 1);
}

}  // namespace

CFile::CFile() : m_hFile(INVALID_HANDLE_VALUE), m_bCloseOnDelete(0) {}

CFile::CFile(const char16_t* fileName, UINT openFlags) : CFile() {
    CFileException failure;
    if (!Open(fileName, openFlags, &failure)) throw failure;
}

CFile::~CFile() {
    if (m_hFile != INVALID_HANDLE_VALUE && m_bCloseOnDelete) Abort();
}

void CFile::Raise() const {
    CFileException::ThrowOsError(static_cast<LONG>(GetLastError()), m_strFileName);
}

BOOL CFile::Open(const char16_t* fileName, UINT openFlags, CFileException* error) {
    if (m_hFile != INVALID_HANDLE_VALUE) Abort();
    static constexpr DWORD kAccess[] = {GENERIC_READ, GENERIC_WRITE, GENERIC_READ | GENERIC_WRITE,
                                        0};
    const DWORD access = kAccess[openFlags & 3];
    HANDLE file = INVALID_HANDLE_VALUE;
    if (access == 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
    } else {
        const DWORD disposition = !(openFlags & modeCreate)      ? OPEN_EXISTING
                                  : (openFlags & modeNoTruncate) ? OPEN_ALWAYS
                                                                 : CREATE_ALWAYS;
        const DWORD share = (openFlags & 0x70) == shareDenyNone ? FILE_SHARE_READ | FILE_SHARE_WRITE
                            : (openFlags & 0x70) == shareDenyWrite ? FILE_SHARE_READ
                            : (openFlags & 0x70) == shareDenyRead  ? FILE_SHARE_WRITE
                                                                   : 0;
        file = CreateFileW(fileName, access, share, nullptr, disposition, FILE_ATTRIBUTE_NORMAL,
                           nullptr);
    }
    if (file == INVALID_HANDLE_VALUE) {
        if (error) {
            error->m_lOsError = static_cast<LONG>(GetLastError());
            error->m_cause = CFileException::OsErrorToException(error->m_lOsError);
            error->m_strFileName = fileName;
        }
        return 0;
    }
    m_hFile = file;
    m_bCloseOnDelete = 1;
    m_strFileName = FullName(fileName);
    return 1;
}

UINT CFile::Read(void* buffer, UINT count) {
    detail::FileRef file(m_hFile);
    if (!file) Raise();
    auto* to = static_cast<char*>(buffer);
    UINT done = 0;
    while (done < count) {
        const ssize_t got = RetryOnEintr(
            [&] { return CurrentEnv().Read(file->Descriptor(), to + done, count - done); });
        if (got < 0) {
            SetLastErrorFromErrno(errno);
            Raise();
        }
        if (got == 0) break;
        done += static_cast<UINT>(got);
    }
    return done;
}

void CFile::Write(const void* buffer, UINT count) {
    detail::FileRef file(m_hFile);
    if (!file) Raise();
    const auto* from = static_cast<const char*>(buffer);
    int idle = 0;  // writes in a row that took nothing
    while (count > 0) {
        const ssize_t put =
            RetryOnEintr([&] { return CurrentEnv().Write(file->Descriptor(), from, count); });
        if (put < 0) {
            SetLastErrorFromErrno(errno);
            Raise();
        }
        if (put == 0 && ++idle == 3)
            throw CFileException(CFileException::diskFull, -1, m_strFileName);
        if (put > 0) idle = 0;
        from += put;
        count -= static_cast<UINT>(put);
    }
}

LONG CFile::Seek(LONG offset, UINT from) {
    const DWORD position = SetFilePointer(m_hFile, offset, nullptr, from);
    if (position == INVALID_SET_FILE_POINTER && GetLastError() != ERROR_SUCCESS) Raise();
    return static_cast<LONG>(position);
}

DWORD CFile::GetLength() const {
    const DWORD size = GetFileSize(m_hFile, nullptr);
    if (size == INVALID_FILE_SIZE && GetLastError() != ERROR_SUCCESS) Raise();
    return size;
}

DWORD CFile::GetPosition() const {
    const DWORD position = SetFilePointer(m_hFile, 0, nullptr, FILE_CURRENT);
    if (position == INVALID_SET_FILE_POINTER && GetLastError() != ERROR_SUCCESS) Raise();
    return position;
}

void CFile::SetLength(DWORD length) {
    LONG high = 0;
    if (SetFilePointer(m_hFile, static_cast<LONG>(length), &high, FILE_BEGIN) ==
            INVALID_SET_FILE_POINTER &&
        GetLastError() != ERROR_SUCCESS)
        Raise();
    if (!SetEndOfFile(m_hFile)) Raise();
}

void CFile::Flush() {
    if (m_hFile != INVALID_HANDLE_VALUE && !FlushFileBuffers(m_hFile)) Raise();
}

void CFile::Close() {
    const bool failed = m_hFile != INVALID_HANDLE_VALUE && !CloseHandle(m_hFile);
    if (failed) SetLastError(ERROR_INVALID_HANDLE);
    m_hFile = INVALID_HANDLE_VALUE;
    m_bCloseOnDelete = 0;
    const CString name = m_strFileName;
    m_strFileName.Empty();
    if (failed) CFileException::ThrowOsError(ERROR_INVALID_HANDLE, name);
}

void CFile::Abort() {
    if (m_hFile != INVALID_HANDLE_VALUE) CloseHandle(m_hFile);
    m_hFile = INVALID_HANDLE_VALUE;
    m_bCloseOnDelete = 0;
    m_strFileName.Empty();
}

BOOL CFile::GetStatus(CFileStatus& status) const {
    detail::FileRef file(m_hFile);
    if (!file) return 0;
    struct stat system;
    if (RetryOnEintr([&] { return CurrentEnv().Fstat(file->Descriptor(), &system); }) != 0)
        return detail::FailFromErrno(0);
    std::string name;
    detail::ToSystemPath(m_strFileName, name);
    FillStatus(system, m_strFileName, LastName(name), status);
    return 1;
}

BOOL CFile::GetStatus(const char16_t* fileName, CFileStatus& status) {
    detail::SystemPath path(fileName);
    if (!path) return 0;
    struct stat system;
    if (RetryOnEintr([&] { return CurrentEnv().Lstat(path.c_str(), &system); }) != 0)
        return detail::FailFromErrno(0);
    struct stat target;
    if (S_ISLNK(system.st_mode) &&
        RetryOnEintr([&] { return CurrentEnv().Stat(path.c_str(), &target); }) == 0)
        system = target;
    FillStatus(system, FullName(fileName), LastName(path.str()), status);
    return 1;
}

}  // namespace basicutils
