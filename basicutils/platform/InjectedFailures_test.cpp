// Every system call of the platform layer that can fail, failed once through
// the seam: what the caller is answered and the last error it reads after.
// One row per call and errno; transfers that the seam shortens are here too.
#include <basicutils/platform/CFile.h>
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/FileApi.h>
#include <basicutils/platform/FileTesting_test.h>
#include <basicutils/platform/RuntimeFiles.h>
#include <basicutils/platform/RuntimeStream.h>
#include <basicutils/platform/Threads.h>
#include <basicutils/platform/VirtualMemory.h>
#include <basicutils/platform/WinApp.h>
#include <basicutils/platform/testing/FaultEnv.h>

#include <filesystem>
#include <functional>

namespace basicutils {
namespace {

using testing::SysCall;

// The cause of the CFileException that `body` raises, after checking that
// its text and system error are the ones a caller is shown; -1: none raised.
int64_t Raised(const std::function<void()>& body, const char* what) {
    try {
        body();
    } catch (const CFileException& e) {
        EXPECT_STREQ(e.what(), what);
        EXPECT_EQ(static_cast<uint32_t>(e.m_lOsError), GetLastError());
        return e.m_cause;
    }
    return -1;
}

TEST(InjectedFailures, EachCallAnswersAndLeavesItsLastError) {
    testing::TempFolder folder;
    const std::u16string f = folder.Wide("f");
    struct App : CWinApp {
        explicit App(const std::u16string& file) : CWinApp(u"app") {
            m_pszProfileName = _wcsdup(file.c_str());
        }
    } app(folder.Wide("s.ini"));
    testing::FaultEnv faults;
    auto onFd = [&](int (*call)(int)) {
        const int fd = _wopen(f.c_str(), _O_RDWR | _O_BINARY);
        const int result = call(fd);
        _close(fd);
        return result;
    };
    auto read = [](int fd) {
        char b[8];
        return _read(fd, b, 8);
    };
    auto write = [](int fd) { return _write(fd, "abcdefgh", 8); };
    auto stream = [&](const char16_t* mode) {
        return _wfdopen(_wopen(f.c_str(), _O_WRONLY | _O_BINARY | _O_TRUNC), mode);
    };
    // A listing of "." ".." "a" "b" "c": how many names it gave.
    std::filesystem::create_directory(folder.Path() / "listed");
    for (const char* name : {"listed/a", "listed/b", "listed/c"}) folder.Write(name, "");
    auto list = [&] {
        WIN32_FIND_DATAW data;
        HANDLE find = FindFirstFileW(folder.Wide("listed/*").c_str(), &data);  // "." needs no read
        int names = 1;
        while (FindNextFileW(find, &data)) ++names;
        const uint32_t error = GetLastError();
        FindClose(find);
        SetLastError(error);
        return names;
    };
    auto opened = [](HANDLE h) { return h == INVALID_HANDLE_VALUE ? 0 : (CloseHandle(h), 1); };
    using Run = std::function<int64_t()>;
    // error 0: the transfer is shortened to half its count
    // clang-format off
    struct Case { const char* what; SysCall call; int nth, error; Run run; int64_t result; uint32_t lastError; } cases[] = {
        {"_wopen", SysCall::kOpen, 1, EACCES, [&] { return _wopen(f.c_str(), _O_RDONLY); }, -1, ERROR_ACCESS_DENIED},
        {"_wopen", SysCall::kOpen, 1, EMFILE, [&] { return _wopen(f.c_str(), _O_RDONLY); }, -1, ERROR_TOO_MANY_OPEN_FILES},
        {"_wopen, retried", SysCall::kOpen, 1, EINTR, [&] { return onFd([](int fd) { return std::min(fd, 0); }); }, 0, ERROR_SUCCESS},
        {"_write", SysCall::kWrite, 1, ENOSPC, [&] { return onFd(write); }, -1, ERROR_DISK_FULL},
        {"_write, retried", SysCall::kWrite, 1, EINTR, [&] { return onFd(write); }, 8, ERROR_SUCCESS},
        {"_write, not looped", SysCall::kWrite, 1, 0, [&] { return onFd(write); }, 4, ERROR_SUCCESS},
        {"_read", SysCall::kRead, 1, EIO, [&] { return onFd(read); }, -1, ERROR_IO_DEVICE},
        {"_read, not looped", SysCall::kRead, 1, 0, [&] { return onFd(read); }, 4, ERROR_SUCCESS},
        {"fclose of a full disk", SysCall::kWrite, 1, ENOSPC, [&] { RuntimeStream* s = stream(u"w"); fputs("kept", s); const int r = fclose(s); EXPECT_EQ(errno, ENOSPC); return r; }, -1, ERROR_DISK_FULL},
        {"fwrite, continued", SysCall::kWrite, 1, 0, [&] { faults.ShortNth(SysCall::kWrite, 2); RuntimeStream* s = stream(u"wb"); const size_t n = fwrite("0123456789", 2, 5, s); EXPECT_EQ(fclose(s), 0); EXPECT_EQ(folder.Read("f"), "0123456789"); return n; }, 5, ERROR_SUCCESS},
        {"CFile::Write", SysCall::kWrite, 1, ENOSPC, [&] { return Raised([&] { CFile(f.c_str(), CFile::modeWrite).Write("x", 1); }, "disk full"); }, CFileException::diskFull, ERROR_DISK_FULL},
        {"CFile::Read", SysCall::kRead, 1, EIO, [&] { char c; return Raised([&] { CFile(f.c_str(), CFile::modeRead).Read(&c, 1); }, "hardware I/O error"); }, CFileException::hardIO, ERROR_IO_DEVICE},
        {"settings write", SysCall::kWrite, 1, ENOSPC, [&] { return app.WriteProfileStringW(u"S", u"k", u"new"); }, 0, ERROR_DISK_FULL},
        {"settings fsync", SysCall::kFsync, 1, EIO, [&] { return app.WriteProfileStringW(u"S", u"k", u"new"); }, 0, ERROR_IO_DEVICE},
        {"settings rename", SysCall::kRename, 1, EACCES, [&] { return app.WriteProfileStringW(u"S", u"k", u"new"); }, 0, ERROR_ACCESS_DENIED},
        {"settings lock", SysCall::kFlock, 1, ENOLCK, [&] { return app.WriteProfileStringW(u"S", u"k", u"new"); }, 0, ERROR_LOCK_VIOLATION},
        {"listing, retried", SysCall::kReaddir, 1, EINTR, list, 5, ERROR_NO_MORE_FILES},
        {"listing", SysCall::kReaddir, 2, EIO, list, 3, ERROR_IO_DEVICE},
        {"direct I/O refused", SysCall::kFcntl, 2, EINVAL, [&] { return opened(CreateFileW(f.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0x68000000, nullptr)); }, 1, ERROR_SUCCESS},
        {"direct I/O", SysCall::kFcntl, 2, EIO, [&] { return opened(CreateFileW(f.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0x68000000, nullptr)); }, 0, ERROR_IO_DEVICE},
        {"current folder", SysCall::kGetcwd, 1, ENOENT, [] { char16_t b[8]; return GetCurrentDirectoryW(8, b); }, 0, ERROR_FILE_NOT_FOUND},
        {"thread", SysCall::kThreadCreate, 1, EAGAIN, [] { return CreateThread(nullptr, 0, [](void*) -> DWORD { return 0; }, nullptr, 0, nullptr) != nullptr; }, 0, ERROR_NOT_ENOUGH_QUOTA},
        {"pages", SysCall::kMmap, 1, ENOMEM, [] { return VirtualAlloc(nullptr, 4096, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE) != nullptr; }, 0, ERROR_NOT_ENOUGH_MEMORY},
    };
    // clang-format on
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.what) + " " + detail::SysCallName(c.call));
        folder.Write("f", "12345678");
        folder.Write("s.ini", "[S]\nk=old\n");
        faults.Reset();
        faults.LimitToThisThread();
        c.error ? faults.FailNth(c.call, c.nth, c.error) : faults.ShortNth(c.call, c.nth);
        {
            testing::ScopedEnv use(faults);
            SetLastError(ERROR_SUCCESS);
            EXPECT_EQ(c.run(), c.result);
            EXPECT_EQ(GetLastError(), c.lastError);
        }
        EXPECT_GT(faults.Injected(), 0);
        EXPECT_EQ(folder.Read("s.ini"), "[S]\nk=old\n") << "a failed write leaves the old file";
        EXPECT_FALSE(std::filesystem::exists(folder / "s.ini.tmp"));
    }
}

}  // namespace
}  // namespace basicutils
