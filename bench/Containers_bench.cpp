// LList and LArray against std::vector on the same work: appending,
// removing from the front, and searching by value.
#include <basicutils/containers/LArray.h>
#include <basicutils/containers/LList.h>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <vector>

namespace {

using basicutils::kLastIndex;
using basicutils::LArray;
using basicutils::LList;

constexpr int kPointers = 1000000;
constexpr int kBigItems = 100000;
constexpr int kSearches = 200;
using Item1000 = std::array<char, 1000>;

void* PointerFor(int i) {
    return reinterpret_cast<void*>(static_cast<uintptr_t>(i) * 16 + 4096);
}

void BM_LListAppend(benchmark::State& state) {
    for (auto _ : state) {
        LList list;
        for (int i = 0; i < kPointers; ++i) {
            void* p = PointerFor(i);
            list.InsertItemsAt(1, kLastIndex, &p, 0);
        }
        benchmark::DoNotOptimize(list.GetCount());
    }
    state.SetItemsProcessed(state.iterations() * kPointers);
}

void BM_VectorAppend(benchmark::State& state) {
    for (auto _ : state) {
        std::vector<void*> v;
        for (int i = 0; i < kPointers; ++i) v.push_back(PointerFor(i));
        benchmark::DoNotOptimize(v.data());
    }
    state.SetItemsProcessed(state.iterations() * kPointers);
}

// Removing from the front moves the whole tail each time, for both.
constexpr int kFrontRemovals = 2000;

void BM_LListRemoveFront(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        LList list;
        for (int i = 0; i < kPointers; ++i) {
            void* p = PointerFor(i);
            list.InsertItemsAt(1, kLastIndex, &p, 0);
        }
        state.ResumeTiming();
        for (int i = 0; i < kFrontRemovals; ++i) list.RemoveItemsAt(1, 1);
        benchmark::DoNotOptimize(list.GetCount());
    }
    state.SetItemsProcessed(state.iterations() * kFrontRemovals);
}

void BM_VectorRemoveFront(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        std::vector<void*> v;
        for (int i = 0; i < kPointers; ++i) v.push_back(PointerFor(i));
        state.ResumeTiming();
        for (int i = 0; i < kFrontRemovals; ++i) v.erase(v.begin());
        benchmark::DoNotOptimize(v.data());
    }
    state.SetItemsProcessed(state.iterations() * kFrontRemovals);
}

void BM_LListSearch(benchmark::State& state) {
    LList list;
    for (int i = 0; i < kPointers; ++i) {
        void* p = PointerFor(i);
        list.InsertItemsAt(1, kLastIndex, &p, 0);
    }
    for (auto _ : state) {
        int64_t sum = 0;
        for (int k = 0; k < kSearches; ++k) {
            void* p = PointerFor(kPointers - 1 - k * 7);
            sum += list.FetchIndexOf(&p, 0);
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * kSearches);
}

void BM_VectorSearch(benchmark::State& state) {
    std::vector<void*> v;
    for (int i = 0; i < kPointers; ++i) v.push_back(PointerFor(i));
    for (auto _ : state) {
        int64_t sum = 0;
        for (int k = 0; k < kSearches; ++k) {
            sum += std::find(v.begin(), v.end(), PointerFor(kPointers - 1 - k * 7)) - v.begin();
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * kSearches);
}

Item1000 MakeItem(int i) {
    Item1000 item;
    std::memset(item.data(), i & 0xFF, item.size());
    std::memcpy(item.data(), &i, sizeof i);
    return item;
}

void BM_LArrayAppend1000(benchmark::State& state) {
    const Item1000 item = MakeItem(1);
    for (auto _ : state) {
        LArray array(1000, nullptr, false);
        for (int i = 0; i < kBigItems; ++i) array.InsertItemsAt(1, kLastIndex, item.data(), 0);
        benchmark::DoNotOptimize(array.GetCount());
    }
    state.SetItemsProcessed(state.iterations() * kBigItems);
}

void BM_VectorAppend1000(benchmark::State& state) {
    const Item1000 item = MakeItem(1);
    for (auto _ : state) {
        std::vector<Item1000> v;
        for (int i = 0; i < kBigItems; ++i) v.push_back(item);
        benchmark::DoNotOptimize(v.data());
    }
    state.SetItemsProcessed(state.iterations() * kBigItems);
}

constexpr int kBigFrontRemovals = 200;

void BM_LArrayRemoveFront1000(benchmark::State& state) {
    const Item1000 item = MakeItem(1);
    for (auto _ : state) {
        state.PauseTiming();
        LArray array(1000, nullptr, false);
        for (int i = 0; i < kBigItems; ++i) array.InsertItemsAt(1, kLastIndex, item.data(), 0);
        state.ResumeTiming();
        for (int i = 0; i < kBigFrontRemovals; ++i) array.RemoveItemsAt(1, 1);
        benchmark::DoNotOptimize(array.GetCount());
    }
    state.SetItemsProcessed(state.iterations() * kBigFrontRemovals);
}

void BM_VectorRemoveFront1000(benchmark::State& state) {
    const Item1000 item = MakeItem(1);
    for (auto _ : state) {
        state.PauseTiming();
        std::vector<Item1000> v(kBigItems, item);
        state.ResumeTiming();
        for (int i = 0; i < kBigFrontRemovals; ++i) v.erase(v.begin());
        benchmark::DoNotOptimize(v.data());
    }
    state.SetItemsProcessed(state.iterations() * kBigFrontRemovals);
}

constexpr int kBigSearches = 20;

void BM_LArraySearch1000(benchmark::State& state) {
    LArray array(1000, nullptr, false);
    for (int i = 0; i < kBigItems; ++i) {
        const Item1000 item = MakeItem(i);
        array.InsertItemsAt(1, kLastIndex, item.data(), 0);
    }
    const Item1000 wanted = MakeItem(kBigItems - 3);
    for (auto _ : state) {
        int64_t sum = 0;
        for (int k = 0; k < kBigSearches; ++k) sum += array.FetchIndexOf(wanted.data(), 0);
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * kBigSearches);
}

void BM_VectorSearch1000(benchmark::State& state) {
    std::vector<Item1000> v;
    for (int i = 0; i < kBigItems; ++i) v.push_back(MakeItem(i));
    const Item1000 wanted = MakeItem(kBigItems - 3);
    for (auto _ : state) {
        int64_t sum = 0;
        for (int k = 0; k < kBigSearches; ++k)
            sum += std::find(v.begin(), v.end(), wanted) - v.begin();
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * kBigSearches);
}

}  // namespace

BENCHMARK(BM_LListAppend)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_VectorAppend)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LListRemoveFront)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_VectorRemoveFront)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LListSearch)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_VectorSearch)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LArrayAppend1000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_VectorAppend1000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LArrayRemoveFront1000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_VectorRemoveFront1000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LArraySearch1000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_VectorSearch1000)->Unit(benchmark::kMillisecond);
