// MFiles: reading, writing and seeking across the segments, and the growth
// of the logical file by new segments.
#include <basicutils/files/MFiles.h>
#include <basicutils/files/internal/InfoFile.h>
#include <basicutils/platform/internal/DurableNames.h>

#include <algorithm>

namespace basicutils {

namespace {

// The mode a read moves to the next segment in: its contents kept, from its
// start.
file_open_t ReadingMode(file_open_t mode) {
    switch (mode) {
        case kOpenWriteBinary:
        case kOpenRewriteBinary:
        case kOpenAppendBinary:
        case kOpenAppendBinaryAlt:
            return kOpenUpdateBinary;
        case kOpenWriteText:
        case kOpenAppendText:
            return kOpenUpdateText;
        default:
            return mode;
    }
}

// The mode a seek reopens segments in: their contents kept.
file_open_t SeekingMode(file_open_t mode) {
    switch (mode) {
        case kOpenWriteBinary:
        case kOpenRewriteBinary:
        case kOpenAppendBinary:
        case kOpenAppendBinaryAlt:
            return kOpenAppendBinaryAlt;
        case kOpenWriteText:
        case kOpenAppendText:
            return kOpenAppendText;
        default:
            return mode;
    }
}

}  // namespace

int MFiles::MoveTo(int index, file_open_t mode) {
    mCurrentFile.FClose();
    mCurrentFileNum = index;
    MFileSpecWin* spec = SpecAt(index);
    if (!spec) return -1;
    return mCurrentFile.FOpen(*spec, mode);
}

int MFiles::FRead(char* buffer, int count) {
    if (mCurrentFileNum < 0) return -1;
    if (count <= 0) return 0;
    int done = 0;
    for (;;) {
        const int read = mCurrentFile.FRead(buffer + done, count - done);
        if (read < 0) return read;
        done += read;
        if (done == count) return done;
        if (read > 0) continue;  // a short read is not yet the segment's end
        if (mCurrentFileNum == GetFileNum()) return done;
        if (mCurrentFileNum > GetFileNum()) return -1;
        const int opened = MoveTo(mCurrentFileNum + 1, ReadingMode(mOpenMode));
        if (opened < 0) return opened;
    }
}

int MFiles::FWrite(char* buffer, int count) {
    if (mCurrentFileNum < 0) return -1;
    int64_t position = 0;
    mCurrentFile.FTell64(position);  // only the argument: the answer is -1 from 2 GiB on
    if (position + count <= mMaxFileSize) return mCurrentFile.FWrite(buffer, count);

    const bool needsSegment = mCurrentFileNum >= GetFileNum();
    if (mMaxFileSize < 1 || (needsSegment && GetFileNum() >= detail::kMaxSegments)) return -1;
    const int first = static_cast<int>(std::max<int64_t>(0, mMaxFileSize - position));
    const int written = mCurrentFile.FWrite(buffer, first);
    if (written < first) return written;  // a failure, or what the segment took

    mCurrentFile.FClose();
    ++mCurrentFileNum;
    const int opened = needsSegment ? AddSegment(-1) : MoveTo(mCurrentFileNum, mOpenMode);
    if (opened < 0) return opened;
    const int rest = mCurrentFile.FWrite(buffer + first, count - first);
    if (rest < 0) return rest;
    return first + rest;
}

// The new segment is on disk (and its folder synced) before its line is in
// the info file, and in the info file before anything is written to it. A
// file left under its name by a killed roll-over is not listed, so it goes.
int MFiles::AddSegment(int64_t size) {
    if (GetFileNum() >= detail::kMaxSegments) return -1;
    if (mInfoFileSpec.GetFilePath()[0] == 0 && DoSwitchToInfoFile() != 0) return -1;
    MString path;
    path.Format(u"%s%s.%d", static_cast<const char16_t*>(mInfoFileSpec.GetFilePath()),
                detail::kSegmentExtension, GetFileNum());
    MFileSpecWin spec(path);
    _wremove(path);  // a file of that name is not listed: not part of the logical file
    if (size < 0) {
        if (mCurrentFile.FOpen(spec, mOpenMode) != 0) return -1;
    } else {
        MFileUniv segment;
        if (segment.FOpen(spec, kOpenRewriteBinary) != 0) return -1;
        const bool sized =
            segment.FSeek64(size, kSeekBegin) == size && segment.FSetEndOfFile() == 0;
        segment.FClose();
        if (!sized) {
            _wremove(path);
            return -1;
        }
    }
    detail::SyncFolderOf(path);
    if (AddToInfoFile(spec) != 0) {
        mCurrentFile.FClose();
        _wremove(path);
        return -1;
    }
    AppendSpec(spec);
    return 0;
}

int MFiles::FSeek(int32_t offset, file_seek_t origin) {
    return static_cast<int>(static_cast<uint32_t>(FSeek64(offset, origin)));
}

int64_t MFiles::FSeek64(int64_t offset, file_seek_t origin) {
    if (mCurrentFileNum < 0) return -1;
    if (origin == kSeekBegin) return SeekFromStart(offset);
    if (origin != kSeekEnd) return mCurrentFile.FSeek64(offset, kSeekCurrent);
    const int opened = MoveTo(GetFileNum(), SeekingMode(mOpenMode));
    if (opened < 0) return opened;
    return mCurrentFile.FSeek64(offset, kSeekEnd);
}

int64_t MFiles::SeekFromStart(int64_t offset) {
    const file_open_t mode = SeekingMode(mOpenMode);
    if (mCurrentFileNum != 1) {
        const int opened = MoveTo(1, mode);
        if (opened < 0) return opened;
    }
    int64_t start = 0;
    for (;;) {
        struct _stati64 status {};
        const int stated = mCurrentFile.FStat(&status);
        if (stated < 0) return stated;
        int64_t size = status.st_size;
        if (offset <= start + size) {
            const int64_t at = mCurrentFile.FSeek64(offset - start, kSeekBegin);
            if (at < 0) return at;
            return at == offset - start ? offset : -1;
        }
        if (mCurrentFileNum >= GetFileNum()) {
            if (offset - start <= mMaxFileSize) {  // the last segment grows
                const int64_t at = mCurrentFile.FSeek64(offset - start, kSeekBegin);
                mCurrentFile.FSetEndOfFile();
                return at;
            }
            if (GrowBySegments(offset, start) != 0) return -1;
            size = mMaxFileSize;
        }
        start += size;
        const int opened = MoveTo(mCurrentFileNum + 1, mode);
        if (opened < 0) return opened;
    }
}

// The last segment is filled to mMaxFileSize and the rest of the way to
// `offset` is made of new segments, each listed once it exists.
int MFiles::GrowBySegments(int64_t offset, int64_t start) {
    if (mMaxFileSize < 1) return -1;
    int64_t remaining = offset - start - mMaxFileSize;
    const int64_t count = remaining / mMaxFileSize + (remaining % mMaxFileSize != 0);
    if (count > detail::kMaxSegments - GetFileNum()) return -1;
    mCurrentFile.FSeek64(mMaxFileSize, kSeekBegin);
    mCurrentFile.FSetEndOfFile();
    mCurrentFile.FClose();
    for (; remaining > 0; remaining -= mMaxFileSize)
        if (AddSegment(std::min(remaining, mMaxFileSize)) != 0) return -1;
    return 0;
}

int64_t MFiles::FTell64(int64_t& position) {
    mCurrentFile.FTell64(position);
    return 0;
}

int MFiles::FTell(int& position) {
    int64_t inSegment = position;
    FTell64(inSegment);
    position = static_cast<int>(static_cast<uint32_t>(inSegment));
    return 0;
}

int MFiles::FGets(char* buffer, int count) {
    if (mCurrentFileNum < 0) return -1;
    const int line = mCurrentFile.FGets(buffer, count);
    if (line >= 0 || mCurrentFileNum >= GetFileNum()) return line;
    const int opened = MoveTo(mCurrentFileNum + 1, ReadingMode(mOpenMode));
    return opened < 0 ? opened : mCurrentFile.FGets(buffer, count);
}

int MFiles::FGetts(char16_t* destination, int n) {
    if (mCurrentFileNum < 0) return -1;
    const int line = mCurrentFile.FGetts(destination, n);
    if (line >= 0 || mCurrentFileNum >= GetFileNum()) return line;
    const int opened = MoveTo(mCurrentFileNum + 1, ReadingMode(mOpenMode));
    return opened < 0 ? opened : mCurrentFile.FGetts(destination, n);
}

int MFiles::FPuts(char* text) {
    return mCurrentFile.FPuts(text);
}

int MFiles::FPutts(char16_t* text) {
    return mCurrentFile.FPutts(text);
}

}  // namespace basicutils
