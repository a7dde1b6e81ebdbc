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
using basicutils_tool_test::Slurp;

class SegmentsCommandTest : public testing::Test {
  protected:
    void SetUp() override {
        mDir =
            fs::temp_directory_path() / ("segments_tool_" + std::to_string(std::random_device{}()));
        fs::create_directories(mDir);
        for (int i = 0; i < 2600; ++i) mData += static_cast<char>(i * 7 % 251);
        std::ofstream(mDir / "in", std::ios::binary) << mData;
    }
    void TearDown() override { fs::remove_all(mDir); }
    std::string P(const std::string& name) const { return (mDir / name).string(); }

    fs::path mDir;
    std::string mData;
};

TEST_F(SegmentsCommandTest, SplitInfoJoinRoundTrip) {
    auto run = RunTool({"split", P("in"), P("out"), "--max", "1K"});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, P("out") + ": 2600 bytes in 3 segments\n");
    EXPECT_NE(run.err.find("split [####################] 100% 2600/2600"), std::string::npos);
    EXPECT_EQ(fs::file_size(mDir / "out.cfx.2"), 552u);
    run = RunTool({"info", P("out")});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, P("out") + ": segmented (info file), 3 segments\n" + "     0  " + P("out") +
                           ".cfx.0  1024 bytes\n" + "     1  " + P("out") + ".cfx.1  1024 bytes\n" +
                           "     2  " + P("out") + ".cfx.2  552 bytes\n" + "total: 2600 bytes\n");
    ASSERT_EQ(RunTool({"join", P("out"), P("back")}).status, 0);
    EXPECT_EQ(Slurp(mDir / "back"), mData);
    run = RunToolShell("join '" + P("out") + "'");
    EXPECT_EQ(run.out, mData) << "to standard output";
    run = RunToolShell("split - '" + P("piped") + "' --max 2K < '" + P("in") + "'");
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, P("piped") + ": 2600 bytes in 2 segments\n");
    run = RunTool({"info", P("in")});
    EXPECT_EQ(run.out, P("in") + ": plain file, 1 segment\n     0  " + P("in") +
                           "  2600 bytes\ntotal: 2600 bytes\n");
}

TEST_F(SegmentsCommandTest, RefusalsAndFailures) {
    std::ofstream(mDir / "broken") << "# Velmorant c_files \n"
                                   << P("in") << "\n"
                                   << P("gone") << "\n";
    const struct {
        std::vector<std::string> args;
        int status;
        std::string message;
    } cases[] = {
        {{"split", P("in"), P("o")}, 2, "usage"},
        {{"split", P("in"), P("o"), "--max", "12X"}, 2, "usage"},
        {{"split", P("in"), P("o"), "--max", "0"}, 2, "usage"},
        {{"split", P("in"), P("in"), "--max", "1K"}, 1, "exists; remove it first"},
        {{"split", P("none"), P("o"), "--max", "1K"}, 1, "is not a regular file"},
        {{"join", P("none")}, 1, "cannot open"},
        {{"info"}, 2, "usage"},
        {{"info", P("broken")}, 1, "  1  " + P("gone") + "  missing\n"},
    };
    for (const auto& c : cases) {
        const auto run = RunTool(c.args);
        EXPECT_EQ(run.status, c.status) << c.args[0] << " " << run.All();
        EXPECT_NE(run.All().find(c.message), std::string::npos) << run.All();
    }
}

}  // namespace
