// The overlapped world on real files: sector-widened reads, waits, padded
// concatenation of sources around sector and buffer sizes, cancellation
// with a transfer still in flight, and every failure with its report.
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/Sync.h>
#include <basicutils/platform/VirtualMemory.h>

#include <functional>

#include "OverlappedTest_test.h"

namespace basicutils {
namespace {

using filestest::Advances;
using filestest::kErrorReport;
using filestest::kWarningReport;
using filestest::OpenFile;
using filestest::Pattern;
using filestest::Reports;
using testing::FaultEnv;
using testing::ScopedEnv;
using testing::SysCall;

constexpr uint32_t kBuffer = 4 << 20;  // of ConcatInitialize(2048, .)

class OverlappedTest : public filestest::TempDirTest {
  protected:
    void SetUp() override {
        TempDirTest::SetUp();
        mEvent = CreateEventW(nullptr, 1, 0, nullptr);
        mBlock = static_cast<char*>(VirtualAlloc(nullptr, 1 << 16, MEM_COMMIT, PAGE_READWRITE));
    }
    void TearDown() override {
        VirtualFree(mBlock, 0, MEM_RELEASE);
        CloseHandle(mEvent);
        TempDirTest::TearDown();
    }
    HANDLE mEvent = nullptr;
    char* mBlock = nullptr;
};

TEST_F(OverlappedTest, ReadsAreWidenedToWholeSectors) {
    const std::string data = Pattern(10000);
    Write("f", data);
    OpenFile file;
    ASSERT_EQ(file.FOpen(WPath("f").c_str(), kOpenOverlappedRead), 0);
    struct Case {
        int64_t offset;
        int size;
        int skew;
        int64_t from;
        DWORD count;  // moved, up to the end of the file
    } cases[] = {{5000, 100, 904, 4096, 2048},  {4096, 2048, 0, 4096, 2048},
                 {2000, 100, 2000, 0, 4096},    {9000, 500, 808, 8192, 1808},
                 {10000, 10, 1808, 8192, 1808}, {12288, 10, 0, 12288, 0}};
    Reports reports;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.offset);
        OVERLAPPED overlapped;
        char* buffer = mBlock + 4096;
        ASSERT_EQ(file.FReadOverlapped(c.offset, buffer, c.size, &overlapped, mEvent), 0u);
        EXPECT_EQ(file.mSectorSkew, c.skew);
        EXPECT_EQ(overlapped.Offset, static_cast<DWORD>(c.from));
        EXPECT_EQ(file.FWaitOverlappedCompletion(mEvent, 10), WAIT_OBJECT_0);
        EXPECT_EQ(overlapped.InternalHigh, c.count);
        EXPECT_EQ(std::string(buffer - c.skew, c.count),
                  data.substr(std::min<size_t>(c.from, data.size()), c.count));
    }
    EXPECT_TRUE(reports.heard.empty());
    EXPECT_EQ(file.FWaitOverlappedCompletion(mEvent, 0), WAIT_TIMEOUT);  // reset after each
}

TEST_F(OverlappedTest, ConcatenationPadsEachPieceToTheBlock) {
    const size_t sizes[] = {
        0, 1, 2047, 2048, 2049, 5000, kBuffer, kBuffer * 3 / 2, kBuffer * 5 / 2};
    OpenFile out;
    ASSERT_EQ(out.FOpen(WPath("out").c_str(), kOpenOverlappedCreate), 0);
    ASSERT_EQ(out.ConcatInitialize(2048, 2048), 0);
    std::string expected(2048, '\0');
    Advances advances;
    Reports reports;
    bool cancel = false;
    for (size_t size : sizes) {
        const std::string name = "in" + std::to_string(size);
        const std::string data = Pattern(size, static_cast<int>(size % 97));
        Write(name, data);
        const int64_t before = advances.total;
        EXPECT_EQ(out.ConcatFile(WPath(name).c_str(), 0, cancel, 0), 0) << size;
        const size_t padded = (size + 2047) / 2048 * 2048;
        EXPECT_EQ(advances.total - before, static_cast<int64_t>(padded / 2048)) << size;
        expected += data + std::string(padded - size, '\0');
        EXPECT_EQ(out.ConcatPosition(), static_cast<int64_t>(expected.size()));
    }
    char block[100];
    std::fill(block, block + 100, 'z');
    EXPECT_EQ(out.ConcatBufferSynchronously(block, 100), 0);
    expected += std::string(100, 'z') + std::string(1948, '\0');
    EXPECT_EQ(out.ConcatBufferSynchronously(block, kBuffer + 1), -1);  // larger than a buffer
    out.FClose();
    EXPECT_EQ(out.mConcat.mBufferA, nullptr);  // released with the file
    EXPECT_TRUE(Read("out") == expected);
    EXPECT_TRUE(reports.heard.empty());
}

// A cancelled run keeps the write it started and returns only when nothing
// of it is in flight: the held completion has come by then.
TEST_F(OverlappedTest, CancelledRunKeepsItsLastWriteAndLeavesNothingInFlight) {
    const std::string data = Pattern(kBuffer * 5 / 2);
    Write("in", data);
    OpenFile out;
    ASSERT_EQ(out.FOpen(WPath("out").c_str(), kOpenOverlappedCreate), 0);
    ASSERT_EQ(out.ConcatInitialize(2048, 0), 0);
    Advances advances;
    FaultEnv faults;
    faults.HoldNth(SysCall::kAsyncComplete, 2);  // the first write's or the second read's
    int32_t result;
    {
        ScopedEnv use(faults);
        filestest::LateRelease release(faults);
        bool cancel = true;
        result = out.ConcatFile(WPath("in").c_str(), 0, cancel, 0);
        EXPECT_TRUE(release.Released());
    }
    EXPECT_EQ(result, 0);
    EXPECT_EQ(out.ConcatPosition(), kBuffer);
    EXPECT_EQ(advances.total, kBuffer / 2048);
    out.FClose();
    EXPECT_TRUE(Read("out") == data.substr(0, kBuffer));
}

