// MFileWin: a small file class over the platform's CFile, with 32-bit
// positions and sizes.
//
// It counts as CFile does: FCreate, FOpen and FTell answer 1 for success and
// 0 for failure (MFileUniv answers 0 and -1), and it reports nothing through
// CMessageAction. Its own FRead, FWrite, FSeek(int64_t, ...) and
// FTell(int64_t&) take other argument types than MFile's FRead, FWrite,
// FSeek64 and FTell64 and do not override them: through an MFile reference
// those keep the base answer -1. FOpen(MFileSpecWin&, ...), FGets, FPuts and
// both FStat stay the base class's as well.
//
// FOpen passes CFile these flags: modes 0 and 1 modeRead, 2 modeWrite,
// 9 modeReadWrite, every other mode from 3 to 14 and above modeReadWrite with
// shareDenyNone. None of them creates a file: FCreate does (modeCreate), and
// closes it again.
//
// FSeek(int64_t, ...) seeks by the low 32 bits of the offset only: an offset
// of 4 GiB from the start goes to 0.
//
// Dates: the local time of the file's status-change, modification and access
// times (Linux keeps no creation time: the status change stands in for it),
// or the date of day 0 when the status cannot be read.
//
// Where CFile raises its failure object, this port catches it and answers a
// result, so that nothing escapes the class:
//   FWrite 0 and FTell 0 (as always);
//   FRead and both FSeek -1 (CFile's own answers are never negative);
//   FCreate 0 when the file was created but could not be closed;
//   GetSize -1 (no file open, or the size cannot be read);
//   FClose nothing: the file is closed whatever the system says.
// A negative mode makes FOpen answer 0 without a call; a negative count
// makes FRead and FWrite answer -1 and 0 without a call.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/files/MFile.h>
#include <basicutils/platform/CFile.h>

#include <cstdint>

namespace basicutils {

// The hiding of MFile's FRead, FWrite, FSeek64 and FTell64 by the operations
// below is the class's contract (see the top).
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Woverloaded-virtual"
class BASICUTILS_EXPORT MFileWin : public CFile, public MFile {
  public:
    MFileWin();
    ~MFileWin() override;

    // The library's path, not CFile's.
    using MFile::GetFilePath;

    int FCreate() override;
    // Does nothing.
    int FDelete() override;
    using MFile::FOpen;
    int FOpen(file_open_t mode) override;
    int FSeek(int32_t offset, file_seek_t origin) override;
    int FTell(int& position) override;
    void FClose() override;
    CDateTime GetCreateTime() override;
    CDateTime GetModifyTime() override;
    CDateTime GetAccessTime() override;
    int64_t GetSize() override;

    virtual int FRead(void* buffer, int count);
    // The count asked for, or 0 when the platform raised a failure.
    virtual int FWrite(void* buffer, int count);
    virtual int64_t FSeek(int64_t offset, file_seek_t origin);
    virtual int FTell(int64_t& position);

  private:
    enum class Stamp { kCreate, kModify, kAccess };
    CDateTime StatusTime(Stamp which);
};
#pragma GCC diagnostic pop

}  // namespace basicutils
