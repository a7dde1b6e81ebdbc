// The single-run rule, the task lists and the dispatcher's messages.
#include <basicutils/messaging/Recorder_test.h>
#include <basicutils/tasks/CThreadAction.h>
#include <basicutils/tasks/TaskTesting_test.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

namespace basicutils {
namespace {

using namespace testing_support;
using Steps = std::vector<std::string>;

class Scheduler : public ::testing::Test {
  protected:
    void SetUp() override {
        CThreadDispatcher::GetThreadDispatcher();
        action->AddListener(&mMessages);
    }
    void TearDown() override {
        action->RemoveListener(&mMessages);
        EXPECT_EQ(action->GetThreadCount(), 0);
    }
    template <class T>
    T* Held(const std::string& name, Gate* gate) {
        auto* task = new T(&mLog, name);
        task->mGate = gate;
        return task;
    }

    CThreadAction* action = CThreadAction::GetThreadAction();
    EventLog mLog;
    MessageLog mMessages{&mLog};
};

TEST_F(Scheduler, SingleRunTasksOfOneClassRunOneAfterAnotherInLaunchOrder) {
    Gate gates[3];
    SingleTask* t[3];
    for (int i = 0; i < 3; ++i) t[i] = Held<SingleTask>("a" + std::to_string(i + 1), &gates[i]);
    t[0]->mThreadType = t[1]->mThreadType = 7;
    for (SingleTask* task : t) task->Execute();
    ASSERT_TRUE(WaitUntil([&] { return t[0]->mStartedRunning.load(); }));
    EXPECT_EQ(action->GetThreadCount(), 3);
    EXPECT_EQ(action->FindRunningThread(t[1]), t[0]);
    EXPECT_EQ(action->FindWaitingThread(t[2]), t[1]);
    EXPECT_EQ(action->FindThread(t[0]->GetThreadId()), t[0]);
    EXPECT_EQ(action->IsThreadTypeRunning(7), 1);
    EXPECT_EQ(action->IsThreadTypeRunning(8), 0);
    for (int i = 0; i < 2; ++i) {  // each waits until the one before it ends
        EXPECT_FALSE(t[i + 1]->mStartedRunning);
        gates[i] = true;
        ASSERT_TRUE(PumpUntil([&] { return t[i + 1]->mStartedRunning.load(); }));
    }
    gates[2] = true;
    ASSERT_TRUE(PumpUntil([&] { return mLog.Has("deleted", "a3"); }));
    EXPECT_EQ(mLog.Steps({"start", "pass", "29001"}),
              (Steps{"start:a1", "pass:a1>a2", "start:a2", "29001:a1", "pass:a2>a3", "start:a3",
                     "29001:a2", "pass:a3>null", "29001:a3"}));
}

TEST_F(Scheduler, ClassesAndOrdinaryTasksDoNotWaitForEachOther) {
    Gate gate;
    auto* base = Held<SingleTask>("base", &gate);
    auto* derived = Held<DerivedSingleTask>("derived", &gate);
    auto* plain1 = new LoggedTask(&mLog, "plain1", true);
    auto* plain2 = new LoggedTask(&mLog, "plain2", true);
    plain1->mGate = plain2->mGate = &gate;
    plain2->mVisible = false;
    for (LoggedTask* t : std::initializer_list<LoggedTask*>{plain1, plain2, base, derived})
        t->Execute();
    ASSERT_TRUE(PumpUntil([&] {
        return base->mStartedRunning && derived->mStartedRunning && plain1->mStartedRunning &&
               plain2->mStartedRunning;
    })) << "all four run at once";
    EXPECT_EQ(action->GetThreadCount(), 4);
    EXPECT_EQ(action->GetVisibleCount(), 3);
    EXPECT_EQ(action->GetThread(1), plain1);
    EXPECT_EQ(action->GetThread(5), nullptr);
    EXPECT_EQ(action->GetThread(0), nullptr);
    EXPECT_EQ(action->FindRunningThread(plain1), nullptr) << "ordinary tasks aren't 'running'";
    EXPECT_EQ(action->FindThread(plain1->GetThreadId()), nullptr);
    gate = true;
    ASSERT_TRUE(PumpUntil([&] { return action->GetThreadCount() == 0; }));
    Steps passes = mLog.Steps({"pass"});
    std::sort(passes.begin(), passes.end());
    EXPECT_EQ(passes, (Steps{"pass:base>null", "pass:derived>null"}))
        << "only single-run tasks hear PassInformation, each once";
}

TEST_F(Scheduler, AbortedWaitingTaskLeavesWithoutDisturbingTheRunningOne) {
    Gate gate;
    auto* running = Held<SingleTask>("run", &gate);
    auto* waiting = Held<SingleTask>("wait", &gate);
    running->AddListener(&mMessages);
    waiting->AddListener(&mMessages);
    running->Execute();
    waiting->Execute();
    waiting->Abort();
    EXPECT_EQ(action->GetThreadCount(), 1);
    EXPECT_EQ(action->FindWaitingThread(running), nullptr);
    gate = true;
    ASSERT_TRUE(PumpUntil([&] { return mLog.Has("deleted", "run"); }));
    EXPECT_EQ(mLog.Steps({"postplay", "58900", "pass", "29001", "deleted"}),
              (Steps{"58900:wait", "29001:wait", "deleted:wait", "postplay:run", "58900:run",
                     "pass:run>null", "29001:run", "deleted:run"}));
    EXPECT_EQ(mLog.Steps({"run"}), (Steps{"run:run"})) << "the aborted task never ran";
}

TEST_F(Scheduler, TaskWithoutWorkerIgnoresSingleRun) {
    Gate gate;
    auto* running = Held<SingleTask>("held", &gate);
    running->Execute();
    auto* inline_task = new SingleTask(&mLog, "inline");
    inline_task->SetWorkerThread(false);
    inline_task->Execute();
    EXPECT_TRUE(mLog.Has("deleted", "inline")) << "it ran inside Execute, not waiting";
    gate = true;
    ASSERT_TRUE(PumpUntil([&] { return mLog.Has("deleted", "held"); }));
}

TEST_F(Scheduler, RemovingAnUnlistedTaskStillBroadcasts) {
    LoggedTask stray(&mLog, "stray", false, false);
    action->RemoveThread(&stray);
    EXPECT_EQ(mLog.Steps(), (Steps{"29001:stray"}));
}

TEST(Dispatcher, OneWindowUntilDeletedAndMessagesToIt) {
    CThreadDispatcher* d = CThreadDispatcher::GetThreadDispatcher();
    EXPECT_EQ(CThreadDispatcher::GetThreadDispatcher(), d);
    EXPECT_TRUE(d->IsKindOf(RUNTIME_CLASS(CFrameWnd)));

    Recorder listener;
    SBroadcastRequest request{&listener, 4711, nullptr};
    SBroadcastRequest empty{nullptr, 4712, nullptr};
    EXPECT_TRUE(d->PostMessage(kWmBroadcastMessage, 0, reinterpret_cast<LPARAM>(&request)));
    EXPECT_TRUE(d->PostMessage(kWmBroadcastMessage, 0, reinterpret_cast<LPARAM>(&empty)));
    EXPECT_TRUE(d->PostMessage(kWmBroadcastMessage, 0, 0));
    EventLog log;
    auto* task = new LoggedTask(&log, "posted", false, false);
    EXPECT_TRUE(d->PostMessage(kWmThreadStarted, 0, reinterpret_cast<LPARAM>(task)));
    EXPECT_EQ(PumpMessages(0), 4);
    EXPECT_EQ(listener.Numbers(), (std::vector<int32_t>{4711}));
    EXPECT_EQ(CThreadAction::GetThreadAction()->GetThread(1), task) << "1313 lists the task";
    CThreadAction::GetThreadAction()->RemoveThread(task);
    delete task;

    CThreadDispatcher::DeleteAll();
    EXPECT_EQ(CThreadDispatcher::sThreadDispatcher.load(), nullptr);
    CThreadDispatcher::DeleteAll();
    EXPECT_NE(CThreadDispatcher::GetThreadDispatcher(), nullptr);
}

// No task end is lost when the dispatcher goes: an end queued at its death
// is handled at once on its thread, one that finds no dispatcher waits for
// the next one.
TEST(Dispatcher, TaskEndsSurviveTheDispatcher) {
    EventLog log;
    CThreadDispatcher::GetThreadDispatcher();
    auto* queued = new LoggedTask(&log, "queued", true);
    queued->Execute();
    // Wait, without pumping, until its end (1314) waits in the queue.
    MSG waiting;
    for (int i = 0; i < 60000 && !PeekMessageW(&waiting, nullptr, 0, 0, PM_NOREMOVE); ++i) Sleep(1);
    ASSERT_EQ(waiting.message, kWmThreadFinished);
    EXPECT_FALSE(log.Has("deleted", "queued"));
    CThreadDispatcher::DeleteAll();
    EXPECT_TRUE(log.Has("deleted", "queued"));

    auto* parked = new LoggedTask(&log, "parked", true);
    parked->Execute();
    ASSERT_TRUE(PumpUntil([&] { return log.Has("run", "parked"); }));
    for (int i = 0; i < 20; ++i) PumpMessages(2);
    EXPECT_FALSE(log.Has("postplay", "parked")) << "no dispatcher: the end waits";
    EXPECT_EQ(CThreadAction::GetThreadAction()->GetThreadCount(), 1);
    CThreadDispatcher::GetThreadDispatcher();
    ASSERT_TRUE(PumpUntil([&] { return log.Has("deleted", "parked"); }));
    EXPECT_EQ(log.ThreadOf("postplay", "parked"), GetCurrentThreadId());
}

}  // namespace
}  // namespace basicutils
