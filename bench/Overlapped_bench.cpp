// Overlapped file I/O against the system's own tools, on the same files in
// the same run, on both engines (argument 0: io_uring, 1: the I/O thread
// pool). Files live in a scratch folder under the temporary folder (2 GiB of
// sources and up to 2 GiB written; removed at the end). Sources are read once
// before the timings, so reads through the page cache find it warm.
//
//   ConcatFiles/engine/sectors  8 files of 256 MiB appended by ConcatFile
//                               (buffers of sectors x 4 MiB), FClose included
//   CatFiles                    cat a b ... > out
//   CatFilesAndSync             the same, then sync out (the file on disk, as
//                               FClose makes sure)
//   ReadAhead/engine/MiB        a warm 1 GiB file through AsyncReadBuffer with
//                               buffers of MiB, 1 MiB copied out by each
//                               ReadBuffer
//   CatToNull                   cat FILE > /dev/null
//   SectorReads/engine/depth    FReadOverlapped of 1 MiB blocks, direct, with
//                               `depth` reads in flight, the file dropped from
//                               the page cache first (as for dd)
//   DdDirectRead                dd iflag=direct bs=1M
//   SectorWrites/engine/depth   FWriteOverlapped of 1 MiB blocks, direct
//   DdDirectWrite               dd oflag=direct bs=1M from /dev/zero
#include <basicutils/BasicUtils.h>
#include <basicutils/platform/internal/AsyncIo.h>
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

using namespace basicutils;
namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr int64_t kMiB = 1 << 20;
constexpr int kSources = 8;
constexpr int64_t kSourceSize = 256 * kMiB;
constexpr int64_t kBigSize = 1024 * kMiB;
constexpr int kBlock = 1 << 20;

const fs::path& Folder() {
    static const fs::path folder = fs::temp_directory_path() / "basicutils-bench-overlapped";
    return folder;
}
std::string At(const std::string& name) {
    return (Folder() / name).string();
}
std::u16string Wide(const std::string& name) {
    return (Folder() / name).u16string();
}

void MakeFile(const std::string& name, int64_t size) {
    if (fs::exists(At(name)) && static_cast<int64_t>(fs::file_size(At(name))) == size) return;
    std::vector<char> chunk(4 * kMiB);
    std::ofstream out(At(name), std::ios::binary | std::ios::trunc);
    for (int64_t done = 0; done < size; done += static_cast<int64_t>(chunk.size())) {
        for (size_t i = 0; i < chunk.size(); i += 512) chunk[i] = static_cast<char>(done / 512 + i);
        out.write(chunk.data(), static_cast<std::streamsize>(chunk.size()));
    }
}

// Makes the files once, reads them once to warm the page cache.
struct Files {
    Files() {
        fs::create_directories(Folder());
        for (int i = 0; i < kSources; ++i) MakeFile("in" + std::to_string(i), kSourceSize);
        MakeFile("big", kBigSize);
        std::system(("cat " + Sources() + " '" + At("big") + "' > /dev/null").c_str());
    }
    ~Files() { fs::remove_all(Folder()); }
    static std::string Sources() {
        std::string list;
        for (int i = 0; i < kSources; ++i) list += " '" + At("in" + std::to_string(i)) + "'";
        return list;
    }
};
Files& TheFiles() {
    static Files files;
    return files;
}

void UseEngine(benchmark::State& state) {
    const auto wanted = state.range(0) == 0 ? detail::AsyncBackendKind::kIoUring
                                            : detail::AsyncBackendKind::kThreadPool;
    if (detail::SelectAsyncBackend(wanted) != wanted) state.SkipWithError("no io_uring here");
    state.SetLabel(detail::TheAsyncBackend().Name());
}

// Times `work` once per iteration with the wall clock, after an untimed
// `prepare`.
template <typename Work, typename Prepare = void (*)()>
void Timed(
    benchmark::State& state, int64_t bytes, Work work, Prepare prepare = [] {}) {
    TheFiles();
    for (auto _ : state) {
        prepare();
        const auto begin = Clock::now();
        work();
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - begin).count());
    }
    state.SetBytesProcessed(state.iterations() * bytes);
}

void Shell(const std::string& command) {
    if (std::system(command.c_str()) != 0) std::abort();
}

void Warm(const std::string& name) {
    Shell("cat " + At(name) + " > /dev/null");
}
// Drops the file from the page cache, so that direct reads meet the device.
void Cool(const std::string& name) {
    Shell("dd if=" + At(name) + " iflag=nocache count=0 status=none");
}

void ConcatFiles(benchmark::State& state) {
    UseEngine(state);
    const auto sectors = static_cast<int32_t>(state.range(1));
    Timed(state, kSources * kSourceSize, [&] {
        MFileUniv out;
        out.FOpen(Wide("out").c_str(), kOpenOverlappedCreate);
        out.ConcatInitialize(sectors * 2048, 0);
        bool cancel = false;
        for (int i = 0; i < kSources; ++i)
            if (out.ConcatFile(Wide("in" + std::to_string(i)).c_str(), 0, cancel, 0) != 0)
                std::abort();
        out.FClose();
    });
}

