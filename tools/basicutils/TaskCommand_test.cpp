// The task command: a real worker task, its progress line and its report.
#include <gtest/gtest.h>

#include "RunTool_test.h"

namespace {

using basicutils_tool_test::RunToolShell;

TEST(TaskCommand, RunsToTheEndWithProgressAndResult) {
    auto run = RunToolShell("task 2");
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("Checksum of 2 MiB: "), std::string::npos) << run.out;
    EXPECT_NE(run.err.find("Checksum [####################] 100% 32/32 block 32 of 32"),
              std::string::npos)
        << run.err;
    EXPECT_NE(run.err.find("  0% 0/32 starting"), std::string::npos) << run.err;
    // The same data gives the same checksum: the work really ran to the end.
    EXPECT_EQ(RunToolShell("task 2").out, run.out);
    EXPECT_NE(RunToolShell("task 3").out, run.out);
}

TEST(TaskCommand, RefusesBadSizes) {
    for (const char* args : {"task 0", "task abc", "task 1 2", "task 5000", "task -3"}) {
        auto run = RunToolShell(args);
        EXPECT_EQ(run.status, 2) << args;
        EXPECT_NE(run.err.find("basicutils: "), std::string::npos) << args;
    }
}

}  // namespace
