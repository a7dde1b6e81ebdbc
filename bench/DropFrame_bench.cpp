// Drop-frame conversion and the timecode text readers, per call.
//
// The conversions are compared with the direct drop-frame formula on a
// plain frame index, written here; the readers with a minimal hand-written
// split of the same text into four numbers.
#include <basicutils/time/CTimecode.h>
#include <basicutils/time/CTimecodeParser.h>
#include <benchmark/benchmark.h>

#include <cstdint>

namespace {

using basicutils::CTimecode;

constexpr int32_t kSpan = 16 * 108000;  // frames walked, within the standard range

int64_t FormulaToDrop(int64_t n) {
    int64_t tens = n / 17982, rest = n % 17982;
    return n + 18 * tens + (rest >= 2 ? 2 * ((rest - 2) / 1798) : 0);
}

int64_t FormulaToPlain(int64_t label) {
    int64_t minutes = label / 1800;
    return label - 2 * (minutes - minutes / 10);
}

void BM_Nondrop2Drop(benchmark::State& state) {
    const CTimecode start;
    CTimecode plain, label;
    int32_t n = 0;
    for (auto _ : state) {
        plain.SetTotalFrame(n + 1, basicutils::kFrameType30);
        plain.Nondrop2Drop(start, &label);
        benchmark::DoNotOptimize(label.GetFrame());
        n = (n + 7919) % kSpan;
    }
}
BENCHMARK(BM_Nondrop2Drop);

void BM_Drop2Nondrop(benchmark::State& state) {
    const CTimecode start;
    CTimecode label, plain;
    int32_t n = 0;
    for (auto _ : state) {
        label.SetTotalFrame(static_cast<int32_t>(FormulaToDrop(n)) + 1, basicutils::kFrameType30);
        label.Drop2Nondrop(start, &plain);
        benchmark::DoNotOptimize(plain.GetFrame());
        n = (n + 7919) % kSpan;
    }
}
BENCHMARK(BM_Drop2Nondrop);

// The same work as the two above with the formula: set the source, convert,
// and split the result into fields.
void BM_FormulaBothWays(benchmark::State& state) {
    int32_t n = 0;
    for (auto _ : state) {
        int64_t label = FormulaToDrop(n);
        benchmark::DoNotOptimize(label % 30 + label / 30 % 60 + label / 1800 % 60 + label / 108000);
        int64_t back = FormulaToPlain(label);
        benchmark::DoNotOptimize(back);
        n = (n + 7919) % kSpan;
    }
}
BENCHMARK(BM_FormulaBothWays);

const char16_t* const kTexts[] = {u"01:02:03:04", u"10:59:59;24", u"1:2", u"00:00:01:23"};

void BM_ParserParse(benchmark::State& state) {
    basicutils::CTimecodeParser parser;
    size_t i = 0;
    for (auto _ : state) {
        parser.Parse(kTexts[i++ & 3], false);
        benchmark::DoNotOptimize(parser.GetFrame());
    }
}
BENCHMARK(BM_ParserParse);

void BM_TimecodeSetTimeText(benchmark::State& state) {
    CTimecode t;
    size_t i = 0;
    for (auto _ : state) {
        t.SetTime(kTexts[i++ & 3]);
        benchmark::DoNotOptimize(t.GetFrame());
    }
}
BENCHMARK(BM_TimecodeSetTimeText);

// Baseline: four numbers split off by hand, no strings, no validation.
void BM_HandSplit(benchmark::State& state) {
    size_t i = 0;
    for (auto _ : state) {
        uint16_t f[4] = {0, 0, 0, 0};
        int k = 0;
        for (const char16_t* p = kTexts[i++ & 3]; *p && k < 4; ++p) {
            if (*p == u':' || *p == u';') {
                ++k;
            } else {
                f[k] = static_cast<uint16_t>(f[k] * 10 + (*p - u'0'));
            }
        }
        benchmark::DoNotOptimize(f);
    }
}
BENCHMARK(BM_HandSplit);

}  // namespace
