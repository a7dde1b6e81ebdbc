// MFiles: one logical file over numbered segment files.
//
// To its users an MFiles is an MFile with a path. On disk the logical file
// is either a plain file, as long as it fits mMaxFileSize, or an info file
// under that path that lists its segments in order. The first write or seek
// that has to pass mMaxFileSize turns a plain file P into the second form by
// itself: P's bytes keep living as P.cfx.0, the info file takes the name P,
// and later segments get the numbers 1, 2... (P.cfx.1 first; "%s%s.%d": the info
// file's path, ".cfx", the number of segments before the new one).
//
// The info file is 8-bit text in the system code page, newline "\n":
//   # Velmorant c_files          the header (20 units, the last a blank);
//                                AddVideoFile writes two blanks
//   movie.mpv.cfx.0              one segment path a line, as given:
//   movie.mpv.cfx.1              relative paths stay relative (to the
//                                current folder, not the info file's)
// Reading: a file is an info file when its first line starts with the 19
// units "# Velmorant c_files" (case counts; the rest of the line is not
// looked at). Lines starting with '#' are comments. Every other line is a
// path with one newline cut ("\r\n" counts as one); blanks stay, and an
// empty line is an empty path. At most 2,048 paths: the 2,049th fails the
// opening, and an info file with no path opens nothing (-1).
//
// Results: 0 or a count for success, a negative number for failure;
// nothing here reports through CMessageAction (the segments' MFileUniv
// reports its own failures). Exactly one segment is open, in mCurrentFile;
// mCurrentFileNum counts from 1 and is -1 while the logical file is closed.
// FClose forgets the segments; mInfoFileSpec and mMaxFileSize stay. FOpen
// appends to what the object holds: a caller closes first. FTell64 and the
// results of FSeek64 with kSeekEnd and kSeekCurrent are positions inside the
// open segment, as is FSeek64's result when a seek from the start only
// lengthens the last segment.
//
// Crash safety. A process killed at any system call of a write, a roll-over
// or a growing seek leaves a logical file that opens with every byte that a
// returned FWrite reported written. The steps are ordered for it:
//   - a plain file P becomes segmented by linking P.cfx.0 to P's bytes,
//     writing the new info file beside P, syncing it, and renaming it over P
//     (the folder is synced after): P always names either the plain file or
//     the complete info file;
//   - a new segment is created (and sized, by a seek) and its folder synced
//     before its line is appended to the info file; a line goes out in one
//     write and is synced. A killed roll-over or seek may leave an unlisted
//     segment or P.cfx.new beside P; the next one replaces them.
//   - where the file system has no hard links (FAT, exFAT), the whole info
//     file is written and synced as P.cfx.new before P is renamed to P.cfx.0
//     and P.cfx.new to P. A kill between the two renames leaves nothing at
//     P; FOpen then finds P.cfx.new, a whole info file whose first segment
//     exists, and renames it to P before it goes on.
// After a power cut the info file and the names it lists are intact, but
// segment data is only as durable as the system's write-back made it:
// segments are not synced.
//
// Choices of this port:
//   - Reading across a segment end (FRead, FGets, FGetts) opens the next
//     segment so that it keeps its contents and reads from its start: a
//     logical file opened in mode 2, 3, 5 or 6 moves in mode 9, in 4 or 8 in
//     mode 7; other modes move in their own mode. Writing across moves in
//     the opening mode, so a mode that empties files empties an existing
//     following segment that a write reaches.
//   - FWrite from a position at or behind mMaxFileSize (the limit was
//     lowered, or FPuts wrote past it) leaves the segment as it is and puts
//     the whole count in the next segment, made if needed.
//   - A copy (construction or assignment) is closed: it has the logical
//     path, the open mode, the info file, the limit, the video count and the
//     two client marks, and no segments; FOpen gives it its own view.
//     Assigning to an open object closes it first.
//   - A failed FOpen (of any kind) leaves the object closed, its list empty.
//   - FWrite answers what is on the file: a short first part ends the call
//     without rolling over. A roll-over or growing seek that cannot make,
//     open or list a new segment answers -1, and a failed switch to an
//     info file leaves the plain file and its names as they were. As after
//     any failed move to another segment, the object then needs FClose and
//     FOpen before it reads or writes again.
//   - A write or seek that would need a 2,049th segment (no opening could
//     read it back), or a roll-over with mMaxFileSize below 1, answers -1
//     and makes nothing.
//   - On a closed logical file FRead, FWrite, FSeek64, FGets and FGetts
//     answer -1, FReadOverlapped 0xFFFFFFFF.
//   - A seek origin other than kSeekBegin and kSeekEnd acts as kSeekCurrent.
//   - AddToInfoFile starts a new info file only when nothing is at its path.
//   - ChangeAllFilesDirectory writes the new info file beside the old one
//     and renames it over it.
//   - FReadOverlapped's first look-up of mSegmentEnd counts the segments
//     before the open one, so it may follow FRead or FSeek64.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/containers/LList.h>
#include <basicutils/files/MFile.h>
#include <basicutils/files/MFileUniv.h>
#include <basicutils/text/MStringList.h>

