// Speed of the text layer against the standard library on the same work.
//
// UTF-8 import and export of about one megabyte (mostly ASCII with accented
// letters, as file names and script text are): MString::ImportASCII /
// ExportASCII and the raw MultiByteToWideChar / WideCharToMultiByte, against
// std::codecvt<char16_t, char8_t> and a plain byte loop. Buffers are reused
// so that page faults are not measured. Then wcslen against
// std::char_traits<char16_t>, and wcscmp against a one-pass loop.
#include <basicutils/platform/CodePage.h>
#include <basicutils/text/MString.h>
#include <basicutils/text/WideString.h>
#include <benchmark/benchmark.h>

#include <cstring>
#include <cwchar>
#include <locale>
#include <string>
#include <vector>

using namespace basicutils;

namespace {

constexpr size_t kMegabyte = 1 << 20;

const std::string& Utf8Text() {
    static const std::string text = [] {
        std::string t;
        const char* words[] = {"chapter ",
                               "r\xC3\xA9sum\xC3\xA9 ",
                               "menu_01 ",
                               "caf\xC3\xA9 ",
                               "title ",
                               ("\xE2\x82\xAC"
                                "12 "),
                               "angle\n"};
        for (size_t i = 0; t.size() < kMegabyte; ++i) t += words[i % 7];
        return t;
    }();
    return text;
}

const std::u16string& Utf16Text() {
    static const std::u16string text = [] {
        const std::string& s = Utf8Text();
        std::u16string t(s.size(), u'\0');
        int n = MultiByteToWideChar(CP_UTF8, 0, s.data(), static_cast<int>(s.size()), t.data(),
                                    static_cast<int>(t.size()));
        t.resize(static_cast<size_t>(n));
        return t;
    }();
    return text;
}

struct Codecvt : std::codecvt<char16_t, char8_t, std::mbstate_t> {};

// A plain decoder: one code point per round, no fast path, no validation
// beyond what the lead byte says.
size_t PlainDecode(const std::string& s, char16_t* out) {
    size_t o = 0;
    for (size_t i = 0; i < s.size();) {
        auto b = static_cast<unsigned char>(s[i]);
        uint32_t cp;
        int len = b < 0x80 ? 1 : b < 0xE0 ? 2 : b < 0xF0 ? 3 : 4;
        cp = len == 1 ? b : len == 2 ? (b & 0x1F) : len == 3 ? (b & 0x0F) : (b & 0x07);
        for (int k = 1; k < len && i + k < s.size(); ++k)
            cp = (cp << 6) | (static_cast<unsigned char>(s[i + k]) & 0x3F);
        i += len;
        if (cp >= 0x10000) {
            cp -= 0x10000;
            out[o++] = static_cast<char16_t>(0xD800 + (cp >> 10));
            out[o++] = static_cast<char16_t>(0xDC00 + (cp & 0x3FF));
        } else {
            out[o++] = static_cast<char16_t>(cp);
        }
    }
    return o;
}

void SetBytes(benchmark::State& state, size_t bytes) {
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes));
}

void BM_Import_MString(benchmark::State& state) {
    const std::string& s = Utf8Text();
    MString m;
    for (auto _ : state) {
        m.ImportASCII(s.data(), static_cast<int32_t>(s.size()));
        benchmark::DoNotOptimize(static_cast<const char16_t*>(m));
    }
    SetBytes(state, s.size());
}

void BM_Import_MultiByteToWideChar(benchmark::State& state) {
    const std::string& s = Utf8Text();
    std::vector<char16_t> out(s.size(), u'\0');
    for (auto _ : state) {
        int n = MultiByteToWideChar(CP_UTF8, 0, s.data(), static_cast<int>(s.size()), out.data(),
                                    static_cast<int>(out.size()));
        benchmark::DoNotOptimize(n);
    }
    SetBytes(state, s.size());
}

void BM_Import_StdCodecvt(benchmark::State& state) {
    const std::string& s = Utf8Text();
    std::vector<char16_t> out(s.size(), u'\0');
    Codecvt cvt;
    for (auto _ : state) {
        std::mbstate_t st{};
        const char8_t* from = reinterpret_cast<const char8_t*>(s.data());
        const char8_t* fromNext;
        char16_t* toNext;
        auto r = cvt.in(st, from, from + s.size(), fromNext, out.data(), out.data() + out.size(),
                        toNext);
        benchmark::DoNotOptimize(r);
        benchmark::DoNotOptimize(toNext);
    }
    SetBytes(state, s.size());
}

