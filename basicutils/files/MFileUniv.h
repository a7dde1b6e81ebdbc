// MFileUniv: the working file of the library, the file every other file
// service stands on. Sizes and positions are 64-bit.
//
// One object lives in one of two worlds, chosen by the open mode:
//
// - The runtime world (modes 0 to 9): a descriptor from _wopen and a buffered
//   stream from _wfdopen on it. FRead and FWrite work on the descriptor; the
//   text operations and FReadVoid / FWriteVoid on the stream. They share one
//   position only through the seeks, so a caller that mixes the two kinds
//   seeks between them.
//
//   mode  _wopen flags                          stream  starts at  chmod 0x180
//   0     _O_RDONLY                    0x0000   "r"     start      no
//   1     _O_RDONLY|_O_BINARY          0x8000   "r"     start      no
//   2, 3  _O_RDWR|_O_CREAT|_O_TRUNC|_O_BINARY   "w"     start      yes
//   4     _O_RDWR|_O_CREAT|_O_TRUNC    0x0302   "w"     start      yes
//   5, 6  _O_RDWR|_O_CREAT|_O_BINARY   0x8102   "w"     end        yes
//   7     _O_RDWR|_O_CREAT             0x0102   "r+"    start      yes
//   8     _O_RDWR|_O_CREAT             0x0102   "w"     end        yes
//   9     _O_RDWR|_O_CREAT|_O_BINARY   0x8102   "r+"    start      yes
//
//   Modes without _O_BINARY read text: "\r\n" reads as "\n". Nothing ever
//   writes "\r". A failed _wopen prints the system's reason after "ERROR" on
//   stderr (perror) and answers -1; nothing goes through CMessageAction.
//
// - The overlapped world (modes 11 to 14): a handle from CreateFileW for
//   unbuffered asynchronous sector transfers, shared for reading and writing:
//   11 write, always a new file; 12 write, the file kept or created; 13 read;
//   14 read and write (13 and 14 need the file to exist).
//
// Results: 0 or a position for success, -1 for failure. Mode 10 answers -1
// and touches nothing. FOpen stores the mode before it tries, and does not
// close what the object had open: a caller closes first. After FClose the
// object can be opened again; the spec stays.
//
// Seeks. FSeek64 moves the descriptor once, by the amount asked for (the
// stream gives up its buffer first), and answers the 64-bit position. The
// stream follows only to positions up to 0x7FFFFFFF: beyond that its
// position is left unset, and the text operations are not for such places.
// FTell64 stores the true position and answers it only below 0x7FFFFFFF;
// from there on it answers -1, and callers read the argument.
//
// Text. FGetts(dst, n) reads one line of up to 2n-1 bytes of 8-bit text (n
// is half the limit: dst needs room for 2n units), widens it from the system
// code page up to its first zero byte (what stands behind a zero byte in the
// piece read is dropped), and leaves its newline on. FPutts narrows to the
// system code page, a character outside it becoming what the conversion
// makes of it. No byte-order mark is written, looked for or skipped, also
// not by the two ForUnicodeFile operations, which carry 16-bit text as the
// stream's mode treats it (raw units on a binary stream).
//
// Reports through CMessageAction::Error (null context, default window), the
// reason being the system's text for errno:
//   FRead       "Read file error(%s) (MFileUniv::FRead)", answer -1
//   FReadVoid   "Read file error(%s) (MFileUniv::FReadVoid)", answer the
//               items read
//   FClose      "Close file error(%s) in MFileUniv::FClose"; the stream is
//               forgotten all the same
//
// The cache (ResetCache, ReadCache, GetIdealCacheSize and the offsets) works
// but no read goes through it (kUseCache is false).
//
// Copies. A copy is a second view of the same open file, not a second file:
// both share the descriptor, stream and handle. This port counts the views:
// FClose of a view that is not the last one only forgets the file, and the
// last view closes it, so the views can be closed and destroyed in any
// order. Each view has its own copy of the cache. Assigning to an open
// object closes what it had first.
//
// Choices of this port:
//   - An open mode below 0 or above 14 is refused like mode 10.
//   - A failed overlapped opening leaves the object closed (not overlapped).
//   - The start position of an opening is set with the 64-bit seek, so a
//     file past 2 GiB opened to append starts at its true end.
//   - FSeek, too, lets the stream give up its buffer before the descriptor
//     moves, so bytes written through the stream land where they were
//     written, not at the new position.
//   - FWrite continues a short transfer of the system; when the system then
//     fails, it answers the bytes written so far (-1 when none were). So the
//     answer is always what is on the file.
//   - FReadVoid and FWriteVoid, like the other stream operations, answer -1
//     when there is no stream; a negative count, size or limit answers -1.
//   - After a report of FReadVoid the stream's error flag is cleared, so
//     that each failure is reported once.
//   - GetSize answers -1 when the status of the path cannot be read (the
//     file is missing) or the handle's size cannot be read.
//   - A descriptor whose stream could not be made is closed by FClose.
//   - FPutts converts into three bytes a unit, room enough for UTF-8, the
//     system code page here.
//   - ReadCache keeps an empty cache when the read fails.
//   - GetCreateTime, GetModifyTime and GetAccessTime make no query and answer
//     the date of day 0, as MFile does.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/files/MFile.h>
#include <basicutils/platform/FileApi.h>
#include <basicutils/platform/RuntimeStream.h>

