// Timecode counting and arithmetic per second. The baseline is the same
// arithmetic written directly on integers, which is what a caller without
// the class would write.
#include <basicutils/time/CTimecode.h>
#include <benchmark/benchmark.h>

#include <cstdint>

namespace {

using basicutils::CTimecode;

void BM_GetTotalFrame(benchmark::State& state) {
    CTimecode tc(1, 23, 45, 12, 30.0);
    for (auto _ : state) {
        benchmark::DoNotOptimize(&tc);
        benchmark::DoNotOptimize(tc.GetTotalFrame());
    }
    state.SetItemsProcessed(state.iterations());
}

void BM_SetTotalFrame(benchmark::State& state) {
    CTimecode tc;
    int32_t n = 1;
    for (auto _ : state) {
        tc.SetTotalFrame(n, basicutils::kFrameTypeKeep);
        n = (n + 7919) & 0xFFFFFF;
        benchmark::DoNotOptimize(&tc);
    }
    state.SetItemsProcessed(state.iterations());
}

void BM_Add(benchmark::State& state) {
    CTimecode a(1, 23, 45, 12, 30.0), b(0, 0, 1, 17, 30.0);
    for (auto _ : state) {
        benchmark::DoNotOptimize(&a);
        CTimecode sum = a + b;
        benchmark::DoNotOptimize(&sum);
    }
    state.SetItemsProcessed(state.iterations());
}

// Baseline: the same count and split on plain integers.
void BM_PlainIntegerAdd(benchmark::State& state) {
    uint32_t h = 1, m = 23, s = 45, f = 12, h2 = 0, m2 = 0, s2 = 1, f2 = 17, rate = 30;
    for (auto _ : state) {
        benchmark::DoNotOptimize(h);
        uint32_t count =
            ((h * 60 + m) * 60 + s) * rate + f + ((h2 * 60 + m2) * 60 + s2) * rate + f2;
        uint32_t seconds = count / rate;
        uint32_t out[4] = {seconds / 3600, seconds / 60 % 60, seconds % 60, count % rate};
        benchmark::DoNotOptimize(out);
    }
    state.SetItemsProcessed(state.iterations());
}

BENCHMARK(BM_GetTotalFrame);
BENCHMARK(BM_SetTotalFrame);
BENCHMARK(BM_Add);
BENCHMARK(BM_PlainIntegerAdd);

}  // namespace
