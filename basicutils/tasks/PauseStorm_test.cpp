// Pause and Continue in a storm. A task that allocates, reports progress and
// posts messages is paused and continued 10,000 times from the main thread
// and as many times from another thread, with random gaps of 0 to 100 µs,
// while other tasks run. Every toggle returns, nothing deadlocks (the whole
// storm runs in a child process with a deadline), and every task ends with
// the result it would have had undisturbed.
#include <basicutils/messaging/CThreadStatus.h>
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/internal/Suspension.h>
#include <basicutils/tasks/TaskTesting_test.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <memory>
#include <random>
#include <string>
#include <thread>

namespace basicutils {
namespace {

using namespace testing_support;

constexpr int kTasks = 4;  // task 0 is the one that is paused
constexpr int kToggles = 10000;
constexpr int64_t kLeastUnits = 1000;

struct Outcome {
    std::atomic<int64_t> units{0}, posted{0}, postedSum{0}, received{0}, receivedSum{0};
    std::atomic<bool> wrongSum{false}, badPost{false}, deleted{false};
};

// What the storm's tasks share: their outcomes, the flag that stops them, and
// a window that counts what they post to it.
struct Mailbox : CWnd {
    std::array<Outcome, kTasks> outcomes;
    std::atomic<bool> stop{false};
    LRESULT WindowProc(UINT, WPARAM task, LPARAM unit) override {
        outcomes[task].received += 1;
        outcomes[task].receivedSum += unit;
        return 0;
    }
};

// Adds up the progress the tasks report.
struct AdvanceCounter : LListener {
    std::atomic<int64_t> advances{0};
    bool ListenToMessage(int32_t message, void* param) override {
        auto* info = static_cast<SThreadStatusInfo*>(param);
        if (message == kMsgThreadStatus && (info->mMask & kStatusMaskAdvance))
            advances += info->mPosition;
        return true;
    }
};

class StormTask : public CVelmorantThread {
  public:
    StormTask(Mailbox* mailbox, WPARAM index)
        : mMailbox(mailbox), mIndex(index), mOutcome(&mailbox->outcomes[index]) {
        SetWorkerThread(true);
        mHasProgress = true;
    }
    ~StormTask() override { mOutcome->deleted = true; }
    void RunSelf() override {
        int64_t unit = 0;
        for (; unit < kLeastUnits || !mMailbox->stop.load(); ++unit) {
            const int64_t n = 16 + unit % 240;  // n values from unit * 31 on
            auto block = std::make_unique<uint32_t[]>(n);
            for (int64_t i = 0; i < n; ++i) block[i] = static_cast<uint32_t>(unit * 31 + i);
            int64_t sum = 0;
            for (int64_t i = 0; i < n; ++i) sum += block[i];
            if (sum != n * unit * 31 + n * (n - 1) / 2) mOutcome->wrongSum = true;
            SetPos(unit + 1);
            CThreadStatus::AdvancePosition(1);
            if (unit % 64 == 0) SetStatus(u"working");
            const bool post = unit % 16 == 0;
            if (post && PostMessageW(mMailbox->GetSafeHwnd(), WM_USER, mIndex, unit)) {
                mOutcome->posted += 1;
                mOutcome->postedSum += unit;
            } else if (post && GetLastError() != ERROR_NOT_ENOUGH_QUOTA) {
                mOutcome->badPost = true;
            }
            if (mIndex != 0) Sleep(0);  // the others leave the two cores to the storm
        }
        mOutcome->units = unit;
    }
    using CVelmorantThread::mThread;

  private:
    Mailbox* mMailbox;
    WPARAM mIndex;
    Outcome* mOutcome;
};

// Busy-waits `micros` µs: a sleep would last far longer than asked.
void Gap(int micros) {
    const auto until = std::chrono::steady_clock::now() + std::chrono::microseconds(micros);
    while (std::chrono::steady_clock::now() < until) {
    }
}

void Toggle(StormTask* task, unsigned seed, bool pump) {
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> gap(0, 100);
    for (int i = 0; i < kToggles; ++i) {
        task->Pause();
        Gap(gap(random));
        task->Continue();
        Gap(gap(random));
        if (pump && i % 16 == 0) PumpMessages(0);
    }
}

// A few pauses that are checked: the worker (running all along) really stops
// and stays still.
std::string CheckedPauses(StormTask* task) {
    for (int i = 0; i < 20; ++i) {
        task->Pause();
        if (!detail::WaitForThreadStop(task->mThread.load()->m_hThread, 20000))
            return "the worker never stopped";
        const int64_t frozen = task->GetPos();
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        if (task->GetPos() != frozen) return "a paused worker went on";
        task->Continue();
    }
    return "";
}

std::string Storm() {
    CThreadDispatcher::GetThreadDispatcher();
    Mailbox mailbox;
    auto& outcomes = mailbox.outcomes;
    mailbox.CreateHidden();
    AdvanceCounter counter;
    CThreadStatus::GetThreadStatus()->AddListener(&counter);
    StormTask* tasks[kTasks];
    for (int t = 0; t < kTasks; ++t) tasks[t] = new StormTask(&mailbox, t);
    for (StormTask* task : tasks) task->Execute();
    StormTask* const paused = tasks[0];  // alive until `stop`
    std::string failure;
    if (!WaitUntil([&] { return paused->GetPos() > 100; })) failure = "the task never started";
    if (failure.empty()) failure = CheckedPauses(paused);
    if (failure.empty()) {
        std::thread other(Toggle, paused, 2u, false);
        Toggle(paused, 1u, true);
        other.join();
        paused->Continue();
    }
    mailbox.stop = true;
    auto deleted = [](const Outcome& o) { return o.deleted.load(); };
    if (!PumpUntil([&] { return std::all_of(outcomes.begin(), outcomes.end(), deleted); }))
        return failure + "; the tasks never ended";
    PumpMessages(0);
    CThreadStatus::GetThreadStatus()->RemoveListener(&counter);
    int64_t allUnits = 0;
    for (int t = 0; t < kTasks; ++t) {
        const Outcome& o = outcomes[t];
        const std::string task = "task " + std::to_string(t);
        if (o.units < kLeastUnits || o.wrongSum) failure += "; " + task + " miscounted";
        if (o.received != o.posted || o.receivedSum != o.postedSum || o.badPost)
            failure += "; " + task + " lost or repeated messages";
        allUnits += o.units;
    }
    if (counter.advances != allUnits) failure += "; progress reports lost";
    return failure;
}

TEST(PauseStorm, EveryToggleReturnsAndEveryTaskEndsWithItsResult) {
    EXPECT_COMPLETES_WITHIN(120, &Storm);
}

}  // namespace
}  // namespace basicutils
