// Costs of the task road and of reports.
//
//   TaskRoundTrip            Execute of a worker task to its deletion on the
//                            main thread (thread start, RunSelf, 1314 through
//                            the queue, CleanUp): tasks per second.
//   StdThreadCreateJoin      the plain alternative: std::thread + join.
//   SingleRunBatch           64 single-run tasks of one class queued at once:
//                            the scheduler starts each when the last ends.
//   EndToCleanUpLatency      from the last statement of RunSelf to PostPlay on
//                            the main thread (manual time).
//   StdThreadEndToJoin       from the thread's last statement to join's return.
//   ErrorReport/N            CMessageAction::Error with N listeners.
//   VirtualCallLoop/N        the alternative: N virtual calls through a vector.
#include "Tasks_bench.h"

#include <basicutils/BasicUtils.h>
#include <benchmark/benchmark.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>
#include <vector>

namespace {

using namespace basicutils;
using Clock = std::chrono::steady_clock;

struct Shared {
    std::atomic<int> ended{0};
    Clock::time_point runEnd;
    double latency = 0;
};

class EmptyTask : public CVelmorantThread {
  public:
    explicit EmptyTask(Shared* shared, bool single = false) : mShared(shared) {
        SetWorkerThread(true);
        mSingleRun = single;
    }
    ~EmptyTask() override { mShared->ended.fetch_add(1, std::memory_order_release); }
    void RunSelf() override { mShared->runEnd = Clock::now(); }
    void PostPlay() override {
        mShared->latency = std::chrono::duration<double>(Clock::now() - mShared->runEnd).count();
    }

  private:
    Shared* mShared;
};

void PumpUntilEnded(Shared& shared, int count) {
    while (shared.ended.load(std::memory_order_acquire) < count) PumpMessages(INFINITE);
}

// One worker task from Execute to its deletion on this (the main) thread.
void RunOne(Shared& shared, int& launched) {
    (new EmptyTask(&shared))->Execute();
    PumpUntilEnded(shared, ++launched);
}

void TaskRoundTrip(benchmark::State& state) {
    CThreadDispatcher::GetThreadDispatcher();
    Shared shared;
    int launched = 0;
    for (auto _ : state) RunOne(shared, launched);
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(TaskRoundTrip)->UseRealTime();

void StdThreadCreateJoin(benchmark::State& state) {
    int counter = 0;
    for (auto _ : state) {
        std::thread t([&] { ++counter; });
        t.join();
    }
    benchmark::DoNotOptimize(counter);
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(StdThreadCreateJoin)->UseRealTime();

void SingleRunBatch(benchmark::State& state) {
    CThreadDispatcher::GetThreadDispatcher();
    Shared shared;
    int launched = 0;
    for (auto _ : state) {
        for (int i = 0; i < 64; ++i) (new EmptyTask(&shared, true))->Execute();
        launched += 64;
        PumpUntilEnded(shared, launched);
    }
    state.SetItemsProcessed(state.iterations() * 64);
}
BENCHMARK(SingleRunBatch)->UseRealTime();

void EndToCleanUpLatency(benchmark::State& state) {
    CThreadDispatcher::GetThreadDispatcher();
    Shared shared;
    int launched = 0;
    for (auto _ : state) {
        RunOne(shared, launched);
        state.SetIterationTime(shared.latency);
    }
}
BENCHMARK(EndToCleanUpLatency)->UseManualTime();

void StdThreadEndToJoin(benchmark::State& state) {
    for (auto _ : state) {
        Clock::time_point end;
        std::thread t([&] { end = Clock::now(); });
        t.join();
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - end).count());
    }
}
BENCHMARK(StdThreadEndToJoin)->UseManualTime();

void ErrorReport(benchmark::State& state) {
    std::vector<std::unique_ptr<LListener>> listeners;
    for (int64_t i = 0; i < state.range(0); ++i) {
        listeners.push_back(bench::MakeNullListener());
        CMessageAction::GetMessageAction()->AddListener(listeners.back().get());
    }
    for (auto _ : state) CMessageAction::Error(nullptr, u"disk full");
    for (auto& l : listeners) CMessageAction::GetMessageAction()->RemoveListener(l.get());
}
BENCHMARK(ErrorReport)->Arg(0)->Arg(1)->Arg(8);

// The record of a report is made as Error makes it; the listeners and the
// loop live in Tasks_bench_targets, as the library's do in the library.
void VirtualCallLoop(benchmark::State& state) {
    std::vector<std::unique_ptr<LListener>> storage;
    std::vector<LListener*> listeners;
    for (int64_t i = 0; i < state.range(0); ++i) {
        storage.push_back(bench::MakeNullListener());
        listeners.push_back(storage.back().get());
    }
    for (auto _ : state) {
        SInteractionInfo info{nullptr, u"disk full"};
        bench::CallEachListener(listeners.data(), listeners.size(), 26000, &info);
    }
}
BENCHMARK(VirtualCallLoop)->Arg(0)->Arg(1)->Arg(8);

}  // namespace
