// Runs `basicutils split`, `join` and `info` as a user does, on real files.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "RunTool_test.h"

namespace {

namespace fs = std::filesystem;
using basicutils_tool_test::RunTool;
using basicutils_tool_test::RunToolShell;

TEST(SegmentsCommand, SplitInfoJoinAndRefusals) {
    const fs::path dir =
        fs::temp_directory_path() / ("segments_" + std::to_string(std::random_device{}()));
    fs::create_directories(dir);
    const std::string in = (dir / "in").string(), out = (dir / "out").string();
    std::string data;
    for (int i = 0; i < 2600; ++i) data += static_cast<char>(i * 7 % 251);
    std::ofstream(in, std::ios::binary) << data;
    std::ofstream(dir / "broken") << "# Velmorant c_files \n" << in << "\n" << out << "x\n";
    const struct {
        std::string args;  // shell text after the tool's path
        int status;
        std::string output;  // what stdout and stderr hold, in part
    } runs[] = {
        {"split '" + in + "' '" + out + "' --max 1K", 0, out + ": 2600 bytes in 3 segments\n"},
        {"split '" + in + "' '" + out + "' --max 1K", 1, "exists; remove it first"},
        {"info '" + out + "'", 0,
         ": segmented (info file), 3 segments\n     0  " + out + ".cfx.0  1024 bytes\n     1  " +
             out + ".cfx.1  1024 bytes\n     2  " + out + ".cfx.2  552 bytes\ntotal: 2600 bytes\n"},
        {"join '" + out + "'", 0, data},
        {"split - '" + out + "2' --max 2K < '" + in + "'", 0, "2600 bytes in 2 segments\n"},
        {"info '" + in + "'", 0, ": plain file, 1 segment\n     0  " + in + "  2600 bytes\n"},
        {"info '" + (dir / "broken").string() + "'", 1, "     1  " + out + "x  missing\n"},
        {"split '" + in + "' x --max 12X", 2, "usage"},
        {"join '" + in + "x'", 1, "cannot open"},
    };
    for (const auto& run : runs) {
        const auto result = RunToolShell(run.args);
        EXPECT_EQ(result.status, run.status) << run.args << "\n" << result.All();
        EXPECT_NE(result.All().find(run.output), std::string::npos) << run.args << "\n"
                                                                    << result.All();
    }
    EXPECT_EQ(RunTool({"join", out + "2", (dir / "back").string()}).status, 0);
    EXPECT_EQ(basicutils_tool_test::Slurp(dir / "back"), data);
    fs::remove_all(dir);
}

}  // namespace
