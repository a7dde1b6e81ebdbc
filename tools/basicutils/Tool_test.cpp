// The tool as a user runs it: what only the tool does (its parsing, notes,
// refusals, exit statuses, output layout, progress, Ctrl-C and its own
// checksum). What the commands compute is the library's and is tested there.
#include <basicutils/platform/testing/ScopedVariable.h>
#include <basicutils/platform/testing/TempFolder.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>

namespace {

namespace fs = std::filesystem;
using basicutils::testing::ScopedVariable;
using basicutils::testing::TempFolder;

struct ToolRun {
    int status;  // exit status, or -1 when the tool did not exit normally
    std::string out, err;
};

std::string Bytes(size_t size, unsigned seed) {
    std::string bytes(size, '\0');
    std::mt19937 random(seed);
    for (char& c : bytes) c = static_cast<char>(random() % 255 + 1);
    return bytes;
}

// A scratch folder that is also the tool's home and settings folder, with
// no display to reach.
class Tool : public testing::Test {
  protected:
    void SetUp() override {
        mDir.Write("clip.m2v", std::string("\x00\x00\x01\xB3\x2D\x01\xE0\x24", 8));
        mDir.Write("in", Bytes(2600, 1));
        mDir.Write("cat", std::string(8192, 'x'));
        mDir.Write("info", "# Velmorant c_files \nclip.cfx.0\n");
        mDir.Write("s.txt", "# head\nname = disc // note\nitems = (a, b c\n  # between\n  d)\n");
        mDir.Write("bad.txt", "a = (x, y");
        fs::create_directories(mDir.Path() / "tree/ro");
        mDir.Write("tree/ro/locked", "x");
        fs::permissions(mDir.Path() / "tree/ro/locked", fs::perms::owner_read);
        mDir.Write("big", "");
        fs::resize_file(mDir.Path() / "big", 1 << 20);
        ASSERT_EQ(std::system(("mkfifo '" + mDir / "fifo" + "'").c_str()), 0);
    }
    // Runs the built tool in the folder; `args` is shell text after its path.
    ToolRun Run(const std::string& args) const {
        const std::string command = "cd '" + mDir.Path().string() + "' && '" +
                                    BASICUTILS_TOOL_PATH + "' " + args + " >.out 2>.err";
        const int raw = std::system(command.c_str());
        // The wait status: the exit code sits in bits 8..15 when no signal ended the tool.
        return {(raw & 0x7F) == 0 ? (raw >> 8) & 0xFF : -1, mDir.Read(".out"), mDir.Read(".err")};
    }

