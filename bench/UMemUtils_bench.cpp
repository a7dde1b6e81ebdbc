// UMemUtils::memcpy / memset against the C library's memmove / memset.
// Arguments: size in bytes, and a mode: 0 aligned separate blocks,
// 1..7 destination off by that many bytes, 8 overlapping with the
// destination 5 bytes ahead of the source, 9 overlapping 5 bytes behind.
#include <basicutils/containers/UMemUtils.h>
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>

namespace {

constexpr size_t kMaxSize = size_t{16} << 20;

// One pair of buffers for the whole run, touched once so no page faults
// fall inside a measurement.
struct Buffers {
    char* src;
    char* dst;
    Buffers() {
        src = static_cast<char*>(std::aligned_alloc(64, kMaxSize + 4096));
        dst = static_cast<char*>(std::aligned_alloc(64, kMaxSize + 4096));
        std::memset(src, 1, kMaxSize + 4096);
        std::memset(dst, 2, kMaxSize + 4096);
    }
};

Buffers& Get() {
    static Buffers buffers;
    return buffers;
}

void Pick(int mode, char*& d, const char*& s) {
    Buffers& b = Get();
    if (mode == 8) {
        s = b.src + 64;
        d = b.src + 64 + 5;
    } else if (mode == 9) {
        s = b.src + 64 + 5;
        d = b.src + 64;
    } else {
        s = b.src + 64;
        d = b.dst + 64 + mode;
    }
}

template <bool kOurs>
void BM_Copy(benchmark::State& state) {
    const auto size = static_cast<size_t>(state.range(0));
    char* d;
    const char* s;
    Pick(static_cast<int>(state.range(1)), d, s);
    for (auto _ : state) {
        if constexpr (kOurs) {
            basicutils::UMemUtils::memcpy(d, s, static_cast<unsigned>(size));
        } else {
            std::memmove(d, s, size);
        }
        benchmark::DoNotOptimize(d);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(size));
}

template <bool kOurs>
void BM_Fill(benchmark::State& state) {
    const auto size = static_cast<size_t>(state.range(0));
    char* d = Get().dst + 64 + state.range(1);
    for (auto _ : state) {
        if constexpr (kOurs) {
            basicutils::UMemUtils::memset(d, 0x5A, static_cast<unsigned>(size));
        } else {
            std::memset(d, 0x5A, size);
        }
        benchmark::DoNotOptimize(d);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(size));
}

// Every documented mode, at sizes from 16 bytes to 16 MiB in steps of 16.
void CopyArgs(benchmark::internal::Benchmark* b) {
    for (int mode = 0; mode <= 9; ++mode) {
        for (int64_t size = 16; size <= (int64_t{16} << 20); size *= 16) b->Args({size, mode});
    }
}

// Fills have no overlap: modes 0..7 are the destination's offsets.
void FillArgs(benchmark::internal::Benchmark* b) {
    for (int mode = 0; mode <= 7; ++mode) {
        for (int64_t size = 16; size <= (int64_t{16} << 20); size *= 16) b->Args({size, mode});
    }
}

}  // namespace

BENCHMARK(BM_Copy<true>)->Name("UMemUtils_memcpy")->Apply(CopyArgs);
BENCHMARK(BM_Copy<false>)->Name("memmove")->Apply(CopyArgs);
BENCHMARK(BM_Fill<true>)->Name("UMemUtils_memset")->Apply(FillArgs);
BENCHMARK(BM_Fill<false>)->Name("memset")->Apply(FillArgs);
