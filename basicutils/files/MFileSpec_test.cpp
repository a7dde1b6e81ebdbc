// Unique names beside a source file and the read-only test behind them.
#include <basicutils/files/MFileSpec.h>

#include "FilesTest_test.h"

namespace basicutils::filestest {
namespace {

using MFileSpecTest = TempDirTest;

TEST_F(MFileSpecTest, UniqueNameIsTheFirstFreeOfTheSeries) {
    struct Case {
        std::vector<std::string> existing;
        std::string source;
        std::u16string extension;
        std::string expected;
    } cases[] = {
        {{}, "report.txt", u".txt", "report.txt"},
        {{"report.txt", "report_1.txt"}, "report.txt", u".txt", "report_2.txt"},
        {{"movie.mpv"}, "movie.mpv", u".cfx", "movie.cfx"},  // only the new extension counts
        {{"movie.cfx"}, "movie.mpv", u".cfx", "movie_1.cfx"},
        {{"noext"}, "noext", u"", "noext_1"},
        {{}, "a.b.c", u".d", "a.b.d"},                // only the last dot goes
        {{}, "dir.v2/file", u".y", "dir.v2/file.y"},  // a dot in a folder is no extension
    };
    fs::create_directories(mDir / "dir.v2");
    for (const Case& c : cases) {
        for (const auto& name : c.existing) Write(name, "x");
        MFileSpecWin source(WPath(c.source).c_str()), result(u"untouched");
        ASSERT_TRUE(MFileSpecWin::CreateUniqueFileSpec(source, c.extension.c_str(), &result));
        EXPECT_EQ(std::u16string(result.GetFilePath()), WPath(c.expected)) << c.source;
        for (const auto& name : c.existing) fs::remove(mDir / name);
    }
}

TEST_F(MFileSpecTest, ReadOnlyWhenTheFreeSpaceCannotBeAsked) {
    MFileSpecWin source(WPath("report.txt").c_str()), result(u"untouched");
    EXPECT_FALSE(source.IsOnReadOnlyDrive());
    EXPECT_TRUE(MFileSpecWin(u"A") != MFileSpecWin(u"a"));  // case counts
    FaultEnv faults;
    ScopedEnv use(faults);
    faults.FailFrom(SysCall::kStatvfs, 1, EIO);
    Reports reports;
    EXPECT_TRUE(MFileSpecWin::IsDriveReadOnly(u"", true));
    EXPECT_FALSE(MFileSpecWin::CreateUniqueFileSpec(source, u".cfx", &result));
    EXPECT_EQ(std::u16string(result.GetFilePath()), u"untouched");
    EXPECT_EQ(
        reports.heard,
        (Heard{{kErrorReport, WPath("report.txt") + u" is on a read-only drive. This is not "
                                                    u"supported. please copy it to a writable "
                                                    u"disk."}}));
}

}  // namespace
}  // namespace basicutils::filestest
