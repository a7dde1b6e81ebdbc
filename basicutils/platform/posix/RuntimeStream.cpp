// The runtime's buffered stream over a descriptor.
#include <basicutils/platform/RuntimeStream.h>
#include <basicutils/platform/internal/Utf8.h>
#include <basicutils/platform/posix/FileObject.h>
#include <fcntl.h>

#include <climits>
#include <cstring>
#include <string>

namespace basicutils {

using detail::CurrentEnv;
using detail::RetryOnEintr;

class RuntimeStream {
  public:
    static constexpr size_t kBufferSize = 4096;

    RuntimeStream(int fd, bool canRead, bool canWrite, bool append, bool text)
        : mFd(fd), mCanRead(canRead), mCanWrite(canWrite), mAppend(append), mText(text) {}

    int Fd() const { return mFd; }
    bool Text() const { return mText; }
    bool& Eof() { return mEof; }
    bool& Error() { return mError; }

    // Reading: the next byte as the stream's mode gives it ("\r\n" read as
    // "\n" in text mode), or -1 at the end or on failure.
    int GetByte();
    // The next raw byte without taking it, or -1.
    int PeekByte() { return Ensure(1) ? static_cast<unsigned char>(mBuffer[mBegin]) : -1; }
    // Makes up to `count` raw bytes readable in a row; answers how many are.
    size_t Ensure(size_t count);
    const char* Raw() const { return mBuffer + mBegin; }
    void Skip(size_t count) { mBegin += count; }
    size_t ReadBinary(char* to, size_t count);
    bool StartReading();

    // Writing: takes bytes into the buffer, writing out when it fills.
    bool Put(const char* from, size_t count);
    // Writes out pending bytes; read-ahead is dropped. False on failure.
    bool Flush();

    int Seek(int64_t offset, int origin);
    int64_t Tell();

    char16_t mPendingUnit = 0;  // the second unit of a pair fgetws cut

  private:
    enum class State { kIdle, kReading, kWriting };
    bool Fail(int error);
    bool FailFromErrno() { return Fail(errno); }
    bool WriteAll(const char* from, size_t count);
    bool StartWriting();