    TempFolder mDir;
    ScopedVariable mHome{"HOME", mDir.Path().string()};
    ScopedVariable mConfig{"XDG_CONFIG_HOME", mDir / "config"};
    ScopedVariable mData{"XDG_DATA_HOME", nullptr};
    ScopedVariable mX{"DISPLAY", nullptr}, mWayland{"WAYLAND_DISPLAY", nullptr};
};

// Each row runs in turn, so a row may use what an earlier one made; the
// outputs are parts of stdout and stderr.
TEST_F(Tool, ParsesNotesRefusalsAndLayout) {
    const std::string home = mDir.Path().string();
    // clang-format off
    const struct { std::string args; int status; std::string out, err; } rows[] = {
        {"bits clip.m2v 0:32 32:12 44:12", 0, "0:32 435 0x000001b3\n32:12 720 0x2d0\n44:12 480 0x1e0\n", ""},
        {"bits clip.m2v 0:33", 2, "", "from 0 to 32"},
        {"bits clip.m2v 60:8", 1, "", "beyond the end"},
        {"bytes clip.m2v --count 2 --mb16", 2, "", "give one of"},
        {"bytes big --count 1048576 | tail -n 1", 0, "000ffff0 ", ""},  // streamed, continuous
        {"tc frames 00:75:00:00", 0, "00:59:00:00 @30 = frame 106201", "note: '00:75:00:00' read as 00:59:00:00 @30"},
        {"tc frames 19885:00:00:00", 0, "frame -2147387295", "past the library's 32-bit frame counts"},
        {"tc add 1000:00:00:00 100:00:00:00", 0, "= 07:44:00:00 @30", "the library's answer wraps"},
        {"tc frames 0:0:0:0 --rate fast", 2, "", "rate 'fast' is not a number"},
        {"tc pal", 2, "", "usage: basicutils timecode pal TC..."},
        {"tc fly", 2, "", "unknown action 'fly'"},
        {"help help", 0, "usage: basicutils help COMMAND", ""},
        {"--version", 0, "basicutils " BASICUTILS_VERSION "\n", ""},
        {"task 0", 2, "", "from 1 to 4096"},
        {"concat out", 2, "", "needs OUT and at least one IN"},
        {"concat out in --block 0", 2, "", "1 to 64 sectors"},
        {"concat out in --offset 100", 2, "", "multiple of 2048"},
        {"concat out missing", 1, "", "is not a file"},
        {"concat nowhere/out in", 1, "", "cannot open"},
        {"concat cat in in --block 2 --offset 4096", 0, "cat: 8192 bytes from offset 4096, 2 files each padded to a multiple of 4096", "Concat [####################] 100%"},
        {"sum", 2, "", "one FILE"},
        {"sum missing", 1, "", "is not a file"},
        // Refused from the status alone: none of these waits on the FIFO.
        {"file info fifo", 1, "", "'fifo' is not a regular file"},
        {"bits fifo 0:8", 1, "", "is not a regular file"},
        {"file info tree", 1, "", "is a directory"},
        {"file rmtree info", 1, "", "is not a directory"},
        {"file info", 2, "", "usage"},
        {"file info info", 0, "segmented info file: yes\n", ""},
        {"file unique info ''", 0, "info_1\n", ""},
        {"file rmtree tree", 1, "", "basicutils: error: tree\\ro\\locked could not be deleted"},
        {"env", 0, "scenarios              " + home + "/My Scenarios/   (default)", ""},
        {"settings set S k 'in a file' --file chosen.ini", 0, "", ""},
        {"settings get s K --file chosen.ini", 0, "in a file\n", ""},
        {"settings get S x --file chosen.ini", 1, "", ""},
        {"settings set S k=1 v", 1, "", "[S] k=1: a settings file cannot hold"},
        {"settings get S", 2, "", ""},
        {"choose --video", 1, "", "no display"},
        {"script s.txt", 0, "2: name = disc\n3: items = (a, b, c, d)\n", ""},
        {"script bad.txt", 1, "", "syntax error: list not closed near line 1"},
        {"split in out --max 1K", 0, "out: 2600 bytes in 3 segments\n", ""},
        {"split in out --max 1K", 1, "", "exists; remove it first"},
        {"info out", 0, "out: segmented (info file), 3 segments\n     0  out.cfx.0  1024 bytes\n", ""},
        {"join out back", 0, "", ""},
        {"split - out2 --max 2K < in", 0, "out2: 2600 bytes in 2 segments\n", ""},
        {"split in x --max 12X", 2, "", "usage"},
        {"join inx", 1, "", "cannot open"},
    };
    // clang-format on
    for (const auto& row : rows) {
        const ToolRun r = Run(row.args);
        EXPECT_EQ(r.status, row.status) << row.args << "\n" << r.err;
        EXPECT_NE(r.out.find(row.out), std::string::npos) << row.args << "\n" << r.out;
        EXPECT_NE(r.err.find(row.err), std::string::npos) << row.args << "\n" << r.err;
    }
    const std::string in = mDir.Read("in"), pad(4096 - in.size(), '\0');
    EXPECT_TRUE(mDir.Read("cat") == std::string(4096, 'x') + in + pad + in + pad);
    EXPECT_EQ(mDir.Read("back"), in);
    EXPECT_EQ(mDir.Read("config/chosen.ini"), "[S]\nk=in a file\n");  // a bare name
    EXPECT_FALSE(fs::exists(mDir.Path() / "My Scenarios")) << "env creates nothing";
}

// Piped, progress is a line per tenth of the work, and the result stands alone.
TEST_F(Tool, TaskProgressIsAFewLinesAndTheResultItsOwn) {
    const ToolRun r = Run("task 4");
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out.rfind("Checksum of 4 MiB: ", 0), 0u) << r.out;
    EXPECT_EQ(r.err.rfind("Checksum [--------------------]   0% 0/64 starting\n", 0), 0u) << r.err;
    EXPECT_NE(r.err.find("Checksum [####################] 100% 64/64 block 64 of 64\n"),
              std::string::npos);
    EXPECT_LE(std::count(r.err.begin(), r.err.end(), '\n'), 11) << r.err;
    EXPECT_EQ(Run("task 4").out, r.out) << "the same data, the same checksum";
}

// Over several buffers of the read-ahead ring and runs of 5,552 bytes.
TEST_F(Tool, SumGivesTheAdlerChecksumOfEveryByte) {
    for (size_t size : {size_t{0}, size_t{1}, size_t{2049}, size_t{10 << 20} + 7}) {
        const std::string bytes = Bytes(size, static_cast<unsigned>(size));
        mDir.Write("f", bytes);
        uint32_t a = 1, b = 0;
        for (unsigned char c : bytes) {
            a = (a + c) % 65521;
            b = (b + a) % 65521;
        }
        char expected[64];
        std::snprintf(expected, sizeof expected, "%08x  %zu bytes  ", b << 16 | a, size);
        const ToolRun r = Run("sum f");
        EXPECT_EQ(r.out.rfind(expected, 0), 0u) << r.out << r.err;
    }
}

// Interrupted once the first write has been heard, concat keeps whole buffers
// of what it wrote and says how much.
TEST_F(Tool, CtrlCKeepsWhatWasWrittenAndSaysHowMuch) {
    const std::string big = Bytes(96 << 20, 7);
    mDir.Write("big", big);
    const std::string script = "cd '" + mDir.Path().string() + "' || exit 1; '" +
                               BASICUTILS_TOOL_PATH +
                               "' concat out big big 2>err & p=$!; for i in $(seq 500); do grep -q "
                               "'% [1-9]' '" +
                               mDir / "err" +
                               "' && break; sleep 0.01; done; "
                               "kill -INT $p; wait $p; echo $? >'" +
                               mDir / "status" + "'";
    ASSERT_EQ(std::system(script.c_str()), 0);
    ASSERT_EQ(mDir.Read("status"), "130\n") << mDir.Read("err");
    const std::string out = mDir.Read("out");
    EXPECT_NE(mDir.Read("err").find("concat cancelled: 'out' keeps " + std::to_string(out.size()) +
                                    " bytes from offset 0"),
              std::string::npos)
        << mDir.Read("err");
    ASSERT_GT(out.size(), 0u);
    ASSERT_LT(out.size(), 2 * big.size());
    EXPECT_EQ(out.size() % (4 << 20), 0u);  // whole buffers
    EXPECT_TRUE(out == (big + big).substr(0, out.size()));
}

}  // namespace
