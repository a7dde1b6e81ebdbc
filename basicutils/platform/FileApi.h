// The Win32 file and disk calls the file layer uses: opening a file handle
// (CreateFileW), its size and pointer, cutting, flushing, deleting, listing a
// folder (FindFirstFileW...), the drive type, free space and the current
// folder. Names follow the rules of RuntimeFiles.h; every failure leaves its
// Win32 number in GetLastError (and errno set by the system).
//
// File handles are kernel objects of the handle registry: CloseHandle closes
// them, a stale or made-up handle answers FALSE with ERROR_INVALID_HANDLE. The
// descriptor behind a handle is released when the last reference goes, so a
// transfer still in flight keeps it open; closing never reports an error of
// its own (FlushFileBuffers before closing is how a caller learns of a write
// that failed late). Waiting on a file handle returns at once.
//
// CreateFileW:
// - access GENERIC_READ and/or GENERIC_WRITE; 0 opens for reading.
// - share modes are accepted and not enforced: Linux has no mandatory
//   sharing, every open shares reading, writing and deleting.
// - dispositions as in Win32, including ERROR_ALREADY_EXISTS left in
//   GetLastError by a successful CREATE_ALWAYS or OPEN_ALWAYS that found the
//   file (ERROR_SUCCESS when it created it). CREATE_NEW on an existing file
//   fails with ERROR_FILE_EXISTS; TRUNCATE_EXISTING needs GENERIC_WRITE.
// - FILE_FLAG_NO_BUFFERING asks for direct I/O (O_DIRECT); where the file
//   system refuses it (tmpfs, some network file systems) the handle stays
//   buffered, and the file object says which it got. FILE_FLAG_SEQUENTIAL_SCAN
//   advises the kernel of sequential reading; FILE_FLAG_RANDOM_ACCESS of
//   random reading; FILE_FLAG_WRITE_THROUGH makes every write synchronous
//   (O_DSYNC). FILE_FLAG_OVERLAPPED is recorded for the asynchronous
//   transfers. FILE_ATTRIBUTE_READONLY on a file being created makes it
//   read-only; other attributes are ignored.
// - only regular files open: a directory, FIFO, socket or device gives
//   ERROR_ACCESS_DENIED at once.
// - security attributes and the template are ignored.
//
// GetDriveTypeW, for any existing folder taken as the "root" (null or empty:
// the current folder):
//   DRIVE_NO_ROOT_DIR  the folder does not exist or is not a folder
//   DRIVE_CDROM        an optical file system (iso9660, udf) or any read-only
//                      mount: nothing can be written there
//   DRIVE_RAMDISK      tmpfs, ramfs
//   DRIVE_REMOTE       nfs, nfs4, cifs, smb3, smbfs, 9p, ceph, fuse.sshfs
//   DRIVE_FIXED        every other file system
//   DRIVE_UNKNOWN      the folder exists but its file system can't be asked
// DRIVE_REMOVABLE is never answered: Linux does not tell a stick from a disk.
//
// Free space (GetDiskFreeSpaceExW, GetDiskFreeSpaceW): a null or empty name
// means the current folder; any existing file or folder names its file
// system. The space available to the caller honours the reserve and quotas
// the system applies, and is 0 on a read-only mount (nothing can be written
// there, whatever blocks are free). GetDiskFreeSpaceW counts in clusters of
// the file system's fragment size, given as sectors of 512 bytes when it is a
// multiple of 512 (else one sector of the fragment size); cluster counts are
// clamped to 0xFFFFFFFF as the legacy system does.
//
// GetCurrentDirectoryW answers the folder in the library's own spelling,
// `\` as separator ("\home\ana\work"), so the library's path logic applies to
// it and handing it back reaches the same folder.
//
// Listing (FindFirstFileW, FindNextFileW, FindClose): the pattern's last part
// is matched against each name with `*` (any run of units) and `?` (one
// unit); case counts, since Linux names are case-sensitive; a pattern ending
// in ".*" also matches names without a dot, so "*.*" matches every name. A
// listing of a folder begins with "." and ".." (when the pattern matches
// them), then the other entries in the system's order. Each entry's data comes
// from the entry itself, links not followed: a symbolic link is listed with
// FILE_ATTRIBUTE_REPARSE_POINT and never as a folder, so a recursive delete
// never walks through a link. A name starting with '.' is FILE_ATTRIBUTE_HIDDEN;
// a file without write permission FILE_ATTRIBUTE_READONLY; a FIFO, socket or
// device FILE_ATTRIBUTE_SYSTEM; a plain file with none of these
// FILE_ATTRIBUTE_NORMAL. Times are the modification, access and status-change
// times. An entry that vanishes while listed is skipped. Failures:
// INVALID_HANDLE_VALUE with ERROR_PATH_NOT_FOUND when the folder is missing,
// ERROR_FILE_NOT_FOUND when nothing in it matches; FindNextFileW answers FALSE
// with ERROR_NO_MORE_FILES at the end.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/platform/Handles.h>

