// Shared pieces of the task tests: an event log, a task that records each
// step with its thread, a gate to hold a task in RunSelf, a pump loop and the
// fixture of the scheduler and task-life tests.
#pragma once

#include <basicutils/platform/Deadline_test.h>
#include <basicutils/platform/MessageQueue.h>
#include <basicutils/platform/Threads.h>
#include <basicutils/tasks/CThreadAction.h>
#include <basicutils/tasks/CVelmorantThread.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace basicutils::testing_support {

struct Event {
    std::string what, task;
    DWORD thread;
};

class EventLog {
  public:
    void Add(const std::string& what, const std::string& task) {
        std::lock_guard<std::mutex> g(mLock);
        mEvents.push_back({what, task, GetCurrentThreadId()});
    }
    void Clear() {
        std::lock_guard<std::mutex> g(mLock);
        mEvents.clear();
    }
    std::vector<Event> Events() {
        std::lock_guard<std::mutex> g(mLock);
        return mEvents;
    }
    // "what:task" of each event, in order; of the kinds named only, if any,
    // and of the tasks whose names start with `task`.
    std::vector<std::string> Steps(std::initializer_list<std::string> kinds = {},
                                   const std::string& task = "") {
        std::vector<std::string> out;
        for (auto& e : Events())
            if ((kinds.size() == 0 ||
                 std::find(kinds.begin(), kinds.end(), e.what) != kinds.end()) &&
                e.task.rfind(task, 0) == 0)
                out.push_back(e.what + ":" + e.task);
        return out;
    }
    // The thread of the first such event, 0 if there is none.
    DWORD ThreadOf(const std::string& what, const std::string& task) {
        for (auto& e : Events())
            if (e.what == what && e.task == task) return e.thread;
        return 0;
    }
    bool Has(const std::string& what, const std::string& task) { return ThreadOf(what, task) != 0; }

  private:
    std::mutex mLock;
    std::vector<Event> mEvents;
};

// Holds RunSelf until set; a gate never opened fails the test after a
// generous limit instead of hanging it.
using Gate = std::atomic<bool>;

class LoggedTask : public CVelmorantThread {
  public:
    LoggedTask(EventLog* log, std::string name, bool worker = true, bool autoDelete = true)
        : CVelmorantThread(autoDelete), mLog(log), mName(std::move(name)) {
        SetWorkerThread(worker);
    }
    ~LoggedTask() override { mLog->Add("deleted", mName); }

    bool PrePlay() override {
        mLog->Add("preplay", mName);
        return mAccept;
    }
    void RunSelf() override {
        mLog->Add("run", mName);
        EXPECT_TRUE(!mGate || WaitUntil([&] { return mGate->load(); }, std::chrono::seconds(60)));
    }
    void Start() override {
        mLog->Add("start", mName);
        CVelmorantThread::Start();
    }
    void PostPlay() override { mLog->Add("postplay", mName); }
    void PassInformation(CVelmorantThread* next) override {
        auto* n = dynamic_cast<LoggedTask*>(next);
        mLog->Add("pass", mName + ">" + (n ? n->mName : std::string("null")));
    }
    bool mAccept = true;
    Gate* mGate = nullptr;
    EventLog* mLog;
    std::string mName;
    using CVelmorantThread::mShouldStart;
    using CVelmorantThread::mThreadType;
    using CVelmorantThread::mVisible;
};

class SingleTask : public LoggedTask {
  public:
    SingleTask(EventLog* log, std::string name, bool worker = true)
        : LoggedTask(log, std::move(name), worker) {
        mSingleRun = true;
    }
};

// Pumps the main thread's queue until `done` holds; fails after a generous
// limit instead of hanging.
inline bool PumpUntil(const std::function<bool()>& done) {
    return WaitUntil([&] { return done() || (PumpMessages(5), done()); }, std::chrono::seconds(60));
}

// Starts the dispatcher, logs what the scheduler and every task made by Task
// send, with the task's name, and leaves no task behind.
class TaskTest : public ::testing::Test, public LListener {
  protected:
    void SetUp() override {
        CThreadDispatcher::GetThreadDispatcher();
        action->AddListener(this);
    }
    void TearDown() override {
        action->RemoveListener(this);
        EXPECT_EQ(action->GetThreadCount(), 0);
    }
    bool ListenToMessage(int32_t message, void* param) override {
        if (message == kMsgBroadcasterDied) return false;
        auto* task = dynamic_cast<LoggedTask*>(static_cast<CVelmorantThread*>(param));
        mLog.Add(std::to_string(message), task ? task->mName : std::string("?"));
        return true;
    }
    template <class T = LoggedTask, class... Args>
    T* Task(const std::string& name, Gate* gate, Args... args) {
        auto* task = new T(&mLog, name, args...);
        task->mGate = gate;
        task->AddListener(this);
        return task;
    }

    CThreadAction* action = CThreadAction::GetThreadAction();
    EventLog mLog;
};

}  // namespace basicutils::testing_support
