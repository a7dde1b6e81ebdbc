// What the harnesses share: a property that does not hold aborts, which
// libFuzzer and the replay driver both report with the input; and a scratch
// file of the harness's own in the temporary folder.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>

namespace fuzzsupport {

inline void Check(bool ok) {
    if (!ok) std::abort();
}

// One path per process, named after the harness; the harness removes the
// file after each input.
inline const std::filesystem::path& ScratchFile(const char* harness) {
    static const std::filesystem::path path =
        std::filesystem::temp_directory_path() /
        (std::string(harness) + "_fuzz_" + std::to_string(std::random_device{}()));
    return path;
}

}  // namespace fuzzsupport
