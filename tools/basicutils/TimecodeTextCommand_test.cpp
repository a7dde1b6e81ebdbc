// The text, drop-frame, duration and PAL actions of the timecode subcommand,
// run as a user runs them.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "RunTool_test.h"

namespace {

// Exit status and everything printed, stderr included.
std::pair<int, std::string> Tool(const std::string& args) {
    auto run = basicutils_tool_test::RunToolShell(args);
    return {run.status, run.All()};
}

TEST(TimecodeTextCommand, AnswersNotesAndErrors) {
    struct {
        const char* args;
        int status;
        const char* expected;  // a piece of the output
    } cases[] = {
        {"tc parse '01:02:03;04'", 0, "= 01:02:03;04 @25"},
        {"tc parse 1:2", 0, "seconds 1, frames 2 = 00:00:01:02 @30"},
        {"tc read 1:2", 0, "note: '1:2' read as 01:02:00:00 @30"},
        {"tc read '1:2:3;4' --rate 25", 0, "01:02:03;04 @25 = frame 93080"},
        {"tc read xx", 0, "read as 00:00:00:00 @30"},
        {"tc read 0:75:0:0", 0, "read as 00:59:00:00 @30"},
        {"tc drop 01:00:00:00", 0, "drop 01:00:03:18 @30"},
        {"tc nondrop 00:10:00:00", 0, "non-drop 00:09:59:12 @30"},
        {"tc drop 02:00:00:00 --start 01:05:30:00", 0, "drop 02:00:03:08 @30"},
        {"tc end 00:00:10:00 00:00:05:00", 0, "end 00:00:14:29 @30, 150 frames"},
        {"tc end 00:00:00:00 00:01:00:03 --drop", 0, "end 00:01:00:02 @30, 1801 frames"},
        {"tc length 00:00:00:00 00:01:00:02 --drop", 0, "length 00:01:00:03 @30"},
        {"tc overlap 00:00:10:00 00:00:10:00 00:00:05:00 00:00:10:00", 0,
         "overlap from 00:00:10:00 @30 to 00:00:14:29 @30"},
        {"tc overlap 00:00:10:00 00:00:01:00 00:00:20:00 00:00:01:00", 0, "no overlap"},
        {"tc pal 00:00:10:29 00:00:10:12", 0, "00:00:10:29 -> 00:00:10;24 @25"},
        {"tc drop", 2, "usage"},
        {"tc pal", 2, "usage"},
        {"tc drop 1:0:0:0 --start", 2, "--start needs a value"},
        {"tc read 1 --bogus", 2, "unknown option"},
    };
    for (auto& c : cases) {
        auto [status, out] = Tool(c.args);
        EXPECT_EQ(status, c.status) << c.args << "\n" << out;
        EXPECT_NE(out.find(c.expected), std::string::npos) << c.args << "\n" << out;
    }
}

}  // namespace