    const int mFd;
    const bool mCanRead, mCanWrite, mAppend, mText;
    State mState = State::kIdle;
    bool mEof = false, mError = false;
    size_t mBegin = 0, mEnd = 0;  // reading: unread bytes; writing: mEnd pending
    char mBuffer[kBufferSize];
};

bool RuntimeStream::Fail(int error) {
    errno = error;
    SetLastErrorFromErrno(error);
    mError = true;
    return false;
}

bool RuntimeStream::StartReading() {
    if (mState == State::kReading) return true;
    if (!mCanRead) return Fail(EBADF);
    if (mState == State::kWriting && !Flush()) return false;
    mState = State::kReading;
    mBegin = mEnd = 0;
    return true;
}

bool RuntimeStream::StartWriting() {
    if (mState == State::kWriting) return true;
    if (!mCanWrite) return Fail(EBADF);
    if (mState == State::kReading && mEnd > mBegin) {
        // Put the descriptor back where the stream stands before writing.
        const off_t back = -static_cast<off_t>(mEnd - mBegin);
        if (RetryOnEintr([&] { return CurrentEnv().Lseek(mFd, back, SEEK_CUR); }) < 0)
            return FailFromErrno();
    }
    mState = State::kWriting;
    mBegin = mEnd = 0;
    return true;
}

size_t RuntimeStream::Ensure(size_t count) {
    if (mState != State::kReading && !StartReading()) return 0;
    if (mEnd - mBegin >= count || mEof) return mEnd - mBegin;
    std::memmove(mBuffer, mBuffer + mBegin, mEnd - mBegin);
    mEnd -= mBegin;
    mBegin = 0;
    while (mEnd < count) {
        const ssize_t got = RetryOnEintr(
            [&] { return CurrentEnv().Read(mFd, mBuffer + mEnd, kBufferSize - mEnd); });
        if (got < 0) {
            FailFromErrno();
            break;
        }
        if (got == 0) {
            mEof = true;
            break;
        }
        mEnd += static_cast<size_t>(got);
    }
    return mEnd - mBegin;
}

int RuntimeStream::GetByte() {
    if (!Ensure(1)) return -1;
    const int c = static_cast<unsigned char>(mBuffer[mBegin++]);
    if (c == '\r' && mText && PeekByte() == '\n') {
        ++mBegin;
        return '\n';
    }
    return c;
}

size_t RuntimeStream::ReadBinary(char* to, size_t count) {
    size_t done = 0;
    while (done < count) {
        const size_t available = Ensure(1);
        if (!available) break;
        const size_t take = available < count - done ? available : count - done;
        std::memcpy(to + done, mBuffer + mBegin, take);
        mBegin += take;
        done += take;
    }
    return done;
}

bool RuntimeStream::WriteAll(const char* from, size_t count) {
    if (mAppend && RetryOnEintr([&] { return CurrentEnv().Lseek(mFd, 0, SEEK_END); }) < 0)
        return FailFromErrno();
    int idle = 0;  // writes in a row that took nothing
    while (count > 0) {
        const ssize_t put = RetryOnEintr([&] { return CurrentEnv().Write(mFd, from, count); });
        if (put < 0) return FailFromErrno();
        if (put == 0 && ++idle == 3) return Fail(ENOSPC);
        if (put > 0) idle = 0;
        from += put;
        count -= static_cast<size_t>(put);
    }
    return true;
}

bool RuntimeStream::Put(const char* from, size_t count) {
    if (!StartWriting()) return false;
    if (mEnd + count <= kBufferSize) {
        std::memcpy(mBuffer + mEnd, from, count);
        mEnd += count;
        return mEnd < kBufferSize || Flush();
    }
    // A large piece goes straight out, after what is pending.
    if (!Flush()) return false;
    mState = State::kWriting;
    return WriteAll(from, count);
}

bool RuntimeStream::Flush() {
    bool ok = true;
    if (mState == State::kWriting && mEnd > 0) ok = WriteAll(mBuffer, mEnd);
    mBegin = mEnd = 0;
    mState = State::kIdle;
    return ok;
}

int64_t RuntimeStream::Tell() {
    const off_t at = RetryOnEintr([&] { return CurrentEnv().Lseek(mFd, 0, SEEK_CUR); });
    if (at < 0) return FailFromErrno(), -1;
    if (mState == State::kReading) return at - static_cast<off_t>(mEnd - mBegin);
    if (mState == State::kWriting) return at + static_cast<off_t>(mEnd);
    return at;
}

int RuntimeStream::Seek(int64_t offset, int origin) {
    int64_t base = 0;
    if (origin == SEEK_CUR) {
        base = Tell();
        if (base < 0) return -1;
    } else if (origin == SEEK_END) {
        if (!Flush()) return -1;
        struct stat status;
        if (RetryOnEintr([&] { return CurrentEnv().Fstat(mFd, &status); }) != 0)
            return FailFromErrno(), -1;
        base = status.st_size;
    } else if (origin != SEEK_SET) {
        return Fail(EINVAL), -1;
    }
    const int64_t target = base + offset;
    if (target < 0 || target > INT32_MAX) return Fail(EINVAL), -1;
    if (!Flush()) return -1;
    if (RetryOnEintr([&] { return CurrentEnv().Lseek(mFd, target, SEEK_SET); }) < 0)
        return FailFromErrno(), -1;
    mEof = false;
    mPendingUnit = 0;
    return 0;
}

namespace {

// Parses a stream mode; false for one that is not.
bool ParseMode(const char16_t* mode, bool& canRead, bool& canWrite, bool& append, int& text) {
    if (!mode) return false;
    switch (mode[0]) {
        case u'r':
            canRead = true;
            break;
        case u'w':
            canWrite = true;
            break;
        case u'a':
            canWrite = append = true;
            break;
        default:
            return false;
    }
    for (const char16_t* p = mode + 1; *p; ++p) {
        if (*p == u'+')
            canRead = canWrite = true;
        else if (*p == u'b' || *p == u't')
            text = *p == u't';
        else if (*p != u'c' && *p != u'n')  // the legacy commit flags: no effect
            return false;
    }
    return true;
}

void AppendUnit(std::string& out, char16_t unit) {
    out.push_back(static_cast<char>(unit & 0xFF));
    out.push_back(static_cast<char>(unit >> 8));
}

// A 16-bit text as the stream holds it on disk.
std::string Encode(const char16_t* text, bool asUtf8) {
    std::string out;
    for (const char16_t* p = text; *p; ++p) {
        if (!asUtf8) {
            AppendUnit(out, *p);
        } else if (*p >= 0xD800 && *p <= 0xDBFF && p[1] >= 0xDC00 && p[1] <= 0xDFFF) {
            detail::AppendUtf8(out, 0x10000 + ((char32_t(*p) - 0xD800) << 10) + (p[1] - 0xDC00));
            ++p;
        } else {
            detail::AppendUtf8(out, (*p >= 0xD800 && *p <= 0xDFFF) ? 0xFFFD : *p);
        }
    }
    return out;
}

// The next 16-bit unit of a stream, or -1. A supplementary character gives
// its first unit and leaves the second pending.
int32_t GetUnit(RuntimeStream& stream) {
    if (stream.mPendingUnit) {
        const char16_t unit = stream.mPendingUnit;
        stream.mPendingUnit = 0;
        return unit;
    }
    if (!stream.Text()) {
        if (stream.Ensure(2) < 2) return -1;
        const auto* raw = reinterpret_cast<const unsigned char*>(stream.Raw());
        stream.Skip(2);
        return raw[0] | raw[1] << 8;
    }
    const int first = stream.PeekByte();
    if (first < 0) return -1;
    if (first < 0x80) return stream.GetByte();
    const size_t available = stream.Ensure(4);
    char32_t c = 0;
    bool valid = false;
    stream.Skip(detail::DecodeUtf8(std::string_view(stream.Raw(), available), c, valid));
    if (!valid) return 0xFFFD;
    if (c < 0x10000) return static_cast<int32_t>(c);
    stream.mPendingUnit = static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
    return static_cast<int32_t>(0xD800 + ((c - 0x10000) >> 10));
}

}  // namespace

RuntimeStream* _wfdopen(int fd, const char16_t* mode) {
    bool canRead = false, canWrite = false, append = false;
    int text = -1;
    if (!ParseMode(mode, canRead, canWrite, append, text)) return detail::FailWith(EINVAL, nullptr);
    if (RetryOnEintr([&] { return CurrentEnv().Fcntl(fd, F_GETFD, 0); }) < 0)
        return detail::FailFromErrno(nullptr);
    if (text < 0) text = detail::IsTextDescriptor(fd);
    return new RuntimeStream(fd, canRead, canWrite, append, text == 1);
}

size_t fread(void* buffer, size_t size, size_t count, RuntimeStream* stream) {
    if (size == 0 || count == 0) return 0;
    if (count > SIZE_MAX / size) return detail::FailWith(EINVAL, size_t{0});
    const size_t total = size * count;
    auto* to = static_cast<char*>(buffer);
    size_t done = 0;
    if (!stream->Text()) {
        done = stream->ReadBinary(to, total);
    } else {
        for (int c; done < total && (c = stream->GetByte()) >= 0;)
            to[done++] = static_cast<char>(c);
    }
    return done / size;
}

size_t fwrite(const void* buffer, size_t size, size_t count, RuntimeStream* stream) {
    if (size == 0 || count == 0) return 0;
    if (count > SIZE_MAX / size) return detail::FailWith(EINVAL, size_t{0});
    return stream->Put(static_cast<const char*>(buffer), size * count) ? count : 0;
}

char* fgets(char* buffer, int n, RuntimeStream* stream) {
    if (n <= 0) return detail::FailWith(EINVAL, nullptr);
    int done = 0;
    while (done < n - 1) {
        const int c = stream->GetByte();
        if (c < 0) break;
        buffer[done++] = static_cast<char>(c);
        if (c == '\n') break;
    }
    if (done == 0 && n > 1) return nullptr;
    buffer[done] = 0;
    return buffer;
}

int fputs(const char* text, RuntimeStream* stream) {
    return stream->Put(text, std::strlen(text)) ? 0 : -1;
}

char16_t* fgetws(char16_t* buffer, int n, RuntimeStream* stream) {
    if (n <= 0) return detail::FailWith(EINVAL, nullptr);
    int done = 0;
    while (done < n - 1) {
        const int32_t unit = GetUnit(*stream);
        if (unit < 0) break;
        buffer[done++] = static_cast<char16_t>(unit);
        if (unit == u'\n') break;
    }
    if (done == 0 && n > 1) return nullptr;
    buffer[done] = 0;
    return buffer;
}

int fputws(const char16_t* text, RuntimeStream* stream) {
    const std::string bytes = Encode(text, stream->Text());
    return stream->Put(bytes.data(), bytes.size()) ? 0 : -1;
}

int fseek(RuntimeStream* stream, int32_t offset, int origin) {
    return stream->Seek(offset, origin);
}

int32_t ftell(RuntimeStream* stream) {
    const int64_t position = stream->Tell();
    if (position > INT32_MAX) return detail::FailWith(EINVAL, -1);
    return static_cast<int32_t>(position);
}

int fclose(RuntimeStream* stream) {
    bool ok = stream->Flush();
    const int error = errno;
    if (_close(stream->Fd()) != 0)
        ok = false;
    else if (!ok)
        errno = error;
    delete stream;
    return ok ? 0 : -1;
}

int _fileno(RuntimeStream* stream) {
    return stream->Fd();
}

int feof(RuntimeStream* stream) {
    return stream->Eof() ? 1 : 0;
}

int ferror(RuntimeStream* stream) {
    return stream->Error() ? 1 : 0;
}

void clearerr(RuntimeStream* stream) {
    stream->Eof() = false;
    stream->Error() = false;
}

namespace detail {
int FlushStream(RuntimeStream* stream) {
    return stream->Flush() ? 0 : -1;
}
}  // namespace detail

}  // namespace basicutils
