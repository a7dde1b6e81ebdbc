// A writer killed at each successive system call of its writes, roll-overs
// and growing seeks leaves a logical file that opens with every byte a
// returned call acknowledged, and that takes further writes.
#include <basicutils/platform/testing/ChildProcess.h>

#include <cstdio>

#include "MFilesTest_test.h"

namespace basicutils::filestest {
namespace {

using testing::RunInChild;

// The real calls with syncs that return at once: a killed process loses
// nothing that the system holds, so here the syncs would only cost time.
// They are still counted, and killed at, by a FaultEnv above.
class NoSyncEnv : public detail::EnvWrapper {
  public:
    NoSyncEnv() : EnvWrapper(detail::CurrentEnv()) {}
    int Fsync(int, bool) override { return 0; }
};

struct Action {
    bool seek;  // FSeek64 from the start to `amount`; else FWrite of `amount` bytes
    int64_t amount;
};

// Byte i of the logical file as the writers write it; never 0, so that a
// stretch filled by a seek shows.
char Pattern(size_t i) {
    return static_cast<char>('A' + i % 23);
}

// The logical file after each action: models[k] is what k actions leave.
std::vector<std::string> Models(size_t before, const std::vector<Action>& actions) {
    std::vector<std::string> models(1);
    for (size_t i = 0; i < before; ++i) models[0] += Pattern(i);
    for (const Action& a : actions) {
        std::string next = models.back();
        if (a.seek && a.amount > static_cast<int64_t>(next.size()))
            next.resize(static_cast<size_t>(a.amount), '\0');
        for (int64_t i = 0; !a.seek && i < a.amount; ++i) next += Pattern(next.size());
        models.push_back(next);
    }
    return models;
}

class MFilesCrashTest : public MFilesTest {
  protected:
    // The logical file P read whole; false when it does not open or read.
    bool ReadAll(std::string& content) {
        MFiles files;
        if (files.FOpen(P().c_str(), kOpenReadBinary) != 0) return false;
        content.assign(1 << 16, '\0');
        const int read = files.FRead(content.data(), 1 << 16);
        content.resize(read > 0 ? static_cast<size_t>(read) : 0);
        return read >= 0;
    }
    // Runs the actions on P with a limit of 100, writing the bytes of the
    // models and marking each returned action in `acks`: 0, or the step
    // that failed.
    int Run(file_open_t mode, const std::vector<Action>& actions,
            const std::vector<std::string>& models, std::FILE* acks) {
        MFiles files;
        files.SetMaxFileSize(100);
        if (files.FOpen(P().c_str(), mode) != 0) return 1;
        for (size_t k = 0; k < actions.size(); ++k) {
            std::string data = models[k + 1].substr(models[k].size());
            const int64_t answer = actions[k].seek
                                       ? files.FSeek64(actions[k].amount, kSeekBegin)
                                       : files.FWrite(data.data(), static_cast<int>(data.size()));
            if (answer < 0 || (!actions[k].seek && answer != actions[k].amount))
                return static_cast<int>(k) + 2;
            if (acks) {
                std::fputc('+', acks);
                std::fflush(acks);
            }
        }
        files.FClose();
        return 0;
    }
};

TEST_F(MFilesCrashTest, EveryKillPointOpensWithEveryAcknowledgedByte) {
    const struct {
        const char* name;
        size_t before;  // bytes already in P, written with the same limit
        file_open_t mode;
        std::vector<Action> actions;
    } workloads[] = {
        {"writes roll over",
         0,
         kOpenWriteBinary,
         {{false, 60}, {false, 60}, {false, 150}, {false, 30}}},
        {"a seek grows a plain file", 0, kOpenWriteBinary, {{false, 10}, {true, 250}, {false, 20}}},
        {"a seek grows a segmented file",
         0,
         kOpenWriteBinary,
         {{false, 150}, {true, 430}, {false, 5}}},
        {"appending rolls over", 150, kOpenAppendBinary, {{false, 120}, {false, 100}}},
    };
    NoSyncEnv quiet;
    ScopedEnv use(quiet);
    int killPoints = 0;
    for (const auto& w : workloads) {
        SCOPED_TRACE(w.name);
        const std::vector<std::string> models = Models(w.before, w.actions);
        for (int point = 1;; ++point) {
            SCOPED_TRACE("killed before system call " + std::to_string(point));
            for (const auto& entry : fs::directory_iterator(mDir)) fs::remove(entry.path());
            if (w.before > 0) {
                ASSERT_EQ(Run(kOpenWriteBinary, {{false, 150}}, Models(0, {{false, 150}}), nullptr),
                          0);
            }
            std::FILE* acks = std::fopen((mDir / "acks").c_str(), "wb");
            const testing::ChildEnd end = RunInChild([&] {
                FaultEnv faults(quiet);
                faults.LimitToThisThread().KillAt(SysCall::kAny, point);
                ScopedEnv kill(faults);
                return Run(w.mode, w.actions, models, acks);
            });
            std::fclose(acks);
            ASSERT_TRUE(end.exited || end.signal == 9) << "signal " << end.signal;
            const size_t done = static_cast<size_t>(fs::file_size(mDir / "acks"));
            fs::remove(mDir / "acks");
            const std::string& next = models[std::min(done + 1, models.size() - 1)];
            std::string content;
            if (!fs::exists(mDir / "P")) {
                EXPECT_TRUE(models[done].empty()) << "acknowledged bytes are gone";
            } else if (!ReadAll(content)) {
                ADD_FAILURE() << "P does not open";
            } else {
                EXPECT_GE(content.size(), models[done].size());
                EXPECT_EQ(content, next.substr(0, content.size()));
                // The logical file goes on from what was left.
                MFiles more;
                more.SetMaxFileSize(100);
                ASSERT_EQ(more.FOpen(P().c_str(), kOpenAppendBinary), 0);
                std::string tail(120, 'z');
                EXPECT_EQ(more.FWrite(tail.data(), 120), 120);
                more.FClose();
                std::string after;
                ASSERT_TRUE(ReadAll(after));
                EXPECT_EQ(after, content + tail);
            }
            if (end.exited) {
                EXPECT_EQ(end.status, 0);
                EXPECT_EQ(done, w.actions.size());
                break;
            }
            ++killPoints;
        }
    }
    RecordProperty("kill_points", killPoints);
    std::printf("[ killed ] %d kill points, each opened with every acknowledged byte\n",
                killPoints);
}

}  // namespace
}  // namespace basicutils::filestest
