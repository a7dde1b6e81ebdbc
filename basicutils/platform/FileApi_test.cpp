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
#include <unistd.h>

#include <algorithm>
#include <tuple>
#include <vector>

namespace basicutils {
namespace {

using testing::TempFolder;

TEST(FileApi, CreateAndDeleteWithTheirLastErrors) {
    constexpr DWORD kRW = GENERIC_READ | GENERIC_WRITE;
    // disposition 0: DeleteFileW
    // "f" holds "old", "ro" is read-only, "d" is a folder
    // contents: of "f" afterwards
    // clang-format off
    struct Case { DWORD disposition, access; const char* name; uint32_t lastError; const char* contents; } cases[] = {
        {CREATE_NEW, kRW, "f", ERROR_FILE_EXISTS, "old"},
        {CREATE_NEW, kRW, "n", 0, "old"},
        {CREATE_ALWAYS, kRW, "f", ERROR_ALREADY_EXISTS, ""},
        {CREATE_ALWAYS, kRW, "n", ERROR_SUCCESS, "old"},
        {OPEN_ALWAYS, kRW, "f", ERROR_ALREADY_EXISTS, "old"},
        {OPEN_ALWAYS, GENERIC_WRITE, "n", ERROR_SUCCESS, "old"},
        {OPEN_EXISTING, GENERIC_READ, "n", ERROR_FILE_NOT_FOUND, "old"},
        {OPEN_EXISTING, GENERIC_READ, "missing/n", ERROR_PATH_NOT_FOUND, "old"},
        {OPEN_EXISTING, GENERIC_READ, "d", ERROR_ACCESS_DENIED, "old"},
        {TRUNCATE_EXISTING, GENERIC_READ, "f", ERROR_INVALID_PARAMETER, "old"},
        {TRUNCATE_EXISTING, GENERIC_WRITE, "f", 0, ""},
        {9, kRW, "f", ERROR_INVALID_PARAMETER, "old"},
        {0, 0, "ro", ERROR_ACCESS_DENIED, "old"},  // read-only, as the legacy system refuses
        {0, 0, "d", ERROR_ACCESS_DENIED, "old"},
        {0, 0, "n", ERROR_FILE_NOT_FOUND, "old"},
        {0, 0, "missing/n", ERROR_PATH_NOT_FOUND, "old"},
        {0, 0, "f", 0, nullptr},
    };
    // clang-format on
    for (const Case& c : cases) {
        TempFolder folder;
        folder.Write("f", "old");
        folder.Write("ro", "");
        ::chmod(folder.Path("ro").c_str(), 0444);
        ::mkdir(folder.Path("d").c_str(), 0777);
        SetLastError(0);
        const std::u16string name = folder.Wide(c.name);
        HANDLE file = INVALID_HANDLE_VALUE;
        if (c.disposition)
            file = CreateFileW(name.c_str(), c.access, 0, nullptr, c.disposition, 0, nullptr);
        else
            EXPECT_EQ(DeleteFileW(name.c_str()), c.contents == nullptr);
        EXPECT_EQ(GetLastError(), c.lastError) << c.name << " " << c.disposition;
        EXPECT_EQ(folder.Read("f"), c.contents ? c.contents : "");
        EXPECT_EQ(CloseHandle(file), file != INVALID_HANDLE_VALUE);
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
    // wide: with a high half of 0
    // clang-format off
    struct Case { LONG distance; bool wide; DWORD method, result; uint32_t lastError; } cases[] = {
        {0, false, FILE_END, INVALID_SET_FILE_POINTER, ERROR_INVALID_PARAMETER},
        {-1, false, FILE_BEGIN, INVALID_SET_FILE_POINTER, ERROR_NEGATIVE_SEEK},
        {-1, true, FILE_BEGIN, 0xFFFFFFFFu, ERROR_SUCCESS},  // 4 GiB - 1 is a position
        {1, false, FILE_CURRENT, INVALID_SET_FILE_POINTER, ERROR_INVALID_PARAMETER},
        {-5, true, FILE_CURRENT, 0xFFFFFFFAu, 0},
    };
    // clang-format on
    for (const Case& c : cases) {
        SetLastError(0);
        LONG zero = 0;
        EXPECT_EQ(SetFilePointer(file, c.distance, c.wide ? &zero : nullptr, c.method), c.result);
        EXPECT_EQ(GetLastError(), c.lastError);
    }
    EXPECT_TRUE(CloseHandle(file));
    file = CreateFileW(folder.Wide("big").c_str(), 0, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_FALSE(SetEndOfFile(file));
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    CloseHandle(file);
}

// A listing: each name with its attributes as one digit ('0' + the bits 0x3F:
// 1 read-only, 2 hidden, @ folder, 0 plain or link), after "." and ".." in
// the system's order, sorted here; or the error of FindFirstFileW.
std::u16string List(const std::u16string& pattern) {
    WIN32_FIND_DATAW data;
    HANDLE find = FindFirstFileW(pattern.c_str(), &data);
    if (find == INVALID_HANDLE_VALUE) return u"error " + std::u16string(1, GetLastError());
    std::vector<std::u16string> names;
    do names.push_back(data.cFileName + std::u16string(1, u'0' + data.dwFileAttributes % 64));
    while (FindNextFileW(find, &data));
    EXPECT_EQ(GetLastError(), ERROR_NO_MORE_FILES);
    EXPECT_TRUE(FindClose(find));
    if (names.size() >= 2 && names[1] == u"..@") std::sort(names.begin() + 2, names.end());
    std::u16string entries;
    for (const auto& name : names) entries += (entries.empty() ? u"" : u" ") + name;
    return entries;
}

TEST(FileApi, ListingsBeginWithDotAndDotDot) {
    TempFolder folder;
    for (const char* name : {"b.txt", "a.dat", ".h"}) folder.Write(name, "");
    ::chmod(folder.Path("a.dat").c_str(), 0444);
    ::mkdir(folder.Path("sub").c_str(), 0777);
    ASSERT_EQ(::symlink("sub", folder.Path("link").c_str()), 0);  // never listed as a folder
    const std::pair<const char*, const char16_t*> cases[] = {
        {"*.*", u".@ ..@ .h2 a.dat1 b.txt0 link0 sub@"},
        {"*", u".@ ..@ .h2 a.dat1 b.txt0 link0 sub@"},
        {"*.txt", u"b.txt0"},
        {"?.d?t", u"a.dat1"},
        {"B.TXT", u"error \x02"},  // case counts
        {"*.none", u"error \x02"},
        {"gone\\*.*", u"error \x03"},
        {"sub\\*.*", u".@ ..@"},
    };
    for (const auto& [pattern, expected] : cases) EXPECT_EQ(List(folder.Wide(pattern)), expected);
}

TEST(FileApi, DriveTypeRules) {
    const std::tuple<const char*, bool, UINT> cases[] = {
        {"ext4", false, DRIVE_FIXED},        {"ext4", true, DRIVE_CDROM},
        {"iso9660", false, DRIVE_CDROM},     {"udf", false, DRIVE_CDROM},
        {"tmpfs", false, DRIVE_RAMDISK},     {"ramfs", false, DRIVE_RAMDISK},
        {"nfs4", false, DRIVE_REMOTE},       {"cifs", false, DRIVE_REMOTE},
        {"fuse.sshfs", false, DRIVE_REMOTE}, {"fuse", false, DRIVE_FIXED}};
    for (const auto& [fileSystem, readOnly, type] : cases)
        EXPECT_EQ(detail::DriveTypeFor(fileSystem, readOnly), type) << fileSystem;
    TempFolder folder;
    folder.Write("f", "");
    EXPECT_EQ(GetDriveTypeW(folder.Wide("none").c_str()), DRIVE_NO_ROOT_DIR);
    EXPECT_EQ(GetDriveTypeW(folder.Wide("f").c_str()), DRIVE_NO_ROOT_DIR);
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
    const std::u16string root = folder.Wide();
    ULARGE_INTEGER available, total, free;
    ASSERT_TRUE(GetDiskFreeSpaceExW(root.c_str(), &available, &total, &free));
    EXPECT_TRUE(available.QuadPart > 0 && available.QuadPart <= free.QuadPart);
    DWORD freeClusters;
    EXPECT_FALSE(GetDiskFreeSpaceExW(folder.Wide("none/x").c_str(), &available, nullptr, nullptr));
    EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
    ReadOnlyMounts readOnly;
    testing::ScopedEnv use(readOnly);
    EXPECT_EQ(GetDriveTypeW(root.c_str()), DRIVE_CDROM);
    ASSERT_TRUE(GetDiskFreeSpaceExW(root.c_str(), &available, nullptr, nullptr));
    ASSERT_TRUE(GetDiskFreeSpaceW(root.c_str(), nullptr, nullptr, &freeClusters, nullptr));
    EXPECT_EQ(available.QuadPart + freeClusters, 0u);  // nothing can be written there
}

TEST(FileApi, CurrentDirectoryResultContract) {
    TempFolder folder;
    char before[4096];
    ASSERT_NE(::getcwd(before, sizeof before), nullptr);
    ASSERT_EQ(::chdir(folder.Path().c_str()), 0);
    std::u16string expected = folder.Wide();
    expected.pop_back();  // no trailing separator, and `\` between names
    std::replace(expected.begin(), expected.end(), u'/', u'\\');
    const auto length = static_cast<DWORD>(expected.size());
    for (DWORD size : {0u, length, length + 1}) {
        std::u16string buffer(length + 1, u'#');
        EXPECT_EQ(GetCurrentDirectoryW(size, buffer.data()), size > length ? length : length + 1);
        EXPECT_EQ(buffer.c_str() == expected, size > length);  // untouched when too small
    }
    ASSERT_EQ(::chdir(before), 0);
}

}  // namespace
}  // namespace basicutils
