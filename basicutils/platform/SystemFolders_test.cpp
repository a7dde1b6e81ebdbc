// Where the system folder and the system drive land on Linux, the sizing
// rule of the answers, and folder creation.
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/SystemFolders.h>
#include <basicutils/platform/testing/ScopedVariable.h>
#include <basicutils/platform/testing/TempFolder.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace basicutils {
namespace {

using testing::ScopedVariable;
using testing::TempFolder;

struct Variables {
    const char* home;
    const char* data;  // null: unset
};

std::u16string Ask(UINT (*call)(char16_t*, UINT)) {
    char16_t buffer[512];
    const UINT n = call(buffer, 512);
    return n > 0 && n < 512 ? std::u16string(buffer, n) : u"?";
}

TEST(SystemFolders, DataFolderAndHomeFollowTheVariables) {
    struct Case {
        Variables set;
        std::u16string system, drive;
    };
    const Case cases[] = {
        {{"/home/ana", nullptr}, u"\\home\\ana\\.local\\share", u"\\home\\ana"},
        {{"/home/ana", "/data/ana"}, u"\\data\\ana", u"\\home\\ana"},
        {{"/home/ana", "relative"}, u"\\home\\ana\\.local\\share", u"\\home\\ana"},
    };
    for (const Case& c : cases) {
        ScopedVariable home("HOME", c.set.home), data("XDG_DATA_HOME", c.set.data);
        EXPECT_EQ(Ask(GetSystemDirectoryW), c.system);
        EXPECT_EQ(Ask(GetSystemDriveW), c.drive);
    }
    ScopedVariable home("HOME", "/h");
    char16_t small[2] = {u'x', u'x'};
    EXPECT_EQ(GetSystemDriveW(small, 2), 3u) << "too small: the size needed, terminator included";
    EXPECT_EQ(small[0], u'x');
    EXPECT_EQ(GetSystemDriveW(small, 3), 2u);
}

TEST(SystemFolders, MakeFoldersCreatesTheWholeChain) {
    TempFolder folder;
    EXPECT_TRUE(detail::MakeFolders(folder / "a/b/c/", 0700));
    EXPECT_TRUE(std::filesystem::is_directory(folder / "a/b/c"));
    EXPECT_TRUE(detail::MakeFolders(folder / "a/b/c", 0700)) << "an existing folder is fine";
    folder.Write("file", "x");
    EXPECT_FALSE(detail::MakeFolders(folder / "file", 0700));
    EXPECT_FALSE(detail::MakeFolders(folder / "file/below", 0700));
}

}  // namespace
}  // namespace basicutils
