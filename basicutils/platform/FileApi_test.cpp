// The Win32 file calls on real files and folders: dispositions and their
// last errors, 64-bit pointers, listings, drive types, free space and the
// current folder's result contract.
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/FileApi.h>
#include <basicutils/platform/FileTesting_test.h>
#include <basicutils/platform/internal/DriveType.h>
#include <basicutils/platform/testing/FaultEnv.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <map>
#include <vector>

namespace basicutils {
namespace {

using testing::SysCall;
using testing::TempFolder;

TEST(FileApi, CreateDispositionsAndTheirLastErrors) {
    constexpr DWORD kRW = GENERIC_READ | GENERIC_WRITE;
    struct Case {
        DWORD disposition, access;
        const char* name;  // "f" holds "old"; "d" is a folder
        uint32_t lastError;
        bool opens;
        const char* contents;
    } cases[] = {
        {CREATE_NEW, kRW, "f", ERROR_FILE_EXISTS, false, "old"},
        {CREATE_NEW, kRW, "n", 0, true, ""},
        {CREATE_ALWAYS, kRW, "f", ERROR_ALREADY_EXISTS, true, ""},
        {CREATE_ALWAYS, kRW, "n", ERROR_SUCCESS, true, ""},
        {OPEN_ALWAYS, kRW, "f", ERROR_ALREADY_EXISTS, true, "old"},
        {OPEN_ALWAYS, GENERIC_WRITE, "n", ERROR_SUCCESS, true, ""},
        {OPEN_EXISTING, GENERIC_READ, "n", ERROR_FILE_NOT_FOUND, false, nullptr},
        {OPEN_EXISTING, GENERIC_READ, "missing/n", ERROR_PATH_NOT_FOUND, false, nullptr},
        {OPEN_EXISTING, GENERIC_READ, "d", ERROR_ACCESS_DENIED, false, nullptr},
        {TRUNCATE_EXISTING, GENERIC_READ, "f", ERROR_INVALID_PARAMETER, false, "old"},
        {TRUNCATE_EXISTING, GENERIC_WRITE, "f", 0, true, ""},
        {9, kRW, "f", ERROR_INVALID_PARAMETER, false, "old"},
    };
    for (const Case& c : cases) {
        TempFolder folder;
        folder.Write("f", "old");
        ::mkdir(folder.Path("d").c_str(), 0777);
        SetLastError(0);
        HANDLE file = CreateFileW(folder.Wide(c.name).c_str(), c.access, 0, nullptr, c.disposition,
                                  0, nullptr);
        SCOPED_TRACE(std::string(c.name) + " " + std::to_string(c.disposition));
        EXPECT_EQ(file != INVALID_HANDLE_VALUE, c.opens);
        EXPECT_EQ(GetLastError(), c.lastError);
        if (c.contents) {
            EXPECT_EQ(folder.Read(c.name), c.contents);
        }
        if (c.opens) {
            EXPECT_TRUE(CloseHandle(file));
        }
    }
}

TEST(FileApi, NoBufferingFallsBackOnlyWhereTheFileSystemRefuses) {
    TempFolder folder;
    const DWORD flags = FILE_FLAG_OVERLAPPED | FILE_FLAG_NO_BUFFERING | FILE_FLAG_SEQUENTIAL_SCAN;
    struct Case {
        int error;  // of the fcntl that turns direct I/O on
        bool opens;
        uint32_t lastError;
    } cases[] = {{0, true, 0}, {EINVAL, true, 0}, {EIO, false, ERROR_IO_DEVICE}};
    for (const Case& c : cases) {
        testing::FaultEnv faults;
        faults.LimitToThisThread();
        if (c.error) faults.FailNth(SysCall::kFcntl, 2, c.error);  // 1: F_GETFL, 2: F_SETFL
        testing::ScopedEnv use(faults);
        SetLastError(0);
        HANDLE file =
            CreateFileW(folder.Wide("o").c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                        nullptr, CREATE_ALWAYS, flags, nullptr);
        EXPECT_EQ(file != INVALID_HANDLE_VALUE, c.opens);
        if (!c.opens) {
            EXPECT_EQ(GetLastError(), c.lastError);
        }
        EXPECT_EQ(faults.Count(SysCall::kFcntl), 2);
        CloseHandle(file);
    }
}

TEST(FileApi, PointerAndSizeBeyond4GiB) {
    TempFolder folder;
    HANDLE file = CreateFileW(folder.Wide("big").c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                              CREATE_NEW, 0, nullptr);
    LONG high = 1;
    ASSERT_EQ(SetFilePointer(file, 0x40000000, &high, FILE_BEGIN), 0x40000000u);  // 5 GiB
    ASSERT_TRUE(SetEndOfFile(file));
    DWORD sizeHigh = 0;
    EXPECT_EQ(GetFileSize(file, &sizeHigh), 0x40000000u);
    EXPECT_EQ(sizeHigh, 1u);
    struct Case {
        LONG distance;
        bool wide;  // with a high half of 0
        DWORD method, result;
        uint32_t lastError;
    } cases[] = {
        {0, false, FILE_END, INVALID_SET_FILE_POINTER, ERROR_INVALID_PARAMETER},
        {-1, false, FILE_BEGIN, INVALID_SET_FILE_POINTER, ERROR_NEGATIVE_SEEK},
        {-1, true, FILE_BEGIN, 0xFFFFFFFFu, ERROR_SUCCESS},  // 4 GiB - 1 is a position
        {1, false, FILE_CURRENT, INVALID_SET_FILE_POINTER, ERROR_INVALID_PARAMETER},
        {-5, true, FILE_CURRENT, 0xFFFFFFFAu, 0},
        {7, false, 3, INVALID_SET_FILE_POINTER, ERROR_INVALID_PARAMETER},
    };
    for (const Case& c : cases) {
        SetLastError(0);
        LONG caseHigh = 0;
        EXPECT_EQ(SetFilePointer(file, c.distance, c.wide ? &caseHigh : nullptr, c.method),
                  c.result);
        EXPECT_EQ(GetLastError(), c.lastError);
    }
    EXPECT_TRUE(FlushFileBuffers(file));
    EXPECT_TRUE(CancelIo(file));
    EXPECT_TRUE(CloseHandle(file));
    EXPECT_FALSE(CancelIo(file));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    file = CreateFileW(folder.Wide("big").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0,
                       nullptr);
    EXPECT_FALSE(SetEndOfFile(file));
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    CloseHandle(file);
}

TEST(FileApi, DeleteFileRefusals) {
    TempFolder folder;
    folder.Write("ro", "");
    ::chmod(folder.Path("ro").c_str(), 0444);
    ::mkdir(folder.Path("d").c_str(), 0777);
    struct Case {
        std::u16string name;
        uint32_t lastError;
    } cases[] = {
        {folder.Wide("ro"), ERROR_ACCESS_DENIED},
        {folder.Wide("d"), ERROR_ACCESS_DENIED},
        {folder.Wide("none"), ERROR_FILE_NOT_FOUND},
        {folder.Wide("none/x"), ERROR_PATH_NOT_FOUND},
        {folder.Wide() + u"\xD800", ERROR_NO_UNICODE_TRANSLATION},
    };
    for (const Case& c : cases) {
        EXPECT_FALSE(DeleteFileW(c.name.c_str()));
        EXPECT_EQ(GetLastError(), c.lastError);
    }
}

// Names of a listing, in order, with the attributes of each.
std::vector<std::pair<std::u16string, DWORD>> List(const std::u16string& pattern) {
    std::vector<std::pair<std::u16string, DWORD>> entries;
    WIN32_FIND_DATAW data;
    HANDLE find = FindFirstFileW(pattern.c_str(), &data);
    if (find == INVALID_HANDLE_VALUE) return entries;
    do entries.emplace_back(data.cFileName, data.dwFileAttributes);
    while (FindNextFileW(find, &data));
    EXPECT_EQ(GetLastError(), ERROR_NO_MORE_FILES);
    EXPECT_TRUE(FindClose(find));
    return entries;
}

TEST(FileApi, ListingsBeginWithDotAndDotDot) {
    TempFolder folder;
    folder.Write("b.txt", "12345");
    folder.Write("a.dat", "");
    folder.Write("noext", "");
    folder.Write(".hidden", "");
    ::chmod(folder.Path("a.dat").c_str(), 0444);
    ::mkdir(folder.Path("sub").c_str(), 0777);
    ASSERT_EQ(::symlink("sub", folder.Path("link").c_str()), 0);
    const auto all = List(folder.Wide("*.*"));
    ASSERT_EQ(all.size(), 8u);
    EXPECT_EQ(all[0].first, u".");
    EXPECT_EQ(all[1].first, u"..");
    std::map<std::u16string, DWORD> attributes(all.begin(), all.end());
    EXPECT_EQ(attributes[u"."], FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_EQ(attributes[u"sub"], FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_EQ(attributes[u"link"], FILE_ATTRIBUTE_REPARSE_POINT);  // never walked into
    EXPECT_EQ(attributes[u".hidden"], FILE_ATTRIBUTE_HIDDEN);
    EXPECT_EQ(attributes[u"a.dat"], FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(attributes[u"b.txt"], FILE_ATTRIBUTE_NORMAL);
    struct Case {
        const char* pattern;
        size_t count;
        const char16_t* first;
    } cases[] = {{"*", 8, u"."},         {"*.txt", 1, u"b.txt"}, {"?.dat", 1, u"a.dat"},
                 {"noext", 1, u"noext"}, {"*ext", 1, u"noext"},  {"B.TXT", 0, nullptr},
                 {"sub\\*.*", 2, u"."},  {"*.t?t", 1, u"b.txt"}};
    for (const Case& c : cases) {
        const auto entries = List(folder.Wide(c.pattern));
        EXPECT_EQ(entries.size(), c.count) << c.pattern;
        if (c.first && !entries.empty()) {
            EXPECT_EQ(entries[0].first, c.first);
        }
    }
    WIN32_FIND_DATAW data;
    EXPECT_EQ(FindFirstFileW(folder.Wide("*.none").c_str(), &data), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(FindFirstFileW(folder.Wide("gone\\*.*").c_str(), &data), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
    EXPECT_FALSE(FindClose(INVALID_HANDLE_VALUE));
}

TEST(FileApi, ListingFailuresThroughTheSeam) {
    TempFolder folder;
    folder.Write("a", "");
    folder.Write("b", "");
    {
        testing::FaultEnv faults;
        faults.LimitToThisThread().FailNth(SysCall::kReaddir, 1, EINTR);
        testing::ScopedEnv use(faults);
        EXPECT_EQ(List(folder.Wide("*")).size(), 4u);  // the interrupted read is repeated
    }
    testing::FaultEnv faults;
    faults.LimitToThisThread().FailNth(SysCall::kReaddir, 2, EIO);
    testing::ScopedEnv use(faults);
    WIN32_FIND_DATAW data;
    HANDLE find = FindFirstFileW(folder.Wide("*").c_str(), &data);  // "."
    ASSERT_NE(find, INVALID_HANDLE_VALUE);
    BOOL more;
    while ((more = FindNextFileW(find, &data))) {
    }
    EXPECT_EQ(GetLastError(), ERROR_IO_DEVICE);
    FindClose(find);
}

TEST(FileApi, DriveTypeRules) {
    struct Case {
        const char* fileSystem;
        bool readOnly;
        UINT type;
    } cases[] = {{"ext4", false, DRIVE_FIXED},    {"ext4", true, DRIVE_CDROM},
                 {"iso9660", false, DRIVE_CDROM}, {"udf", false, DRIVE_CDROM},
                 {"tmpfs", false, DRIVE_RAMDISK}, {"ramfs", false, DRIVE_RAMDISK},
                 {"tmpfs", true, DRIVE_CDROM},    {"nfs4", false, DRIVE_REMOTE},
                 {"cifs", false, DRIVE_REMOTE},   {"fuse.sshfs", false, DRIVE_REMOTE},
                 {"fuse", false, DRIVE_FIXED},    {"", false, DRIVE_FIXED}};
    for (const Case& c : cases) EXPECT_EQ(detail::DriveTypeFor(c.fileSystem, c.readOnly), c.type);

    TempFolder folder;
    folder.Write("f", "");
    EXPECT_EQ(GetDriveTypeW(folder.Wide("none").c_str()), DRIVE_NO_ROOT_DIR);
    EXPECT_EQ(GetDriveTypeW(folder.Wide("f").c_str()), DRIVE_NO_ROOT_DIR);
    struct statfs shm;
    if (::statfs("/dev/shm", &shm) == 0 && shm.f_type == 0x01021994) {  // tmpfs
        EXPECT_EQ(GetDriveTypeW(u"/dev/shm"), DRIVE_RAMDISK);
    }
    EXPECT_EQ(GetDriveTypeW(nullptr), GetDriveTypeW(u"."));
}

// Every statvfs answers as a read-only mount would.
class ReadOnlyMounts : public detail::EnvWrapper {
  public:
    ReadOnlyMounts() : EnvWrapper(detail::CurrentEnv()) {}
    int Statvfs(const char* path, struct statvfs* status) override {
        const int result = Target().Statvfs(path, status);
        status->f_flag |= ST_RDONLY;
        return result;
    }
};

TEST(FileApi, FreeSpaceAndReadOnlyMounts) {
    TempFolder folder;
    ULARGE_INTEGER available, total, free;
    ASSERT_TRUE(GetDiskFreeSpaceExW(folder.Wide().c_str(), &available, &total, &free));
    EXPECT_GT(available.QuadPart, 0u);
    EXPECT_LE(available.QuadPart, free.QuadPart);
    EXPECT_LE(free.QuadPart, total.QuadPart);
    DWORD sectors, bytes, freeClusters, clusters;
    ASSERT_TRUE(
        GetDiskFreeSpaceW(folder.Wide().c_str(), &sectors, &bytes, &freeClusters, &clusters));
    struct statvfs volume;
    ::statvfs(folder.Path().c_str(), &volume);
    EXPECT_EQ(uint64_t{sectors} * bytes, volume.f_frsize);
    EXPECT_FALSE(GetDiskFreeSpaceExW(folder.Wide("none/x").c_str(), &available, nullptr, nullptr));
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);

    ReadOnlyMounts readOnly;
    testing::ScopedEnv use(readOnly);
    EXPECT_EQ(GetDriveTypeW(folder.Wide().c_str()), DRIVE_CDROM);
    ASSERT_TRUE(GetDiskFreeSpaceExW(folder.Wide().c_str(), &available, nullptr, nullptr));
    EXPECT_EQ(available.QuadPart, 0u);
    ASSERT_TRUE(GetDiskFreeSpaceW(folder.Wide().c_str(), nullptr, nullptr, &freeClusters, nullptr));
    EXPECT_EQ(freeClusters, 0u);
}

TEST(FileApi, CurrentDirectoryResultContract) {
    TempFolder folder;
    char before[4096];
    ASSERT_NE(::getcwd(before, sizeof before), nullptr);
    ASSERT_EQ(::chdir(folder.Path().c_str()), 0);
    std::u16string expected = folder.Wide();
    expected.pop_back();  // no trailing separator
    for (char16_t& c : expected) c = c == u'/' ? u'\\' : c;
    const auto length = static_cast<DWORD>(expected.size());
    struct Case {
        DWORD size;
        DWORD result;
        bool filled;
    } cases[] = {{0, length + 1, false}, {length, length + 1, false}, {length + 1, length, true}};
    for (const Case& c : cases) {
        std::u16string buffer(length + 1, u'#');
        EXPECT_EQ(GetCurrentDirectoryW(c.size, buffer.data()), c.result);
        EXPECT_EQ(buffer.c_str() == expected, c.filled);
    }
    {
        testing::FaultEnv faults;
        faults.LimitToThisThread().FailNth(SysCall::kGetcwd, 1, ENOENT);
        testing::ScopedEnv use(faults);
        char16_t buffer[8];
        EXPECT_EQ(GetCurrentDirectoryW(8, buffer), 0u);
        EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    }
    ASSERT_EQ(::chdir(before), 0);
}

}  // namespace
}  // namespace basicutils
