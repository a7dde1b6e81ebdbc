// Runs a libFuzzer harness without libFuzzer, so that every harness is also
// an ordinary test built by any compiler: first every file of the harness's
// corpus folder, in name order, then a fixed-seed batch of inputs (random
// bytes, and corpus files with a few bytes changed, cut or added).
//
// Usage: NAME_replay CORPUS_DIR [RANDOM_INPUTS]
// A harness reports a fault by aborting; the driver then names the input and
// writes it to NAME-failed-input in the working folder, for the real fuzzer.
#include <algorithm>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

namespace fs = std::filesystem;
using Input = std::vector<uint8_t>;

std::string gProgram;
std::string gLabel;
const Input* gCurrent = nullptr;

extern "C" void OnAbort(int) {
    std::fprintf(stderr, "%s: the harness failed on %s\n", gProgram.c_str(), gLabel.c_str());
    if (gCurrent) {
        const std::string file = gProgram + "-failed-input";
        if (std::FILE* f = std::fopen(file.c_str(), "wb")) {
            std::fwrite(gCurrent->data(), 1, gCurrent->size(), f);
            std::fclose(f);
            std::fprintf(stderr, "%s: input written to %s\n", gProgram.c_str(), file.c_str());
        }
    }
    std::signal(SIGABRT, SIG_DFL);
    std::raise(SIGABRT);
}

void Run(const Input& input, std::string label) {
    gLabel = std::move(label);
    gCurrent = &input;
    // A copy of exactly the input's size, so a read past it is a sanitizer error.
    std::unique_ptr<uint8_t[]> exact(new uint8_t[input.size() + 1]);
    std::copy(input.begin(), input.end(), exact.get());
    LLVMFuzzerTestOneInput(exact.get(), input.size());
}

// A corpus file with a few bytes changed, removed or added, or random bytes.
Input Mutant(const std::vector<Input>& corpus, std::mt19937& rng) {
    auto below = [&rng](size_t n) { return n == 0 ? 0 : static_cast<size_t>(rng() % n); };
    Input in;
    if (corpus.empty() || rng() % 4 == 0) {
        in.resize(below(rng() % 8 == 0 ? 4096 : 256));
        for (auto& b : in) b = static_cast<uint8_t>(rng());
        return in;
    }
    in = corpus[below(corpus.size())];
    for (size_t edits = 1 + below(4); edits > 0; --edits) {
        switch (rng() % 4) {
            case 0:
                if (!in.empty()) in[below(in.size())] = static_cast<uint8_t>(rng());
                break;
            case 1:
                if (!in.empty()) in[below(in.size())] ^= static_cast<uint8_t>(1u << (rng() % 8));
                break;
            case 2:
                if (!in.empty())
                    in.erase(in.begin() + static_cast<std::ptrdiff_t>(below(in.size())));
                break;
            default:
                in.insert(in.begin() + static_cast<std::ptrdiff_t>(below(in.size() + 1)),
                          static_cast<uint8_t>(rng()));
                break;
        }
    }
    return in;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2 || argc > 3) {
        std::fprintf(stderr, "usage: %s CORPUS_DIR [RANDOM_INPUTS]\n", argv[0]);
        return 2;
    }
    gProgram = fs::path(argv[0]).filename().string();
    const fs::path dir = argv[1];
    const long randomInputs = argc == 3 ? std::strtol(argv[2], nullptr, 10) : 3000;
    std::signal(SIGABRT, OnAbort);

    std::vector<fs::path> files;
    std::error_code ec;
    for (const auto& entry : fs::directory_iterator(dir, ec))
        if (entry.is_regular_file()) files.push_back(entry.path());
    if (ec || files.empty()) {
        std::fprintf(stderr, "%s: no corpus in %s\n", gProgram.c_str(), dir.string().c_str());
        return 1;
    }
    std::sort(files.begin(), files.end());
    std::vector<Input> corpus;
    for (const auto& file : files) {
        std::ifstream in(file, std::ios::binary);
        corpus.emplace_back(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
        Run(corpus.back(), file.filename().string());
    }
    std::mt19937 rng(20240611);
    for (long i = 0; i < randomInputs; ++i)
        Run(Mutant(corpus, rng), "random input " + std::to_string(i));
    std::printf("%s: %zu corpus files and %ld random inputs passed\n", gProgram.c_str(),
                corpus.size(), randomInputs);
    return 0;
}
