// The recursive delete on real trees, its two reports, the tail helpers, and
// the directory value's disk queries.
#include <basicutils/files/MDirectory.h>
#include <basicutils/platform/RuntimeFiles.h>
#include <basicutils/platform/testing/FaultEnv.h>

#include "FilesTest_test.h"

namespace basicutils {
namespace {

using filestest::kErrorReport;
using filestest::kInformReport;
using filestest::Reports;
using testing::FaultEnv;
using testing::ScopedEnv;
using testing::SysCall;
namespace fs = std::filesystem;

class MDirectoryTest : public filestest::TempDirTest {
  protected:
    // tree/a, tree/sub/b, tree/sub/deeper/c, and a link to a folder outside.
    void MakeTree() {
        fs::create_directories(mDir / "tree/sub/deeper");
        fs::create_directories(mDir / "outside");
        for (const char* name : {"tree/a", "tree/sub/b", "tree/sub/deeper/c", "outside/keep"})
            Write(name, "x");
        fs::create_directory_symlink(mDir / "outside", mDir / "tree/sub/link");
    }
};

TEST_F(MDirectoryTest, TailHelpers) {
    struct Case {
        const char16_t* path;
        bool remove;
        uint32_t count;
        std::u16string added;
    } cases[] = {
        {u"a\\b\\\\", true, 1, u"a\\b\\"}, {u"a\\b", false, 2, u"a\\b\\\\"},
        {u"", true, 1, u""},               {nullptr, false, 1, u""},
        {u"a\\", true, 0, u"a"},           {u"a\\", false, 1, u"a\\\\"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(std::u16string(AddDirectorySeparator(c.path, c.remove, c.count)), c.added);
    EXPECT_EQ(std::u16string(DeleteTailCharacter(u"abc...", u'.')), u"abc");
    EXPECT_EQ(std::u16string(DeleteTailCharacter(u"...", u'.')), u"");
    EXPECT_EQ(std::u16string(DeleteTailCharacter(nullptr, u'.')), u"");
    EXPECT_EQ(std::u16string(DeleteTailDirectorySeparator(u"a\\b\\\\")), u"a\\b");
}

TEST_F(MDirectoryTest, DeletesATreeButNeverFollowsALink) {
    MakeTree();
    Reports reports;
    EXPECT_EQ(DeleteDirectory(WPath("tree").c_str()), 0);
    EXPECT_FALSE(fs::exists(mDir / "tree"));
    EXPECT_TRUE(fs::exists(mDir / "outside/keep"));
    EXPECT_EQ(DeleteDirectory(WPath("tree").c_str()), 0);  // missing counts as deleted
    EXPECT_EQ(DeleteDirectory(nullptr), -1);
    EXPECT_EQ(DeleteDirectory(u""), -1);
    EXPECT_TRUE(reports.heard.empty());
}

TEST_F(MDirectoryTest, StopsAtTheFirstFailureWithItsReports) {
    const std::u16string file = WPath("tree") + u"\\a";
    const std::u16string folder = WPath("tree") + u"\\sub\\deeper";
    struct Case {
        const char* name;
        SysCall call;  // kAny: the file a is made read-only instead
        std::vector<std::pair<int32_t, std::u16string>> reports;
    } cases[] = {
        {"read-only file", SysCall::kAny, {{kErrorReport, file + u" could not be deleted"}}},
        {"unlink", SysCall::kUnlink, {{kErrorReport, file + u" could not be deleted"}}},
        {"rmdir",
         SysCall::kRmdir,
         {{kErrorReport, u"Directory " + folder + u" could not be deleted"},
          {kInformReport, u"Check if it is open in an Explorer window"}}},
    };
    for (const Case& c : cases) {
        MakeTree();
        // One file and one empty folder, so that whatever the order of the
        // listing, the first deletion is of "a" or of the folder "deeper".
        for (const char* name : {"tree/sub/link", "tree/sub/b", "tree/sub/deeper/c"})
            fs::remove(mDir / name);
        if (c.call == SysCall::kAny) _wchmod(file.c_str(), _S_IREAD);
        Reports reports;
        FaultEnv faults;
        ScopedEnv use(faults);
        if (c.call != SysCall::kAny) faults.FailFrom(c.call, 1, EBUSY);
        EXPECT_EQ(DeleteDirectory(WPath("tree").c_str()), -1) << c.name;
        EXPECT_EQ(reports.heard, c.reports) << c.name;
        faults.Reset();
        _wchmod(file.c_str(), _S_IREAD | _S_IWRITE);
        fs::remove_all(mDir / "tree");
    }
}

TEST_F(MDirectoryTest, DiskQueries) {
    const fs::path before = fs::current_path();
    MDirectory dir(WPath("").c_str());
    EXPECT_TRUE(dir.ExistsOnDisk());
    EXPECT_TRUE(fs::equivalent(fs::current_path(), mDir));
    fs::current_path(before);
    EXPECT_FALSE(MDirectory::ExistsOnDisk(WPath("missing").c_str()));
    EXPECT_GT(dir.GetDiskFreeSpaceW(), 0);
    FaultEnv faults;
    ScopedEnv use(faults);
    faults.FailFrom(SysCall::kStatvfs, 1, EIO);
    EXPECT_EQ(dir.GetDiskFreeSpaceW(), -1);
    MString path(u"x");
    dir.SetPath(path);
    EXPECT_EQ(std::u16string(dir.GetPath()), u"x");
    EXPECT_FALSE(dir.CreateNew());
}

}  // namespace
}  // namespace basicutils
