// Every failure path of the working file, driven through the system seam:
// the answer, the report and its channel, and what reached the disk.
#include <basicutils/files/MFileUniv.h>
#include <basicutils/platform/testing/FaultEnv.h>

#include <functional>

#include "FilesTest_test.h"

namespace basicutils {
namespace {

using filestest::kErrorReport;
using filestest::Reports;
using testing::FaultEnv;
using testing::ScopedEnv;
using testing::SysCall;

class MFileUnivFaultTest : public filestest::TempDirTest {};

TEST_F(MFileUnivFaultTest, EachFailureHasItsAnswerReportAndChannel) {
    char ten[] = "0123456789";
    char buffer[16] = {};
    char16_t line[32] = {};
    struct Case {
        const char* name;
        file_open_t mode;  // of the file "f" holding "0123456789\n"
        SysCall call;
        int error;
        std::function<int64_t(MFileUniv&)> run;
        int64_t expected;
        std::u16string report;  // empty: no report
        std::string stderrText;
        std::string onDisk;  // "f" afterwards
    } cases[] = {
        {"open", kOpenReadBinary, SysCall::kOpen, EACCES,
         [&](MFileUniv& f) { return f.FOpen(kOpenReadBinary); }, -1, u"",
         "ERROR: Permission denied\n", "0123456789\n"},
        {"overlapped open", kOpenReadBinary, SysCall::kOpen, EMFILE,
         [&](MFileUniv& f) { return f.FOpen(kOpenOverlappedCreate); }, -1, u"", "",
         "0123456789\n"},
        {"read", kOpenReadBinary, SysCall::kRead, EIO,
         [&](MFileUniv& f) { return f.FRead(buffer, 4); }, -1,
         u"Read file error(Input/output error) (MFileUniv::FRead)", "", "0123456789\n"},
        {"stream read", kOpenReadBinary, SysCall::kRead, EIO,
         [&](MFileUniv& f) { return f.FReadVoid(buffer, 1, 4); }, 0,
         u"Read file error(Input/output error) (MFileUniv::FReadVoid)", "", "0123456789\n"},
        {"line read", kOpenReadBinary, SysCall::kRead, EIO,
         [&](MFileUniv& f) { return f.FGetts(line, 8); }, -1, u"", "", "0123456789\n"},
        {"write", kOpenWriteBinary, SysCall::kWrite, ENOSPC,
         [&](MFileUniv& f) { return f.FWrite(ten, 10); }, -1, u"", "", ""},
        {"close", kOpenWriteBinary, SysCall::kWrite, ENOSPC,
         [&](MFileUniv& f) {
             f.FWriteVoid(ten, 1, 10);
             f.FClose();
             return 0;
         },
         0, u"Close file error(No space left on device) in MFileUniv::FClose", "", ""},
        {"size", kOpenReadBinary, SysCall::kStat, EIO, [&](MFileUniv& f) { return f.GetSize(); },
         -1, u"", "", "0123456789\n"},
        {"end of file", kOpenUpdateBinary, SysCall::kFtruncate, EIO,
         [&](MFileUniv& f) { return f.FSetEndOfFile(); }, -1, u"", "", "0123456789\n"},
    };
    for (const Case& c : cases) {
        Write("f", "0123456789\n");
        MFileUniv file;
        ASSERT_EQ(file.FOpen(WPath("f").c_str(), c.mode), 0);
        file.FClose();
        if (c.call != SysCall::kOpen) {
            ASSERT_EQ(file.FOpen(c.mode), 0);
        }
        Reports reports;
        FaultEnv faults;
        ScopedEnv use(faults);
        faults.FailFrom(c.call, 1, c.error);
        if (c.call == SysCall::kWrite) faults.FailFrom(SysCall::kPwrite, 1, c.error);
        if (c.call == SysCall::kStat) faults.FailFrom(SysCall::kLstat, 1, c.error);
        ::testing::internal::CaptureStderr();
        EXPECT_EQ(c.run(file), c.expected) << c.name;
        EXPECT_EQ(::testing::internal::GetCapturedStderr(), c.stderrText) << c.name;
        if (c.report.empty()) {
            EXPECT_TRUE(reports.heard.empty()) << c.name;
        } else {
            ASSERT_EQ(reports.heard.size(), 1u) << c.name;
            EXPECT_EQ(reports.heard[0].first, kErrorReport);
            EXPECT_EQ(reports.heard[0].second, c.report);
        }
        faults.Reset();
        file.FClose();
        EXPECT_EQ(Read("f"), c.onDisk) << c.name;
    }
}

// Short transfers are continued; what FWrite answers is what is on disk.
TEST_F(MFileUnivFaultTest, NothingAnsweredAsWrittenIsLost) {
    char data[] = "abcdefghijklmnop";
    struct Case {
        bool shortFirst;
        int failNth;  // write that fails with ENOSPC, 0 for none
        bool stream;
        int expected;
        std::string onDisk;
    } cases[] = {
        {true, 0, false, 16, "abcdefghijklmnop"},
        {true, 2, false, 8, "abcdefgh"},
        {false, 1, false, -1, ""},
        {true, 0, true, 16, "abcdefghijklmnop"},  // the stream writes out in full at close
    };
    for (const Case& c : cases) {
        MFileUniv file;
        ASSERT_EQ(file.FOpen(WPath("w").c_str(), kOpenWriteBinary), 0);
        Reports reports;
        FaultEnv faults;
        ScopedEnv use(faults);
        if (c.shortFirst) faults.ShortNth(SysCall::kWrite, 1);
        if (c.failNth) faults.FailFrom(SysCall::kWrite, c.failNth, ENOSPC);
        const int answer = c.stream ? file.FWriteVoid(data, 1, 16) : file.FWrite(data, 16);
        file.FClose();
        EXPECT_EQ(answer, c.expected);
        EXPECT_EQ(Read("w"), c.onDisk);
        EXPECT_TRUE(reports.heard.empty());
    }
}

}  // namespace
}  // namespace basicutils
