// Runs the built tool's `bits` and `bytes` commands on files written to a
// temporary folder, and checks their output, messages and exit status.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;

struct ToolRun {
    int status;  // exit status, or -1 when the tool did not exit normally
    std::string out, err;
};

std::string Slurp(const fs::path& p) {
    std::ifstream in(p, std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

class BitsCommandTest : public testing::Test {
protected:
    void SetUp() override {
        std::random_device rd;
        mDir = fs::temp_directory_path() / ("bits_tool_test_" + std::to_string(rd()));
        fs::create_directories(mDir);
        // An MPEG-2 sequence header start: start code, then 720 x 480.
        Write("clip.m2v", {0x00, 0x00, 0x01, 0xB3, 0x2D, 0x01, 0xE0, 0x24, 0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC,
                           0xDE, 0xF0, 0x41, 0x42, 0x7F, 0x80});
        Write("empty.bin", {});
    }
    void TearDown() override { fs::remove_all(mDir); }

    std::string Write(const std::string& name, const std::vector<unsigned char>& bytes) {
        std::ofstream out(mDir / name, std::ios::binary);
        out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        return (mDir / name).string();
    }
    std::string PathOf(const std::string& name) const { return (mDir / name).string(); }

    // Arguments are single-quoted for the shell; none of ours holds a quote.
    ToolRun Tool(const std::vector<std::string>& args) {
        std::string cmd = std::string("'") + BASICUTILS_TOOL_PATH + "'";
        for (const auto& a : args) cmd += " '" + a + "'";
        const fs::path out = mDir / "stdout", err = mDir / "stderr";
        cmd += " >'" + out.string() + "' 2>'" + err.string() + "'";
        int raw = std::system(cmd.c_str());
        // std::system gives the wait status: the exit code sits in bits 8..15
        // when the low 7 bits (the terminating signal) are zero.
        int status = (raw & 0x7F) == 0 ? (raw >> 8) & 0xFF : -1;
        return {status, Slurp(out), Slurp(err)};
    }

    fs::path mDir;
};

TEST_F(BitsCommandTest, BitFieldsPrintPositionWidthDecimalAndHex) {
    struct Case {
        std::vector<std::string> fields;
        std::string out;
    };
    const Case cases[] = {
        {{"0:32", "32:12", "44:12"}, "0:32 435 0x000001b3\n32:12 720 0x2d0\n44:12 480 0x1e0\n"},
        {{"24:8"}, "24:8 179 0xb3\n"},
        {{"31:1", "30:1"}, "31:1 1 0x1\n30:1 1 0x1\n"},
        // 32 bits from mid-byte span five bytes; the top bit set stays unsigned.
        {{"100:32"}, "100:32 2882400004 0xabcdef04\n"},
        {{"120:32"}, "120:32 4030808703 0xf041427f\n"},
        {{"152:8"}, "152:8 128 0x80\n"},
        {{"160:0", "0:0"}, "160:0 0 0x0\n0:0 0 0x0\n"},
    };
    for (const Case& c : cases) {
        std::vector<std::string> args{"bits", PathOf("clip.m2v")};
        args.insert(args.end(), c.fields.begin(), c.fields.end());
        ToolRun r = Tool(args);
        EXPECT_EQ(r.status, 0) << r.err;
        EXPECT_EQ(r.out, c.out);
        EXPECT_EQ(r.err, "");
    }
}

TEST_F(BitsCommandTest, ByteReadsInEachOrderAndHexDump) {
    struct Case {
        std::vector<std::string> options;
        std::string out;
    };
    const Case cases[] = {
        {{"--at", "4", "--mb16"}, "4 mb16 11521 0x2d01\n"},
        {{"--at", "4", "--lb16"}, "4 lb16 301 0x012d\n"},
        {{"--mb32"}, "0 mb32 435 0x000001b3\n"},
        {{"--lb32", "--at", "0"}, "0 lb32 3003187200 0xb3010000\n"},
        {{"--at", "8", "--mb64"}, "8 mb64 1311768467463790320 0x123456789abcdef0\n"},
        {{"--at", "8", "--lb64"}, "8 lb64 17356517385562371090 0xf0debc9a78563412\n"},
        {{"--at", "16", "--mb32"}, "16 mb32 1094877056 0x41427f80\n"},
        {{"--at", "16", "--count", "4"}, "00000010  41 42 7f 80                                       |AB..|\n"},
        {{"--at", "20", "--count", "0"}, ""},
        {{"--at", "18"}, "00000012  7f 80                                             |..|\n"},
        {{"--at", "20"}, ""},
        {{"--at", "2"},
         "00000002  01 b3 2d 01 e0 24 12 34  56 78 9a bc de f0 41 42  |..-..$.4Vx....AB|\n"},
        {{"--at", "1", "--count", "18"},
         "00000001  00 01 b3 2d 01 e0 24 12  34 56 78 9a bc de f0 41  |...-..$.4Vx....A|\n"
         "00000011  42 7f                                             |B.|\n"},
    };
    for (const Case& c : cases) {
        std::vector<std::string> args{"bytes", PathOf("clip.m2v")};
        args.insert(args.end(), c.options.begin(), c.options.end());
        ToolRun r = Tool(args);
        EXPECT_EQ(r.status, 0) << r.err;
        EXPECT_EQ(r.out, c.out) << c.options[0];
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
        {{"bits", clip}, 2, "expected FILE"},
        {{"bits", clip, "12"}, 2, "not POS:WIDTH"},
        {{"bits", clip, "x:8"}, 2, "position in 'x:8'"},
        {{"bits", clip, "-8:8"}, 2, "position in '-8:8'"},
        {{"bits", clip, ":8"}, 2, "position"},
        {{"bits", clip, "0:"}, 2, "width in '0:'"},
        {{"bits", clip, "0:33"}, 2, "from 0 to 32"},
        {{"bits", clip, "0:8x"}, 2, "width"},
        {{"bits", clip, "0:-1"}, 2, "width"},
        {{"bits", clip, "0:8", "99999999999999999999:1"}, 2, "position"},
        {{"bits", PathOf("missing.bin"), "0:8"}, 1, "cannot open"},
        {{"bits", mDir.string(), "0:8"}, 1, "is a directory"},
        {{"bits", clip, "0:8", "153:8"}, 1, "beyond the end"},
        {{"bits", clip, "161:0"}, 1, "beyond the end"},
        {{"bits", clip, "9223372036854775807:32"}, 1, "beyond the end"},
        {{"bits", PathOf("empty.bin"), "0:1"}, 1, "beyond the end"},
        {{"bytes"}, 2, "expected FILE"},
        {{"bytes", clip, "--at"}, 2, "needs a number"},
        {{"bytes", clip, "--at", "ten"}, 2, "not 'ten'"},
        {{"bytes", clip, "--count", "-1"}, 2, "not '-1'"},
        {{"bytes", clip, "--mb24"}, 2, "unknown option"},
        {{"bytes", clip, "--mb16", "--lb16"}, 2, "give one of"},
        {{"bytes", clip, "--count", "2", "--mb16"}, 2, "give one of"},
        {{"bytes", PathOf("missing.bin")}, 1, "cannot open"},
        {{"bytes", clip, "--at", "17", "--mb32"}, 1, "beyond the end"},
        {{"bytes", clip, "--at", "21", "--count", "0"}, 1, "beyond the end"},
        {{"bytes", clip, "--count", "1000000000000"}, 1, "beyond the end"},
        {{"bytes", PathOf("empty.bin"), "--at", "1"}, 1, "beyond the end"},
    };
    for (const Case& c : cases) {
        ToolRun r = Tool(c.args);
        std::string shown;
        for (const auto& a : c.args) shown += a + " ";
        EXPECT_EQ(r.status, c.status) << shown << "\n" << r.err;
        EXPECT_NE(r.err.find(c.message), std::string::npos) << shown << "\n" << r.err;
        EXPECT_EQ(r.err.rfind("basicutils: ", 0), 0u) << shown;
        EXPECT_EQ(r.out, "") << shown;
    }
}

TEST_F(BitsCommandTest, ReadsAFieldNearTheEndOfALargerFile) {
    // A field past the first megabyte: only its bytes are read.
    std::vector<unsigned char> big(3 << 20, 0);
    std::mt19937 rng(4);
    for (auto& b : big) b = static_cast<unsigned char>(rng());
    const size_t at = big.size() - 5;
    big[at] = 0x0F;
    big[at + 1] = 0xED;
    big[at + 2] = 0xCB;
    big[at + 3] = 0xA9;
    big[at + 4] = 0x87;
    const std::string path = Write("big.bin", big);
    const std::string pos = std::to_string(at * 8 + 4);
    ToolRun r = Tool({"bits", path, pos + ":32", pos + ":4"});
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, pos + ":32 4275878552 0xfedcba98\n" + pos + ":4 15 0xf\n");
}

}  // namespace
