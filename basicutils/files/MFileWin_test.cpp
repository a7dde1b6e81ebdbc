// MFileWin's 1/0 answers, its 32-bit seeks, the failures it catches, and the
// plain interface's answers.
#include <basicutils/files/MFileWin.h>

#include <functional>

#include "FilesTest_test.h"

namespace basicutils::filestest {
namespace {

class MFileWinTest : public TempDirTest {
  protected:
    int Open(MFileWin& file, const std::string& name, int mode) {
        MFileSpecWin spec(WPath(name).c_str());
        file.SetFileSpec(spec);
        return file.FOpen(static_cast<file_open_t>(mode));
    }
};

TEST_F(MFileWinTest, AnswersOneAndZeroAndSeeksInThirtyTwoBits) {
    MFileWin missing, file;
    EXPECT_EQ(Open(missing, "no/such/folder/file", kOpenReadBinary), 0);
    EXPECT_EQ(missing.FCreate(), 0);
    EXPECT_EQ(missing.GetSize(), -1);  // nothing open
    EXPECT_EQ(Open(file, "data", -1), 0);
    EXPECT_EQ(file.FCreate(), 1);
    EXPECT_EQ(Open(file, "data", kOpenUpdateBinary), 1);
    char text[] = "0123456789";
    EXPECT_EQ(file.FWrite(static_cast<void*>(text), 10), 10);
    EXPECT_EQ(file.FSeek(int64_t{0x100000004}, kSeekBegin), 4);  // the low 32 bits only
    MFile& base = file;
    EXPECT_EQ(base.FRead(text, 2), -1);  // MFile's FRead is not overridden
    EXPECT_EQ(file.FRead(static_cast<void*>(text), 2), 2);
    EXPECT_EQ(std::string(text, 2), "45");
    int64_t position = 0;
    EXPECT_EQ(file.FTell(position), 1);
    EXPECT_EQ(position, 6);
    EXPECT_EQ(file.FSeek(int32_t{-2}, static_cast<file_seek_t>(7)), 4);  // 7 acts as current
    EXPECT_EQ(file.FSeek(int32_t{-5}, kSeekBegin), -1);                  // caught, not raised
    EXPECT_EQ(file.GetSize(), 10);
    EXPECT_GT(file.GetModifyTime().GetYear(), 2000);
    file.FClose();
    EXPECT_EQ(file.GetCreateTime().GetDateTime(), 0.0);  // no file: day 0
    MFile plain;                                         // fails everything
    EXPECT_EQ(plain.FOpen(kOpenReadBinary) + plain.FRead(text, 4) + plain.GetSize(), -3);
    EXPECT_EQ(plain.GetCreateTime().GetDateTime(), 0.0);
}

// Each failure the platform raises inside CFile becomes an answer.
TEST_F(MFileWinTest, PlatformFailuresBecomeAnswers) {
    char bytes[] = "abcdef";
    int64_t position = 99;
    const std::tuple<SysCall, std::function<int64_t(MFileWin&)>, int64_t> cases[] = {
        {SysCall::kWrite, [&](MFileWin& f) { return f.FWrite(static_cast<void*>(bytes), 6); }, 0},
        {SysCall::kRead, [&](MFileWin& f) { return f.FRead(static_cast<void*>(bytes), 6); }, -1},
        {SysCall::kLseek, [&](MFileWin& f) { return f.FTell(position); }, 0},
        {SysCall::kLseek, [&](MFileWin& f) { return f.FSeek(int32_t{1}, kSeekBegin); }, -1},
        {SysCall::kFstat, [&](MFileWin& f) { return f.GetSize(); }, -1},
    };
    for (const auto& [call, run, expected] : cases) {
        Write("data", "abc");
        MFileWin file;
        ASSERT_EQ(Open(file, "data", kOpenUnsupported), 1);  // modeReadWrite, shared
        FaultEnv faults;
        ScopedEnv use(faults);
        faults.FailFrom(call, 1, EIO);
        EXPECT_EQ(run(file), expected) << detail::SysCallName(call);
        EXPECT_GT(faults.Injected(), 0);
    }
    EXPECT_EQ(position, 99);
}

}  // namespace
}  // namespace basicutils::filestest
