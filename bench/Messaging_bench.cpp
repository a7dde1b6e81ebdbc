// The cost of a broadcast per listener call, against the plain alternative:
// a loop of virtual calls over a std::vector of the same listeners.
#include <basicutils/messaging/LBroadcaster.h>
#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

namespace {

using basicutils::LBroadcaster;
using basicutils::LListener;

// Both kinds of handler are kept out of line, as a listener's handler is in
// a real broadcast (it lives in another module), so the baseline measures
// real virtual calls and not an inlined loop.
struct CountingListener : LListener {
    [[gnu::noinline]] bool ListenToMessage(int32_t message, void*) override {
        sum += message;
        return true;
    }
    int64_t sum = 0;
};

// The baseline: what a hand-written observer list does.
struct PlainListener {
    virtual ~PlainListener() = default;
    virtual bool Listen(int32_t message, void*) = 0;
};
struct CountingPlain : PlainListener {
    [[gnu::noinline]] bool Listen(int32_t message, void*) override {
        sum += message;
        return true;
    }
    int64_t sum = 0;
};

void BM_Broadcast(benchmark::State& state) {
    const auto n = static_cast<size_t>(state.range(0));
    LBroadcaster broadcaster;
    std::vector<std::unique_ptr<CountingListener>> listeners;
    for (size_t i = 0; i < n; ++i) {
        listeners.push_back(std::make_unique<CountingListener>());
        broadcaster.AddListener(listeners.back().get());
    }
    for (auto _ : state) broadcaster.BroadcastMessage(1, nullptr);
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * n));
    benchmark::DoNotOptimize(listeners.front()->sum);
}

void BM_PlainVirtualLoop(benchmark::State& state) {
    const auto n = static_cast<size_t>(state.range(0));
    std::vector<std::unique_ptr<CountingPlain>> owned;
    std::vector<PlainListener*> listeners;
    for (size_t i = 0; i < n; ++i) {
        owned.push_back(std::make_unique<CountingPlain>());
        listeners.push_back(owned.back().get());
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(listeners.data());
        for (PlainListener* l : listeners) l->Listen(1, nullptr);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * n));
    benchmark::DoNotOptimize(owned.front()->sum);
}

BENCHMARK(BM_Broadcast)->Arg(1)->Arg(8)->Arg(64);
BENCHMARK(BM_PlainVirtualLoop)->Arg(1)->Arg(8)->Arg(64);

}  // namespace
