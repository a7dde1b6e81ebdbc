// MFile: the one interface through which the library and its client modules
// speak to a file, whatever lies beneath it (the working file MFileUniv, the
// segmented file, the script reader, MFileWin over the platform's CFile).
//
// MFile itself is concrete and answers every operation with failure: -1,
// the date of day 0, or nothing, so a subclass overrides only what it can do
// and an operation it leaves out fails cleanly. Its one member is the spec
// of the file, set before or by the opening.
//
// The numbers of file_seek_t and file_open_t are part of the interface:
// client modules pass them as numbers. Implementations test a seek origin for
// kSeekBegin and kSeekEnd only; every other number acts as kSeekCurrent.
//
// Widths: `long` of the legacy interface is int32_t, `long long` int64_t;
// text pointers of FGets and FPuts are 8-bit.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/files/MFileSpec.h>
#include <basicutils/platform/RuntimeFiles.h>
#include <basicutils/text/MString.h>
#include <basicutils/time/CDateTime.h>

#include <cstdint>

namespace basicutils {

enum file_seek_t : int32_t {
    kSeekBegin = 0,
    kSeekCurrent = 1,
    kSeekEnd = 2,
};

enum file_open_t : int32_t {
    kOpenReadText = 0,
    kOpenReadBinary = 1,
    kOpenWriteBinary = 2,
    kOpenRewriteBinary = 3,
    kOpenWriteText = 4,
    kOpenAppendBinary = 5,
    kOpenAppendBinaryAlt = 6,
    kOpenUpdateText = 7,
    kOpenAppendText = 8,
    kOpenUpdateBinary = 9,
    kOpenUnsupported = 10,
    kOpenOverlappedCreate = 11,
    kOpenOverlappedWrite = 12,
    kOpenOverlappedRead = 13,
    kOpenOverlappedReadWrite = 14,
};

class BASICUTILS_EXPORT MFile {
  public:
    // The enumerations and their values are reachable through the class too
    // (MFile::file_open_t, MFile::kOpenReadText).
    using enum basicutils::file_seek_t;
    using enum basicutils::file_open_t;
    using file_seek_t = basicutils::file_seek_t;
    using file_open_t = basicutils::file_open_t;

    MFile() = default;
    MFile(const MFile& other) = default;
    MFile& operator=(const MFile& other) = default;
    virtual ~MFile();

    virtual void SetFileSpec(MFileSpecWin& spec);
    virtual MFileSpecWin& GetFileSpec();
    virtual int FCreate();
    virtual int FDelete();
    virtual int FOpen(MFileSpecWin& spec, file_open_t mode);
    virtual int FOpen(file_open_t mode);
    virtual int FRead(char* buffer, int count);
    virtual int FWrite(char* buffer, int count);
    virtual int FSeek(int32_t offset, file_seek_t origin);
    virtual int64_t FSeek64(int64_t offset, file_seek_t origin);
    virtual int64_t FTell64(int64_t& position);
    virtual int FTell(int& position);
    virtual int FGets(char* buffer, int count);
    virtual int FPuts(char* text);
    virtual void FClose();
    virtual int FStat(MFileSpecWin& spec, struct _stati64* status);
    virtual int FStat(struct _stati64* status);
    virtual CDateTime GetCreateTime();
    virtual CDateTime GetModifyTime();
    virtual CDateTime GetAccessTime();
    virtual int64_t GetSize();
    // A copy of the path, through GetFileSpec and its GetFilePath.
    virtual MString GetFilePath();

    // True when CFile::GetStatus finds something at the path.
    static bool FileExist(const MString& path);

  protected:
    MFileSpecWin mFileSpec;
};

}  // namespace basicutils
