// CFile: the application framework's file class, over a file handle
// (CreateFileW), with its 32-bit positions and sizes, its status record and
// its failure object.
//
// Failures. Open answers FALSE and, when given a CFileException, fills it.
// Read, Write, Seek, GetLength, GetPosition, SetLength, Flush and Close raise a
// CFileException on failure. It is thrown by value; catch it by reference:
//
//   try { file.Write(data, size); } catch (CFileException& e) { ... e.m_cause ... }
//
// m_lOsError holds the Win32 number (GetLastError at the failure), or -1 when
// the system reported none (a write that could not finish).
//
// Read and Write move every byte asked for: a short transfer of the system is
// continued, so Read stops short only at the end of the file, and Write
// either writes everything or raises (diskFull with m_lOsError -1 when the
// system wrote nothing and reported no error).
//
// Positions: Seek takes a signed 32-bit distance and answers the new position;
// a position that would lie at or beyond 4 GiB raises (genericException,
// ERROR_INVALID_PARAMETER), one before the start too (badSeek,
// ERROR_NEGATIVE_SEEK). GetLength answers the low 32 bits of the size.
//
// Status: GetStatus(path, status) answers 1 when something exists at the path
// (taken literally: `*` and `?` are plain characters; a symbolic link exists
// even when it leads nowhere) and fills the record, else 0. m_szFullName is the absolute name (the
// current folder in front of a relative one, nothing normalised), cut to MAX_PATH-1 units when
// longer; m_size is the low 32 bits of the size; m_attribute the FILE_ATTRIBUTE_ bits without
// FILE_ATTRIBUTE_NORMAL; m_ctime the last change of the file's status, m_mtime the last write,
// m_atime the last access.
//
// typeText and typeBinary are accepted and change nothing: a CFile is always
// binary. The share flags are accepted and not enforced (see FileApi.h).
#pragma once

#include <basicutils/Export.h>
#include <basicutils/platform/CString.h>
#include <basicutils/platform/FileApi.h>

#include <cstdint>
#include <exception>

namespace basicutils {

// A point in time, seconds since 1970-01-01 UTC, read in local time.
class BASICUTILS_EXPORT CTime {
  public:
    CTime() = default;
    explicit CTime(int64_t time) : mTime(time) {}
    int64_t GetTime() const { return mTime; }
    // Local calendar fields: full year, month 1-12, day 1-31, hour 0-23,
    // minute and second 0-59, day of week 1 (Sunday) to 7. A time the system
    // cannot break down gives 0 for each.
    int GetYear() const;
    int GetMonth() const;
    int GetDay() const;
    int GetHour() const;
    int GetMinute() const;
    int GetSecond() const;
    int GetDayOfWeek() const;
    bool operator==(const CTime& other) const { return mTime == other.mTime; }

  private:
    int Field(int which) const;
    int64_t mTime = 0;
};

struct CFileStatus {
    CTime m_ctime;
    CTime m_mtime;
    CTime m_atime;
    LONG m_size = 0;
    BYTE m_attribute = 0;
    BYTE m_padding = 0;
    char16_t m_szFullName[MAX_PATH] = {};
};

class BASICUTILS_EXPORT CFileException : public std::exception {
  public:
    enum {
        none,
        genericException,
        fileNotFound,
        badPath,
        tooManyOpenFiles,
        accessDenied,
        invalidFile,
        removeCurrentDir,
        directoryFull,
        badSeek,
        hardIO,
        sharingViolation,
        lockViolation,
        diskFull,
        endOfFile
    };

    explicit CFileException(int cause = none, LONG osError = -1,
                            const char16_t* fileName = nullptr);

    // The cause for a Win32 number (genericException for one without a
    // closer cause).
    static int OsErrorToException(LONG osError);
    // Throws a CFileException for a Win32 number.
    [[noreturn]] static void ThrowOsError(LONG osError, const char16_t* fileName = nullptr);

    // A short English name of the cause.
    const char* what() const noexcept override;

    int m_cause;
    LONG m_lOsError;
    CString m_strFileName;
};

class BASICUTILS_EXPORT CFile {
  public:
    enum OpenFlags {
        modeRead = 0x0000,
        modeWrite = 0x0001,
        modeReadWrite = 0x0002,
        shareCompat = 0x0000,
        shareExclusive = 0x0010,
        shareDenyWrite = 0x0020,
        shareDenyRead = 0x0030,
        shareDenyNone = 0x0040,
        modeNoInherit = 0x0080,
        modeCreate = 0x1000,
        modeNoTruncate = 0x2000,
        typeText = 0x4000,
        typeBinary = 0x8000
    };
    enum Attribute {
        normal = 0x00,
        readOnly = 0x01,
        hidden = 0x02,
        system = 0x04,
        volume = 0x08,
        directory = 0x10,
        archive = 0x20
    };
    enum SeekPosition { begin = 0, current = 1, end = 2 };

    CFile();
    // Opens at once and raises on failure.
    CFile(const char16_t* fileName, UINT openFlags);
    CFile(const CFile&) = delete;
    CFile& operator=(const CFile&) = delete;
    // Closes a file that is still open, without raising.
    virtual ~CFile();

    // modeCreate alone creates or empties; with modeNoTruncate it opens or
    // creates. Without modeCreate the file must exist. A CFile that is still
    // open is closed first.
    virtual BOOL Open(const char16_t* fileName, UINT openFlags, CFileException* error = nullptr);
    virtual UINT Read(void* buffer, UINT count);
    virtual void Write(const void* buffer, UINT count);
    virtual LONG Seek(LONG offset, UINT from);
    DWORD SeekToEnd() { return static_cast<DWORD>(Seek(0, end)); }
    void SeekToBegin() { Seek(0, begin); }
    virtual DWORD GetLength() const;
    virtual DWORD GetPosition() const;
    // Cuts or extends the file to `length` bytes.
    virtual void SetLength(DWORD length);
    virtual void Flush();
    virtual void Close();
    // Closes without raising; for cleaning up after a failure.
    virtual void Abort();

    BOOL GetStatus(CFileStatus& status) const;
    static BOOL GetStatus(const char16_t* fileName, CFileStatus& status);

    // The name given to Open, made absolute; empty when closed.
    CString GetFilePath() const { return m_strFileName; }

    HANDLE m_hFile;
    BOOL m_bCloseOnDelete;
    CString m_strFileName;

  private:
    [[noreturn]] void Raise() const;
};

}  // namespace basicutils