#include <cstdint>

namespace basicutils {

class BASICUTILS_EXPORT MFiles : public MFile {
  public:
    MFiles();
    MFiles(const MFiles& other);
    MFiles& operator=(const MFiles& other);
    ~MFiles() override;

    int FCreate() override;  // does nothing, 0
    // Deletes the segments and the info file; always 0.
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
    // Sum of the segments' sizes by opening each; -1 when one cannot open.
    int64_t GetSize() override;
    // The path of the open segment, not of the logical file.
    MString GetFilePath() override;

    virtual int FOpen(const char16_t* path, file_open_t mode);
    // Sum of the segments' sizes by status; the first failure as it came.
    virtual int64_t FGetFileSize();
    virtual int FGetts(char16_t* destination, int n);
    virtual int FPutts(char16_t* text);

    // Opens the given segments (copies; the items stay the caller's).
    int FOpen(LList& list, file_open_t mode);
    int FStat(const char16_t* path, struct _stati64* status);

    // The info file.
    int NewInfo(MFileSpecWin& spec);
    int AddToInfoFile(MFileSpecWin& spec);
    int AddVideoFile(MFileSpecWin& spec);
    void ChangeAllFilesDirectory(const char16_t* directory);
    MString& GetInfoFilePath() { return mInfoFileSpec.GetFilePath(); }

    // The segments.
    LList* GetFileNames() { return &mFileList; }
    int GetFileNum() const { return static_cast<int>(mFileList.GetCount()); }
    int GetCurrentFileNum() const { return mCurrentFileNum; }
    MFileSpecWin& GetFileName() { return mCurrentFile.GetFileSpec(); }
    void SetMaxFileSize(int64_t size) { mMaxFileSize = size; }

    // Marks for clients; nothing in the library reads them.
    int32_t SetInfoFilesOnly();
    int32_t UnSetInfoFilesOnly();
    bool IsInfoFilesOnly() const { return mInfoFilesOnly; }
    int32_t SetInfoFilesNameList(MStringList* list);

    // Asynchronous reading at logical offsets, in an overlapped open mode.
    // Only the last piece of a read that crosses segment ends is in flight
    // when the call returns; `size` changes only at the end of the file
    // (ERROR_HANDLE_EOF, 38).
    uint32_t FReadOverlapped(int64_t offset, char* buffer, int32_t& size, _OVERLAPPED* overlapped,
                             void* event);
    uint32_t FWaitOverlappedCompletion(void* event, uint32_t seconds);
    // Concatenation into the open segment (see MFileUniv).
    int32_t ConcatInitialize(int32_t blockSize, int64_t outputOffset);
    int32_t ConcatFile(char16_t* path, int32_t unused, bool& cancel);
    int32_t ConcatBufferSynchronously(char* buffer, int32_t size);

    // Whether the logical file (every segment it lists) can be stated.
    static bool FileExist(const char16_t* path);
    // The header test on a path.
    static bool IsVelmorantMFiles(MString& path);

  protected:
    // Turns the last segment, a plain file, into segment 0 of a new info
    // file under its name. mCurrentFile is closed before the call.
    int DoSwitchToInfoFile();
    void DeleteAll();
    // The switch where the file system has no second names for a file, and
    // its end, for a switch that a killed process left between its renames:
    // true when P.cfx.new, a whole info file, took the name `path`.
    int SwitchWithoutLink(const MString& plain, const MString& first, const MString& text);
    static bool FinishSwitch(const MString& path);

    LList mFileList;  // MFileSpecWin*, owned
    MFileUniv mCurrentFile;
    int mCurrentFileNum;
    file_open_t mOpenMode;
    MFileSpecWin mInfoFileSpec;
    int mVideoFileCount;
    int64_t mMaxFileSize;
    bool mInfoFilesOnly;
    MStringList mInfoFilesNameList;
    int64_t mSegmentEnd;
    int64_t mSegmentSize;

  private:
    MFileSpecWin* SpecAt(int index) const;
    void AppendSpec(const MFileSpecWin& spec);
    // Closes the open segment and opens segment `index` in `mode`.
    int MoveTo(int index, file_open_t mode);
    // Makes, lists and appends the next segment; `size` bytes long when
    // `size` is not negative (a growing seek), else opened in mOpenMode as
    // mCurrentFile (a roll-over).
    int AddSegment(int64_t size);
    void CloseAfterFailure();
    int64_t SeekFromStart(int64_t offset);
    int GrowBySegments(int64_t offset, int64_t start);
    // FReadOverlapped's bookkeeping: where the open segment lies, and the
    // step to the next one (0 or the failure of the opening).
    void LookUpSegment();
    uint32_t NextSegmentOverlapped();
    void CopySettings(const MFiles& other);
};

// The header test: 1 when the file's first line starts with the 19 units
// "# Velmorant c_files", else 0.
BASICUTILS_EXPORT int IsVelmorantMFiles(MFileSpecWin& spec);

}  // namespace basicutils