void CatFiles(benchmark::State& state) {
    Timed(state, kSources * kSourceSize,
          [] { Shell("cat" + Files::Sources() + " > " + At("out")); });
}

void CatFilesAndSync(benchmark::State& state) {
    Timed(state, kSources * kSourceSize,
          [] { Shell("cat" + Files::Sources() + " > " + At("out") + " && sync " + At("out")); });
}

void ReadAhead(benchmark::State& state) {
    UseEngine(state);
    std::vector<char> piece(kBlock);
    Timed(
        state, kBigSize,
        [&] {
            MFileUniv file;
            file.FOpen(Wide("big").c_str(), kOpenOverlappedRead);
            AsyncReadBuffer ring;
            ring.InitReadBuffer(&file, 0, static_cast<int>(state.range(1)) * kBlock, 0);
            for (int64_t at = 0; at < kBigSize;) {
                const int n = ring.ReadBuffer(at, piece.data(), kBlock);
                if (n <= 0) std::abort();
                at += n;
            }
            benchmark::DoNotOptimize(piece.data());
        },
        [] { Warm("big"); });
}

void CatToNull(benchmark::State& state) {
    Timed(
        state, kBigSize, [] { Warm("big"); }, [] { Warm("big"); });
}

// `depth` transfers of kBlock in flight over the 1 GiB file, each slot
// waited for in turn and given the next block.
void Sectors(benchmark::State& state, bool write) {
    UseEngine(state);
    const int depth = static_cast<int>(state.range(1));
    std::vector<char*> buffers;
    std::vector<HANDLE> events;
    std::vector<OVERLAPPED> blocks(static_cast<size_t>(depth));
    for (int i = 0; i < depth; ++i) {
        buffers.push_back(
            static_cast<char*>(VirtualAlloc(nullptr, kBlock + 4096, MEM_COMMIT, PAGE_READWRITE)));
        events.push_back(CreateEventW(nullptr, 1, 0, nullptr));
    }
    Timed(
        state, kBigSize,
        [&] {
            MFileUniv file;
            file.FOpen(Wide(write ? "written" : "big").c_str(),
                       write ? kOpenOverlappedCreate : kOpenOverlappedRead);
            int64_t next = 0;
            auto issue = [&](int slot) {
                if (next >= kBigSize) return;
                const uint32_t error =
                    write ? file.FWriteOverlapped(next, buffers[slot], kBlock, &blocks[slot],
                                                  events[slot])
                          : file.FReadOverlapped(next, buffers[slot] + 2048, kBlock, &blocks[slot],
                                                 events[slot]);
                if (error != 0) std::abort();
                next += kBlock;
            };
            for (int i = 0; i < depth; ++i) issue(i);
            for (int64_t done = 0, slot = 0; done < kBigSize;
                 done += kBlock, slot = (slot + 1) % depth) {
                if (file.FWaitOverlappedCompletion(events[slot], 120) != 0) std::abort();
                issue(static_cast<int>(slot));
            }
        },
        [] { Cool("big"); });
    for (int i = 0; i < depth; ++i) {
        VirtualFree(buffers[i], 0, MEM_RELEASE);
        CloseHandle(events[i]);
    }
}

void SectorReads(benchmark::State& state) {
    Sectors(state, false);
}
void SectorWrites(benchmark::State& state) {
    Sectors(state, true);
}

void DdDirectRead(benchmark::State& state) {
    Timed(
        state, kBigSize,
        [] { Shell("dd if=" + At("big") + " of=/dev/null bs=1M iflag=direct status=none"); },
        [] { Cool("big"); });
}

void DdDirectWrite(benchmark::State& state) {
    Timed(state, kBigSize, [] {
        Shell("dd if=/dev/zero of=" + At("written") + " bs=1M count=1024 oflag=direct status=none");
    });
}

constexpr int kRepeats = 3;

BENCHMARK(ConcatFiles)
    ->ArgsProduct({{0, 1}, {1, 8}})
    ->UseManualTime()
    ->Iterations(kRepeats)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(CatFiles)->UseManualTime()->Iterations(kRepeats)->Unit(benchmark::kMillisecond);
BENCHMARK(CatFilesAndSync)->UseManualTime()->Iterations(kRepeats)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadAhead)
    ->ArgsProduct({{0, 1}, {1, 4}})
    ->UseManualTime()
    ->Iterations(kRepeats)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(CatToNull)->UseManualTime()->Iterations(kRepeats)->Unit(benchmark::kMillisecond);
BENCHMARK(SectorReads)
    ->ArgsProduct({{0, 1}, {1, 8}})
    ->UseManualTime()
    ->Iterations(kRepeats)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(DdDirectRead)->UseManualTime()->Iterations(kRepeats)->Unit(benchmark::kMillisecond);
BENCHMARK(SectorWrites)
    ->ArgsProduct({{0, 1}, {1, 8}})
    ->UseManualTime()
    ->Iterations(kRepeats)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(DdDirectWrite)->UseManualTime()->Iterations(kRepeats)->Unit(benchmark::kMillisecond);

}  // namespace
