// The C runtime's file family, in its wide and 64-bit forms: descriptors
// (_wopen, _read, _write, _lseeki64...), status records (_wstati64), file
// and folder names (_wremove, _wrename, _wmkdir...) and _wsplitpath. The
// buffered stream over a descriptor (_wfdopen, fread, fgets...) is in
// RuntimeStream.h.
//
// Every call goes to the operating system through the library's one seam,
// retries EINTR itself, and on failure leaves the reason twice, as the legacy
// callers read it: in errno (so std::perror("ERROR") and std::strerror(errno)
// print the system's text) and as a Win32 number in GetLastError.
//
// Names. Paths are 16-bit text; `\` and `/` both separate, and there are no
// drive letters: "C:\a" is a relative name whose first folder is "C:". A name
// that cannot be spelled on disk (a lone surrogate other than the escapes
// below) fails with EILSEQ / ERROR_NO_UNICODE_TRANSLATION and touches nothing.
// Names listed from the disk that are not valid UTF-8 come back with each
// stray byte 0x80-0xFF as the unit U+DC80-U+DCFF, and a backslash inside a
// name as U+DC5C; handing such a name back reaches the same file. A name
// whose escapes would spell valid UTF-8 (and so another file) is refused
// like a lone surrogate: no two names ever reach one file.
//
// Translation. _wopen without _O_BINARY opens in text mode, as the legacy
// runtime does. Text mode only changes reading: _read (and the stream's
// reads) turn each "\r\n" into "\n", so files written on either system read
// alike. Writing never adds "\r": a file written in text mode holds plain
// "\n" line ends. Ctrl-Z means nothing. Binary mode is untouched both ways.
// Positions (_lseek, _tell) always count bytes on disk.
//
// What opens: regular files only. A directory, FIFO, socket or device is
// refused at once with EACCES (ERROR_ACCESS_DENIED), as the legacy system
// refuses a directory; the open itself never waits (a FIFO without writer
// does not block it). Descriptors are not inherited by child processes.
#pragma once

#include <basicutils/Export.h>

#include <cstddef>
#include <cstdint>

