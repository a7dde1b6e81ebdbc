// The timecode subcommand, run as a user runs it: exit status, stdout, and
// the note the tool prints when the library clamped the input.
#include <gtest/gtest.h>

#include <string>

#include "RunTool_test.h"

namespace {

struct Case {
    const char* args;
    int status;
    const char* expected;  // a piece of the output
};

TEST(TimecodeCommand, AnswersAndErrors) {
    const Case cases[] = {
        {"tc frames 01:00:00:00", 0, "01:00:00:00 @30 = frame 108001"},
        {"timecode frames 00:00:01:00 --rate 25", 0, "00:00:01;00 @25 = frame 26"},
        {"tc at 26 -r 25", 0, "frame 26 = 00:00:01;00 @25"},
        {"tc add 23:59:59:29 00:00:00:01", 0, "= 24:00:00:00 @30"},
        {"tc sub 00:00:01:00 00:00:02:00", 0, "= 00:00:00:00 @30"},
        {"tc pack 00:00:01:00 --rate 25", 0, "packed 262500.0"},
        {"tc unpack 13000", 0, "= 00:00:00:00 @30"},
        {"tc ms 00:00:00:01 --rate 25", 0, "= 40 ms"},
        // Bad text is the library's to read: 0 and clamping, and a note.
        {"tc frames 00:75:00:00", 0, "read as 00:59:00:00 @30"},
        {"tc frames 00:00:00:00 --rate 10", 0, "read as 00:00:00:00 @24"},
        {"tc frames 1:2:3", 0, "'1:2:3' read as 01:02:03:00 @30"},
        {"tc frames 00:00:00:99999", 0, "read as 00:00:00:29 @30"},
        {"tc frames ab:00:00:00", 0, "read as 00:00:00:00 @30"},
        {"tc frames 00:00:00:00 --rate fast", 2, "rate 'fast' is not a number"},
        {"tc frames 00:00:00:00 --speed 3", 2, "unknown option '--speed'"},
        {"tc at 99999999999", 2, "not a 32-bit frame count"},
        {"tc fly", 2, "unknown action 'fly'"},
        {"tc", 2, "missing action"},
        {"tc add 00:00:00:01", 2, "usage"},
        {"nonsense", 2, "unknown command 'nonsense'"},
        {"--help", 0, "timecode"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.args);
        auto r = basicutils_tool_test::RunToolShell(c.args);
        EXPECT_EQ(r.status, c.status) << r.All();
        EXPECT_NE(r.All().find(c.expected), std::string::npos) << r.All();
    }
}

}  // namespace
