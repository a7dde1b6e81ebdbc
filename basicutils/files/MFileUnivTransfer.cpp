// MFileUniv: reading, writing, seeking and the text operations.
#include <basicutils/files/MFileUniv.h>
#include <basicutils/files/internal/Reports.h>
#include <basicutils/text/WideString.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <memory>
#include <new>

namespace basicutils {

namespace {

int Whence(file_seek_t origin) {
    if (origin == kSeekBegin) return SEEK_SET;
    if (origin == kSeekEnd) return SEEK_END;
    return SEEK_CUR;
}

constexpr int64_t kStreamLimit = 0x7FFFFFFF;

// The byte count of a line read for n units of FGetts: 2n, or 0 when n is
// not a usable limit.
int LineLimit(int n) {
    return n > 0 && n <= INT_MAX / 2 ? 2 * n : 0;
}

}  // namespace

int MFileUniv::FRead(char* buffer, int count) {
    if (mDescriptor < 0 || count < 0) return -1;
    const int read = _read(mDescriptor, buffer, static_cast<unsigned>(count));
    if (read == -1)
        detail::ReportError(u"Read file error(%s) (MFileUniv::FRead)", detail::ErrnoText(errno));
    return read;
}

int MFileUniv::FWrite(char* buffer, int count) {
    if (mDescriptor < 0 || count < 0) return -1;
    int written = 0;
    while (written < count) {
        const int once =
            _write(mDescriptor, buffer + written, static_cast<unsigned>(count - written));
        if (once <= 0) return written > 0 ? written : once;
        written += once;
    }
    return written;
}

int MFileUniv::FReadVoid(void* buffer, int size, int count) {
    if (mDescriptor < 0 || !mStream || size < 0 || count < 0) return -1;
    const size_t items =
        fread(buffer, static_cast<size_t>(size), static_cast<size_t>(count), mStream);
    if (items < static_cast<size_t>(count) && ferror(mStream)) {
        const int error = errno;
        clearerr(mStream);
        detail::ReportError(u"Read file error(%s) (MFileUniv::FReadVoid)",
                            detail::ErrnoText(error));
    }
    return static_cast<int>(items);
}

int MFileUniv::FWriteVoid(void* buffer, int size, int count) {
    if (mDescriptor < 0 || !mStream || size < 0 || count < 0) return -1;
    return static_cast<int>(
        fwrite(buffer, static_cast<size_t>(size), static_cast<size_t>(count), mStream));
}

int MFileUniv::FSeek(int32_t offset, file_seek_t origin) {
    if (mDescriptor < 0) return -1;
    if (mStream) fflush(mStream);
    const int32_t position = _lseek(mDescriptor, offset, Whence(origin));
    if (mStream && position >= 0) fseek(mStream, position, SEEK_SET);
    return position;
}

int64_t MFileUniv::FSeek64(int64_t offset, file_seek_t origin) {
    if (mDescriptor < 0) return -1;
    if (mStream) fflush(mStream);
    const int64_t position = _lseeki64(mDescriptor, offset, Whence(origin));
    if (mStream && position >= 0 && position <= kStreamLimit)
        fseek(mStream, static_cast<int32_t>(position), SEEK_SET);
    return position;
}

int64_t MFileUniv::FTell64(int64_t& position) {
    if (mIsOverlapped) return 0;
    if (mDescriptor < 0) return -1;
    position = _telli64(mDescriptor);
    return position < kStreamLimit ? position : -1;
}

int MFileUniv::FTell(int& position) {
    position = _tell(mDescriptor);
    return position;
}

int MFileUniv::FGets(char* buffer, int count) {
    if (!mStream) return -1;
    return fgets(buffer, count, mStream) ? 0 : -1;
}

int MFileUniv::FPuts(char* text) {
    if (!mStream) return -1;
    return fputs(text, mStream);
}

int MFileUniv::FGetts(char16_t* destination, int n) {
    if (!mStream) return -1;
    const int limit = LineLimit(n);
    if (limit == 0) return -1;
    std::unique_ptr<char[]> line(new (std::nothrow) char[static_cast<size_t>(limit) + 1]);
    if (!line) return -1;
    if (!fgets(line.get(), limit, mStream)) return -1;
    MString wide;
    wide.ImportASCII(line.get(), -1);  // up to the first zero byte
    wcscpy(destination, wide);
    return 0;
}

int MFileUniv::FPutts(char16_t* text) {
    if (!mStream) return -1;
    const MString wide(text);
    const size_t units = wcslen(wide);
    if (units > static_cast<size_t>(INT_MAX / 3)) return -1;
    const int size = static_cast<int>(3 * units);
    std::unique_ptr<char[]> narrow(new (std::nothrow) char[static_cast<size_t>(size) + 1]);
    if (!narrow) return -1;
    wide.ExportASCII(narrow.get(), size, kCharacterSetWindows);
    return fputs(narrow.get(), mStream);
}

int MFileUniv::FGettsForUnicodeFile(char16_t* destination, int n) {
    if (!mStream) return -1;
    const int limit = LineLimit(n);
    if (limit == 0) return -1;
    return fgetws(destination, limit, mStream) ? 0 : -1;
}

int MFileUniv::FPuttsForUnicodeFile(char16_t* text) {
    if (!mStream) return -1;
    return fputws(text, mStream);
}

}  // namespace basicutils
