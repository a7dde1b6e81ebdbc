// Unique names beside a source file, the read-only test behind them, and the
// value semantics of a spec.
#include <basicutils/files/MFileSpec.h>
#include <basicutils/platform/testing/FaultEnv.h>

#include "FilesTest_test.h"

namespace basicutils {
namespace {

using filestest::kErrorReport;
using filestest::Reports;
using filestest::U16;
using testing::FaultEnv;
using testing::ScopedEnv;
using testing::SysCall;

class MFileSpecTest : public filestest::TempDirTest {};

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
        {{}, "clip.mpv", u"", "clip"},
        {{}, "a.b.c", u".d", "a.b.d"},  // only the last dot goes
        {{}, "noext", u".x", "noext.x"},
        {{"noext"}, "noext", u"", "noext_1"},
        {{}, "dir.v2/file", u".y", "dir.v2/file.y"},  // a dot in a folder is no extension
    };
    std::filesystem::create_directories(mDir / "dir.v2");
    for (const Case& c : cases) {
        for (const auto& name : c.existing) Write(name, "x");
        MFileSpecWin source(WPath(c.source).c_str()), result(u"untouched");
        ASSERT_TRUE(MFileSpecWin::CreateUniqueFileSpec(source, c.extension.c_str(), &result));
        EXPECT_EQ(std::u16string(result.GetFilePath()), WPath(c.expected)) << c.source;
        for (const auto& name : c.existing) std::filesystem::remove(mDir / name);
    }
}

TEST_F(MFileSpecTest, ReadOnlyWhenTheFreeSpaceCannotBeAsked) {
    MFileSpecWin source(WPath("report.txt").c_str()), result(u"untouched");
    EXPECT_FALSE(source.IsOnReadOnlyDrive());
    FaultEnv faults;
    ScopedEnv use(faults);
    faults.FailFrom(SysCall::kStatvfs, 1, EIO);
    Reports reports;
    EXPECT_TRUE(MFileSpecWin::IsFileOnReadOnlyDrive(source.GetFilePath()));
    EXPECT_TRUE(MFileSpecWin::IsDriveReadOnly(u"", true));
    EXPECT_FALSE(MFileSpecWin::CreateUniqueFileSpec(source, u".cfx", &result));
    EXPECT_EQ(std::u16string(result.GetFilePath()), u"untouched");
    ASSERT_EQ(reports.heard.size(), 1u);
    EXPECT_EQ(reports.heard[0].first, kErrorReport);
    EXPECT_EQ(reports.heard[0].second,
              WPath("report.txt") +
                  u" is on a read-only drive. This is not supported. please copy it to a "
                  u"writable disk.");
}

TEST_F(MFileSpecTest, ValueSemantics) {
    MFileSpecWin empty, upper(u"A"), lower(u"a");
    EXPECT_TRUE(empty.IsNull());
    EXPECT_FALSE(empty.FileExist());
    EXPECT_TRUE(upper != lower);
    MFileSpecWin copy(upper);
    copy.GetFilePath() += u"b";  // the reference is the member itself
    EXPECT_EQ(std::u16string(copy.GetFilePath()), u"Ab");
    EXPECT_EQ(std::u16string(upper.GetFilePath()), u"A");
    Write("here", "");
    MFileSpecWin here(WPath("here").c_str());
    EXPECT_TRUE(here.FileExist());
    char16_t buffer[512];
    here.GetFilePathName(buffer);
    EXPECT_EQ(std::u16string(buffer), WPath("here"));
}

}  // namespace
}  // namespace basicutils
