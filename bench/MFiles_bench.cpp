// The segmented file against dd on the same file system.
//
// Write: 4 GiB through MFiles::FWrite, 4 MiB a call, with 1 GiB segments
// (one plain file that rolls over into four segments), against
// `dd if=/dev/zero bs=4M count=1024`. Read: the same logical file back
// through MFiles::FRead, 4 MiB a call, against `dd of=/dev/null bs=4M` on
// dd's own file. Seek: FSeek64 from the start to the last of 100 segments
// (it opens each segment on the way), against MFileUniv's seek in one file
// of the same size and against the floor of any walk, a status of each of
// the 100 segments.
//
// The files go to the temporary folder (TMPDIR), which needs 8 GiB free, and
// are removed at the end. Each write starts after a sync and, where the
// process may (as root), with the page cache dropped, so that no run waits
// for an earlier run's write-back or reclaims its pages; with 4 GiB below
// the system's dirty limit both writers then measure the way into the page
// cache. Each read starts with its files synced and cached. Times are
// wall-clock; run with repetitions (--benchmark_repetitions=7
// --benchmark_enable_random_interleaving=true) and compare medians.
#include <basicutils/files/MFileUniv.h>
#include <basicutils/files/MFiles.h>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace basicutils;
namespace fs = std::filesystem;

constexpr int64_t kGiB = int64_t{1} << 30;
constexpr int kChunk = 4 << 20;
constexpr int64_t kTotal = 4 * kGiB;

const fs::path& Folder() {
    static struct Scratch {
        fs::path dir =
            fs::temp_directory_path() / ("MFiles_bench_" + std::to_string(std::random_device{}()));
        Scratch() { fs::create_directories(dir); }
        ~Scratch() { fs::remove_all(dir); }
    } scratch;
    return scratch.dir;
}

std::u16string Logical(const char* name) {
    return (Folder() / name).u16string();
}

void RemoveLogical(const char* name) {
    for (const auto& entry : fs::directory_iterator(Folder()))
        if (entry.path().filename().string().rfind(name, 0) == 0) fs::remove(entry.path());
}

void Shell(benchmark::State& state, const std::string& command) {
    if (std::system(command.c_str()) != 0) state.SkipWithError(("failed: " + command).c_str());
}

// Before a timed write: no dirty pages of an earlier run, and, where the
// system lets this process (as root), no cached pages either, so that every
// write finds the same free memory instead of reclaiming the last run's.
void Clean(benchmark::State& state) {
    Shell(state, "sync; { echo 1 > /proc/sys/vm/drop_caches; } 2>/dev/null || true");
}

// Before a timed read: the files starting with `name` synced and in the
// page cache.
void Warm(benchmark::State& state, const std::string& name) {
    Shell(state, "sync; cat '" + (Folder() / name).string() + "'* > /dev/null");
}

std::string Dd(const std::string& arguments) {
    return "dd bs=4M status=none " + arguments;
}

// 4 GiB of zeros into the logical file "mfiles": false when a call failed.
bool WriteLogical() {
    std::unique_ptr<char[]> chunk(new char[kChunk]());
    MFiles files;
    files.SetMaxFileSize(kGiB);
    if (files.FOpen(Logical("mfiles").c_str(), kOpenWriteBinary) != 0) return false;
    for (int64_t done = 0; done < kTotal; done += kChunk)
        if (files.FWrite(chunk.get(), kChunk) != kChunk) return false;
    files.FClose();
    return true;
}

std::string DdWrite() {
    return Dd("if=/dev/zero of='" + (Folder() / "dd").string() + "' count=1024");
}

// One timed write of 4 GiB per iteration: `write` makes the file, `remove`
// clears the last one first, and with `toDisk` the writer's files are synced
// inside the time too.
void TimedWrites(benchmark::State& state, void (*remove)(), bool (*write)(bool toDisk),
                 bool toDisk) {
    for (auto _ : state) {
        state.PauseTiming();
        remove();
        Clean(state);
        state.ResumeTiming();
        if (!write(toDisk)) state.SkipWithError("write failed");
    }
    state.SetBytesProcessed(state.iterations() * kTotal);
}

void RemoveMFiles() {
    RemoveLogical("mfiles");
}

// MFiles, then `sync FILE...` of its segments up to the disk.
bool MFilesWrite(bool toDisk) {
    return WriteLogical() &&
           (!toDisk ||
            std::system(("sync '" + (Folder() / "mfiles").string() + "'*").c_str()) == 0);
}

void RemoveDd() {
    fs::remove(Folder() / "dd");
}

// dd, with conv=fsync up to the disk.
bool DdWriteFile(bool toDisk) {
    return std::system((DdWrite() + (toDisk ? " conv=fsync" : "")).c_str()) == 0;
}