namespace basicutils {

// Open flags, with the legacy runtime's numbers.
inline constexpr int _O_RDONLY = 0x0000;
inline constexpr int _O_WRONLY = 0x0001;
inline constexpr int _O_RDWR = 0x0002;
inline constexpr int _O_APPEND = 0x0008;
inline constexpr int _O_CREAT = 0x0100;
inline constexpr int _O_TRUNC = 0x0200;
inline constexpr int _O_EXCL = 0x0400;
inline constexpr int _O_TEXT = 0x4000;
inline constexpr int _O_BINARY = 0x8000;

// File kinds and permissions of a status record, and the arguments of
// _wchmod.
inline constexpr int _S_IFMT = 0xF000;
inline constexpr int _S_IFDIR = 0x4000;
inline constexpr int _S_IFCHR = 0x2000;
inline constexpr int _S_IFIFO = 0x1000;
inline constexpr int _S_IFREG = 0x8000;
inline constexpr int _S_IREAD = 0x0100;
inline constexpr int _S_IWRITE = 0x0080;
inline constexpr int _S_IEXEC = 0x0040;

// Buffer sizes of _wsplitpath's parts, terminator included.
inline constexpr int _MAX_PATH = 260;
inline constexpr int _MAX_DRIVE = 3;
inline constexpr int _MAX_DIR = 256;
inline constexpr int _MAX_FNAME = 256;
inline constexpr int _MAX_EXT = 256;

// The status record, with a 64-bit size and 64-bit times (seconds since
// 1970-01-01 UTC). st_mode holds one kind (_S_IFDIR, _S_IFREG, _S_IFCHR or
// _S_IFIFO; a block device counts as _S_IFCHR, a socket as _S_IFIFO) and the
// owner's _S_IREAD / _S_IWRITE / _S_IEXEC, copied to the group and other
// positions as the legacy runtime does. st_ctime is the last change of the
// file's status (Linux keeps no creation time that this record could carry).
// st_dev and st_ino are widened to 64 bits so that two files never look alike;
// st_uid and st_gid are 0, as the legacy runtime gave them.
#pragma push_macro("st_atime")
#pragma push_macro("st_mtime")
#pragma push_macro("st_ctime")
#undef st_atime
#undef st_mtime
#undef st_ctime
struct _stati64 {
    uint64_t st_dev;
    uint64_t st_ino;
    uint16_t st_mode;
    int16_t st_nlink;
    int16_t st_uid;
    int16_t st_gid;
    uint64_t st_rdev;
    int64_t st_size;
    // Each time can also be read as st_atim.tv_sec (and so on): that is
    // what `st_atime` turns into in code that includes <sys/stat.h>.
    union {
        int64_t st_atime;
        struct {
            int64_t tv_sec;
        } st_atim;
    };
    union {
        int64_t st_mtime;
        struct {
            int64_t tv_sec;
        } st_mtim;
    };
    union {
        int64_t st_ctime;
        struct {
            int64_t tv_sec;
        } st_ctim;
    };
};
#pragma pop_macro("st_ctime")
#pragma pop_macro("st_mtime")
#pragma pop_macro("st_atime")

// Opens a file; the descriptor, or -1. The two-argument form: a new file gets
// the permissions 0666 less the process's umask; callers that want owner-only
// files call _wchmod after. _O_TEXT together with _O_BINARY fails with EINVAL.
BASICUTILS_EXPORT int _wopen(const char16_t* path, int flags);
// Closes a descriptor (and forgets its handle from _get_osfhandle). 0 or -1.
// The descriptor is released even when the close reports an error.
BASICUTILS_EXPORT int _close(int fd);

// One read of the system: the byte count (0 at the end), or -1. In text mode
// the count is what remains after "\r\n" became "\n", and it is above 0
// unless the end of the file came.
BASICUTILS_EXPORT int _read(int fd, void* buffer, unsigned int count);
// One write of the system: what it wrote (it may be short, at the edge of a
// full disk), or -1. Nothing is translated.
BASICUTILS_EXPORT int _write(int fd, const void* buffer, unsigned int count);

// Moves the descriptor (origin SEEK_SET, SEEK_CUR or SEEK_END of <cstdio>);
// the new position from the start, or -1. _lseek and
// _tell answer 32-bit positions: a seek whose result would lie beyond
// 0x7FFFFFFF fails with EINVAL and leaves the descriptor where it was.
BASICUTILS_EXPORT int32_t _lseek(int fd, int32_t offset, int origin);
BASICUTILS_EXPORT int64_t _lseeki64(int fd, int64_t offset, int origin);
BASICUTILS_EXPORT int32_t _tell(int fd);
BASICUTILS_EXPORT int64_t _telli64(int fd);

// The permission of a name, in the manner of the legacy system's read-only
// attribute: with _S_IWRITE the owner may read and write (other permission
// bits stay as they are); without it the file becomes read-only (every write
// bit is cleared). _S_IREAD alone is thus "read-only". 0 or -1.
BASICUTILS_EXPORT int _wchmod(const char16_t* path, int mode);

// Status of a name or of a descriptor. 0 or -1; symbolic links are followed.
BASICUTILS_EXPORT int _wstati64(const char16_t* path, struct _stati64* status);
BASICUTILS_EXPORT int _fstati64(int fd, struct _stati64* status);

// The handle behind a descriptor, for SetEndOfFile, GetFileSize,
// SetFilePointer and FlushFileBuffers (FileApi.h), as intptr_t; -1 with
// EBADF for a descriptor that is not open. The handle shares the
// descriptor's position and belongs to it: _close ends it, and a caller
// never closes it with CloseHandle (doing so only forgets it; the
// descriptor stays open). The same descriptor gives the same handle.
BASICUTILS_EXPORT intptr_t _get_osfhandle(int fd);

// Names and folders; 0 or -1. _wremove and _wunlink delete a file and refuse
// (EACCES) a file that is read-only in the sense of _wchmod, as the legacy
// system does. _wrename never replaces: an existing new name fails with
// EACCES. _wmkdir creates with 0777 less the umask.
BASICUTILS_EXPORT int _wremove(const char16_t* path);
BASICUTILS_EXPORT int _wunlink(const char16_t* path);
BASICUTILS_EXPORT int _wrename(const char16_t* oldName, const char16_t* newName);
BASICUTILS_EXPORT int _wmkdir(const char16_t* path);
BASICUTILS_EXPORT int _wrmdir(const char16_t* path);
BASICUTILS_EXPORT int _wchdir(const char16_t* path);

// Splits a path into drive, folder, name and extension; any destination may
// be null. The drive part is always empty here (there are no drive letters).
// The folder runs to the last `\` or `/`, separator included; the extension
// starts at the last dot of what follows, dot included; the name is what
// lies between. So "/home/a/movie.mpv" gives "", "/home/a/", "movie", ".mpv",
// and ".profile" gives the name "" and the extension ".profile". Each part is
// cut to its _MAX_ size less one unit and always terminated.
BASICUTILS_EXPORT void _wsplitpath(const char16_t* path, char16_t* drive, char16_t* dir,
                                   char16_t* fname, char16_t* ext);

}  // namespace basicutils
