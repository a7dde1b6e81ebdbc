// The single-run rule, the task lists and the dispatcher's messages.
#include <basicutils/messaging/Recorder_test.h>
#include <basicutils/tasks/CThreadAction.h>
#include <basicutils/tasks/TaskTesting_test.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace basicutils {
namespace {

using namespace testing_support;
using Steps = std::vector<std::string>;

using Scheduler = TaskTest;

// a1 holds the class SingleTask while a subclass and two ordinary tasks run
// beside it (one aborted while running); a task of its class is aborted while
// waiting, one without a worker runs at once, and a2, a3 wait their turns.
TEST_F(Scheduler, SingleRunClassesOrdinaryTasksAbortsAndInlineRuns) {
    LoggedTask stray(&mLog, "stray", false, false);
    action->RemoveThread(&stray);
    EXPECT_EQ(mLog.Steps(), (Steps{"29001:stray"})) << "removing an unlisted task broadcasts";
    struct Derived : SingleTask {  // a class of its own for the single-run rule
        using SingleTask::SingleTask;
    };
    Gate gates[3], side;
    SingleTask* a[3];
    for (int i = 0; i < 3; ++i) a[i] = Task<SingleTask>("a" + std::to_string(i + 1), &gates[i]);
    a[0]->mThreadType = a[1]->mThreadType = 7;
    auto* derived = Task<Derived>("derived", &side);
    auto *plain1 = Task("plain1", &side), *plain2 = Task("plain2", &side);
    plain2->mVisible = false;
    LoggedTask* four[] = {plain1, plain2, a[0], derived};
    for (LoggedTask* t : four) t->Execute();
    ASSERT_TRUE(PumpUntil([&] {
        return std::all_of(four, four + 4,
                           [&](LoggedTask* t) { return mLog.Has("run", t->mName); });
    })) << "all four run at once";
    EXPECT_TRUE(plain1->CanKill());
    const DWORD worker = plain1->GetThreadId();
    EXPECT_NE(worker, GetCurrentThreadId());
    plain1->Abort();  // a running task runs on: the abort only clears ShouldStart
    EXPECT_FALSE(plain1->ShouldStart());
    EXPECT_EQ(action->GetThreadCount(), 4);
    EXPECT_EQ(action->GetVisibleCount(), 3);
    EXPECT_EQ(action->GetThread(1), plain1);
    EXPECT_EQ(action->GetThread(5), nullptr);
    EXPECT_EQ(action->GetThread(0), nullptr);
    EXPECT_EQ(action->FindRunningThread(plain1), nullptr) << "ordinary tasks aren't 'running'";
    EXPECT_EQ(action->FindThread(worker), nullptr);
    side = true;
    ASSERT_TRUE(PumpUntil([&] { return action->GetThreadCount() == 1; }));
    EXPECT_EQ(mLog.Steps({"pass"}), (Steps{"pass:derived>null"}))
        << "only single-run tasks hear PassInformation";
    EXPECT_EQ(mLog.ThreadOf("run", "plain1"), worker);
    for (const char* step : {"postplay", "58900", "deleted"})  // self-deleting: on the main thread
        EXPECT_EQ(mLog.ThreadOf(step, "plain1"), GetCurrentThreadId()) << step;
    EXPECT_FALSE(mLog.Has("58901", "plain1"));

    auto* waiting = Task<SingleTask>("w", nullptr);
    waiting->Execute();
    waiting->Abort();
    EXPECT_EQ(action->GetThreadCount(), 1);
    EXPECT_EQ(action->FindWaitingThread(a[0]), nullptr);
    Task<SingleTask>("inline", nullptr, false)->Execute();
    EXPECT_TRUE(mLog.Has("deleted", "inline")) << "without a worker it ran inside Execute";
    for (int i = 1; i < 3; ++i) a[i]->Execute();
    EXPECT_EQ(action->GetThreadCount(), 3);
    EXPECT_EQ(action->FindRunningThread(a[1]), a[0]);
    EXPECT_EQ(action->FindWaitingThread(a[2]), a[1]);
    EXPECT_EQ(action->FindThread(a[0]->GetThreadId()), a[0]);
    EXPECT_EQ(action->IsThreadTypeRunning(7), 1);
    EXPECT_EQ(action->IsThreadTypeRunning(8), 0);
    for (int i = 0; i < 2; ++i) {  // each waits until the one before it ends
        EXPECT_FALSE(mLog.Has("run", a[i + 1]->mName));
        gates[i] = true;
        ASSERT_TRUE(PumpUntil([&] { return mLog.Has("run", a[i + 1]->mName); }));
    }
    gates[2] = true;
    ASSERT_TRUE(PumpUntil([&] { return mLog.Has("deleted", "a3"); }));
    EXPECT_EQ(mLog.Steps({"start", "pass", "29001"}, "a"),
              (Steps{"start:a1", "pass:a1>a2", "start:a2", "29001:a1", "pass:a2>a3", "start:a3",
                     "29001:a2", "pass:a3>null", "29001:a3"}));
    const std::initializer_list<std::string> ending{"run",  "postplay", "58900",
                                                    "pass", "29001",    "deleted"};
    EXPECT_EQ(mLog.Steps(ending, "a3"), (Steps{"run:a3", "postplay:a3", "58900:a3", "pass:a3>null",
                                               "29001:a3", "deleted:a3"}));
    EXPECT_EQ(mLog.Steps(ending, "w"), (Steps{"58900:w", "29001:w", "deleted:w"}))
        << "the aborted task never ran";
}

// One window until deleted, and no task end is lost when it goes: an end
// queued at its death is handled at once on its thread, one that finds no
// dispatcher waits for the next one.
TEST(Dispatcher, OneWindowItsMessagesAndTaskEndsThatSurviveIt) {
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

    (new LoggedTask(&log, "queued"))->Execute();
    // Wait, without pumping, until its end (1314) waits in the queue.
    MSG waiting;
    for (int i = 0; i < 60000 && !PeekMessageW(&waiting, nullptr, 0, 0, PM_NOREMOVE); ++i) Sleep(1);
    ASSERT_EQ(waiting.message, kWmThreadFinished);
    EXPECT_FALSE(log.Has("deleted", "queued"));
    CThreadDispatcher::DeleteAll();
    EXPECT_EQ(CThreadDispatcher::sThreadDispatcher.load(), nullptr);
    EXPECT_TRUE(log.Has("deleted", "queued"));
    CThreadDispatcher::DeleteAll();

    (new LoggedTask(&log, "parked"))->Execute();
    ASSERT_TRUE(PumpUntil([&] { return log.Has("run", "parked"); }));
    for (int i = 0; i < 20; ++i) PumpMessages(2);
    EXPECT_FALSE(log.Has("postplay", "parked")) << "no dispatcher: the end waits";
    EXPECT_EQ(CThreadAction::GetThreadAction()->GetThreadCount(), 1);
    EXPECT_NE(CThreadDispatcher::GetThreadDispatcher(), nullptr);
    ASSERT_TRUE(PumpUntil([&] { return log.Has("deleted", "parked"); }));
    EXPECT_EQ(log.ThreadOf("postplay", "parked"), GetCurrentThreadId());
}

}  // namespace
}  // namespace basicutils