TEST_F(OverlappedTest, EachFailureHasItsAnswerAndReport) {
    Write("in", Pattern(5000));
    const std::u16string ioText =
        u"The request could not be performed because of an I/O device error.\r\n";
    struct Case {
        const char* name;
        std::function<void(FaultEnv&)> faults;
        std::function<int64_t(OpenFile&)> run;
        int64_t expected;
        std::vector<std::pair<int32_t, std::u16string>> reports;
    } cases[] = {
        {"read retried",
         [](FaultEnv& f) { f.FailNth(SysCall::kAsyncSubmit, 1, EIO); },
         [&](OpenFile& f) {
             OVERLAPPED o;
             const uint32_t r = f.FReadOverlapped(5000, mBlock + 4096, 10, &o, mEvent);
             f.FWaitOverlappedCompletion(mEvent, 10);
             return r;
         },
         0,
         {{kWarningReport, u"Retry ReadFile at sector 2 due to Win32 error 1117 ..."}}},
        {"read failed",
         [](FaultEnv& f) { f.FailFrom(SysCall::kAsyncSubmit, 1, EIO); },
         [&](OpenFile& f) {
             OVERLAPPED o;
             return f.FReadOverlapped(5000, mBlock + 4096, 10, &o, mEvent);
         },
         ERROR_IO_DEVICE,
         {{kWarningReport, u"Retry ReadFile at sector 2 due to Win32 error 1117 ..."},
          {kErrorReport, u"ReadFile at sector 2 failed, Win32 error 1117"}}},
        {"write failed",
         [](FaultEnv& f) { f.FailFrom(SysCall::kAsyncSubmit, 1, EIO); },
         [&](OpenFile& f) {
             OVERLAPPED o;
             return f.FWriteOverlapped(4096, mBlock, 2048, &o, mEvent);
         },
         ERROR_IO_DEVICE,
         {{kErrorReport, u"WriteFile failed at sector 2, error 1117"}}},
        {"no memory",
         [](FaultEnv& f) { f.FailNth(SysCall::kMmap, 1, ENOMEM); },
         [](OpenFile& f) { return f.ConcatInitialize(2048, 0) * 1000 + f.mConcat.mLastError; },
         -1000 + ERROR_NOT_ENOUGH_MEMORY,
         {}},
        {"no second buffer",
         [](FaultEnv& f) { f.FailNth(SysCall::kMmap, 2, ENOMEM); },
         [](OpenFile& f) {
             return f.ConcatInitialize(2048, 0) * 1000 + (f.mConcat.mBufferA != nullptr);
         },
         -1000,
         {}},
        {"missing source",
         [](FaultEnv&) {},
         [&](OpenFile& f) {
             bool cancel = false;
             f.ConcatInitialize(2048, 0);
             return f.ConcatFile(WPath("missing").c_str(), 0, cancel, 0);
         },
         -1,
         {}},
        {"size unreadable",
         [](FaultEnv& f) { f.FailNth(SysCall::kFstat, 2, EIO); },
         [&](OpenFile& f) {
             bool cancel = false;
             f.ConcatInitialize(2048, 0);
             return f.ConcatFile(WPath("in").c_str(), 0, cancel, 0);
         },
         ERROR_IO_DEVICE,
         {}},
    };
    struct Transfer {
        const char* name;
        SysCall call;
        int nth;
        bool shortened;
        std::u16string report;  // empty for the synchronous block
    } transfers[] = {
        {"read not started", SysCall::kAsyncSubmit, 1, false, ioText},
        {"read failed", SysCall::kAsyncComplete, 1, false, ioText},
        {"write failed", SysCall::kAsyncComplete, 2, false, ioText},
        {"read short", SysCall::kAsyncComplete, 1, true, u"Reached the end of the file.\r\n"},
        {"write short", SysCall::kAsyncComplete, 2, true,
         u"There is not enough space on the disk.\r\n"},
        {"block failed", SysCall::kAsyncComplete, 1, false, u""},
    };
    std::vector<Case> all(std::begin(cases), std::end(cases));
    for (const Transfer& t : transfers) {
        const bool block = t.report.empty();
        all.push_back({t.name,
                       [t](FaultEnv& f) {
                           t.shortened ? f.ShortNth(t.call, t.nth) : f.FailNth(t.call, t.nth, EIO);
                       },
                       [&, block](OpenFile& f) -> int64_t {
                           if (f.ConcatInitialize(2048, 0) != 0) return 1;
                           bool cancel = false;
                           return block ? f.ConcatBufferSynchronously(mBlock, 5000)
                                        : f.ConcatFile(WPath("in").c_str(), 0, cancel, 0);
                       },
                       -1,
                       block ? decltype(Case::reports){}
                             : decltype(Case::reports){{kErrorReport, t.report}}});
    }
    for (const Case& c : all) {
        SCOPED_TRACE(c.name);
        OpenFile file;
        Write("out", Pattern(8192));
        ASSERT_EQ(file.FOpen(WPath("out").c_str(), kOpenOverlappedReadWrite), 0);
        Reports reports;
        FaultEnv faults;
        c.faults(faults);
        {
            ScopedEnv use(faults);
            EXPECT_EQ(c.run(file), c.expected);
        }
        EXPECT_EQ(reports.heard, c.reports);
    }
}

}  // namespace
}  // namespace basicutils
