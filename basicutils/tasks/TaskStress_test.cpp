// Several hundred tasks of single-run and ordinary classes, launched from the
// main thread and from other threads, with aborts, kills and listeners that
// come and go during the scheduler's broadcasts. Every task must run at most
// once (exactly once unless aborted), single-run classes one at a time and in
// launch order per launcher, and every task must end and be deleted.
#include <basicutils/tasks/TaskTesting_test.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

namespace basicutils {
namespace {

using namespace testing_support;

struct Ledger {
    std::mutex lock;
    std::map<int, int> runs;                                // task id -> RunSelf count
    std::map<std::pair<int, int>, std::vector<int>> order;  // (class, launcher) -> ids run
    std::atomic<int> deleted{0};
    std::atomic<int> concurrent[3] = {};
    std::atomic<bool> overlapped{false};  // two single-run tasks of a class at once
};

class StressTask : public CVelmorantThread {
  public:
    StressTask(Ledger* ledger, int id, int kind, int launcher)
        : mLedger(ledger), mId(id), mKind(kind), mLauncher(launcher) {
        SetWorkerThread(true);
        mSingleRun = kind != 2;
    }
    ~StressTask() override { mLedger->deleted.fetch_add(1); }
    void RunSelf() override {
        const int now = mLedger->concurrent[mKind].fetch_add(1) + 1;
        if (mSingleRun && now > 1) mLedger->overlapped = true;
        {
            std::lock_guard<std::mutex> g(mLedger->lock);
            ++mLedger->runs[mId];
            mLedger->order[{mKind, mLauncher}].push_back(mId);
        }
        if (mHold && !WaitUntil([&] { return mKilled.load(); })) ADD_FAILURE() << "never killed";
        for (int i = 0; i < 50; ++i) SetPos(i);
        mLedger->concurrent[mKind].fetch_sub(1);
    }
    bool KillSelf() override {
        mKilled = true;
        return true;
    }
    bool mHold = false;
    std::atomic<bool> mKilled{false};

  protected:
    Ledger* mLedger;
    int mId, mKind, mLauncher;
};

// Each kind is a most derived class of its own: two single-run kinds (0, 1)
// and an ordinary one.
template <int kKind>
StressTask* Make(Ledger* ledger, int id, int launcher) {
    struct Kind : StressTask {
        using StressTask::StressTask;
    };
    return new Kind(ledger, id, kKind, launcher);
}
StressTask* (*const kMake[])(Ledger*, int, int) = {Make<0>, Make<1>, Make<2>};

// Swaps itself for its partner during the broadcasts it hears.
class Juggler : public LListener {
  public:
    Juggler* partner = nullptr;
    std::atomic<int> heard{0};
    bool ListenToMessage(int32_t message, void*) override {
        if (message != kMsgThreadAdded && message != kMsgThreadRemoved) return false;
        if (heard.fetch_add(1) % 7 == 0) {
            CThreadAction::GetThreadAction()->RemoveListener(this);
            CThreadAction::GetThreadAction()->AddListener(partner);
        }
        return true;
    }
};

TEST(TaskStress, HundredsOfTasksEachRunOnceInOrderAndEnd) {
    CThreadDispatcher::GetThreadDispatcher();
    CThreadAction* action = CThreadAction::GetThreadAction();
    Juggler j1, j2;
    j1.partner = &j2;
    j2.partner = &j1;
    action->AddListener(&j1);

    Ledger ledger;
    constexpr int kLaunchers = 3, kPerLauncher = 120;
    std::atomic<int> nextId{0};
    auto start = [&](int kind, int launcher, bool hold = false) {
        StressTask* task = kMake[kind](&ledger, nextId++, launcher);
        task->mHold = hold;
        task->Execute();
        return task;
    };
    auto launch = [&](int launcher) {
        for (int i = 0; i < kPerLauncher; ++i) start(i % 3, launcher);
    };
    // Aborts: a held task of kind 0 keeps the rest of its class waiting, so
    // their pointers stay valid until we abort them. Kills: ordinary tasks
    // that run until killed.
    StressTask* holder = start(0, 99, true);
    std::vector<StressTask*> doomed, killable;
    for (int i = 0; i < 20; ++i) doomed.push_back(start(0, 98));
    for (int i = 0; i < 10; ++i) killable.push_back(start(2, 97, true));

    std::vector<std::thread> launchers;
    for (int l = 1; l < kLaunchers; ++l) launchers.emplace_back(launch, l);
    launch(0);
    for (auto* t : doomed) t->Abort();
    for (auto* t : killable) t->Kill();
    holder->Kill();
    for (auto& t : launchers) t.join();

    const int total = nextId.load();
    ASSERT_TRUE(PumpUntil([&] { return ledger.deleted.load() == total; }))
        << ledger.deleted.load() << " of " << total << " ended";
    action->RemoveListener(&j1);
    action->RemoveListener(&j2);

    EXPECT_EQ(action->GetThreadCount(), 0);
    EXPECT_FALSE(ledger.overlapped) << "two single-run tasks of a class at once";
    std::lock_guard<std::mutex> g(ledger.lock);
    EXPECT_EQ(ledger.runs.size(), size_t(total - 20)) << "aborted tasks never run";
    for (auto& [id, count] : ledger.runs) EXPECT_EQ(count, 1) << "task " << id;
    for (auto& [key, ids] : ledger.order) {
        if (key.first == 2) continue;
        EXPECT_TRUE(std::is_sorted(ids.begin(), ids.end()))
            << "class " << key.first << " launcher " << key.second;
    }
    EXPECT_GT(j1.heard + j2.heard, 0);
}

}  // namespace
}  // namespace basicutils
