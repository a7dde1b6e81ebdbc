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
#include <basicutils/platform/FileIo.h>
#include <basicutils/platform/RuntimeStream.h>

#include <cstdint>
#include <memory>

namespace basicutils {

// The request block of one overlapped transfer of a concatenation, with
// what its completion routine stores: the routine only writes a context
// whose mMagic is kCompletionMagic, and always sets the event in hEvent.
struct SCompletionContext {
    _OVERLAPPED mOverlapped;  // first, so the routine's _OVERLAPPED* is the context
    uint32_t mMagic;
    uint32_t mCompletionCode;
    uint32_t mBytesTransferred;
};
inline constexpr uint32_t kCompletionMagic = 0xDEADBEEF;

// The state of a concatenation into an overlapped file: the output and
// source handles, the two transfer buffers and the counts of the run.
struct SConcatState {
    HANDLE mOutputHandle;
    HANDLE mSourceHandle;
    SCompletionContext mWriteContext;  // its offset is the output position
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

    // ---- the overlapped world: sector transfers and concatenation ----------
    //
    // A sector is 2,048 bytes; offsets are bytes. Results are 0 or a Win32
    // error code; reports go through CMessageAction with a null context and
    // the default window.
    //
    // FReadOverlapped widens the request to whole sectors: it reads from the
    // sector start below `offset` (mSectorSkew bytes before it, 0 to 2,047)
    // to the next sector boundary at or after offset + size, into buffer -
    // mSectorSkew. So the byte at `offset` lands at `buffer`, and the caller's
    // memory must reach 2,047 bytes before and after the request. A refused
    // ReadFile raises the warning "Retry ReadFile at sector %d due to Win32
    // error %d ..." and is tried once more at once; a second refusal raises
    // the error "ReadFile at sector %d failed, Win32 error %d" and answers the
    // code. ERROR_IO_PENDING and ERROR_HANDLE_EOF count as started; the end of
    // the file shows only in the completion's count.
    //
    // FWriteOverlapped writes exactly what it is given (the caller keeps it
    // on sectors); a refusal raises "WriteFile failed at sector %d, error %d"
    // and answers the code, with no retry.
    //
    // FWaitOverlappedCompletion waits `seconds` for the event, resets it
    // whatever came, and answers the wait: 0 or WAIT_TIMEOUT (258). A time
    // beyond the longest finite wait is held at it.
    //
    // Concatenation appends pieces to this (overlapped) file at an output
    // position that moves on behind each piece, padding included:
    //   ConcatInitialize(blockSize, outputOffset): two buffers of blockSize
    //     sectors each (blockSize 2,048 gives 4 MiB), and the write event.
    //     Pieces are padded with zeros to a multiple of blockSize bytes; a
    //     multiple of 2,048 keeps the output on sectors. 0, or -1 with the
    //     reason in mConcat.mLastError (no memory; ERROR_INVALID_PARAMETER for
    //     a blockSize that makes no buffer). A second ConcatInitialize
    //     releases what the first one made.
    //   ConcatFile(path, ., cancel, .): appends a whole file, reading the
    //     next buffer while the last one is written, and tells each write to
    //     CThreadStatus::AdvancePosition in sectors. `cancel` is read once a
    //     pass, as an atomic: another thread (or a signal handler) sets it
    //     through std::atomic_ref<bool>. Answers 0 (a cancelled run too: the
    //     output keeps what was written); -1 when the source cannot be opened
    //     (no report) or a transfer fails or falls short (the system's text of
    //     the reason through CMessageAction::Error); a Win32 code, with no
    //     report, when the size of the source cannot be read. An empty source
    //     writes nothing and answers 0.
    //   ConcatBufferSynchronously(buffer, size): writes one memory block of at
    //     most one buffer, padded, and waits: 0, or -1 with no report.
    //   ConcatPosition(): where the next piece goes.
    //   ConcatRelease(): frees the buffers and closes the event.
    //
    // Choices of this port for the concatenation:
    //   - No run returns with a transfer in flight. When a run ends early
    //     (cancelled, or a transfer failed) it cancels the read in flight and
    //     waits for it, and waits for the write in flight: a write that was
    //     started is kept and counted like any other (the output position
    //     moves behind it, AdvancePosition hears it). So no completion ever
    //     reaches the read context on the stack of a finished call, or a
    //     buffer that the next run reuses or ConcatRelease frees.
    //   - The buffers and the event are released by ConcatRelease, which
    //     ConcatInitialize, FClose and the destructor call. A copy of the
    //     object starts with no concatenation: only the original releases.
    //   - Each run starts with mLastError 0 and reports only its own failure.
    //   - A transfer that ends with the wrong count records its own error
    //     code; one that ended short without one records ERROR_HANDLE_EOF (a
    //     read: the source ended early) or ERROR_DISK_FULL (a write), so the
    //     report always has a text.
    //   - A source whose padded size does not fit 32 bits (4 GiB) is refused
    //     with ERROR_NOT_SUPPORTED (50), nothing written, rather than copied
    //     in part; a ConcatFile or ConcatBufferSynchronously without a
    //     successful ConcatInitialize, and a block larger than a buffer,
    //     answer -1 and touch nothing.
    uint32_t FReadOverlapped(int64_t offset, char* buffer, int32_t size, _OVERLAPPED* overlapped,
                             void* event);
    uint32_t FWriteOverlapped(int64_t offset, char* buffer, int32_t size, _OVERLAPPED* overlapped,
                              void* event);
    uint32_t FWaitOverlappedCompletion(void* event, uint32_t seconds);
    int32_t ConcatInitialize(int32_t blockSize, int64_t outputOffset);
    int32_t ConcatFile(const char16_t* path, int32_t, bool& cancel, int32_t);
    int32_t ConcatBufferSynchronously(char* buffer, int32_t size);
    void ConcatRelease();
    int64_t ConcatPosition() const;

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

    // Concatenation steps (MFileUnivConcat.cpp).
    int32_t RunConcat(SCompletionContext& read, uint32_t size, bool& cancel);
    void StartConcatWrite();
    bool StartConcatRead(SCompletionContext& read);
    uint32_t WaitForContext(SCompletionContext& context);
    void RecordCountFailure(const SCompletionContext& context, bool write);
    void SettleConcat(SCompletionContext& read);
    void AccountWrite(uint32_t count, bool progress);

    // Shared by the views of one open file (see the top).
    std::shared_ptr<int> mViews;
};

}  // namespace basicutils
