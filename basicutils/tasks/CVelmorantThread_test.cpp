// The life of a task: which steps run, in which order, on which thread.
#include <basicutils/messaging/CMessageAction.h>
#include <basicutils/messaging/Recorder_test.h>
#include <basicutils/platform/testing/FaultEnv.h>
#include <basicutils/tasks/CVelmorantThread.h>
#include <basicutils/tasks/TaskTesting_test.h>
#include <gtest/gtest.h>

#include <thread>

namespace basicutils {
namespace {

using namespace testing_support;
using Steps = std::vector<std::string>;

using TaskLife = TaskTest;

// The steps of tasks that end inside Execute, in order, on the caller's thread.
TEST_F(TaskLife, TasksThatEndInsideExecute) {
    // clang-format off
    struct { bool worker, autoDelete, accept, shouldStart, executes; Steps steps; } cases[] = {
        {false, true, true, true, true, {"preplay:t", "29000:t", "run:t", "postplay:t", "58900:t", "29001:t", "deleted:t", "29002:?"}},
        {true, true, false, true, false, {"preplay:t", "deleted:t", "29002:?"}},
        {true, false, false, true, false, {"preplay:t", "deleted:t", "29002:?"}},
        {true, true, true, false, true, {"preplay:t", "29000:t", "start:t", "postplay:t", "58900:t", "29001:t", "deleted:t", "29002:?"}},
    };
    // clang-format on
    for (auto& c : cases) {
        mLog.Clear();
        auto* task = Task("t", nullptr, c.worker, c.autoDelete);
        task->mAccept = c.accept;
        task->mShouldStart = c.shouldStart;
        task->Pause();
        EXPECT_FALSE(task->IsPaused()) << "no thread: nothing to pause";
        EXPECT_EQ(task->Execute(), c.executes);
        EXPECT_EQ(mLog.Steps(), c.steps);
        for (auto& e : mLog.Events()) EXPECT_EQ(e.thread, GetCurrentThreadId()) << e.what;
    }
}

TEST_F(TaskLife, WorkerWithoutAutoDeleteCleansUpOnTheWorker) {
    // The client deletes such a task when it hears 58901; doing it inside the
    // broadcast is safe, as a broadcaster may die during its own broadcast.
    Recorder deleter;
    deleter.then = [&](int32_t message) {
        if (message != kMsgThreadCleanedUpOnWorker) return;
        auto* task = static_cast<LoggedTask*>(static_cast<CVelmorantThread*>(deleter.lastParam));
        mLog.Add("canKill=" + std::to_string(task->CanKill()), "k");
        delete task;
        mLog.Add("gone", "k");  // the worker is done with the task's lists
    };
    auto* task = Task("k", nullptr, true, false);
    task->AddListener(&deleter);
    ASSERT_TRUE(task->Execute());
    ASSERT_TRUE(PumpUntil([&] { return mLog.Has("gone", "k"); }));
    const DWORD worker = mLog.ThreadOf("run", "k");
    EXPECT_NE(worker, GetCurrentThreadId());
    for (const char* step : {"postplay", "58900", "29001", "58901", "deleted"})
        EXPECT_EQ(mLog.ThreadOf(step, "k"), worker) << step;
    EXPECT_EQ(mLog.Steps(),
              (Steps{"preplay:k", "29000:k", "start:k", "run:k", "postplay:k", "58900:k", "29001:k",
                     "58901:k", "canKill=0:k", "deleted:k", "29002:?", "gone:k"}));
}

TEST_F(TaskLife, ThreadThatCannotBeCreatedEndsTheTaskAndSaysSo) {
    Recorder errors;
    CMessageAction::GetMessageAction()->AddListener(&errors);
    testing::FaultEnv faults;
    testing::ScopedEnv use(faults);
    faults.FailNth(detail::SysCall::kThreadCreate, 1, EAGAIN);
    Task<SingleTask>("f1", nullptr)->Execute();
    Task<SingleTask>("f2", nullptr)->Execute();
    CMessageAction::GetMessageAction()->RemoveListener(&errors);
    EXPECT_EQ(errors.Numbers(), (std::vector<int32_t>{26000}));
    EXPECT_EQ(mLog.Steps({"run", "postplay", "deleted"}, "f1"),
              (Steps{"postplay:f1", "deleted:f1"}));
    ASSERT_TRUE(PumpUntil([&] { return mLog.Has("deleted", "f2"); }));
    EXPECT_TRUE(mLog.Has("run", "f2")) << "the next task of the class was not held up";
}

TEST_F(TaskLife, ProgressScaleDescriptionAndThreadId) {
    // clang-format off
    struct { int64_t range, pos; int expected; } cases[] = {
        {0, 50, 0}, {2048, 2048, 1024}, {100, 150, 1536}, {3, 1, 341}, {1LL << 40, 1LL << 39, 512}};
    // clang-format on
    LoggedTask task(&mLog, "d", false, false);
    for (const auto& c : cases) {
        task.SetRange(c.range);
        task.SetPos(c.pos);
        EXPECT_EQ(task.GetStatusPosition(), c.expected) << c.range << " " << c.pos;
    }
    EXPECT_EQ(std::u16string(task.GetDescription()), u"basicutils::testing_support::LoggedTask");
    DWORD other = 0;
    std::thread([&] { other = task.GetThreadId(); }).join();
    EXPECT_EQ(task.GetThreadId(), GetCurrentThreadId());
    EXPECT_NE(other, GetCurrentThreadId()) << "without worker, the caller's ID";
    task.SetStatus(u"reading");
    task.SetWorkerThread(true);
    LoggedTask copy(task);
    EXPECT_EQ(copy.GetStatusPosition(), 512) << "a copy takes every field";
    EXPECT_EQ(std::u16string(copy.GetStatus()), u"reading");
    EXPECT_TRUE(copy.IsWorkerThread());
}

}  // namespace
}  // namespace basicutils
