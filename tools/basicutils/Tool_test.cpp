// The tool as a user runs it: what only the tool does (its parsing, notes,
// exit statuses and output layout). The answers themselves are the library's
// and are tested there.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>

namespace {

namespace fs = std::filesystem;

struct ToolRun {
    int status;
    std::string out, err;
};

// Runs the built tool with shell arguments in a scratch folder holding clip.m2v.
ToolRun Tool(const std::string& args) {
    static const fs::path dir = [] {
        fs::path d = fs::temp_directory_path() /
                     ("basicutils_tool_test_" + std::to_string(std::random_device{}()));
        fs::create_directories(d);
        std::ofstream(d / "clip.m2v", std::ios::binary)
            .write("\x00\x00\x01\xB3\x2D\x01\xE0\x24", 8);
        return d;
    }();
    const std::string cmd =
        "cd '" + dir.string() + "' && '" BASICUTILS_TOOL_PATH "' " + args + " >out 2>err";
    const int raw = std::system(cmd.c_str());
    auto slurp = [&](const char* name) {
        std::stringstream s;
        s << std::ifstream(dir / name).rdbuf();
        return s.str();
    };
    return {(raw & 0x7F) == 0 ? (raw >> 8) & 0xFF : -1, slurp("out"), slurp("err")};
}

TEST(Tool, ParsesNotesAndAnswers) {
    // clang-format off
    struct { const char* args; int status; const char* out; const char* err; } cases[] = {
        {"bits clip.m2v 0:32 32:12 44:12", 0, "0:32 435 0x000001b3\n32:12 720 0x2d0\n44:12 480 0x1e0\n", ""},
        {"bytes clip.m2v --at 4 --mb16", 0, "4 mb16 11521 0x2d01\n", ""},
        {"bits clip.m2v 0:33", 2, "", "from 0 to 32"},
        {"bits clip.m2v 60:8", 1, "", "beyond the end"},
        {"bytes clip.m2v --count 2 --mb16", 2, "", "give one of"},
        {"tc frames 00:75:00:00", 0, "00:59:00:00 @30 = frame 106201", "note: '00:75:00:00' read as 00:59:00:00 @30"},
        {"tc frames 19885:00:00:00", 0, "frame -2147387295", "past the library's 32-bit frame counts"},
        {"tc add 1000:00:00:00 100:00:00:00", 0, "= 07:44:00:00 @30", "the library's answer wraps"},
        {"tc frames 0:0:0:0 --rate fast", 2, "", "rate 'fast' is not a number"},
        {"tc pal", 2, "", "usage: basicutils timecode pal TC..."},
        {"tc fly", 2, "", "unknown action 'fly'"},
        {"help help", 0, "usage: basicutils help COMMAND", ""},
        {"--version", 0, "basicutils " BASICUTILS_VERSION "\n", ""},
        {"task 0", 2, "", "from 1 to 4096"},
    };
    // clang-format on
    for (const auto& c : cases) {
        const ToolRun r = Tool(c.args);
        EXPECT_EQ(r.status, c.status) << c.args << "\n" << r.err;
        EXPECT_NE(r.out.find(c.out), std::string::npos) << c.args << "\n" << r.out;
        EXPECT_NE(r.err.find(c.err), std::string::npos) << c.args << "\n" << r.err;
    }
}

// Piped, progress is a line per tenth of the work, and the result stands alone.
TEST(Tool, TaskProgressIsAFewLinesAndTheResultItsOwn) {
    const ToolRun r = Tool("task 4");
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out.rfind("Checksum of 4 MiB: ", 0), 0u) << r.out;
    EXPECT_EQ(r.err.rfind("Checksum [--------------------]   0% 0/64 starting\n", 0), 0u) << r.err;
    EXPECT_NE(r.err.find("Checksum [####################] 100% 64/64 block 64 of 64\n"),
              std::string::npos);
    EXPECT_LE(std::count(r.err.begin(), r.err.end(), '\n'), 11) << r.err;
    EXPECT_EQ(Tool("task 4").out, r.out) << "the same data, the same checksum";
}

}  // namespace
