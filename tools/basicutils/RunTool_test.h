// Runs the built basicutils tool as a user does and collects what it did:
// its exit status, stdout and stderr. Shared by the tool's tests.
#pragma once

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace basicutils_tool_test {

struct ToolRun {
    int status;  // exit status, or -1 when the tool did not exit normally
    std::string out, err;
    std::string All() const { return out + err; }
};

inline std::string Slurp(const std::filesystem::path& p) {
    std::ifstream in(p, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

// `args` is shell text placed after the tool's path.
inline ToolRun RunToolShell(const std::string& args) {
    namespace fs = std::filesystem;
    static const unsigned process = std::random_device{}();
    static std::atomic<int> counter{0};
    fs::path dir = fs::temp_directory_path() /
                   ("basicutils_tool_" + std::to_string(process) + "_" + std::to_string(counter++));
    fs::create_directories(dir);
    std::string cmd = std::string("'") + BASICUTILS_TOOL_PATH + "' " + args + " >'" +
                      (dir / "out").string() + "' 2>'" + (dir / "err").string() + "'";
    int raw = std::system(cmd.c_str());
    // std::system gives the wait status: the exit code sits in bits 8..15
    // when the low 7 bits (the terminating signal) are zero.
    ToolRun run{(raw & 0x7F) == 0 ? (raw >> 8) & 0xFF : -1, Slurp(dir / "out"), Slurp(dir / "err")};
    fs::remove_all(dir);
    return run;
}

// Each argument single-quoted for the shell; none of the tests' holds a quote.
inline ToolRun RunTool(const std::vector<std::string>& args) {
    std::string text;
    for (const auto& a : args) text += " '" + a + "'";
    return RunToolShell(text);
}

}  // namespace basicutils_tool_test