#include <cstdint>

namespace basicutils {

using LONG = int32_t;
using BYTE = uint8_t;
using WORD = uint16_t;

inline const HANDLE INVALID_HANDLE_VALUE = reinterpret_cast<HANDLE>(static_cast<intptr_t>(-1));

inline constexpr DWORD GENERIC_READ = 0x80000000u;
inline constexpr DWORD GENERIC_WRITE = 0x40000000u;

inline constexpr DWORD FILE_SHARE_READ = 0x1;
inline constexpr DWORD FILE_SHARE_WRITE = 0x2;
inline constexpr DWORD FILE_SHARE_DELETE = 0x4;

inline constexpr DWORD CREATE_NEW = 1;
inline constexpr DWORD CREATE_ALWAYS = 2;
inline constexpr DWORD OPEN_EXISTING = 3;
inline constexpr DWORD OPEN_ALWAYS = 4;
inline constexpr DWORD TRUNCATE_EXISTING = 5;

inline constexpr DWORD FILE_ATTRIBUTE_READONLY = 0x1;
inline constexpr DWORD FILE_ATTRIBUTE_HIDDEN = 0x2;
inline constexpr DWORD FILE_ATTRIBUTE_SYSTEM = 0x4;
inline constexpr DWORD FILE_ATTRIBUTE_DIRECTORY = 0x10;
inline constexpr DWORD FILE_ATTRIBUTE_ARCHIVE = 0x20;
inline constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x80;
inline constexpr DWORD FILE_ATTRIBUTE_TEMPORARY = 0x100;
inline constexpr DWORD FILE_ATTRIBUTE_REPARSE_POINT = 0x400;

inline constexpr DWORD FILE_FLAG_WRITE_THROUGH = 0x80000000u;
inline constexpr DWORD FILE_FLAG_OVERLAPPED = 0x40000000;
inline constexpr DWORD FILE_FLAG_NO_BUFFERING = 0x20000000;
inline constexpr DWORD FILE_FLAG_RANDOM_ACCESS = 0x10000000;
inline constexpr DWORD FILE_FLAG_SEQUENTIAL_SCAN = 0x08000000;

inline constexpr DWORD FILE_BEGIN = 0;
inline constexpr DWORD FILE_CURRENT = 1;
inline constexpr DWORD FILE_END = 2;

inline constexpr DWORD INVALID_FILE_SIZE = 0xFFFFFFFFu;
inline constexpr DWORD INVALID_SET_FILE_POINTER = 0xFFFFFFFFu;

inline constexpr UINT DRIVE_UNKNOWN = 0;
inline constexpr UINT DRIVE_NO_ROOT_DIR = 1;
inline constexpr UINT DRIVE_REMOVABLE = 2;
inline constexpr UINT DRIVE_FIXED = 3;
inline constexpr UINT DRIVE_REMOTE = 4;
inline constexpr UINT DRIVE_CDROM = 5;
inline constexpr UINT DRIVE_RAMDISK = 6;

inline constexpr int MAX_PATH = 260;

// 100-nanosecond intervals since 1601-01-01 UTC, in two halves.
struct FILETIME {
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
};

// A 64-bit count that legacy code reads whole or by halves.
union ULARGE_INTEGER {
    struct {
        DWORD LowPart;
        DWORD HighPart;
    };
    struct {
        DWORD LowPart;
        DWORD HighPart;
    } u;
    uint64_t QuadPart;
};

struct WIN32_FIND_DATAW {
    DWORD dwFileAttributes;
    FILETIME ftCreationTime;
    FILETIME ftLastAccessTime;
    FILETIME ftLastWriteTime;
    DWORD nFileSizeHigh;
    DWORD nFileSizeLow;
    DWORD dwReserved0;
    DWORD dwReserved1;
    char16_t cFileName[MAX_PATH];
    char16_t cAlternateFileName[14];  // always empty
};

// INVALID_HANDLE_VALUE on failure.
BASICUTILS_EXPORT HANDLE CreateFileW(const char16_t* fileName, DWORD desiredAccess, DWORD shareMode,
                                     void* securityAttributes, DWORD creationDisposition,
                                     DWORD flagsAndAttributes, HANDLE templateFile);

// The low half of the size, the high half in *fileSizeHigh when that is not
// null. INVALID_FILE_SIZE on failure; a size whose low half is 0xFFFFFFFF
// leaves ERROR_SUCCESS in GetLastError so the two can be told apart.
BASICUTILS_EXPORT DWORD GetFileSize(HANDLE file, DWORD* fileSizeHigh);

// Moves the handle's position (FILE_BEGIN, FILE_CURRENT, FILE_END) and
// answers the low half of the new one, the high half going to
// *distanceToMoveHigh. With distanceToMoveHigh null the distance is a signed
// 32-bit number and the new position must stay below 4 GiB
// (ERROR_INVALID_PARAMETER otherwise). A position before the start fails with
// ERROR_NEGATIVE_SEEK. INVALID_SET_FILE_POINTER on failure, nothing moved; a
// position whose low half is 0xFFFFFFFF leaves ERROR_SUCCESS in GetLastError.
BASICUTILS_EXPORT DWORD SetFilePointer(HANDLE file, LONG distanceToMove, LONG* distanceToMoveHigh,
                                       DWORD moveMethod);

// Cuts or extends the file at the handle's position. Needs write access.
BASICUTILS_EXPORT BOOL SetEndOfFile(HANDLE file);
// Writes what the system holds of the file to the disk (fsync).
BASICUTILS_EXPORT BOOL FlushFileBuffers(HANDLE file);
// Cancels the overlapped transfers of the handle that have not started yet,
// whichever thread issued them (the legacy system cancels only the calling
// thread's; the library issues and cancels on one thread). They end with
// ERROR_OPERATION_ABORTED, and their events and completion routines still
// come, so their buffers must live until then. A transfer already running
// finishes normally. TRUE for any file handle.
BASICUTILS_EXPORT BOOL CancelIo(HANDLE file);
// Deletes a file; a read-only file (see _wchmod) or a folder gives
// ERROR_ACCESS_DENIED.
BASICUTILS_EXPORT BOOL DeleteFileW(const char16_t* fileName);

BASICUTILS_EXPORT UINT GetDriveTypeW(const char16_t* rootPathName);
// Any pointer may be null.
BASICUTILS_EXPORT BOOL GetDiskFreeSpaceExW(const char16_t* directoryName,
                                           ULARGE_INTEGER* freeBytesAvailableToCaller,
                                           ULARGE_INTEGER* totalNumberOfBytes,
                                           ULARGE_INTEGER* totalNumberOfFreeBytes);
BASICUTILS_EXPORT BOOL GetDiskFreeSpaceW(const char16_t* rootPathName, DWORD* sectorsPerCluster,
                                         DWORD* bytesPerSector, DWORD* numberOfFreeClusters,
                                         DWORD* totalNumberOfClusters);

// The length of the folder's name without the terminator when `buffer`
// (bufferLength units) holds it; otherwise the size it needs, terminator
// included, and the buffer is untouched. 0 on failure.
BASICUTILS_EXPORT DWORD GetCurrentDirectoryW(DWORD bufferLength, char16_t* buffer);

BASICUTILS_EXPORT HANDLE FindFirstFileW(const char16_t* fileName, WIN32_FIND_DATAW* findFileData);
BASICUTILS_EXPORT BOOL FindNextFileW(HANDLE findFile, WIN32_FIND_DATAW* findFileData);
BASICUTILS_EXPORT BOOL FindClose(HANDLE findFile);

}  // namespace basicutils