#include <cstdint>
#include <memory>

namespace basicutils {

// The state of a concatenation into an overlapped file: the output and
// source handles, the two transfer buffers and the counts of the run.
struct SConcatState {
    HANDLE mOutputHandle;
    HANDLE mSourceHandle;
    uint32_t mSourceSize;
    uint32_t mPaddedSize;
    uint32_t mBufferSize;
    char* mReadBuffer;
    uint32_t mReadSize;
    char* mWriteBuffer;
    uint32_t mWriteSize;
    char* mBufferA;
    char* mBufferB;
    int32_t mBlockSize;
    uint32_t mBytesWritten;
    uint32_t mBytesToRead;
    int mWritePending;
    int mReadPending;
    uint32_t mLastError;
};

class BASICUTILS_EXPORT MFileUniv : public MFile {
  public:
    MFileUniv();
    MFileUniv(const MFileUniv& other);
    MFileUniv& operator=(const MFileUniv& other);
    ~MFileUniv() override;

    int FCreate() override;
    // Does nothing; the file stays on the disk.
    int FDelete() override;
    int FOpen(MFileSpecWin& spec, file_open_t mode) override;
    int FOpen(file_open_t mode) override;
    int FRead(char* buffer, int count) override;
    int FWrite(char* buffer, int count) override;
    int FSeek(int32_t offset, file_seek_t origin) override;
    int64_t FSeek64(int64_t offset, file_seek_t origin) override;
    int64_t FTell64(int64_t& position) override;
    int FTell(int& position) override;
    int FGets(char* buffer, int count) override;
    int FPuts(char* text) override;
    void FClose() override;
    int FStat(MFileSpecWin& spec, struct _stati64* status) override;
    int FStat(struct _stati64* status) override;
    int64_t GetSize() override;

    virtual int FOpen(const char16_t* path, file_open_t mode);
    virtual int FReadVoid(void* buffer, int size, int count);
    virtual int FWriteVoid(void* buffer, int size, int count);
    virtual int FGetts(char16_t* destination, int n);
    virtual int FPutts(char16_t* text);
    virtual int FGettsForUnicodeFile(char16_t* destination, int n);
    virtual int FPuttsForUnicodeFile(char16_t* text);
    virtual int FStat(const char16_t* path, struct _stati64* status);

    // Cuts or extends the file at the descriptor's position: 0 or -1.
    int FSetEndOfFile();
    // The overlapped world's size setter: 0 or -1.
    int FSetFileSize(int64_t size);

    // The cache.
    void ResetCache();
    void ReadCache();
    // An eighth of the size, held between 100,000 and 500,000 bytes.
    int32_t GetIdealCacheSize();
    void ReadPhysicalOffset();
    void SyncLogicalOffset();

  protected:
    char* mCache;
    int64_t mLogicalOffset;
    int64_t mPhysicalOffset;
    int mCacheLength;
    RuntimeStream* mStream;
    int mDescriptor;
    file_open_t mOpenMode;
    int mIsOverlapped;
    int32_t mSectorSkew;
    SConcatState mConcat;
    HANDLE mHandle;

  private:
    static constexpr bool kUseCache = false;

    // Opens the handle of an overlapped mode.
    int OpenOverlapped(file_open_t mode);
    // True when no other view shares the open file.
    bool LastView() const;
    // Drops this view of the open file without closing anything.
    void ForgetFile();
    void CopyFrom(const MFileUniv& other);

    // Shared by the views of one open file (see the top).
    std::shared_ptr<int> mViews;
};

}  // namespace basicutils
