// Reading, writing and seeking across segments on real files with a limit
// of 100 bytes: each scenario runs its steps on P and then checks every
// segment and the info file byte for byte.
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/Sync.h>

#include <cstdlib>
#include <memory>

#include "MFilesTest_test.h"

namespace basicutils::filestest {
namespace {

enum class Op {
    kWrite,    // `arg` bytes of text[0]; answers `answer`
    kRead,     // `arg` bytes; answers `answer` and reads `text` (runs)
    kSeek,     // FSeek64(arg, kSeekBegin) answers `answer`
    kSeekEnd,  // FSeek64(arg, kSeekEnd) answers `answer`
    kTell,     // FTell64 stores `answer` and answers 0
    kNum,      // GetCurrentFileNum is `arg`
    kReopen,   // FClose, FOpen in mode `arg`
    kLimit,    // SetMaxFileSize(arg)
};
struct Step {
    Op op;
    int64_t arg;
    int64_t answer = 0;
    const char* text = "";
};
struct Scenario {
    const char* name;
    std::vector<Step> steps;
    std::vector<std::string> segments;  // runs, see Expand
};

Step W(int64_t n, const char* fill) {
    return {Op::kWrite, n, n, fill};
}

TEST_F(MFilesTest, ScenariosEndInTheirSegmentsByteForByte) {
    const Scenario scenarios[] = {
        {"a segment may end at the limit; one byte more rolls over",
         {W(100, "a"), W(1, "b")},
         {"100a", "1b"}},
        {"one write of 250 bytes", {W(250, "a")}, {"100a", "150a"}},
        {"three roll-overs rename P.cfx.0 once",
         {W(100, "a"), W(100, "b"), W(100, "c"), W(1, "d")},
         {"100a", "100b", "100c", "1d"}},
        {"a write from behind the limit goes whole to the next segment",
         {W(250, "a"), W(60, "b")},
         {"100a", "150a", "60b"}},
        {"a lowered limit rolls over at once",
         {W(100, "a"), {Op::kLimit, 40}, W(10, "b")},
         {"100a", "10b"}},
        {"reading runs over segment ends to the logical end",
         {W(100, "a"),
          W(150, "b"),
          {Op::kSeek, 0, 0},
          {Op::kRead, 300, 250, "100a150b"},
          {Op::kRead, 300, 0}},
         {"100a", "150b"}},
        {"a read of nothing opens nothing",
         {W(250, "a"), {Op::kSeek, 0, 0}, {Op::kRead, 0, 0}, {Op::kNum, 1}},
         {"100a", "150a"}},
        {"a segment's end belongs to it",
         {W(250, "a"),
          {Op::kSeek, 100, 100},
          {Op::kNum, 1},
          {Op::kTell, 0, 100},
          {Op::kSeek, 101, 101},
          {Op::kNum, 2},
          {Op::kTell, 0, 1},
          {Op::kSeek, 150, 150},
          {Op::kTell, 0, 50}},
         {"100a", "150a"}},
        {"a seek within the limit lengthens the plain file",
         {W(10, "a"), {Op::kSeek, 50, 50}},
         {"10a40z"}},
        {"a seek past the limit grows by segments",
         {W(10, "a"), {Op::kSeek, 250, 250}, W(5, "b")},
         {"10a90z", "100z", "50z5b"}},
        {"a negative offset fails in segment 1",
         {W(250, "a"), {Op::kSeek, -1, -1}},
         {"100a", "150a"}},
        {"the end is the last segment's",
         {W(100, "a"), W(100, "b"), W(30, "c"), {Op::kSeekEnd, 0, 30}, {Op::kNum, 3}},
         {"100a", "100b", "30c"}},
        {"mode 2 empties segment 1 only; seeking keeps the rest",
         {W(100, "a"),
          W(150, "b"),
          {Op::kReopen, kOpenWriteBinary},
          {Op::kSeekEnd, 0, 150},
          {Op::kNum, 2}},
         {"", "150b"}},
        {"reading on in mode 2 keeps the next segment",
         {W(100, "a"), W(150, "b"), {Op::kReopen, kOpenWriteBinary}, {Op::kRead, 300, 150, "150b"}},
         {"", "150b"}},
        {"writing on in mode 2 empties the next segment",
         {W(100, "a"), W(150, "b"), {Op::kSeek, 50, 50}, W(60, "c")},
         {"50a50c", "10c"}},
        {"mode 5 appends at the logical end",
         {W(100, "a"), W(50, "b"), {Op::kReopen, kOpenAppendBinary}, W(60, "c")},
         {"100a", "50b50c", "10c"}},
    };
    for (const Scenario& s : scenarios) {
        SCOPED_TRACE(s.name);
        for (const auto& entry : fs::directory_iterator(mDir)) fs::remove(entry.path());
        MFiles files;
        files.SetMaxFileSize(100);
        ASSERT_EQ(files.FOpen(P().c_str(), kOpenWriteBinary), 0);
        for (const Step& step : s.steps) {
            std::string data(static_cast<size_t>(std::max<int64_t>(step.arg, 1)), step.text[0]);
            int64_t position = -7;
            switch (step.op) {
                case Op::kWrite:
                    EXPECT_EQ(files.FWrite(data.data(), static_cast<int>(step.arg)), step.answer);
                    break;
                case Op::kRead:
                    EXPECT_EQ(files.FRead(data.data(), static_cast<int>(step.arg)), step.answer);
                    EXPECT_EQ(data.substr(0, static_cast<size_t>(step.answer)), Expand(step.text));
                    break;
                case Op::kSeek:
                case Op::kSeekEnd:
                    EXPECT_EQ(files.FSeek64(step.arg, step.op == Op::kSeek ? kSeekBegin : kSeekEnd),
                              step.answer);
                    break;
                case Op::kTell:
                    EXPECT_EQ(files.FTell64(position), 0);
                    EXPECT_EQ(position, step.answer);
                    break;
                case Op::kNum:
                    EXPECT_EQ(files.GetCurrentFileNum(), step.arg);
                    break;
                case Op::kReopen:
                    files.FClose();
                    EXPECT_EQ(files.FOpen(static_cast<file_open_t>(step.arg)), 0);
                    break;
                case Op::kLimit:
                    files.SetMaxFileSize(step.arg);
                    break;
            }
        }
        files.FClose();
        std::vector<std::string> expected;
        for (const std::string& runs : s.segments) expected.push_back(Expand(runs));
        ExpectSegments(expected);
    }
}

// A line cut by a segment's end comes in two pieces; the last segment ends
// the reading.
TEST_F(MFilesTest, LinesAcrossASegmentEnd) {
    MFiles files;
    files.SetMaxFileSize(5);
    ASSERT_EQ(files.FOpen(P().c_str(), kOpenWriteBinary), 0);
    char text[] = "ab\ncdef\n";
    ASSERT_EQ(files.FWrite(text, 8), 8);
    files.FClose();
    ASSERT_EQ(files.FOpen(kOpenReadBinary), 0);
    char line[16];
    for (const char* expected : {"ab\n", "cd", "ef\n"}) {
        ASSERT_EQ(files.FGets(line, 16), 0);
        EXPECT_STREQ(line, expected);
    }
    EXPECT_EQ(files.FGets(line, 16), -1);
    ASSERT_EQ(files.FSeek64(0, kSeekBegin), 0);
    char16_t wide[32];
    for (const char16_t* expected : {u"ab\n", u"cd", u"ef\n"}) {
        ASSERT_EQ(files.FGetts(wide, 16), 0);
        EXPECT_EQ(std::u16string(wide), expected);
    }
}

// Reads at logical offsets over segments of 4,096, 4,096 and 100 bytes.
TEST_F(MFilesTest, OverlappedReadsAtLogicalOffsets) {
    const std::string logical = Expand("4096a4096b100c");
    MFiles files;
    files.SetMaxFileSize(4096);
    ASSERT_EQ(files.FOpen(P().c_str(), kOpenWriteBinary), 0);
    ASSERT_EQ(files.FWrite(const_cast<char*>(logical.data()), 8292), 8292);
    files.FClose();
    ASSERT_EQ(files.FOpen(kOpenOverlappedRead), 0);
    // Room for the sector widening on both sides of the buffer.
    std::unique_ptr<char, decltype(&std::free)> block(
        static_cast<char*>(std::aligned_alloc(4096, 32768)), &std::free);
    char* buffer = block.get() + 8192;
    HANDLE event = CreateEventW(nullptr, 1, 0, nullptr);
    const struct {
        int64_t offset;
        int32_t size, sizeAfter;
        uint32_t answer;
    } cases[] = {
        {100, 50, 50, 0},
        {4000, 200, 200, 0},
        {8000, 1000, 292, ERROR_HANDLE_EOF},
        {8300, 10, 0, ERROR_HANDLE_EOF},
        {10, 5000, 5000, 0},
        {-1, 10, 10, 0xFFFFFFFF},
    };
    for (const auto& c : cases) {
        _OVERLAPPED overlapped{};
        int32_t size = c.size;
        EXPECT_EQ(files.FReadOverlapped(c.offset, buffer, size, &overlapped, event), c.answer)
            << c.offset;
        EXPECT_EQ(size, c.sizeAfter);
        if (c.answer == 0) {
            EXPECT_EQ(files.FWaitOverlappedCompletion(event, 10), 0u);
        }
        if (c.answer != 0xFFFFFFFF && size > 0) {
            EXPECT_EQ(std::string(buffer, static_cast<size_t>(size)),
                      logical.substr(static_cast<size_t>(c.offset), static_cast<size_t>(size)))
                << c.offset;
        }
    }
    CloseHandle(event);
}

// The concatenation goes to the open segment.
TEST_F(MFilesTest, ConcatenationPassesThrough) {
    Write("source", Expand("5000s"));
    MFiles files;
    ASSERT_EQ(files.FOpen(P().c_str(), kOpenOverlappedCreate), 0);
    ASSERT_EQ(files.ConcatInitialize(2048, 0), 0);
    char hello[] = "hello";
    EXPECT_EQ(files.ConcatBufferSynchronously(hello, 5), 0);
    bool cancel = false;
    std::u16string source = WPath("source");
    EXPECT_EQ(files.ConcatFile(source.data(), 0, cancel), 0);
    files.FClose();
    EXPECT_EQ(Read("P"), "hello" + Expand("2043z5000s1144z"));
}

// A copy is closed, keeps the names and settings, and opens its own view.
TEST_F(MFilesTest, CopiesAreClosedWithTheSettings) {
    MFiles files;
    files.SetMaxFileSize(100);
    ASSERT_EQ(files.FOpen(P().c_str(), kOpenWriteBinary), 0);
    std::string data = Expand("150x");
    ASSERT_EQ(files.FWrite(data.data(), 150), 150);
    MFiles copy(files);
    EXPECT_EQ(copy.GetCurrentFileNum(), -1);
    EXPECT_EQ(copy.GetFileNum(), 0);
    EXPECT_EQ(copy.GetInfoFilePath(), files.GetInfoFilePath());
    ASSERT_EQ(copy.FOpen(kOpenReadBinary), 0);
    EXPECT_EQ(copy.FRead(data.data(), 200), 150);
    EXPECT_EQ(files.FWrite(data.data(), 60), 60) << "the original goes on, with its limit";
    copy = files;
    EXPECT_EQ(copy.GetCurrentFileNum(), -1) << "assignment closed the copy";
    files.FClose();
    ExpectSegments({Expand("100x"), Expand("100x"), Expand("10x")});
}

}  // namespace
}  // namespace basicutils::filestest
