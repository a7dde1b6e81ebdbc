// Runs `basicutils file` (and `bits`/`bytes` on what is not a file) as a user
// does, on real files, folders and a FIFO in a temporary folder.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "RunTool_test.h"

namespace {

namespace fs = std::filesystem;
using basicutils_tool_test::RunTool;
using basicutils_tool_test::RunToolShell;

class FileCommandTest : public testing::Test {
  protected:
    void SetUp() override {
        mDir = fs::temp_directory_path() /
               ("file_tool_test_" + std::to_string(std::random_device{}()));
        fs::create_directories(mDir / "tree/sub");
        std::ofstream(mDir / "info") << "# Velmorant c_files \nclip.cfx.0\n";
        std::ofstream(mDir / "plain") << "# velmorant c_files\n";
        std::ofstream(mDir / "tree/sub/a") << "a";
        ASSERT_EQ(std::system(("mkfifo '" + P("fifo") + "'").c_str()), 0);
    }
    void TearDown() override { fs::remove_all(mDir); }
    std::string P(const std::string& name) const { return (mDir / name).string(); }

    fs::path mDir;
};

TEST_F(FileCommandTest, InfoTellsSizeDatesDriveAndKind) {
    auto run = RunTool({"file", "info", P("info")});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("size: 32 bytes\n"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("modified: 20"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("read-only drive: no\n"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("segmented info file: yes\n"), std::string::npos) << run.out;
    run = RunTool({"file", "info", P("plain")});
    EXPECT_NE(run.out.find("segmented info file: no\n"), std::string::npos) << run.out;
}

// Refused from the status alone: none of these waits on the FIFO.
TEST_F(FileCommandTest, RefusesWhatIsNotTheExpectedKind) {
    const std::pair<std::vector<std::string>, std::string> cases[] = {
        {{"file", "info", P("fifo")}, "is not a regular file"},
        {{"file", "info", P("tree")}, "is a directory"},
        {{"file", "info", P("missing")}, "does not exist"},
        {{"file", "unique", P("fifo"), ".x"}, "is not a regular file"},
        {{"file", "rmtree", P("info")}, "is not a directory"},
        {{"bits", P("fifo"), "0:8"}, "is not a regular file"},
        {{"bytes", P("fifo")}, "is not a regular file"},
        {{"file", "info"}, "usage"},
    };
    for (const auto& [args, message] : cases) {
        auto run = RunTool(args);
        EXPECT_NE(run.status, 0) << args[1];
        EXPECT_NE(run.err.find(message), std::string::npos) << run.err;
    }
}

TEST_F(FileCommandTest, UniqueAndRmtree) {
    auto run = RunTool({"file", "unique", P("info"), ""});
    EXPECT_EQ(run.out, P("info_1") + "\n");
    run = RunTool({"file", "rmtree", P("tree")});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_FALSE(fs::exists(mDir / "tree"));
}

TEST_F(FileCommandTest, RmtreeStopsWithTheLibrarysReports) {
    fs::create_directories(mDir / "tree/ro");
    std::ofstream(mDir / "tree/ro/locked") << "x";
    fs::permissions(mDir / "tree/ro/locked", fs::perms::owner_read);
    auto run = RunTool({"file", "rmtree", P("tree")});
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.err.find("basicutils: error: " + P("tree") + "\\ro\\locked could not be deleted"),
              std::string::npos)
        << run.err;
    fs::permissions(mDir / "tree/ro/locked", fs::perms::owner_all);
}

// A large dump goes out piece by piece and stays continuous.
TEST_F(FileCommandTest, LargeDumpStreams) {
    fs::resize_file(mDir / "plain", 1 << 20);
    auto run = RunToolShell("bytes '" + P("plain") + "' --count 1048576 | tail -n 1");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out.substr(0, 9), "000ffff0 ");
}

}  // namespace
