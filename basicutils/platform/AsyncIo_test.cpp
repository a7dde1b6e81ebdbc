// The transfer engine, on both backends: whole transfers at any offset, the
// end of the file, cancellation, and faults injected through the seam.
#include <basicutils/platform/internal/AsyncIo.h>
#include <basicutils/platform/testing/FaultEnv.h>
#include <basicutils/platform/testing/TestBackend.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <string>
#include <vector>

namespace basicutils::detail {
namespace {

using testing::FaultEnv;
using testing::ScopedEnv;

// A transfer with a way to wait for its end.
struct Waited {
    AsyncTransfer transfer;
    std::mutex lock;
    std::condition_variable ended;
    bool done = false;
    int64_t result = 0;

    Waited(int fd, bool write, void* buffer, uint32_t count, int64_t offset) {
        transfer = {fd, write, buffer, count, offset, &Done, this};
    }
    static void Done(AsyncTransfer* t, int64_t result) {
        auto* self = static_cast<Waited*>(t->context);
        std::lock_guard<std::mutex> g(self->lock);
        self->result = result;
        self->done = true;
        self->ended.notify_all();
    }
    int64_t Wait() {
        std::unique_lock<std::mutex> l(lock);
        EXPECT_TRUE(ended.wait_for(l, std::chrono::seconds(10), [&] { return done; }));
        return result;
    }
};

int64_t Transfer(int fd, bool write, void* buffer, uint32_t count, int64_t offset) {
    Waited w(fd, write, buffer, count, offset);
    if (!TheAsyncBackend().Submit(&w.transfer)) return -errno;
    return w.Wait();
}

class AsyncIo : public ::testing::TestWithParam<AsyncBackendKind> {
  protected:
    void SetUp() override {
        kind = SelectAsyncBackend(GetParam());
        char name[] = "/tmp/basicutils-asyncio-XXXXXX";
        fd = ::mkstemp(name);
        path = name;
        ASSERT_GE(fd, 0);
    }
    void TearDown() override {
        ::close(fd);
        ::unlink(path.c_str());
        SelectAsyncBackend(testing::TestAsyncBackend());
    }
    AsyncBackendKind kind{};
    int fd = -1;
    std::string path;
};

TEST_P(AsyncIo, WritesAndReadsWholeTransfersAndStopsAtTheEnd) {
    if (GetParam() == AsyncBackendKind::kIoUring && kind != GetParam()) {
        GTEST_SKIP() << "the kernel gives no io_uring here";
    }
    std::vector<char> data(300000);
    for (size_t i = 0; i < data.size(); ++i) data[i] = static_cast<char>(i * 7 + 1);
    ASSERT_EQ(Transfer(fd, true, data.data(), 200000, 0), 200000);
    ASSERT_EQ(Transfer(fd, true, data.data() + 200000, 100000, 200000), 100000);

    // clang-format off
    struct { int64_t offset; uint32_t count; int64_t expected; } cases[] = {
        {0, 300000, 300000}, {2047, 4097, 4097}, {299999, 10, 1}, {300000, 10, 0}, {500000, 5, 0},
    };
    // clang-format on
    for (const auto& c : cases) {
        std::vector<char> back(c.count, 0);
        EXPECT_EQ(Transfer(fd, false, back.data(), c.count, c.offset), c.expected) << c.offset;
        for (int64_t i = 0; i < c.expected; ++i) ASSERT_EQ(back[i], data[c.offset + i]) << i;
    }
}

TEST_P(AsyncIo, SeamFailsSubmissionsAndRewritesCompletions) {
    char block[4096] = {1};
    FaultEnv faults;
    ScopedEnv use(faults);
    faults.FailNth(SysCall::kAsyncSubmit, 1, EIO)
        .FailNth(SysCall::kAsyncComplete, 1, EIO)
        .ShortNth(SysCall::kAsyncComplete, 2);
    EXPECT_EQ(Transfer(fd, true, block, sizeof block, 0), -EIO);  // refused, never ran
    EXPECT_EQ(Transfer(fd, true, block, sizeof block, 0), -EIO);  // ran, reported as failed
    EXPECT_EQ(Transfer(fd, true, block, sizeof block, 0), 2048);  // reported short
    EXPECT_EQ(Transfer(fd, false, block, sizeof block, 0), 4096);
}

TEST_P(AsyncIo, DrainWaitsForEveryTransferOfTheDescriptor) {
    std::vector<char> data(1 << 20, 'x');
    std::vector<std::unique_ptr<Waited>> all;
    for (int i = 0; i < 16; ++i) {
        all.push_back(
            std::make_unique<Waited>(fd, true, data.data(), data.size(), int64_t{i} << 20));
        ASSERT_TRUE(TheAsyncBackend().Submit(&all.back()->transfer));
    }
    TheAsyncBackend().Cancel(fd);
    TheAsyncBackend().Drain(fd);
    for (auto& w : all) {
        std::lock_guard<std::mutex> g(w->lock);
        ASSERT_TRUE(w->done);
        EXPECT_TRUE(w->result == static_cast<int64_t>(data.size()) || w->result == -ECANCELED)
            << w->result;
    }
}

INSTANTIATE_TEST_SUITE_P(Backends, AsyncIo,
                         ::testing::Values(AsyncBackendKind::kIoUring,
                                           AsyncBackendKind::kThreadPool),
                         [](const auto& info) {
                             return info.param == AsyncBackendKind::kIoUring ? "IoUring"
                                                                             : "ThreadPool";
                         });

}  // namespace
}  // namespace basicutils::detail
