// Drop-frame conversion and the timecode text readers, per call, each
// against a direct alternative doing the same work in the same run.
//
// Conversions: each direction against the drop-frame formula on a frame
// index. Both sides read a timecode's four counters from a table, convert,
// and give four counters. Target: at most 10 times the formula.
//
// Readers: CTimecodeParser::Parse and CTimecode::SetTime(text) against a
// one-pass hand split of the same text into four numbers. Target: at most 5
// times the split.
#include <basicutils/time/CTimecode.h>
#include <basicutils/time/CTimecodeParser.h>
#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

namespace {

using basicutils::CTimecode;

constexpr int32_t kSpan = 16 * 108000;  // frames walked, within the standard range
constexpr size_t kTable = 4096;         // timecodes per table, a power of two

struct Fields {
    uint16_t h, m, s, f;
};

Fields Split(int64_t n) {
    return {static_cast<uint16_t>(n / 108000), static_cast<uint16_t>(n / 1800 % 60),
            static_cast<uint16_t>(n / 30 % 60), static_cast<uint16_t>(n % 30)};
}

int64_t Join(const Fields& x) {
    return int64_t{x.h} * 108000 + x.m * 1800 + x.s * 30 + x.f;
}

// The standard drop-frame numbering, from 00:00:00:00.
int64_t FormulaToDrop(int64_t n) {
    int64_t tens = n / 17982, rest = n % 17982;
    return n + 18 * tens + (rest >= 2 ? 2 * ((rest - 2) / 1798) : 0);
}

int64_t FormulaToPlain(int64_t label) {
    int64_t minutes = label / 1800;
    return label - 2 * (minutes - minutes / 10);
}

// Frame indices spread over the span; labels are their drop-frame labels.
std::vector<Fields> Table(bool labels) {
    std::vector<Fields> table;
    int64_t n = 0;
    for (size_t i = 0; i < kTable; ++i, n = (n + 7919) % kSpan) {
        table.push_back(Split(labels ? FormulaToDrop(n) : n));
    }
    return table;
}

std::vector<CTimecode> Timecodes(const std::vector<Fields>& table) {
    std::vector<CTimecode> out;
    for (const Fields& x : table) out.emplace_back(x.h, x.m, x.s, x.f, 30.0);
    return out;
}

void BM_Nondrop2Drop(benchmark::State& state) {
    const std::vector<CTimecode> plain = Timecodes(Table(false));
    const CTimecode start;
    CTimecode label;
    size_t i = 0;
    for (auto _ : state) {
        plain[i++ & (kTable - 1)].Nondrop2Drop(start, &label);
        benchmark::DoNotOptimize(label.GetFrame());
    }
}

void BM_FormulaToDrop(benchmark::State& state) {
    const std::vector<Fields> plain = Table(false);
    size_t i = 0;
    for (auto _ : state) {
        Fields label = Split(FormulaToDrop(Join(plain[i++ & (kTable - 1)])));
        benchmark::DoNotOptimize(label);
    }
}

void BM_Drop2Nondrop(benchmark::State& state) {
    const std::vector<CTimecode> labels = Timecodes(Table(true));
    const CTimecode start;
    CTimecode plain;
    size_t i = 0;
    for (auto _ : state) {
        labels[i++ & (kTable - 1)].Drop2Nondrop(start, &plain);
        benchmark::DoNotOptimize(plain.GetFrame());
    }
}

void BM_FormulaToPlain(benchmark::State& state) {
    const std::vector<Fields> labels = Table(true);
    size_t i = 0;
    for (auto _ : state) {
        Fields plain = Split(FormulaToPlain(Join(labels[i++ & (kTable - 1)])));
        benchmark::DoNotOptimize(plain);
    }
}

// Texts of mixed shapes (a short one empties and then refills fields), and
// of one shape.
const char16_t* const kMixed[] = {u"01:02:03:04", u"10:59:59;24", u"1:2", u"00:00:01:23"};
const char16_t* const kOneShape[] = {u"01:02:03:04", u"10:59:59;24", u"12:34:56:07",
                                     u"00:00:01:23"};

void BM_ParserParse(benchmark::State& state, const char16_t* const* texts) {
    basicutils::CTimecodeParser parser;
    size_t i = 0;
    for (auto _ : state) {
        parser.Parse(texts[i++ & 3], false);
        benchmark::DoNotOptimize(parser.GetFrame());
    }
}

void BM_TimecodeSetTimeText(benchmark::State& state, const char16_t* const* texts) {
    CTimecode t;
    size_t i = 0;
    for (auto _ : state) {
        t.SetTime(texts[i++ & 3]);
        benchmark::DoNotOptimize(t.GetFrame());
    }
}

// The alternative: one pass over the text, four numbers split off at ':'
// or ';', no strings, no validation.
void BM_HandSplit(benchmark::State& state, const char16_t* const* texts) {
    size_t i = 0;
    for (auto _ : state) {
        uint16_t f[4] = {0, 0, 0, 0};
        int k = 0;
        for (const char16_t* p = texts[i++ & 3]; *p && k < 4; ++p) {
            if (*p == u':' || *p == u';') {
                ++k;
            } else {
                f[k] = static_cast<uint16_t>(f[k] * 10 + (*p - u'0'));
            }
        }
        benchmark::DoNotOptimize(f);
    }
}

// Library and alternative alternate.
BENCHMARK(BM_Nondrop2Drop);
BENCHMARK(BM_FormulaToDrop);
BENCHMARK(BM_Drop2Nondrop);
BENCHMARK(BM_FormulaToPlain);
BENCHMARK_CAPTURE(BM_ParserParse, mixed, kMixed);
BENCHMARK_CAPTURE(BM_HandSplit, mixed, kMixed);
BENCHMARK_CAPTURE(BM_TimecodeSetTimeText, mixed, kMixed);
BENCHMARK_CAPTURE(BM_ParserParse, one_shape, kOneShape);
BENCHMARK_CAPTURE(BM_HandSplit, one_shape, kOneShape);
BENCHMARK_CAPTURE(BM_TimecodeSetTimeText, one_shape, kOneShape);

}  // namespace