void BM_MFilesWrite(benchmark::State& state) {
    TimedWrites(state, RemoveMFiles, MFilesWrite, false);
}
void BM_DdWrite(benchmark::State& state) {
    TimedWrites(state, RemoveDd, DdWriteFile, false);
}
void BM_MFilesWriteToDisk(benchmark::State& state) {
    TimedWrites(state, RemoveMFiles, MFilesWrite, true);
}
void BM_DdWriteToDisk(benchmark::State& state) {
    TimedWrites(state, RemoveDd, DdWriteFile, true);
}

void BM_MFilesRead(benchmark::State& state) {
    if (!fs::exists(Folder() / "mfiles") && !WriteLogical()) state.SkipWithError("write failed");
    std::unique_ptr<char[]> chunk(new char[kChunk]);
    for (auto _ : state) {
        state.PauseTiming();
        Warm(state, "mfiles");
        state.ResumeTiming();
        MFiles files;
        if (files.FOpen(Logical("mfiles").c_str(), kOpenReadBinary) != 0)
            state.SkipWithError("cannot open");
        int64_t done = 0;
        for (int got; (got = files.FRead(chunk.get(), kChunk)) > 0;) done += got;
        if (done != kTotal) state.SkipWithError("short read");
    }
    state.SetBytesProcessed(state.iterations() * kTotal);
}

void BM_DdRead(benchmark::State& state) {
    const std::string in = (Folder() / "dd").string();
    if (!fs::exists(in)) Shell(state, DdWrite());
    for (auto _ : state) {
        state.PauseTiming();
        Warm(state, "dd");
        state.ResumeTiming();
        Shell(state, Dd("if='" + in + "' of=/dev/null"));
    }
    state.SetBytesProcessed(state.iterations() * kTotal);
}

// 100 segments of 1 MiB made by one growing seek; the seek goes from
// segment 1 (where FSeek64(0) leaves it) to the middle of segment 100.
constexpr int64_t kSegment = 1 << 20;
constexpr int64_t kTarget = 99 * kSegment + kSegment / 2;

// Opens the logical file "seek" of 100 segments, making it if needed.
void OpenSeekFile(MFiles& files) {
    files.SetMaxFileSize(kSegment);
    if (fs::exists(Folder() / "seek")) {
        files.FOpen(Logical("seek").c_str(), kOpenUpdateBinary);
        return;
    }
    files.FOpen(Logical("seek").c_str(), kOpenWriteBinary);
    files.FSeek64(100 * kSegment, kSeekBegin);
}

void BM_MFilesSeekToLastOf100(benchmark::State& state) {
    MFiles files;
    OpenSeekFile(files);
    if (files.GetFileNum() != 100) state.SkipWithError("not 100 segments");
    for (auto _ : state) {
        state.PauseTiming();
        files.FSeek64(0, kSeekBegin);
        state.ResumeTiming();
        if (files.FSeek64(kTarget, kSeekBegin) != kTarget) state.SkipWithError("seek failed");
    }
}

void BM_PlainSeekSameOffset(benchmark::State& state) {
    MFileUniv file;
    file.FOpen(Logical("plain").c_str(), kOpenWriteBinary);
    file.FSeek64(100 * kSegment, kSeekBegin);
    file.FSetEndOfFile();
    for (auto _ : state) {
        state.PauseTiming();
        file.FSeek64(0, kSeekBegin);
        state.ResumeTiming();
        benchmark::DoNotOptimize(file.FSeek64(kTarget, kSeekBegin));
    }
    file.FClose();
}

void BM_StatusOf100Segments(benchmark::State& state) {
    MFiles files;
    OpenSeekFile(files);
    for (auto _ : state)
        for (int i = 0; i < 100; ++i)
            benchmark::DoNotOptimize(fs::file_size(Folder() / ("seek.cfx." + std::to_string(i))));
}

// The least time of the repetitions too: on a shared machine it is the
// steadiest figure of what each side can do.
double Least(const std::vector<double>& times) {
    return *std::min_element(times.begin(), times.end());
}

void Transfer(benchmark::internal::Benchmark* b) {
    b->Unit(benchmark::kSecond)->UseRealTime()->Iterations(1)->ComputeStatistics("min", Least);
}

BENCHMARK(BM_MFilesWrite)->Apply(Transfer);
BENCHMARK(BM_DdWrite)->Apply(Transfer);
BENCHMARK(BM_MFilesWriteToDisk)->Apply(Transfer);
BENCHMARK(BM_DdWriteToDisk)->Apply(Transfer);
BENCHMARK(BM_MFilesRead)->Apply(Transfer);
BENCHMARK(BM_DdRead)->Apply(Transfer);
BENCHMARK(BM_MFilesSeekToLastOf100)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(BM_PlainSeekSameOffset)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(BM_StatusOf100Segments)->Unit(benchmark::kMicrosecond)->UseRealTime();

}  // namespace
