// The runtime's descriptor family on real files: open flags, text-mode
// reading, 64-bit positions around 2 and 3 GiB and names, with the numbers a
// caller reads afterwards. Injected failures: InjectedFailures_test.cpp.
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/FileApi.h>
#include <basicutils/platform/FileTesting_test.h>
#include <basicutils/platform/RuntimeFiles.h>
#include <sys/stat.h>

#include <cstdio>

namespace basicutils {
namespace {

using testing::TempFolder;
constexpr int64_t kGiB = int64_t{1} << 30;

TEST(RuntimeFiles, OpenFlagsTable) {
    // "f" holds "old\n", "d" is a folder, "p" a FIFO without writer
    // error: errno of a refused open
    // contents: of "f" after writing "W" and closing
    // clang-format off
    struct Case { int flags; const char* name; int error; const char* contents; } cases[] = {
        {_O_RDONLY, "f", 0, "old\n"},  // the write is refused
        {_O_WRONLY | _O_CREAT | _O_TRUNC, "f", 0, "W"},
        {_O_RDWR | _O_CREAT | _O_BINARY, "f", 0, "Wld\n"},
        {_O_WRONLY | _O_APPEND, "f", 0, "old\nW"},
        {_O_RDWR | _O_CREAT | _O_EXCL, "f", EEXIST, "old\n"},
        {_O_RDONLY | _O_TEXT | _O_BINARY, "f", EINVAL, "old\n"},
        {_O_RDONLY, "none", ENOENT, "old\n"},
        {_O_RDONLY, "d", EACCES, "old\n"},
        {_O_RDONLY, "p", EACCES, "old\n"},  // refused at once, never waited on
    };
    // clang-format on
    for (const Case& c : cases) {
        TempFolder folder;
        folder.Write("f", "old\n");
        ::mkdir(folder.Path("d").c_str(), 0777);
        ::mkfifo(folder.Path("p").c_str(), 0666);
        const int fd = _wopen(folder.Wide(c.name).c_str(), c.flags);
        EXPECT_EQ(fd < 0 ? errno : 0, c.error) << c.flags << c.name;
        EXPECT_EQ(GetLastError(), fd < 0 ? ErrnoToWin32Error(c.error) : GetLastError());
        if (fd >= 0) _write(fd, "W", 1), _close(fd);
        EXPECT_EQ(folder.Read("f"), c.contents);
    }
}

TEST(RuntimeFiles, TextModeReadsCrLfAsLfAtAnyCount) {
    TempFolder folder;
    folder.Write("t", "a\r\nb\r\r\nc\r");
    for (unsigned count : {1u, 2u, 3u, 100u}) {
        const int fd = _wopen(folder.Wide("t").c_str(), _O_RDONLY);
        std::string text;
        char buffer[100];
        for (int got; (got = _read(fd, buffer, count)) > 0;) text.append(buffer, got);
        _close(fd);
        EXPECT_EQ(text, "a\nb\r\nc\r") << count;
    }
    const int fd = _wopen(folder.Wide("w").c_str(), _O_WRONLY | _O_CREAT);
    _write(fd, "x\n", 2);
    _close(fd);
    EXPECT_EQ(folder.Read("w"), "x\n");  // no "\r" added on the way out
}

TEST(RuntimeFiles, SeeksAround2And3GiBOnASparseFile) {
    TempFolder folder;
    const int fd = _wopen(folder.Wide("big").c_str(), _O_RDWR | _O_CREAT | _O_BINARY);
    ASSERT_EQ(_lseeki64(fd, 3 * kGiB, SEEK_SET), 3 * kGiB);
    ASSERT_EQ(_write(fd, "z", 1), 1);
    struct _stati64 status;
    ASSERT_EQ(_fstati64(fd, &status), 0);
    EXPECT_EQ(status.st_size, 3 * kGiB + 1);
    // from: where the descriptor stands first
    // wide: _lseeki64 rather than _lseek
    // clang-format off
    struct Case { int64_t from; bool wide; int64_t offset; int origin; int64_t result, after; } cases[] = {
        {0, false, 0x7FFFFFFF, SEEK_SET, 0x7FFFFFFF, 0x7FFFFFFF},
        {0x7FFFFFFF, false, 1, SEEK_CUR, -1, 0x7FFFFFFF},  // would pass 2 GiB: stays
        {10, false, 0, SEEK_END, -1, 10},
        {10, true, 0, SEEK_END, 3 * kGiB + 1, 3 * kGiB + 1},
        {3 * kGiB, true, -kGiB, SEEK_CUR, 2 * kGiB, 2 * kGiB},
        {10, true, -11, SEEK_CUR, -1, 10},
    };
    // clang-format on
    for (const Case& c : cases) {
        _lseeki64(fd, c.from, SEEK_SET);
        const int64_t result = c.wide ? _lseeki64(fd, c.offset, c.origin)
                                      : _lseek(fd, static_cast<int32_t>(c.offset), c.origin);
        EXPECT_EQ(result, c.result) << c.from << " " << c.offset;
        EXPECT_EQ(GetLastError(), result < 0 ? ERROR_INVALID_PARAMETER : GetLastError());
        EXPECT_EQ(_telli64(fd), c.after);
        EXPECT_EQ(_tell(fd), c.after <= 0x7FFFFFFF ? c.after : -1);
    }
    _close(fd);
}

TEST(RuntimeFiles, ReadOnlyAttributeAndRenames) {
    TempFolder folder;
    folder.Write("f", "1234");
    folder.Write("g", "");
    ::chmod(folder.Path("f").c_str(), 0640);
    const std::u16string f = folder.Wide("f");
    ASSERT_EQ(_wchmod(f.c_str(), _S_IREAD), 0);
    struct _stati64 status;
    ASSERT_EQ(_wstati64(f.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode, _S_IFREG | _S_IREAD | _S_IREAD >> 3 | _S_IREAD >> 6);
    EXPECT_EQ(_wremove(f.c_str()), -1);  // read-only, as the legacy system refuses
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    ASSERT_EQ(_wchmod(f.c_str(), _S_IREAD | _S_IWRITE), 0);
    struct stat system;
    ::stat(folder.Path("f").c_str(), &system);
    EXPECT_EQ(system.st_mode & 0777, 0640u);                       // group read kept
    EXPECT_EQ(_wrename(f.c_str(), folder.Wide("g").c_str()), -1);  // never replaces
    EXPECT_EQ(errno, EACCES);
    EXPECT_EQ(_wrename(f.c_str(), folder.Wide("h").c_str()), 0);
}

TEST(RuntimeFiles, OsHandleCutsAtTheDescriptorsPosition) {
    TempFolder folder;
    const int fd = _wopen(folder.Wide("f").c_str(), _O_RDWR | _O_CREAT | _O_BINARY);
    _write(fd, std::string(100, 'x').data(), 100);
    _lseek(fd, 40, SEEK_SET);
    const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(fd));
    EXPECT_EQ(reinterpret_cast<HANDLE>(_get_osfhandle(fd)), handle);
    EXPECT_TRUE(SetEndOfFile(handle));
    EXPECT_EQ(GetFileSize(handle, nullptr), 40u);
    EXPECT_EQ(_close(fd), 0);
    EXPECT_EQ(GetFileSize(handle, nullptr), INVALID_FILE_SIZE);  // gone with the descriptor
    EXPECT_EQ(_get_osfhandle(fd), -1);
    EXPECT_EQ(errno, EBADF);
}

}  // namespace
}  // namespace basicutils
