// The read-ahead ring on real files: sizes around sectors and buffers read
// in several step sizes, reads behind, across and ahead of the ring, reads
// in flight at re-initialisation and destruction, and every failure.
#include <basicutils/files/AsyncReadBuffer.h>
#include <basicutils/platform/Sync.h>

#include <functional>

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

TEST_F(AsyncReadBufferTest, SequentialReadsDeliverTheFileByteForByte) {
    const size_t sizes[] = {1, 2047, 2048, 2049, kSize, kSize * 3 / 2, kSize * 5 / 2};
    for (size_t size : sizes) {
        for (int64_t start : {0, 5}) {
            for (int step : {1000, kSize / 2, kSize, 3 * kSize}) {
                SCOPED_TRACE(std::to_string(size) + " " + std::to_string(start) + " " +
                             std::to_string(step));
                if (start >= static_cast<int64_t>(size)) continue;
                const std::string data = Open(size);
                Ring ring;
                ASSERT_EQ(ring.InitReadBuffer(&mFile, start, kSize, 0), 0);
                std::string got;
                std::vector<char> piece(static_cast<size_t>(step));
                for (int64_t at = start;;) {
                    const int n = ring.ReadBuffer(at, piece.data(), step);
                    ASSERT_GE(n, 0);
                    if (n == 0) break;
                    got.append(piece.data(), static_cast<size_t>(n));
                    at += n;
                }
                EXPECT_TRUE(got == data.substr(static_cast<size_t>(start)));
                mFile.FClose();
            }
        }
    }
}

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
    char out[16];
    auto from = [](FaultEnv& f, SysCall call) {  // every call of the kind from now on
        f.FailFrom(call, f.Count(call) + 1, EIO);
    };
    auto settled = [](Ring& r) {  // the read-ahead has ended
        for (int i = 0; i < 10000 && !HasOverlappedIoCompleted(&r.mOverlapped); ++i) SleepEx(1, 0);
    };
    using Heard = std::vector<std::pair<int32_t, std::u16string>>;
    auto pair = [](int sector) {
        MString retry, failed;
        retry.Format(u"Retry ReadFile at sector %d due to Win32 error 1117 ...", sector);
        failed.Format(u"ReadFile at sector %d failed, Win32 error 1117", sector);
        return Heard{{filestest::kWarningReport, static_cast<const char16_t*>(retry)},
                     {filestest::kErrorReport, static_cast<const char16_t*>(failed)}};
    };
    struct Case {
        const char* name;
        std::function<int(Ring&, FaultEnv&)> run;
        int answer;
        Heard reports;
        bool buffers, pending;  // afterwards
        int pendingBytes;
        int64_t recover;  // a position read afterwards; -1: none
    } cases[] = {
        {"no memory",
         [&](Ring& r, FaultEnv& f) {
             f.FailNth(SysCall::kMmap, 1, ENOMEM);
             return r.InitReadBuffer(&mFile, 0, kSize, 0);
         },
         -2,
         {},
         false,
         false,
         0,
         -1},
        {"no second buffer",
         [&](Ring& r, FaultEnv& f) {
             f.FailNth(SysCall::kMmap, 2, ENOMEM);
             return r.InitReadBuffer(&mFile, 0, kSize, 0);
         },
         -2,
         {},
         false,
         false,
         0,
         -1},
        {"first read refused",
         [&](Ring& r, FaultEnv& f) {
             from(f, SysCall::kAsyncSubmit);
             return r.InitReadBuffer(&mFile, 3 * 2048 + 5, kSize, 0);
         },
         -3, pair(3), false, false, 0, -1},
        {"first read short",
         [&](Ring& r, FaultEnv& f) {
             f.ShortNth(SysCall::kAsyncComplete, 1);
             return r.InitReadBuffer(&mFile, 0, kSize, 0);
         },
         -3,
         {},
         false,
         false,
         0,
         -1},
        {"start at the end",
         [&](Ring& r, FaultEnv&) { return r.InitReadBuffer(&mFile, 3 * kSize, kSize, 0); },
         -4,
         {},
         true,
         false,
         0,
         -1},
        {"wait fails",
         [&](Ring& r, FaultEnv& f) {
             f.HoldNth(SysCall::kAsyncComplete, 2);
             r.InitReadBuffer(&mFile, 0, kSize, 0);
             void* event = r.mEvent;
             r.mEvent = &r;  // no event: the wait fails
             int filled = 7;
             const int answer = r.FillInReadBuffer(filled);
             r.mEvent = event;
             f.Release();
             return filled == 0 ? answer : 99;
         },
         -1,
         {},
         true,
         true,
         kSize,
         kSize + 5},
        {"next read refused",
         [&](Ring& r, FaultEnv& f) {
             r.InitReadBuffer(&mFile, 0, kSize, 0);
             from(f, SysCall::kAsyncSubmit);
             return r.ReadBuffer(kSize, out, 10);
         },
         -1, pair(8), true, true, 0, 2 * kSize + 5},
        {"read-ahead fails",
         [&](Ring& r, FaultEnv& f) {
             f.FailNth(SysCall::kAsyncComplete, 2, EIO);
             r.InitReadBuffer(&mFile, 0, kSize, 0);
             return r.ReadBuffer(kSize - 2, out, 10);
         },
         -1,
         {},
         true,
         true,
         0,
         kSize + 5},
        {"read behind refused",
         [&](Ring& r, FaultEnv& f) {
             r.InitReadBuffer(&mFile, 0, kSize, 0);
             r.ReadBuffer(kSize, out, 10);
             settled(r);
             from(f, SysCall::kAsyncSubmit);
             return r.ReadBuffer(2048, out, 10);
         },
         -1, pair(1), true, true, kSize, 2 * kSize + 5},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Ring ring;
        Reports reports;
        {
            FaultEnv faults;
            ScopedEnv use(faults);
            EXPECT_EQ(c.run(ring, faults), c.answer);
        }
        EXPECT_EQ(reports.heard, c.reports);
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
