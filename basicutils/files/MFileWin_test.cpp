// The base interface's failure answers, and MFileWin's 1/0 answers, 32-bit
// seeks and caught failures on real files.
#include <basicutils/files/MFileWin.h>
#include <basicutils/platform/testing/FaultEnv.h>

#include <functional>

#include "FilesTest_test.h"

namespace basicutils {
namespace {

using testing::FaultEnv;
using testing::ScopedEnv;
using testing::SysCall;
using detail::SysCallName;
constexpr file_open_t kOpenReadWriteShared = kOpenUnsupported;  // modeReadWrite, shared

class MFileWinTest : public filestest::TempDirTest {
  protected:
    // An MFileWin on `name`, opened in `mode` (1 expected).
    void Open(MFileWin& file, const std::string& name, file_open_t mode) {
        MFileSpecWin spec(WPath(name).c_str());
        file.SetFileSpec(spec);
        ASSERT_EQ(file.FOpen(mode), 1) << name;
    }
};

TEST_F(MFileWinTest, PlainInterfaceFailsEverything) {
    MFile file;
    MFileSpecWin spec(u"x");
    char buffer[4];
    int64_t position = 7;
    int small = 7;
    struct _stati64 status;
    const int answers[] = {file.FCreate(),        file.FDelete(),       file.FOpen(spec, kOpenReadText),
                           file.FOpen(kOpenReadBinary), file.FRead(buffer, 4), file.FWrite(buffer, 4),
                           file.FSeek(0, kSeekBegin),   file.FGets(buffer, 4), file.FPuts(buffer),
                           file.FStat(&status),         file.FStat(spec, &status), file.FTell(small)};
    for (int answer : answers) EXPECT_EQ(answer, -1);
    EXPECT_EQ(file.FSeek64(0, kSeekBegin), -1);
    EXPECT_EQ(file.FTell64(position), -1);
    EXPECT_EQ(file.GetSize(), -1);
    EXPECT_EQ(position, 7);
    EXPECT_EQ(small, 7);
    EXPECT_EQ(file.GetCreateTime().GetDateTime(), 0.0);
    EXPECT_TRUE(file.GetFileSpec().IsNull());
}

TEST_F(MFileWinTest, AnswersOneAndZeroAndSeeksInThirtyTwoBits) {
    MFileWin missing;
    MFileSpecWin nowhere(WPath("no/such/folder/file").c_str());
    missing.SetFileSpec(nowhere);
    EXPECT_EQ(missing.FCreate(), 0);
    EXPECT_EQ(missing.FOpen(kOpenReadBinary), 0);
    EXPECT_EQ(missing.GetSize(), -1);  // nothing open

    MFileWin file;
    MFileSpecWin spec(WPath("data").c_str());
    file.SetFileSpec(spec);
    EXPECT_EQ(file.FCreate(), 1);
    Open(file, "data", kOpenUpdateBinary);
    char text[] = "0123456789";
    EXPECT_EQ(file.FWrite(static_cast<void*>(text), 10), 10);
    EXPECT_EQ(file.FSeek(int64_t{0x100000004}, kSeekBegin), 4);  // the low 32 bits only
    char got[8] = {};
    MFile& base = file;
    EXPECT_EQ(base.FRead(got, 2), -1);  // MFile's FRead is not overridden
    EXPECT_EQ(file.FRead(static_cast<void*>(got), 2), 2);
    EXPECT_EQ(std::string(got), "45");
    int64_t position = 0;
    EXPECT_EQ(file.FTell(position), 1);
    EXPECT_EQ(position, 6);
    EXPECT_EQ(file.FSeek(int32_t{-2}, static_cast<file_seek_t>(7)), 4);  // 7 acts as current
    EXPECT_EQ(file.FSeek(int32_t{-5}, kSeekBegin), -1);                  // caught, not raised
    EXPECT_EQ(file.GetSize(), 10);
    EXPECT_GT(file.GetModifyTime().GetYear(), 2000);
    file.FClose();
    EXPECT_EQ(file.GetCreateTime().GetDateTime(), 0.0);  // no file: day 0
    EXPECT_EQ(file.FDelete(), 0);
    EXPECT_EQ(file.FOpen(static_cast<file_open_t>(-1)), 0);
}

// Each failure the platform raises inside CFile becomes an answer.
TEST_F(MFileWinTest, PlatformFailuresBecomeAnswers) {
    char bytes[] = "abcdef";
    int64_t position = 99;
    struct Case {
        SysCall call;
        std::function<int64_t(MFileWin&)> run;
        int64_t expected;
    } cases[] = {
        {SysCall::kWrite, [&](MFileWin& f) { return f.FWrite(static_cast<void*>(bytes), 6); }, 0},
        {SysCall::kRead, [&](MFileWin& f) { return f.FRead(static_cast<void*>(bytes), 6); }, -1},
        {SysCall::kLseek, [&](MFileWin& f) { return f.FTell(position); }, 0},
        {SysCall::kLseek, [&](MFileWin& f) { return f.FSeek(int32_t{1}, kSeekBegin); }, -1},
        {SysCall::kFstat, [&](MFileWin& f) { return f.GetSize(); }, -1},
    };
    for (const Case& c : cases) {
        Write("data", "abc");
        MFileWin file;
        Open(file, "data", kOpenReadWriteShared);
        FaultEnv faults;
        ScopedEnv use(faults);
        faults.FailFrom(c.call, 1, EIO);
        EXPECT_EQ(c.run(file), c.expected) << SysCallName(c.call);
        EXPECT_GT(faults.Injected(), 0) << SysCallName(c.call);
    }
    EXPECT_EQ(position, 99);
}

}  // namespace
}  // namespace basicutils
