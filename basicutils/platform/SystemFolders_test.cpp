// Where the system folder and the system drive land on Linux, the sizing
// rule of the answers, and folder creation.
#include <basicutils/platform/SystemFolders.h>
#include <basicutils/platform/testing/ScopedVariable.h>
#include <basicutils/platform/testing/TempFolder.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace basicutils {
namespace {

using testing::ScopedVariable;

std::u16string Ask(UINT (*call)(char16_t*, UINT)) {
    char16_t buffer[512];
    const UINT n = call(buffer, 512);
    return n > 0 && n < 512 ? std::u16string(buffer, n) : u"?";
}

TEST(SystemFolders, DataFolderAndHomeFollowTheVariables) {
    const std::pair<const char*, std::u16string> cases[] = {
        {nullptr, u"\\home\\ana\\.local\\share"},
        {"/data/ana", u"\\data\\ana"},
        {"relative", u"\\home\\ana\\.local\\share"},
    };
    ScopedVariable home("HOME", "/home/ana");
    for (const auto& [data, system] : cases) {
        ScopedVariable variable("XDG_DATA_HOME", data);
        EXPECT_EQ(Ask(GetSystemDirectoryW), system);
        EXPECT_EQ(Ask(GetSystemDriveW), u"\\home\\ana");
    }
    ScopedVariable shortHome("HOME", "/h");
    char16_t small[3] = {u'x', u'x', u'x'};
    EXPECT_EQ(GetSystemDriveW(small, 2), 3u) << "too small: the size needed, terminator included";
    EXPECT_EQ(small[0], u'x');
    EXPECT_EQ(GetSystemDriveW(small, 3), 2u);
}

TEST(SystemFolders, MakeFoldersCreatesTheWholeChain) {
    testing::TempFolder folder;
    EXPECT_TRUE(detail::MakeFolders(folder / "a/b/c/", 0700));
    EXPECT_TRUE(std::filesystem::is_directory(folder / "a/b/c"));
    EXPECT_TRUE(detail::MakeFolders(folder / "a/b/c", 0700)) << "an existing folder is fine";
    folder.Write("file", "x");
    EXPECT_FALSE(detail::MakeFolders(folder / "file/below", 0700));
}

}  // namespace
}  // namespace basicutils
