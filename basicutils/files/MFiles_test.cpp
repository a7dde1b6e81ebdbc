// Reading, writing and seeking across segments on real files with a limit
// of 100 bytes: each scenario runs its steps on P and then checks every
// segment and the info file byte for byte.
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/Sync.h>

#include <cstdlib>
#include <memory>
#include <sstream>
#include <tuple>

#include "MFilesTest_test.h"

namespace basicutils::filestest {
namespace {

// Plays one scenario's steps, each a letter and numbers: wNc writes N bytes
// of c; rN=A/runs reads N bytes, answering A with those bytes; sN=A and eN=A
// seek from the start and from the end; tA: FTell64 stores A; nK: segment K
// is open; oM: close, open in mode M; lN: limit N; g/runs and G/runs: FGets
// and FGetts read those bytes, or answer -1 with none. '~' is a newline.
void Play(MFiles& files, const std::string& script) {
    std::istringstream steps(script);
    for (std::string step; steps >> step;) {
        SCOPED_TRACE(step);
        const bool number = step.size() > 1 && (std::isdigit(step[1]) || step[1] == '-');
        const int64_t n = number ? std::stoll(step.substr(1)) : 0;
        const size_t equals = step.find('='), slash = step.find('/');
        const int64_t answer =
            equals == std::string::npos ? n : std::stoll(step.substr(equals + 1));
        const std::string line = slash == std::string::npos ? "" : Expand(step.substr(slash + 1));
        std::string data(static_cast<size_t>(std::max<int64_t>(n, 16)),
                         Expand(std::string("1") + step.back())[0]);
        char16_t wide[32];
        int64_t position = -7;
        switch (step[0]) {
            case 'w':
                EXPECT_EQ(files.FWrite(data.data(), static_cast<int>(n)), n);
                break;
            case 'r':
                EXPECT_EQ(files.FRead(data.data(), static_cast<int>(n)), answer);
                EXPECT_EQ(data.substr(0, static_cast<size_t>(std::max<int64_t>(answer, 0))), line);
                break;
            case 'g':
                EXPECT_EQ(files.FGets(data.data(), 16), line.empty() ? -1 : 0);
                EXPECT_EQ(line.empty() ? "" : std::string(data.c_str()), line);
                break;
            case 'G':
                EXPECT_EQ(files.FGetts(wide, 16), line.empty() ? -1 : 0);
                EXPECT_EQ(line.empty() ? u"" : std::u16string(wide),
                          std::u16string(line.begin(), line.end()));
                break;
            case 's':
            case 'e':
                EXPECT_EQ(files.FSeek64(n, step[0] == 's' ? kSeekBegin : kSeekEnd), answer);
                break;
            case 't':
                EXPECT_EQ(files.FTell64(position), 0);
                EXPECT_EQ(position, n);
                break;
            case 'n':
                EXPECT_EQ(files.GetCurrentFileNum(), n);
                break;
            case 'o':
                files.FClose();
                EXPECT_EQ(files.FOpen(static_cast<file_open_t>(n)), 0);
                break;
            default:
                files.SetMaxFileSize(n);
        }
    }
}

// Each scenario runs on a new P with a limit of 100 and ends in its segments
// ('|' between them), checked byte for byte with the info file. Writes of at
// most the limit, reads, seeks from the start and the end, and reopening are
// checked against a flat model in fuzz/MFilesModel_fuzz.cpp; these are what
// it does not do: longer writes, other modes and limits, lines, positions.
TEST_F(MFilesTest, ScenariosEndInTheirSegmentsByteForByte) {
    const std::tuple<const char*, const char*, const char*> scenarios[] = {
        {"one write of 250 bytes", "w250a", "100a|150a"},
        {"a write from behind the limit goes whole to the next", "w250a w60b", "100a|150a|60b"},
        {"a lowered limit rolls over at once", "w100a l40 w10b", "100a|10b"},
        {"a read of nothing opens nothing", "w250a s0 r0 n1", "100a|150a"},
        {"a segment's end belongs to it", "w250a s100 n1 t100 s101 n2 t1 s150 t50", "100a|150a"},
        {"a negative offset fails in segment 1", "w250a s-1=-1", "100a|150a"},
        {"mode 2 empties segment 1; seeking keeps the rest", "w100a w150b o2 e0=150 n2", "|150b"},
        {"reading on in mode 2 keeps the next segment", "w100a w150b o2 r300=150/150b", "|150b"},
        {"writing on in mode 2 empties the next segment", "w100a w150b s50 w60c", "50a50c|10c"},
        {"mode 5 appends at the logical end", "w100a w50b o5 w60c", "100a|50b50c|10c"},
        {"a line cut by a segment's end comes in two pieces",
         "l5 w2a w1~ w2c w2d w1~ o1 g/2a1~ g/2c g/2d1~ g s0 G/2a1~ G/2c G/2d1~ G", "2a1~2c|2d1~"},
    };
    for (const auto& [name, script, segments] : scenarios) {
        SCOPED_TRACE(name);
        for (const auto& entry : fs::directory_iterator(mDir)) fs::remove(entry.path());
        MFiles files;
        files.SetMaxFileSize(100);
        ASSERT_EQ(files.FOpen(P().c_str(), kOpenWriteBinary), 0);
        Play(files, script);
        files.FClose();
        ExpectSegments(segments);
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
    // offset, size, the size after and the answer (0: in flight, wait).
    const std::tuple<int64_t, int32_t, int32_t, uint32_t> cases[] = {
        {100, 50, 50, 0},  {4000, 200, 200, 0}, {8000, 1000, 292, ERROR_HANDLE_EOF},
        {8300, 10, 0, 38}, {10, 5000, 5000, 0}, {-1, 10, 10, 0xFFFFFFFF},
    };
    for (auto [offset, size, after, answer] : cases) {
        _OVERLAPPED overlapped{};
        EXPECT_EQ(files.FReadOverlapped(offset, buffer, size, &overlapped, event), answer)
            << offset;
        EXPECT_EQ(size, after);
        EXPECT_EQ(answer == 0 ? files.FWaitOverlappedCompletion(event, 10) : 0u, 0u);
        if (offset >= 0 && size > 0) {
            EXPECT_EQ(std::string(buffer, size), logical.substr(offset, size)) << offset;
        }
    }
    CloseHandle(event);
}

// A copy is closed, keeps the names and settings, and opens its own view;
// assigning closes the target first.
TEST_F(MFilesTest, CopiesAreClosedWithTheSettings) {
    MFiles files;
    files.SetMaxFileSize(100);
    ASSERT_EQ(files.FOpen(P().c_str(), kOpenWriteBinary), 0);
    Play(files, "w150x");
    MFiles copy(files);
    EXPECT_EQ(copy.GetFileNum() - copy.GetCurrentFileNum(), 1) << "closed: 0 and -1";
    EXPECT_EQ(copy.GetInfoFilePath(), files.GetInfoFilePath());
    ASSERT_EQ(copy.FOpen(kOpenReadBinary), 0);
    Play(copy, "r200=150/150x");
    Play(files, "w60x");  // the original goes on, with its limit
    copy = files;
    EXPECT_EQ(copy.GetCurrentFileNum(), -1);
    files.FClose();
    ExpectSegments("100x|100x|10x");
}

}  // namespace
}  // namespace basicutils::filestest
