// Bit and byte cursors and byte-order tools against the usual hand-written
// alternatives, on the same data in the same run.
//
//   GetBits          CAppBits::GetBits over a 64 MiB buffer, against a reader
//                    written the classic way (64-bit big-endian load, shift,
//                    mask). Fixed widths, random widths 1..8 and 1..32.
//   ToString10       against std::to_chars (alone, and with the same
//                    allocation ToString10 makes).
//   Swaps            UByteSwapper and GetMB32 against __builtin_bswap.
#include <basicutils/BasicUtils.h>
#include <benchmark/benchmark.h>

#include <charconv>
#include <cstdint>
#include <cstring>
#include <new>
#include <random>
#include <vector>

namespace {

using namespace basicutils;

constexpr int kBufferBytes = 64 << 20;
constexpr int kBatch = 1 << 16;       // fields read per benchmark iteration
constexpr int kWidthCount = 1 << 12;  // width pattern length (power of two)

// The buffer is written once, so every page is faulted in before timing.
std::vector<unsigned char>& Buffer() {
    static std::vector<unsigned char> buffer = [] {
        std::vector<unsigned char> b(kBufferBytes);
        std::mt19937_64 rng(1);
        for (size_t i = 0; i < b.size(); i += 8) {
            uint64_t v = rng();
            std::memcpy(&b[i], &v, 8);
        }
        return b;
    }();
    return buffer;
}

// Widths from lo to hi inclusive; lo == hi gives a fixed width.
std::vector<int> Widths(int lo, int hi) {
    std::mt19937 rng(static_cast<unsigned>(lo * 100 + hi));
    std::vector<int> w(kWidthCount);
    for (int& x : w) x = lo + static_cast<int>(rng() % static_cast<unsigned>(hi - lo + 1));
    return w;
}

// Room at the end so that a batch never runs off the buffer.
constexpr int64_t kRestartBit = (int64_t{kBufferBytes} - kBatch * 4 - 16) * 8;

struct ClassicReader {
    const unsigned char* buf;
    uint64_t pos = 0;
    uint32_t Get(int n) {  // n in 1..32
        uint64_t v;
        std::memcpy(&v, buf + (pos >> 3), 8);
        v = __builtin_bswap64(v) << (pos & 7);
        pos += static_cast<uint64_t>(n);
        return static_cast<uint32_t>(v >> (64 - n));
    }
};

void BM_GetBits_CAppBits(benchmark::State& state) {
    auto& buf = Buffer();
    const auto widths = Widths(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    CAppBits bits(buf.data(), kBufferBytes);
    int64_t bitPos = 0;
    uint32_t sum = 0;
    for (auto _ : state) {
        if (bitPos > kRestartBit) {
            bits.SetBuf(buf.data(), kBufferBytes);
            bitPos = 0;
        }
        for (int i = 0; i < kBatch; ++i) {
            int n = widths[static_cast<size_t>(i & (kWidthCount - 1))];
            sum += static_cast<uint32_t>(bits.GetBits(n, kCBitsConsume));
            bitPos += n;
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * kBatch);
}

void BM_GetBits_Classic64(benchmark::State& state) {
    auto& buf = Buffer();
    const auto widths = Widths(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    ClassicReader reader{buf.data()};
    uint32_t sum = 0;
    for (auto _ : state) {
        if (static_cast<int64_t>(reader.pos) > kRestartBit) reader.pos = 0;
        for (int i = 0; i < kBatch; ++i)
            sum += reader.Get(widths[static_cast<size_t>(i & (kWidthCount - 1))]);
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * kBatch);
}

void WidthArgs(benchmark::internal::Benchmark* b) {
    b->ArgNames({"lo", "hi"});
    b->Args({1, 1})->Args({8, 8})->Args({1, 8})->Args({32, 32})->Args({1, 32});
}

BENCHMARK(BM_GetBits_CAppBits)->Apply(WidthArgs);
BENCHMARK(BM_GetBits_Classic64)->Apply(WidthArgs);

// ---- Decimal text -------------------------------------------------------------

std::vector<int64_t> Values() {
    std::mt19937_64 rng(5);
    std::vector<int64_t> v(1024);
    for (size_t i = 0; i < v.size(); ++i)  // a spread of magnitudes
        v[i] = static_cast<int64_t>(rng() >> (i % 64));
    return v;
}

void BM_ToString10(benchmark::State& state) {
    auto values = Values();
    size_t i = 0;
    for (auto _ : state) {
        char* text = ToString10(values[i++ & 1023]);
        benchmark::DoNotOptimize(text);
        ::operator delete(text);
    }
    state.SetItemsProcessed(state.iterations());
}

void BM_ToChars(benchmark::State& state) {
    const auto values = Values();
    char text[21];
    size_t i = 0;
    for (auto _ : state) {
        auto r = std::to_chars(text, text + 20, static_cast<uint64_t>(values[i++ & 1023]));
        *r.ptr = 0;
        benchmark::DoNotOptimize(text);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations());
}

void BM_ToCharsWithAllocation(benchmark::State& state) {
    const auto values = Values();
    size_t i = 0;
    for (auto _ : state) {
        char* text = static_cast<char*>(::operator new(21));
        std::memset(text, 0, 21);
        std::to_chars(text, text + 20, static_cast<uint64_t>(values[i++ & 1023]));
        benchmark::DoNotOptimize(text);
        ::operator delete(text);
    }
    state.SetItemsProcessed(state.iterations());
}

BENCHMARK(BM_ToString10);
BENCHMARK(BM_ToChars);
BENCHMARK(BM_ToCharsWithAllocation);

// ---- Swaps ------------------------------------------------------------------
// Every side sees each value through DoNotOptimize, so neither loop is
// vectorised and the comparison is one swap against one swap.

constexpr size_t kWords = 4096;

template <typename T>
std::vector<T> Words() {
    std::mt19937_64 rng(9);
    std::vector<T> v(kWords);
    for (auto& x : v) x = static_cast<T>(rng());
    return v;
}

template <typename T, T (*Swap)(T)>
void BM_SwapValues(benchmark::State& state) {
    const auto v = Words<T>();
    for (auto _ : state) {
        T sum = 0;
        for (T x : v) {
            benchmark::DoNotOptimize(x);
            sum += Swap(x);
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(kWords));
}

uint32_t Builtin32(uint32_t x) {
    return __builtin_bswap32(x);
}
uint64_t Builtin64(uint64_t x) {
    return __builtin_bswap64(x);
}
int64_t LibrarySwapLongLong(int64_t x) {
    return UByteSwapper::SwapLongLong(x);
}
uint32_t LibrarySwapLong(uint32_t x) {
    return UByteSwapper::SwapLong(x);
}

// In place over an array of doubles, against the same with the builtin.
template <bool kLibrary>
void BM_SwapDoublesInPlace(benchmark::State& state) {
    auto words = Words<uint64_t>();
    std::vector<double> d(kWords);
    std::memcpy(d.data(), words.data(), kWords * 8);
    for (auto _ : state) {
        for (double& x : d) {
            benchmark::DoNotOptimize(x);
            if constexpr (kLibrary) {
                UByteSwapper::Swap(&x);
            } else {
                uint64_t bits;
                std::memcpy(&bits, &x, 8);
                bits = __builtin_bswap64(bits);
                std::memcpy(&x, &bits, 8);
            }
        }
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(kWords));
}

// Unaligned big-endian 32-bit reads at every byte offset.
template <bool kLibrary>
void BM_ReadMB32(benchmark::State& state) {
    auto& buf = Buffer();
    for (auto _ : state) {
        uint32_t sum = 0;
        for (size_t i = 0; i < kWords; ++i) {
            uint32_t x;
            if constexpr (kLibrary) {
                x = static_cast<uint32_t>(GetMB32(buf.data() + i));
            } else {
                std::memcpy(&x, buf.data() + i, 4);
                x = __builtin_bswap32(x);
            }
            benchmark::DoNotOptimize(x);
            sum += x;
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(kWords));
}

BENCHMARK(BM_SwapValues<uint32_t, LibrarySwapLong>)->Name("BM_SwapLong");
BENCHMARK(BM_SwapValues<uint32_t, Builtin32>)->Name("BM_Bswap32");
BENCHMARK(BM_SwapValues<int64_t, LibrarySwapLongLong>)->Name("BM_SwapLongLong");
BENCHMARK(BM_SwapValues<uint64_t, Builtin64>)->Name("BM_Bswap64");
BENCHMARK(BM_SwapDoublesInPlace<true>)->Name("BM_SwapDoubleInPlace");
BENCHMARK(BM_SwapDoublesInPlace<false>)->Name("BM_Bswap64InPlace");
BENCHMARK(BM_ReadMB32<true>)->Name("BM_GetMB32");
BENCHMARK(BM_ReadMB32<false>)->Name("BM_MemcpyBswap32");

}  // namespace
