// The working file on real files: the open-mode table, 64-bit positions on
// sparse files past 2 and 3 GiB, lines out, copies as views, the
// overlapped opening and the cache's sizes.
#include "FilesTest_test.h"

namespace basicutils::filestest {
namespace {

// Opens the protected state to the tests.
class Probe : public MFileUniv {
  public:
    using MFileUniv::mCacheLength;
    using MFileUniv::mIsOverlapped;
    using MFileUniv::mOpenMode;
};

class MFileUnivTest : public TempDirTest {
  protected:
    void Sparse(const std::string& name, int64_t size) {
        Write(name, "");
        fs::resize_file(mDir / name, static_cast<uintmax_t>(size));
    }
};

// Where each writing mode starts on "abc\r\n" and what writing "XY" through
// the stream leaves; each also creates a missing file.
TEST_F(MFileUnivTest, OpenModeTable) {
    const std::tuple<file_open_t, int64_t, std::string> cases[] = {
        {kOpenWriteBinary, 0, "XY"},
        {kOpenRewriteBinary, 0, "XY"},
        {kOpenWriteText, 0, "XY"},
        {kOpenAppendBinary, 5, "abc\r\nXY"},
        {kOpenAppendBinaryAlt, 5, "abc\r\nXY"},
        {kOpenUpdateText, 0, "XYc\r\n"},
        {kOpenAppendText, 5, "abc\r\nXY"},
        {kOpenUpdateBinary, 0, "XYc\r\n"},
    };
    for (const auto& [mode, start, after] : cases) {
        Write("f", "abc\r\n");
        Probe file;
        Open(file, "f", mode);
        int64_t position = -5;
        EXPECT_EQ(file.FTell64(position), start) << mode;
        EXPECT_EQ(file.FWriteVoid(const_cast<char*>("XY"), 1, 2), 2);
        file.FClose();
        EXPECT_EQ(Read("f"), after) << mode;
        fs::remove(mDir / "f");
        Open(file, "f", mode);
    }
    for (int refused : {10, 15, -1}) {
        Probe file;
        EXPECT_EQ(file.FOpen(WPath("f").c_str(), static_cast<file_open_t>(refused)), -1);
        EXPECT_EQ(file.mOpenMode, refused);
        EXPECT_EQ(file.FRead(nullptr, 0), -1);  // nothing open
    }
}

TEST_F(MFileUnivTest, SixtyFourBitPositionsPastTwoAndThreeGiB) {
    Sparse("big", 3 * kGiB + 100);
    Probe file;
    Open(file, "big", kOpenUpdateBinary);
    int64_t position = 0;
    for (int64_t target : {int64_t{0x7FFFFFFE}, int64_t{0x7FFFFFFF}, 3 * kGiB}) {
        EXPECT_EQ(file.FSeek64(target, kSeekBegin), target);
        EXPECT_EQ(file.FTell64(position), target < 0x7FFFFFFF ? target : -1);
        EXPECT_EQ(position, target);
    }
    // Current moves once, by the amount asked for; 7 acts as current.
    EXPECT_EQ(file.FSeek64(10, kSeekCurrent), 3 * kGiB + 10);
    EXPECT_EQ(file.FSeek64(10, static_cast<file_seek_t>(7)), 3 * kGiB + 20);
    char bytes[] = "zz";
    EXPECT_EQ(file.FWrite(bytes, 2), 2);
    EXPECT_EQ(file.FSeek64(-2, kSeekEnd), 3 * kGiB + 98);
    EXPECT_EQ(file.FSeek(0, kSeekEnd), -1);  // beyond the 32-bit seek
    file.FClose();
    Open(file, "big", kOpenAppendBinary);  // past 2 GiB, still at the true end
    EXPECT_EQ(file.FWrite(bytes, 2), 2);
    EXPECT_EQ(file.GetSize(), 3 * kGiB + 102);
    file.FClose();
    // Below 2 GiB the stream follows each seek.
    Write("s", "0123456789abcdef");
    Open(file, "s", kOpenReadBinary);
    EXPECT_EQ(file.FSeek64(10, kSeekCurrent) + file.FSeek64(5, kSeekCurrent), 25);
    EXPECT_EQ(file.FReadVoid(bytes, 1, 1), 1);
    EXPECT_EQ(bytes[0], 'f');
    EXPECT_EQ(file.FSeek(2, kSeekBegin), 2);
    char16_t line[8];
    ASSERT_EQ(file.FGetts(line, 2), 0);
    EXPECT_EQ(std::u16string(line), u"234");
}

// Reading lines is checked against a model in fuzz/FGetts_fuzz.cpp.
TEST_F(MFileUnivTest, LinesOut) {
    Probe file;
    Open(file, "t", kOpenWriteText);
    char16_t text[] = {u'e', 0x00E9, 0xD800, u'\n', 0};  // a lone surrogate has no 8-bit form
    EXPECT_GE(file.FPutts(text), 0);
    EXPECT_EQ(file.FPuttsForUnicodeFile(text + 3), 0);
    Reports reports;
    file.FClose();
    file.FClose();  // the second close does nothing
    EXPECT_TRUE(reports.heard.empty());
    EXPECT_EQ(Read("t"), "e\xC3\xA9\xEF\xBF\xBD\n\n");
}

TEST_F(MFileUnivTest, CopiesAreViewsOfOneFile) {
    Write("f", "0123456789");
    auto original = std::make_unique<Probe>();
    Open(*original, "f", kOpenReadBinary);
    Probe copy(*original), assigned;
    original->FClose();  // another view remains: nothing is closed
    char got[4] = {};
    EXPECT_EQ(copy.FRead(got, 3), 3);
    original.reset();
    assigned = copy;
    copy.FClose();
    EXPECT_EQ(assigned.FRead(got, 3), 3);
    EXPECT_EQ(std::string(got), "345");
}

TEST_F(MFileUnivTest, OverlappedOpeningAndSizes) {
    Probe file;
    EXPECT_EQ(file.FOpen(WPath("new").c_str(), kOpenOverlappedRead), -1);
    EXPECT_EQ(file.mIsOverlapped, 0);
    Open(file, "new", kOpenOverlappedCreate);
    EXPECT_EQ(file.FSetFileSize(3 * kGiB), 0);
    int64_t position = 5;
    EXPECT_EQ(file.FTell64(position) + position, 5);  // 0, untouched
    file.FClose();
    Open(file, "new", kOpenOverlappedReadWrite);  // keeps the file
    EXPECT_EQ(file.GetSize(), 3 * kGiB);
    file.FClose();
    Open(file, "new", kOpenUpdateBinary);
    EXPECT_EQ(file.FSeek64(100, kSeekBegin), 100);
    EXPECT_EQ(file.FSetEndOfFile(), 0);
    EXPECT_EQ(file.GetSize(), 100);
    file.FClose();
    EXPECT_EQ(file.FSetEndOfFile(), -1);
    EXPECT_EQ(MFileUniv().GetSize(), -1);  // no path: no status
}

TEST_F(MFileUnivTest, IdealCacheSizeIsAnEighthWithinBounds) {
    const int64_t cases[][2] = {{0, 100000}, {800000, 100000}, {2000000, 250000}, {kGiB, 500000}};
    for (const auto& c : cases) {
        Sparse("c", c[0]);
        Probe file;
        Open(file, "c", kOpenReadBinary);
        EXPECT_EQ(file.GetIdealCacheSize(), c[1]);
        file.ReadCache();
        EXPECT_EQ(file.mCacheLength, std::min<int64_t>(c[0], c[1]));
    }
}

}  // namespace
}  // namespace basicutils::filestest
