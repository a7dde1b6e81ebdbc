// The read-ahead ring on real files: where the ring stands after reads
// behind, across and ahead of it, reads in flight at re-initialisation and
// destruction, and every failure. The bytes each read delivers are checked
// against the file in fuzz/AsyncReadBuffer_fuzz.cpp.
#include <basicutils/files/AsyncReadBuffer.h>
#include <basicutils/platform/Sync.h>

#include "OverlappedTest_test.h"

namespace basicutils {
namespace {

using filestest::Pattern;
using filestest::Reports;
using testing::FaultEnv;
using testing::ScopedEnv;
using testing::SysCall;

constexpr int kSize = 8192;  // the buffers of these tests

struct Ring : AsyncReadBuffer {
    using AsyncReadBuffer::mBufferOne;
    using AsyncReadBuffer::mBufferPosition;
    using AsyncReadBuffer::mEvent;
    using AsyncReadBuffer::mOverlapped;
    using AsyncReadBuffer::mPendingBytes;
    using AsyncReadBuffer::mReadPending;
    using AsyncReadBuffer::mValidBytes;
};

class AsyncReadBufferTest : public filestest::TempDirTest {
  protected:
    // Writes `size` patterned bytes to "f" and opens it for overlapped reading.
    std::string Open(size_t size) {
        const std::string data = Pattern(size, static_cast<int>(size % 89));
        Write("f", data);
        EXPECT_EQ(mFile.FOpen(WPath("f").c_str(), kOpenOverlappedRead), 0);
        return data;
    }
    MFileUniv mFile;
};

TEST_F(AsyncReadBufferTest, ReadsBehindAcrossAndAheadOfTheRing) {
    const std::string data = Open(kSize * 6 + 100);
    Ring ring;
    ASSERT_EQ(ring.InitReadBuffer(&mFile, 2 * kSize, kSize, 0), 0);
    struct Case {
        int64_t position;
        int count;
        int answer;
        int64_t bufferAfter;  // mBufferPosition afterwards
    } cases[] = {
        {2 * kSize - 1, 10, 10, 2 * kSize},                    // 1 byte behind, 9 from the buffer
        {100, 50, 50, 2 * kSize},                              // wholly behind: the ring stays
        {2 * kSize - 10, kSize + 100, kSize + 10, 2 * kSize},  // behind and past: short
        {2 * kSize + 5, 0, 0, 2 * kSize},                      // nothing asked
        {3 * kSize + 7, 20, 20, 3 * kSize},                    // a jump into the read-ahead
        {5 * kSize + 3, 30, 30, 5 * kSize + 3},                // a jump beyond it: a new start
        {6 * kSize + 90, 50, 10, 6 * kSize + 3},               // the last bytes
        {6 * kSize + 100, 5, 0, 6 * kSize + 3},                // the end
        {-1, 5, -1, 6 * kSize + 3},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.position);
        const bool pending = ring.mReadPending;
        std::vector<char> out(static_cast<size_t>(std::max(c.count, 1)));
        EXPECT_EQ(ring.ReadBuffer(c.position, out.data(), c.count), c.answer);
        if (c.answer > 0) {
            EXPECT_TRUE(std::string(out.data(), c.answer) == data.substr(c.position, c.answer));
        }
        EXPECT_EQ(ring.mBufferPosition, c.bufferAfter);
        if (c.position < 2 * kSize && c.count > 0) {
            EXPECT_EQ(ring.mReadPending, pending);
        }
    }
}

// A read in flight is waited for before its buffer is reused or freed: the
// held completion has come when InitReadBuffer and the destructor return.
TEST_F(AsyncReadBufferTest, ReadsInFlightEndBeforeTheirBuffersGo) {
    const std::string data = Open(kSize * 3);
    for (bool destroy : {false, true}) {
        SCOPED_TRACE(destroy);
        FaultEnv faults;                             // outlives the ring and its reads
        faults.HoldNth(SysCall::kAsyncComplete, 2);  // the read-ahead's
        ScopedEnv use(faults);
        auto ring = std::make_unique<Ring>();
        ASSERT_EQ(ring->InitReadBuffer(&mFile, 0, kSize, 0), 0);
        {
            filestest::LateRelease release(faults);
            if (destroy)
                ring.reset();
            else
                EXPECT_EQ(ring->InitReadBuffer(&mFile, kSize, kSize, 0), 0);
            EXPECT_TRUE(release.Released());
        }
        if (ring) {
            char out[16];
            EXPECT_EQ(ring->ReadBuffer(kSize, out, 16), 16);
            EXPECT_EQ(std::string(out, 16), data.substr(kSize, 16));
        }
    }
}

// Each failure: its answer, its reports, the state it leaves, and the
// ring's recovery once the system behaves again.
TEST_F(AsyncReadBufferTest, EachFailureHasItsAnswerReportsAndState) {
    const std::string data = Open(kSize * 3);
    enum Fault { kOnce, kFrom, kShort, kHold };
    enum Act { kInitAt, kRead, kFillWithoutEvent };
    struct Case {
        SysCall call;
        int nth;
        Fault fault;
        Act act;
        int64_t at, before;  // kInitAt: the start; kRead: the position, and one read before
        int answer;
        int sector;             // of the two reports of a refused read; -1: no report
        bool buffers, pending;  // afterwards
        int pendingBytes;
        int64_t recover;  // a position read afterwards; -1: none
    } cases[] = {
        // clang-format off
        {SysCall::kMmap, 1, kOnce, kInitAt, 0, -1, -2, -1, false, false, 0, -1},
        {SysCall::kMmap, 2, kOnce, kInitAt, 0, -1, -2, -1, false, false, 0, -1},
        {SysCall::kAsyncSubmit, 1, kFrom, kInitAt, 3 * 2048 + 5, -1, -3, 3, false, false, 0, -1},
        {SysCall::kAsyncComplete, 1, kShort, kInitAt, 0, -1, -3, -1, false, false, 0, -1},
        {SysCall::kAny, 0, kOnce, kInitAt, 3 * kSize, -1, -4, -1, true, false, 0, -1},
        {SysCall::kAsyncComplete, 2, kHold, kFillWithoutEvent, 0, -1, -1, -1, true, true, kSize, kSize + 5},
        {SysCall::kAsyncSubmit, 3, kFrom, kRead, kSize, -1, -1, 8, true, true, 0, 2 * kSize + 5},
        {SysCall::kAsyncComplete, 2, kOnce, kRead, kSize - 2, -1, -1, -1, true, true, 0, kSize + 5},
        {SysCall::kAsyncSubmit, 4, kFrom, kRead, 2048, kSize, -1, 1, true, true, kSize, 2 * kSize + 5},
        // clang-format on
    };
    char out[16];
    for (const Case& c : cases) {
        SCOPED_TRACE(static_cast<int>(&c - cases));
        Ring ring;
        Reports reports;
        {
            FaultEnv faults;
            ScopedEnv use(faults);
            const int error = c.call == SysCall::kMmap ? ENOMEM : EIO;
            if (c.fault == kOnce && c.call != SysCall::kAny) faults.FailNth(c.call, c.nth, error);
            if (c.fault == kFrom) faults.FailFrom(c.call, c.nth, EIO);
            if (c.fault == kShort) faults.ShortNth(c.call, c.nth);
            if (c.fault == kHold) faults.HoldNth(c.call, c.nth);
            int answer;
            if (c.act == kInitAt) {
                answer = ring.InitReadBuffer(&mFile, c.at, kSize, 0);
            } else {
                ASSERT_EQ(ring.InitReadBuffer(&mFile, 0, kSize, 0), 0);
                if (c.before >= 0) ring.ReadBuffer(c.before, out, 10);
                if (c.act == kRead) {
                    answer = ring.ReadBuffer(c.at, out, 10);
                } else {
                    void* event = ring.mEvent;
                    ring.mEvent = &ring;  // not an event: the wait fails
                    int filled = 7;
                    answer = ring.FillInReadBuffer(filled);
                    EXPECT_EQ(filled, 0);
                    ring.mEvent = event;
                    faults.Release();
                }
            }
            EXPECT_EQ(answer, c.answer);
        }
        std::vector<std::pair<int32_t, std::u16string>> expected;
        if (c.sector >= 0) {
            MString retry, failed;
            retry.Format(u"Retry ReadFile at sector %d due to Win32 error 1117 ...", c.sector);
            failed.Format(u"ReadFile at sector %d failed, Win32 error 1117", c.sector);
            expected = {{filestest::kWarningReport, static_cast<const char16_t*>(retry)},
                        {filestest::kErrorReport, static_cast<const char16_t*>(failed)}};
        }
        EXPECT_EQ(reports.heard, expected);
        EXPECT_EQ(ring.mBufferOne != nullptr, c.buffers);
        EXPECT_EQ(ring.mReadPending, c.pending);
        EXPECT_EQ(ring.mPendingBytes, c.pendingBytes);
        if (c.recover >= 0) {
            EXPECT_EQ(ring.ReadBuffer(c.recover, out, 10), 10);
            EXPECT_EQ(std::string(out, 10), data.substr(c.recover, 10));
        }
    }
}

}  // namespace
}  // namespace basicutils
