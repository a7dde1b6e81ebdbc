// The overlapped world on real files: sector-widened reads, waits, padded
// concatenation of sources around sector and buffer sizes, cancellation
// with a transfer still in flight, and every failure with its report.
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/Sync.h>
#include <basicutils/platform/VirtualMemory.h>

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
    const std::u16string io =
        u"The request could not be performed because of an I/O device error.\r\n";
    const std::u16string retry = u"Retry ReadFile at sector 2 due to Win32 error 1117 ...";
    enum Run { kRead, kWrite, kInit, kConcat, kConcatMissing, kBlock };
    enum Fault { kFailOnce, kFailAll, kShort };
    struct Case {
        Run run;
        SysCall call;
        int nth;
        Fault fault;
        int64_t expected;  // kInit: the answer * 1000 + mLastError
        std::vector<std::pair<int32_t, std::u16string>> reports;
    } cases[] = {
        // clang-format off
        {kRead, SysCall::kAsyncSubmit, 1, kFailOnce, 0, {{kWarningReport, retry}}},
        {kRead, SysCall::kAsyncSubmit, 1, kFailAll, ERROR_IO_DEVICE, {{kWarningReport, retry}, {kErrorReport, u"ReadFile at sector 2 failed, Win32 error 1117"}}},
        {kWrite, SysCall::kAsyncSubmit, 1, kFailAll, ERROR_IO_DEVICE, {{kErrorReport, u"WriteFile failed at sector 2, error 1117"}}},
        {kInit, SysCall::kMmap, 1, kFailOnce, -1000 + ERROR_NOT_ENOUGH_MEMORY, {}},
        {kInit, SysCall::kMmap, 2, kFailOnce, -1000 + ERROR_NOT_ENOUGH_MEMORY, {}},
        {kConcatMissing, SysCall::kAny, 0, kFailOnce, -1, {}},
        {kConcat, SysCall::kFstat, 2, kFailOnce, ERROR_IO_DEVICE, {}},  // the size
        {kConcat, SysCall::kAsyncSubmit, 1, kFailOnce, -1, {{kErrorReport, io}}},
        {kConcat, SysCall::kAsyncComplete, 1, kFailOnce, -1, {{kErrorReport, io}}},  // the read
        {kConcat, SysCall::kAsyncComplete, 2, kFailOnce, -1, {{kErrorReport, io}}},  // the write
        {kConcat, SysCall::kAsyncComplete, 1, kShort, -1, {{kErrorReport, u"Reached the end of the file.\r\n"}}},
        {kConcat, SysCall::kAsyncComplete, 2, kShort, -1, {{kErrorReport, u"There is not enough space on the disk.\r\n"}}},
        {kBlock, SysCall::kAsyncComplete, 1, kFailOnce, -1, {}},
        // clang-format on
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(static_cast<int>(&c - cases));
        OpenFile file;
        Write("out", Pattern(8192));
        ASSERT_EQ(file.FOpen(WPath("out").c_str(), kOpenOverlappedReadWrite), 0);
        if (c.run >= kConcat) {
            ASSERT_EQ(file.ConcatInitialize(2048, 0), 0);
        }
        Reports reports;
        FaultEnv faults;
        if (c.fault == kShort) faults.ShortNth(c.call, c.nth);
        const int error = c.call == SysCall::kMmap ? ENOMEM : EIO;
        if (c.fault == kFailOnce && c.call != SysCall::kAny) faults.FailNth(c.call, c.nth, error);
        if (c.fault == kFailAll) faults.FailFrom(c.call, c.nth, EIO);
        int64_t answer = 0;
        {
            ScopedEnv use(faults);
            OVERLAPPED o;
            bool cancel = false;
            switch (c.run) {
                case kRead:
                    answer = file.FReadOverlapped(5000, mBlock + 4096, 10, &o, mEvent);
                    if (answer == 0) file.FWaitOverlappedCompletion(mEvent, 10);
                    break;
                case kWrite:
                    answer = file.FWriteOverlapped(4096, mBlock, 2048, &o, mEvent);
                    break;
                case kInit:
                    answer = file.ConcatInitialize(2048, 0) * 1000 + file.mConcat.mLastError;
                    EXPECT_EQ(file.mConcat.mBufferA, nullptr);  // none kept
                    break;
                case kConcat:
                case kConcatMissing:
                    answer = file.ConcatFile(WPath(c.run == kConcat ? "in" : "missing").c_str(), 0,
                                             cancel, 0);
                    break;
                case kBlock:
                    answer = file.ConcatBufferSynchronously(mBlock, 5000);
                    break;
            }
        }
        EXPECT_EQ(answer, c.expected);
        EXPECT_EQ(reports.heard, c.reports);
    }
}

}  // namespace
}  // namespace basicutils
