// The recursive delete on real trees and its two reports, and the directory
// value's disk queries. The tail helpers and the name splitters are checked
// in fuzz/PathHelpers_fuzz.cpp; here only their answers to a null path.
#include <basicutils/files/MDirectory.h>
#include <basicutils/files/PathNames.h>

#include "FilesTest_test.h"

namespace basicutils::filestest {
namespace {

class MDirectoryTest : public TempDirTest {
  protected:
    // tree/a and the empty folder tree/sub/deeper; with `full` also
    // tree/sub/b and a link to a folder outside that holds a file.
    void MakeTree(bool full) {
        fs::create_directories(mDir / "tree/sub/deeper");
        Write("tree/a", "x");
        if (!full) return;
        fs::create_directories(mDir / "outside");
        Write("tree/sub/b", "x");
        Write("outside/keep", "x");
        fs::create_directory_symlink(mDir / "outside", mDir / "tree/sub/link");
    }
};

TEST_F(MDirectoryTest, DeletesATreeButNeverFollowsALink) {
    MakeTree(true);
    Reports reports;
    EXPECT_EQ(DeleteDirectory(WPath("tree").c_str()), 0);
    EXPECT_FALSE(fs::exists(mDir / "tree"));
    EXPECT_TRUE(fs::exists(mDir / "outside/keep"));
    EXPECT_EQ(DeleteDirectory(WPath("tree").c_str()), 0);  // missing counts as deleted
    EXPECT_EQ(DeleteDirectory(nullptr), -1);
    EXPECT_EQ(DeleteDirectory(u""), -1);
    EXPECT_EQ(std::u16string(dirname(static_cast<char16_t*>(nullptr))), u".");
    EXPECT_EQ(std::string(basicutils::basename(static_cast<char*>(nullptr))), ".");
    EXPECT_TRUE(reports.heard.empty());
}

// Whatever the order of the listing, the first deletion is of "a" or of the
// folder "deeper"; the one that fails stops the run.
TEST_F(MDirectoryTest, StopsAtTheFirstFailureWithItsReports) {
    const std::u16string file = WPath("tree") + u"\\a";
    const std::u16string folder = WPath("tree") + u"\\sub\\deeper";
    const std::pair<SysCall, Heard> cases[] = {
        {SysCall::kAny, {{kErrorReport, file + u" could not be deleted"}}},  // read-only file
        {SysCall::kUnlink, {{kErrorReport, file + u" could not be deleted"}}},
        {SysCall::kRmdir,
         {{kErrorReport, u"Directory " + folder + u" could not be deleted"},
          {kInformReport, u"Check if it is open in an Explorer window"}}},
    };
    for (const auto& [call, expected] : cases) {
        MakeTree(false);
        if (call == SysCall::kAny) _wchmod(file.c_str(), _S_IREAD);
        Reports reports;
        FaultEnv faults;
        ScopedEnv use(faults);
        if (call != SysCall::kAny) faults.FailFrom(call, 1, EBUSY);
        EXPECT_EQ(DeleteDirectory(WPath("tree").c_str()), -1) << detail::SysCallName(call);
        EXPECT_EQ(reports.heard, expected) << detail::SysCallName(call);
        faults.Reset();
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
}

}  // namespace
}  // namespace basicutils::filestest
