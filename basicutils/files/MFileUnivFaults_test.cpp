// Every failure path of the working file, driven through the system seam:
// the answer, the report and its channel, and what reached the disk.
#include <functional>

#include "FilesTest_test.h"

namespace basicutils::filestest {
namespace {

using MFileUnivFaultTest = TempDirTest;

TEST_F(MFileUnivFaultTest, EachFailureHasItsAnswerReportAndChannel) {
    const std::string kText = "0123456789\n";
    char buffer[16] = "0123456789";
    char16_t line[32] = {};
    using Run = std::function<int64_t(MFileUniv&)>;
    constexpr auto kNone = static_cast<file_open_t>(-1);
    struct Case {
        file_open_t mode;  // of the file holding kText; -1: not opened
        SysCall call;
        int error;
        Run run;
        int64_t expected;
        std::u16string report;  // through CMessageAction::Error; empty: none
        std::string stderrText;
        bool emptied = false;  // the mode empties the file
    } cases[] = {
        // clang-format off
        {kNone, SysCall::kOpen, EACCES, [](MFileUniv& f) { return f.FOpen(kOpenReadBinary); }, -1, u"", "ERROR: Permission denied\n"},
        {kNone, SysCall::kOpen, EMFILE, [](MFileUniv& f) { return f.FOpen(kOpenOverlappedCreate); }, -1, u"", ""},
        {kOpenReadBinary, SysCall::kRead, EIO, [&](MFileUniv& f) { return f.FRead(buffer, 4); }, -1, u"Read file error(Input/output error) (MFileUniv::FRead)", ""},
        {kOpenReadBinary, SysCall::kRead, EIO, [&](MFileUniv& f) { return f.FReadVoid(buffer, 1, 4); }, 0, u"Read file error(Input/output error) (MFileUniv::FReadVoid)", ""},
        {kOpenReadBinary, SysCall::kRead, EIO, [&](MFileUniv& f) { return f.FGetts(line, 8); }, -1, u"", ""},
        {kOpenWriteBinary, SysCall::kWrite, ENOSPC, [&](MFileUniv& f) { return f.FWrite(buffer, 10); }, -1, u"", "", true},
        {kOpenWriteBinary, SysCall::kWrite, ENOSPC, [&](MFileUniv& f) { f.FWriteVoid(buffer, 1, 10); f.FClose(); return 0; }, 0, u"Close file error(No space left on device) in MFileUniv::FClose", "", true},
        {kOpenReadBinary, SysCall::kStat, EIO, [](MFileUniv& f) { return f.GetSize(); }, -1, u"", ""},
        {kOpenUpdateBinary, SysCall::kFtruncate, EIO, [](MFileUniv& f) { return f.FSetEndOfFile(); }, -1, u"", ""},
        // clang-format on
    };
    for (const Case& c : cases) {
        Write("f", kText);
        MFileUniv file;
        MFileSpecWin spec(WPath("f").c_str());
        file.SetFileSpec(spec);
        if (c.mode >= 0) {
            ASSERT_EQ(file.FOpen(c.mode), 0);
        }
        Reports reports;
        FaultEnv faults;
        ScopedEnv use(faults);
        faults.FailFrom(c.call, 1, c.error);
        ::testing::internal::CaptureStderr();
        EXPECT_EQ(c.run(file), c.expected) << detail::SysCallName(c.call);
        EXPECT_EQ(::testing::internal::GetCapturedStderr(), c.stderrText);
        EXPECT_GT(faults.Injected(), 0);
        EXPECT_EQ(reports.heard, c.report.empty() ? Heard() : Heard({{kErrorReport, c.report}}));
        faults.Reset();
        file.FClose();
        EXPECT_EQ(Read("f"), c.emptied ? "" : kText);
    }
}

// Short transfers are continued; what FWrite answers is what is on disk.
TEST_F(MFileUnivFaultTest, NothingAnsweredAsWrittenIsLost) {
    char data[] = "abcdefghijklmnop";
    const struct {
        bool shortFirst;
        int failNth;  // the write that fails with ENOSPC, 0 for none
        bool stream;
        int expected;
    } cases[] = {
        {true, 0, false, 16}, {true, 2, false, 8}, {false, 1, false, -1}, {true, 0, true, 16}};
    for (const auto& c : cases) {
        MFileUniv file;
        Open(file, "w", kOpenWriteBinary);
        Reports reports;
        FaultEnv faults;
        ScopedEnv use(faults);
        if (c.shortFirst) faults.ShortNth(SysCall::kWrite, 1);
        if (c.failNth) faults.FailFrom(SysCall::kWrite, c.failNth, ENOSPC);
        const int answer = c.stream ? file.FWriteVoid(data, 1, 16) : file.FWrite(data, 16);
        file.FClose();  // the stream writes out in full
        EXPECT_EQ(answer, c.expected);
        EXPECT_EQ(Read("w"), std::string(data, c.expected > 0 ? c.expected : 0));
        EXPECT_TRUE(reports.heard.empty());
    }
}

}  // namespace
}  // namespace basicutils::filestest
