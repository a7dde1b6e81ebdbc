// A writer killed before each successive system call of its writes,
// roll-overs and growing seeks leaves a logical file that opens with every
// byte a returned call acknowledged, and that takes further writes.
#include <basicutils/platform/testing/ChildProcess.h>

#include <cstdio>

#include "MFilesTest_test.h"

namespace basicutils::filestest {
namespace {

// Syncs return at once: a killed process loses nothing that the system
// holds. A FaultEnv above still counts them and kills at them.
class NoSyncEnv : public detail::EnvWrapper {
  public:
    NoSyncEnv() : EnvWrapper(detail::CurrentEnv()) {}
    int Fsync(int, bool) override { return 0; }
};

// The logical file after each step, from `before` bytes: a positive step
// writes that many bytes (never 0, so that a stretch a seek filled shows), a
// negative one seeks from the start to its opposite.
std::vector<std::string> Models(size_t before, const std::vector<int>& steps) {
    std::vector<std::string> models{std::string(before, 'b')};
    for (int step : steps) {
        std::string next = models.back();
        if (step < 0 && static_cast<size_t>(-step) > next.size())
            next.resize(static_cast<size_t>(-step), '\0');
        for (int i = 0; i < step; ++i) next += static_cast<char>('A' + next.size() % 23);
        models.push_back(next);
    }
    return models;
}

// Plays the steps on `path` with a limit of 100, marking each that returned
// in `acks`: 0, or 1 when a call failed.
int Play(const std::u16string& path, file_open_t mode, const std::vector<int>& steps,
         const std::vector<std::string>& models, std::FILE* acks) {
    MFiles files;
    files.SetMaxFileSize(100);
    if (files.FOpen(path.c_str(), mode) != 0) return 1;
    for (size_t k = 0; k < steps.size(); ++k) {
        std::string data = models[k + 1].substr(models[k].size());
        if (steps[k] < 0 ? files.FSeek64(-steps[k], kSeekBegin) < 0
                         : files.FWrite(data.data(), steps[k]) != steps[k])
            return 1;
        std::fputc('+', acks);
        std::fflush(acks);
    }
    return 0;
}

TEST_F(MFilesTest, EveryKillPointOpensWithEveryAcknowledgedByte) {
    // Bytes already in P, the opening mode, the steps, and whether the file
    // system gives no hard links (FAT): link() then fails with EPERM.
    const struct {
        size_t before;
        file_open_t mode;
        std::vector<int> steps;
        bool noLinks;
    } workloads[] = {
        {0, kOpenWriteBinary, {60, 60, 150, 30}, false},  // writes roll over
        {0, kOpenWriteBinary, {10, -250, 20}, false},     // a seek grows a plain file
        {0, kOpenWriteBinary, {150, -430, 5}, false},     // and a segmented one
        {150, kOpenAppendBinary, {120, 100}, false},      // appending rolls over
        {0, kOpenWriteBinary, {60, 60, 150}, true},
        {0, kOpenWriteBinary, {10, -250, 20}, true},
    };
    NoSyncEnv quiet;
    ScopedEnv use(quiet);
    int killPoints = 0;
    for (const auto& w : workloads) {
        const std::vector<std::string> models = Models(w.before, w.steps);
        for (int point = 1;; ++point) {
            SCOPED_TRACE("killed before system call " + std::to_string(point));
            for (const auto& entry : fs::directory_iterator(mDir)) fs::remove(entry.path());
            MFiles setup;
            setup.SetMaxFileSize(100);
            ASSERT_EQ(setup.FOpen(P().c_str(), kOpenWriteBinary), 0);
            ASSERT_EQ(setup.FWrite(std::string(models[0]).data(), static_cast<int>(w.before)),
                      int(w.before));
            setup.FClose();
            std::FILE* acks = std::fopen((mDir / "acks").c_str(), "wb");
            const testing::ChildEnd end = testing::RunInChild([&] {
                FaultEnv faults(quiet);
                faults.LimitToThisThread().KillAt(SysCall::kAny, point);
                if (w.noLinks) faults.FailFrom(SysCall::kLink, 1, EPERM);
                ScopedEnv kill(faults);
                return Play(P(), w.mode, w.steps, models, acks);
            });
            std::fclose(acks);
            ASSERT_TRUE(end.exited ? end.status == 0 : end.signal == 9);
            const size_t done = static_cast<size_t>(fs::file_size(mDir / "acks"));
            const std::string& next = models[std::min(done + 1, models.size() - 1)];
            MFiles files;
            files.SetMaxFileSize(100);
            auto readAll = [&files] {
                std::string bytes(1 << 16, '\0');
                bytes.resize(static_cast<size_t>(std::max(files.FRead(bytes.data(), 1 << 16), 0)));
                return bytes;
            };
            ASSERT_EQ(files.FOpen(P().c_str(), kOpenAppendBinary), 0);
            ASSERT_EQ(files.FSeek64(0, kSeekBegin), 0);
            const std::string content = readAll();
            EXPECT_GE(content.size(), models[done].size()) << "acknowledged bytes are lost";
            EXPECT_EQ(content, next.substr(0, content.size()));
            std::string tail(120, 'z');  // the logical file goes on from what was left
            EXPECT_EQ(files.FWrite(tail.data(), 120), 120);
            files.FClose();
            ASSERT_EQ(files.FOpen(P().c_str(), kOpenReadBinary), 0);
            EXPECT_EQ(readAll(), content + tail);
            if (end.exited) break;
            ++killPoints;
        }
    }
    std::printf("[ killed ] %d kill points, each opened with every acknowledged byte\n",
                killPoints);
}

}  // namespace
}  // namespace basicutils::filestest
