// Runs `basicutils concat` and `basicutils sum` as a user does, on real files:
// the padded output byte for byte, the offset, Ctrl-C in the middle of a run,
// the checksum against a plain reference, and the refusals.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "RunTool_test.h"

namespace {

namespace fs = std::filesystem;
using basicutils_tool_test::RunTool;
using basicutils_tool_test::Slurp;

std::string Bytes(size_t size, unsigned seed) {
    std::string bytes(size, '\0');
    std::mt19937 random(seed);
    for (char& c : bytes) c = static_cast<char>(random() % 255 + 1);
    return bytes;
}

uint32_t Adler32(const std::string& bytes) {
    uint32_t a = 1, b = 0;
    for (unsigned char c : bytes) {
        a = (a + c) % 65521;
        b = (b + a) % 65521;
    }
    return b << 16 | a;
}

class ConcatCommandTest : public testing::Test {
  protected:
    void SetUp() override {
        mDir =
            fs::temp_directory_path() / ("concat_tool_" + std::to_string(std::random_device{}()));
        fs::create_directories(mDir);
    }
    void TearDown() override { fs::remove_all(mDir); }
    std::string P(const std::string& name) const { return (mDir / name).string(); }
    std::string Make(const std::string& name, size_t size) const {
        std::string bytes = Bytes(size, static_cast<unsigned>(size));
        std::ofstream(P(name), std::ios::binary) << bytes;
        return bytes;
    }
    fs::path mDir;
};

TEST_F(ConcatCommandTest, PadsEachFileToTheBlockFromTheOffset) {
    const std::string a = Make("a", 5000), b = Make("b", 0), c = Make("c", 4097);
    struct Case {
        std::vector<std::string> options;
        size_t block, offset;
        std::string kept;
    } cases[] = {
        {{}, 2048, 0, "out: 12288 bytes from offset 0, 3 files each padded to a multiple of 2048"},
        {{"--block", "2", "--offset", "4096"},
         4096,
         4096,
         "out: 16384 bytes from offset 4096, 3 files each padded to a multiple of 4096"},
    };
    for (const Case& k : cases) {
        std::ofstream(P("out"), std::ios::binary) << std::string(8192, 'x');
        std::vector<std::string> args = {"concat", P("out"), P("a"), P("b"), P("c")};
        args.insert(args.end(), k.options.begin(), k.options.end());
        auto run = RunTool(args);
        ASSERT_EQ(run.status, 0) << run.err;
        EXPECT_NE(run.out.find(k.kept), std::string::npos) << run.out;
        EXPECT_NE(run.err.find("Concat [####################] 100%"), std::string::npos);
        std::string expected = k.offset ? std::string(8192, 'x').substr(0, k.offset) : "";
        for (const std::string* piece : {&a, &b, &c})
            expected += *piece + std::string((k.block - piece->size() % k.block) % k.block, '\0');
        EXPECT_TRUE(Slurp(P("out")) == expected);
    }
}

TEST_F(ConcatCommandTest, CtrlCKeepsWhatWasWrittenAndSaysHowMuch) {
    const std::string big = Make("big", 96 << 20);
    // Interrupt once the first write has been heard, then wait for the end.
    const std::string script = std::string("'") + BASICUTILS_TOOL_PATH + "' concat '" + P("out") +
                               "' '" + P("big") + "' '" + P("big") + "' 2>'" + P("err") +
                               "' & p=$!; for i in $(seq 500); do grep -q '% [1-9]' '" + P("err") +
                               "' && break; sleep 0.01; done; kill -INT $p; wait $p; echo $? >'" +
                               P("status") + "'";
    ASSERT_EQ(std::system(script.c_str()), 0);
    ASSERT_EQ(Slurp(P("status")), "130\n") << Slurp(P("err"));
    const std::string out = Slurp(P("out"));
    const std::string err = Slurp(P("err"));
    EXPECT_NE(err.find("concat cancelled: '" + P("out") + "' keeps " + std::to_string(out.size()) +
                       " bytes from offset 0"),
              std::string::npos)
        << err;
    ASSERT_GT(out.size(), 0u);
    ASSERT_LT(out.size(), 2 * big.size());
    EXPECT_EQ(out.size() % (4 << 20), 0u);  // whole buffers
    EXPECT_TRUE(out == (big + big).substr(0, out.size()));
}

TEST_F(ConcatCommandTest, SumGivesTheAdlerChecksumOfEveryByte) {
    for (size_t size : {size_t{0}, size_t{1}, size_t{2049}, size_t{10 << 20} + 7}) {
        const std::string bytes = Make("f", size);
        auto run = RunTool({"sum", P("f")});
        ASSERT_EQ(run.status, 0) << run.err;
        char expected[64];
        std::snprintf(expected, sizeof expected, "%08x  %zu bytes  ", Adler32(bytes), size);
        EXPECT_EQ(run.out.rfind(expected, 0), 0u) << run.out;
    }
}

TEST_F(ConcatCommandTest, RefusesWhatItCannotDo) {
    Make("a", 10);
    struct Case {
        std::vector<std::string> args;
        int status;
        const char* says;
    } cases[] = {
        {{"concat", P("out")}, 2, "needs OUT and at least one IN"},
        {{"concat", P("out"), P("a"), "--block", "0"}, 2, "1 to 64 sectors"},
        {{"concat", P("out"), P("a"), "--offset", "100"}, 2, "multiple of 2048"},
        {{"concat", P("out"), P("missing")}, 1, "is not a file"},
        {{"concat", P("nowhere/out"), P("a")}, 1, "cannot open"},
        {{"sum", P("missing")}, 1, "is not a file"},
        {{"sum"}, 2, "one FILE"},
    };
    for (const Case& c : cases) {
        auto run = RunTool(c.args);
        EXPECT_EQ(run.status, c.status) << run.err;
        EXPECT_NE(run.err.find(c.says), std::string::npos) << run.err;
    }
}

}  // namespace
