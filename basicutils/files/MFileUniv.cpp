// MFileUniv: opening and closing in both worlds, copies, status and the
// cache. Reading, writing, seeking and text are in MFileUnivTransfer.cpp.
#include <basicutils/files/MFileUniv.h>
#include <basicutils/files/internal/Reports.h>
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/Handles.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace basicutils {

namespace {

struct RuntimeMode {
    int flags;
    const char16_t* stream;
    bool atEnd;
    bool chmod;
};

// Modes 0 to 9.
constexpr RuntimeMode kRuntimeModes[] = {
    {_O_RDONLY, u"r", false, false},
    {_O_RDONLY | _O_BINARY, u"r", false, false},
    {_O_RDWR | _O_CREAT | _O_TRUNC | _O_BINARY, u"w", false, true},
    {_O_RDWR | _O_CREAT | _O_TRUNC | _O_BINARY, u"w", false, true},
    {_O_RDWR | _O_CREAT | _O_TRUNC, u"w", false, true},
    {_O_RDWR | _O_CREAT | _O_BINARY, u"w", true, true},
    {_O_RDWR | _O_CREAT | _O_BINARY, u"w", true, true},
    {_O_RDWR | _O_CREAT, u"r+", false, true},
    {_O_RDWR | _O_CREAT, u"w", true, true},
    {_O_RDWR | _O_CREAT | _O_BINARY, u"r+", false, true},
};

struct OverlappedMode {
    DWORD access;
    DWORD disposition;
    DWORD flags;
};

// Modes 11 to 14.
constexpr OverlappedMode kOverlappedModes[] = {
    {GENERIC_WRITE, CREATE_ALWAYS,
     FILE_FLAG_OVERLAPPED | FILE_FLAG_NO_BUFFERING | FILE_FLAG_SEQUENTIAL_SCAN},
    {GENERIC_WRITE, OPEN_ALWAYS,
     FILE_FLAG_OVERLAPPED | FILE_FLAG_NO_BUFFERING | FILE_FLAG_SEQUENTIAL_SCAN},
    {GENERIC_READ, OPEN_EXISTING, FILE_FLAG_OVERLAPPED | FILE_FLAG_NO_BUFFERING},
    {GENERIC_READ | GENERIC_WRITE, OPEN_EXISTING, FILE_FLAG_OVERLAPPED | FILE_FLAG_NO_BUFFERING},
};

constexpr int kOwnerReadWrite = 0x180;

}  // namespace

MFileUniv::MFileUniv()
    : mCache(nullptr),
      mLogicalOffset(0),
      mPhysicalOffset(0),
      mCacheLength(0),
      mStream(nullptr),
      mDescriptor(-1),
      mOpenMode(kOpenReadText),
      mIsOverlapped(0),
      mSectorSkew(0),
      mConcat(),
      mHandle(INVALID_HANDLE_VALUE) {}

MFileUniv::MFileUniv(const MFileUniv& other) : MFile(other), mCache(nullptr) {
    CopyFrom(other);
}

MFileUniv& MFileUniv::operator=(const MFileUniv& other) {
    if (this == &other) return *this;
    FClose();
    MFile::operator=(other);
    CopyFrom(other);
    return *this;
}

void MFileUniv::CopyFrom(const MFileUniv& other) {
    delete[] mCache;
    mCache = nullptr;
    if (other.mCache && other.mCacheLength > 0) {
        mCache = new char[static_cast<size_t>(other.mCacheLength)];
        std::memcpy(mCache, other.mCache, static_cast<size_t>(other.mCacheLength));
    }
    mLogicalOffset = other.mLogicalOffset;
    mPhysicalOffset = other.mPhysicalOffset;
    mCacheLength = mCache ? other.mCacheLength : 0;
    mStream = other.mStream;
    mDescriptor = other.mDescriptor;
    mOpenMode = other.mOpenMode;
    mIsOverlapped = other.mIsOverlapped;
    mSectorSkew = other.mSectorSkew;
    mConcat = SConcatState();  // the concatenation stays with the original
    mHandle = other.mHandle;
    mViews = other.mViews;
}

MFileUniv::~MFileUniv() {
    MFileUniv::FClose();
    delete[] mCache;
    if (mHandle != INVALID_HANDLE_VALUE && LastView()) CloseHandle(mHandle);
}

bool MFileUniv::LastView() const {
    return !mViews || mViews.use_count() == 1;
}

void MFileUniv::ForgetFile() {
    mStream = nullptr;
    mDescriptor = -1;
    mHandle = INVALID_HANDLE_VALUE;
    mIsOverlapped = 0;
    mViews.reset();
}

int MFileUniv::FCreate() {
    const int fd = _wopen(GetFileSpec().GetFilePath(), _O_WRONLY | _O_CREAT | _O_TRUNC);
    if (fd == -1) return -1;
    mDescriptor = fd;
    mStream = _wfdopen(fd, u"w");
    _lseek(fd, 0, SEEK_SET);
    mIsOverlapped = 0;
    mViews = std::make_shared<int>(0);
    return 0;
}

int MFileUniv::FDelete() {
    return 0;
}

int MFileUniv::FOpen(MFileSpecWin& spec, file_open_t mode) {
    SetFileSpec(spec);
    return FOpen(mode);
}

int MFileUniv::FOpen(const char16_t* path, file_open_t mode) {
    GetFileSpec().SetFilePathName(path);
    return FOpen(mode);
}

int MFileUniv::FOpen(file_open_t mode) {
    mOpenMode = mode;
    if (mode >= kOpenOverlappedCreate && mode <= kOpenOverlappedReadWrite)
        return OpenOverlapped(mode);
    if (mode < kOpenReadText || mode > kOpenUpdateBinary) return -1;

    const RuntimeMode& how = kRuntimeModes[mode];
    MString& path = GetFileSpec().GetFilePath();
    const int fd = _wopen(path, how.flags);
    if (fd == -1) {
        std::perror("ERROR");
        return -1;
    }
    mDescriptor = fd;
    mStream = _wfdopen(fd, how.stream);
    _lseeki64(fd, 0, how.atEnd ? SEEK_END : SEEK_SET);
    if (how.chmod) _wchmod(path, kOwnerReadWrite);
    mIsOverlapped = 0;
    mViews = std::make_shared<int>(0);
    return 0;
}

int MFileUniv::OpenOverlapped(file_open_t mode) {
    const OverlappedMode& how = kOverlappedModes[mode - kOpenOverlappedCreate];
    mIsOverlapped = 1;
    mHandle =
        CreateFileW(GetFileSpec().GetFilePath(), how.access, FILE_SHARE_READ | FILE_SHARE_WRITE,
                    nullptr, how.disposition, how.flags, nullptr);
    if (mHandle == INVALID_HANDLE_VALUE) {
        mIsOverlapped = 0;
        return -1;
    }
    mViews = std::make_shared<int>(0);
    return 0;
}

void MFileUniv::FClose() {
    ConcatRelease();
    if (mIsOverlapped) {
        if (LastView()) {
            CancelIo(mHandle);
            FlushFileBuffers(mHandle);
            CloseHandle(mHandle);
        }
        ForgetFile();
        return;
    }
    if (GetFileSpec().GetFilePath()[0] == 0) {
        ForgetFile();
        return;
    }
    if (mStream) {
        const int result = LastView() ? fclose(mStream) : 0;
        const int error = errno;
        ForgetFile();
        if (result == -1)
            detail::ReportError(u"Close file error(%s) in MFileUniv::FClose",
                                detail::ErrnoText(error));
    } else if (mDescriptor >= 0) {
        if (LastView()) _close(mDescriptor);
        ForgetFile();
    }
}

int MFileUniv::FStat(struct _stati64* status) {
    return _fstati64(mDescriptor, status);
}

int MFileUniv::FStat(const char16_t* path, struct _stati64* status) {
    return _wstati64(path, status);
}

int MFileUniv::FStat(MFileSpecWin& spec, struct _stati64* status) {
    const MString& path = spec.GetFilePath();
    if (path[0] == 0) return -1;
    return _wstati64(path, status);
}

int64_t MFileUniv::GetSize() {
    if (mIsOverlapped) {
        DWORD high = 0;
        const DWORD low = GetFileSize(mHandle, &high);
        if (low == INVALID_FILE_SIZE && GetLastError() != 0) return -1;
        return static_cast<int64_t>((static_cast<uint64_t>(high) << 32) | low);
    }
    struct _stati64 status {};
    if (_wstati64(GetFileSpec().GetFilePath(), &status) != 0) return -1;
    return status.st_size;
}

int MFileUniv::FSetEndOfFile() {
    const intptr_t handle = _get_osfhandle(mDescriptor);
    if (handle == -1) return -1;
    return SetEndOfFile(reinterpret_cast<HANDLE>(handle)) ? 0 : -1;
}

int MFileUniv::FSetFileSize(int64_t size) {
    LONG high = static_cast<LONG>(static_cast<uint64_t>(size) >> 32);
    const LONG low = static_cast<LONG>(static_cast<uint32_t>(size));
    if (SetFilePointer(mHandle, low, &high, FILE_BEGIN) == INVALID_SET_FILE_POINTER &&
        GetLastError() != 0)
        return -1;
    return SetEndOfFile(mHandle) ? 0 : -1;
}

int32_t MFileUniv::GetIdealCacheSize() {
    const int64_t eighth = GetSize() / 8;
    return static_cast<int32_t>(std::clamp<int64_t>(eighth, 100000, 500000));
}

void MFileUniv::ResetCache() {
    if (mDescriptor < 0) return;
    mPhysicalOffset = _lseeki64(mDescriptor, mLogicalOffset, SEEK_SET);
    delete[] mCache;
    mCache = nullptr;
    mCacheLength = 0;
}

void MFileUniv::ReadCache() {
    if (mDescriptor < 0) return;
    ResetCache();
    const int32_t size = GetIdealCacheSize();
    mCache = new char[static_cast<size_t>(size)];
    const int count = _read(mDescriptor, mCache, static_cast<unsigned>(size));
    mCacheLength = count > 0 ? count : 0;
    mPhysicalOffset += mCacheLength;
}

void MFileUniv::ReadPhysicalOffset() {
    mLogicalOffset = _telli64(mDescriptor);
}

void MFileUniv::SyncLogicalOffset() {
    mLogicalOffset = mPhysicalOffset;
    delete[] mCache;
    mCache = nullptr;
    mCacheLength = 0;
}

}  // namespace basicutils
