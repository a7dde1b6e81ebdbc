// Runs `basicutils script` on script files in a temporary folder.
#include <basicutils/platform/testing/TempFolder.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "RunTool_test.h"

namespace {

using basicutils::testing::TempFolder;
using basicutils_tool_test::RunTool;

TEST(ScriptCommand, PrintsAssignmentsAndReportsSyntaxErrors) {
    TempFolder folder;
    struct Case {
        const char* text;
        int status;
        std::string out;
        std::string err;  // a part of it
    };
    const Case cases[] = {
        {"# head\nname = disc // note\nitems = (a, b c\n  # between\n  d)\n", 0,
         "2: name = disc\n3: items = (a, b, c, d)\n", ""},
        {"a = 1\nbroken value\n", 1, "1: a = 1\n",
         "syntax error: Syntax error near line 2\n              >>>  broken value\n"},
        {"a = (x, y", 1, "", "syntax error: list not closed near line 1"},
        {"", 0, "", ""},
    };
    for (const Case& c : cases) {
        folder.Write("s.txt", c.text);
        const auto run = RunTool({"script", folder / "s.txt"});
        EXPECT_EQ(run.status, c.status) << c.text;
        EXPECT_EQ(run.out, c.out) << c.text;
        EXPECT_NE(run.err.find(c.err), std::string::npos) << run.err;
        EXPECT_EQ(folder.Read("s.txt"), c.text) << "the file itself stays";
    }
    EXPECT_EQ(RunTool({"script", folder / "missing"}).status, 1);
    EXPECT_EQ(RunTool({"script"}).status, 2);
}

}  // namespace
