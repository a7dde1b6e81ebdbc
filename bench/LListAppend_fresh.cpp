// Appending 1,000,000 pointers in a fresh process: LList against
// std::vector. The first growth of a process pays for every page it
// touches, which a warm benchmark loop never sees.
//
// Run without arguments it runs itself once per sample, alternating the
// two sides, and prints the median time of each and their ratio. With
// "lib FILE" or "vector FILE" it does one timed fill and writes the
// nanoseconds to FILE. Target: the library at most 1.0 times the vector.
#include <basicutils/containers/LList.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

constexpr int kPointers = 1000000;
constexpr int kSamples = 15;

void* PointerFor(int i) {
    return reinterpret_cast<void*>(static_cast<uintptr_t>(i) * 16 + 4096);
}

// One fill of a new container, and its destruction, in nanoseconds.
int64_t FillOnce(bool library) {
    const auto start = std::chrono::steady_clock::now();
    size_t count = 0;
    if (library) {
        basicutils::LList list;
        for (int i = 0; i < kPointers; ++i) {
            void* p = PointerFor(i);
            list.InsertItemsAt(1, basicutils::kLastIndex, &p, 0);
        }
        count = list.GetCount();
    } else {
        std::vector<void*> v;
        for (int i = 0; i < kPointers; ++i) v.push_back(PointerFor(i));
        count = v.size();
    }
    const auto end = std::chrono::steady_clock::now();
    if (count != kPointers) std::abort();
    return std::chrono::duration_cast<std::chrono::nanoseconds>(end - start).count();
}

double Median(std::vector<int64_t> v) {
    std::sort(v.begin(), v.end());
    return static_cast<double>(v[v.size() / 2]);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 3) {
        std::ofstream(argv[2]) << FillOnce(std::string(argv[1]) == "lib") << "\n";
        return 0;
    }
    const auto file = std::filesystem::temp_directory_path() /
                      ("llist_fresh_" +
                       std::to_string(std::chrono::steady_clock::now().time_since_epoch().count()));
    std::vector<int64_t> times[2];
    for (int sample = 0; sample < 2 * kSamples; ++sample) {
        const bool library = sample % 2 == 0;
        const std::string command = std::string("\"") + argv[0] + "\" " +
                                    (library ? "lib" : "vector") + " \"" + file.string() + "\"";
        int64_t ns = 0;
        if (std::system(command.c_str()) != 0 || !(std::ifstream(file) >> ns)) {
            std::fprintf(stderr, "sample failed: %s\n", command.c_str());
            return 1;
        }
        times[library ? 0 : 1].push_back(ns);
    }
    std::filesystem::remove(file);
    const double lib = Median(times[0]), vec = Median(times[1]);
    std::printf("LList append %d pointers, fresh process, median of %d:\n", kPointers, kSamples);
    std::printf("  LList        %8.2f ms\n  std::vector  %8.2f ms\n  ratio        %8.2f\n",
                lib / 1e6, vec / 1e6, lib / vec);
    return 0;
}