void BM_Import_PlainLoop(benchmark::State& state) {
    const std::string& s = Utf8Text();
    std::vector<char16_t> out(s.size(), u'\0');
    for (auto _ : state) benchmark::DoNotOptimize(PlainDecode(s, out.data()));
    SetBytes(state, s.size());
}

void BM_Export_MString(benchmark::State& state) {
    MString m(Utf16Text().c_str());
    std::vector<char> out(Utf8Text().size() + 1, '\0');
    for (auto _ : state) {
        int n = m.ExportASCII(out.data(), static_cast<int>(out.size() - 1));
        benchmark::DoNotOptimize(n);
    }
    SetBytes(state, Utf8Text().size());
}

void BM_Export_WideCharToMultiByte(benchmark::State& state) {
    const std::u16string& t = Utf16Text();
    std::vector<char> out(t.size() * 3, '\0');
    for (auto _ : state) {
        int n = WideCharToMultiByte(CP_UTF8, 0, t.data(), static_cast<int>(t.size()), out.data(),
                                    static_cast<int>(out.size()), nullptr, nullptr);
        benchmark::DoNotOptimize(n);
    }
    SetBytes(state, Utf8Text().size());
}

void BM_Export_StdCodecvt(benchmark::State& state) {
    const std::u16string& t = Utf16Text();
    std::vector<char8_t> out(t.size() * 3, u8'\0');
    Codecvt cvt;
    for (auto _ : state) {
        std::mbstate_t st{};
        const char16_t* fromNext;
        char8_t* toNext;
        auto r = cvt.out(st, t.data(), t.data() + t.size(), fromNext, out.data(),
                         out.data() + out.size(), toNext);
        benchmark::DoNotOptimize(r);
        benchmark::DoNotOptimize(toNext);
    }
    SetBytes(state, Utf8Text().size());
}

// Lengths and comparisons on texts of the size given by the argument.
std::u16string Text(size_t n, char16_t last) {
    std::u16string s(n, u'x');
    if (n) s.back() = last;
    return s;
}

void BM_Wcslen(benchmark::State& state) {
    std::u16string s = Text(static_cast<size_t>(state.range(0)), u'y');
    for (auto _ : state) {
        benchmark::DoNotOptimize(s.data());
        benchmark::DoNotOptimize(basicutils::wcslen(s.c_str()));
    }
    SetBytes(state, s.size() * 2);
}

void BM_CharTraitsLength(benchmark::State& state) {
    std::u16string s = Text(static_cast<size_t>(state.range(0)), u'y');
    for (auto _ : state) {
        benchmark::DoNotOptimize(s.data());
        benchmark::DoNotOptimize(std::char_traits<char16_t>::length(s.c_str()));
    }
    SetBytes(state, s.size() * 2);
}

void BM_Wcscmp(benchmark::State& state) {
    std::u16string a = Text(static_cast<size_t>(state.range(0)), u'y');
    std::u16string b = Text(static_cast<size_t>(state.range(0)), u'z');
    for (auto _ : state) {
        benchmark::DoNotOptimize(a.data());
        benchmark::DoNotOptimize(basicutils::wcscmp(a.c_str(), b.c_str()));
    }
    SetBytes(state, a.size() * 2);
}

// The alternative: one pass over both texts, unit by unit, to the first
// difference or the terminator.
void BM_OnePassCompare(benchmark::State& state) {
    std::u16string a = Text(static_cast<size_t>(state.range(0)), u'y');
    std::u16string b = Text(static_cast<size_t>(state.range(0)), u'z');
    for (auto _ : state) {
        benchmark::DoNotOptimize(a.data());
        const char16_t* pa = a.c_str();
        const char16_t* pb = b.c_str();
        while (*pa != 0 && *pa == *pb) ++pa, ++pb;
        int r = *pa < *pb ? -1 : (*pa > *pb ? 1 : 0);
        benchmark::DoNotOptimize(r);
    }
    SetBytes(state, a.size() * 2);
}

}  // namespace

BENCHMARK(BM_Import_MString);
BENCHMARK(BM_Import_MultiByteToWideChar);
BENCHMARK(BM_Import_StdCodecvt);
BENCHMARK(BM_Import_PlainLoop);
BENCHMARK(BM_Export_MString);
BENCHMARK(BM_Export_WideCharToMultiByte);
BENCHMARK(BM_Export_StdCodecvt);
BENCHMARK(BM_Wcslen)->Arg(16)->Arg(256)->Arg(4096);
BENCHMARK(BM_CharTraitsLength)->Arg(16)->Arg(256)->Arg(4096);
BENCHMARK(BM_Wcscmp)->Arg(16)->Arg(256)->Arg(4096);
BENCHMARK(BM_OnePassCompare)->Arg(16)->Arg(256)->Arg(4096);
