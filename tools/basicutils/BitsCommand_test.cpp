// Runs the built tool's `bits` and `bytes` commands on files written to a
// temporary folder, and checks their output, messages and exit status.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "RunTool_test.h"

namespace {

namespace fs = std::filesystem;

using basicutils_tool_test::RunTool;
using basicutils_tool_test::ToolRun;

class BitsCommandTest : public testing::Test {
  protected:
    void SetUp() override {
        std::random_device rd;
        mDir = fs::temp_directory_path() / ("bits_tool_test_" + std::to_string(rd()));
        fs::create_directories(mDir);
        // An MPEG-2 sequence header start: start code, then 720 x 480.
        Write("clip.m2v", {0x00, 0x00, 0x01, 0xB3, 0x2D, 0x01, 0xE0, 0x24, 0x12, 0x34,
                           0x56, 0x78, 0x9A, 0xBC, 0xDE, 0xF0, 0x41, 0x42, 0x7F, 0x80});
        Write("empty.bin", {});
    }
    void TearDown() override { fs::remove_all(mDir); }

    void Write(const std::string& name, const std::vector<unsigned char>& bytes) {
        std::ofstream(mDir / name, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
    }
    std::string PathOf(const std::string& name) const { return (mDir / name).string(); }

    fs::path mDir;
};

// Each case runs the tool on clip.m2v (the file goes after the command).
TEST_F(BitsCommandTest, FieldsAndNumbersPrintDecimalAndHex) {
    const std::pair<std::vector<std::string>, std::string> cases[] = {
        {{"bits", "0:32", "32:12", "44:12"},
         "0:32 435 0x000001b3\n32:12 720 0x2d0\n44:12 480 0x1e0\n"},
        {{"bits", "31:1", "30:1"}, "31:1 1 0x1\n30:1 1 0x1\n"},
        // Five bytes from mid-byte; a set top bit stays unsigned.
        {{"bits", "100:32"}, "100:32 2882400004 0xabcdef04\n"},
        {{"bits", "120:32"}, "120:32 4030808703 0xf041427f\n"},
        {{"bits", "160:0", "0:0"}, "160:0 0 0x0\n0:0 0 0x0\n"},
        {{"bytes", "--at", "4", "--mb16"}, "4 mb16 11521 0x2d01\n"},
        {{"bytes", "--mb32"}, "0 mb32 435 0x000001b3\n"},
        {{"bytes", "--lb32", "--at", "0"}, "0 lb32 3003187200 0xb3010000\n"},
        {{"bytes", "--at", "8", "--mb64"}, "8 mb64 1311768467463790320 0x123456789abcdef0\n"},
        {{"bytes", "--at", "8", "--lb64"}, "8 lb64 17356517385562371090 0xf0debc9a78563412\n"},
        {{"bytes", "--at", "16", "--count", "4"},
         "00000010  41 42 7f 80                                       |AB..|\n"},
        {{"bytes", "--at", "18"},
         "00000012  7f 80                                             |..|\n"},
        {{"bytes", "--at", "20"}, ""},
        {{"bytes", "--at", "1", "--count", "18"},
         "00000001  00 01 b3 2d 01 e0 24 12  34 56 78 9a bc de f0 41  |...-..$.4Vx....A|\n"
         "00000011  42 7f                                             |B.|\n"},
    };
    for (const auto& [args, out] : cases) {
        std::vector<std::string> full = args;
        full.insert(full.begin() + 1, PathOf("clip.m2v"));
        ToolRun r = RunTool(full);
        EXPECT_EQ(r.status, 0) << r.err;
        EXPECT_EQ(r.out, out) << args[0] << " " << args[1];
        EXPECT_EQ(r.err, "");
    }
}

// Bad input gets a message naming the problem, status 2 for a malformed
// command line and 1 for a file that cannot serve it, and no output.
TEST_F(BitsCommandTest, BadInputIsRefusedWithAMessageNotACrash) {
    const std::string clip = PathOf("clip.m2v");
    struct Case {
        std::vector<std::string> args;
        int status;
        std::string message;
    };
    const Case cases[] = {
        {{"bits"}, 2, "expected FILE"},
        {{"bits", clip, "12"}, 2, "not POS:WIDTH"},
        {{"bits", clip, "x:8"}, 2, "position in 'x:8'"},
        {{"bits", clip, "-8:8"}, 2, "position in '-8:8'"},
        {{"bits", clip, "0:"}, 2, "width in '0:'"},
        {{"bits", clip, "0:33"}, 2, "from 0 to 32"},
        {{"bits", clip, "0:8", "99999999999999999999:1"}, 2, "position"},
        {{"bits", PathOf("missing.bin"), "0:8"}, 1, "cannot open"},
        {{"bits", mDir.string(), "0:8"}, 1, "is a directory"},
        {{"bits", clip, "0:8", "153:8"}, 1, "beyond the end"},
        {{"bits", clip, "161:0"}, 1, "beyond the end"},
        {{"bits", clip, "9223372036854775807:32"}, 1, "beyond the end"},
        {{"bytes"}, 2, "expected FILE"},
        {{"bytes", clip, "--at"}, 2, "needs a number"},
        {{"bytes", clip, "--at", "ten"}, 2, "not 'ten'"},
        {{"bytes", clip, "--mb24"}, 2, "unknown option"},
        {{"bytes", clip, "--count", "2", "--mb16"}, 2, "give one of"},
        {{"bytes", clip, "--at", "17", "--mb32"}, 1, "beyond the end"},
        {{"bytes", clip, "--count", "1000000000000"}, 1, "beyond the end"},
        {{"bytes", PathOf("empty.bin"), "--at", "1"}, 1, "beyond the end"},
    };
    for (const Case& c : cases) {
        ToolRun r = RunTool(c.args);
        std::string shown;
        for (const auto& a : c.args) shown += a + " ";
        EXPECT_EQ(r.status, c.status) << shown << "\n" << r.err;
        EXPECT_NE(r.err.find(c.message), std::string::npos) << shown << "\n" << r.err;
        EXPECT_EQ(r.err.rfind("basicutils: ", 0), 0u) << shown;
        EXPECT_EQ(r.out, "") << shown;
    }
}

}  // namespace
