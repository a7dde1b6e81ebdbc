// The working file on real files: the open-mode table, 64-bit positions on
// sparse files past 2 and 3 GiB, the line reader and writer, copies as views,
// the overlapped opening and the cache's sizes.
#include <basicutils/files/MFileUniv.h>

#include "FilesTest_test.h"

namespace basicutils {
namespace {

constexpr int64_t kGiB = int64_t{1} << 30;

// Opens the protected state to the tests.
class Probe : public MFileUniv {
  public:
    using MFileUniv::mCacheLength;
    using MFileUniv::mDescriptor;
    using MFileUniv::mIsOverlapped;
    using MFileUniv::mOpenMode;
    using MFileUniv::mStream;
};

class MFileUnivTest : public filestest::TempDirTest {
  protected:
    void Open(MFileUniv& file, const std::string& name, file_open_t mode) {
        ASSERT_EQ(file.FOpen(WPath(name).c_str(), mode), 0) << name << " mode " << mode;
    }
    void Sparse(const std::string& name, int64_t size) {
        Write(name, "");
        std::filesystem::resize_file(mDir / name, static_cast<uintmax_t>(size));
    }
};

// What each mode keeps, where it starts, and what writing "XY" through the
// stream leaves; a missing file is created by every writing mode.
TEST_F(MFileUnivTest, OpenModeTable) {
    struct Case {
        file_open_t mode;
        int64_t start;      // on "abc\r\n"
        std::string after;  // after writing "XY" through the stream
    } cases[] = {
        {kOpenWriteBinary, 0, "XY"},          {kOpenRewriteBinary, 0, "XY"},
        {kOpenWriteText, 0, "XY"},            {kOpenAppendBinary, 5, "abc\r\nXY"},
        {kOpenAppendBinaryAlt, 5, "abc\r\nXY"}, {kOpenUpdateText, 0, "XYc\r\n"},
        {kOpenAppendText, 5, "abc\r\nXY"},    {kOpenUpdateBinary, 0, "XYc\r\n"},
    };
    for (const Case& c : cases) {
        Write("f", "abc\r\n");
        Probe file;
        Open(file, "f", c.mode);
        int64_t position = -5;
        EXPECT_EQ(file.FTell64(position), c.start) << c.mode;
        char xy[] = "XY";
        EXPECT_EQ(file.FWriteVoid(xy, 1, 2), 2);
        file.FClose();
        EXPECT_EQ(Read("f"), c.after) << c.mode;
        std::filesystem::remove(mDir / "f");
        Open(file, "f", c.mode);
        file.FClose();
        EXPECT_TRUE(std::filesystem::exists(mDir / "f")) << c.mode;
    }
    for (file_open_t refused : {kOpenUnsupported, static_cast<file_open_t>(15),
                                static_cast<file_open_t>(-1)}) {
        Probe file;
        EXPECT_EQ(file.FOpen(WPath("f").c_str(), refused), -1);
        EXPECT_EQ(file.mOpenMode, refused);
        EXPECT_EQ(file.mDescriptor, -1);
        EXPECT_EQ(file.mStream, nullptr);
    }
}

TEST_F(MFileUnivTest, SixtyFourBitPositionsPastTwoAndThreeGiB) {
    Sparse("big", 3 * kGiB + 100);
    Probe file;
    Open(file, "big", kOpenUpdateBinary);
    int64_t position = 0;
    const int64_t cases[][2] = {// target, FTell64's answer
                                {0x7FFFFFFE, 0x7FFFFFFE},
                                {0x7FFFFFFF, -1},
                                {3 * kGiB, -1}};
    for (const auto& c : cases) {
        EXPECT_EQ(file.FSeek64(c[0], kSeekBegin), c[0]);
        EXPECT_EQ(file.FTell64(position), c[1]);
        EXPECT_EQ(position, c[0]);
    }
    // Current moves once, by the amount asked for; 7 acts as current.
    EXPECT_EQ(file.FSeek64(10, kSeekCurrent), 3 * kGiB + 10);
    EXPECT_EQ(file.FSeek64(10, static_cast<file_seek_t>(7)), 3 * kGiB + 20);
    char bytes[] = "zz";
    EXPECT_EQ(file.FWrite(bytes, 2), 2);
    EXPECT_EQ(file.FSeek64(-2, kSeekEnd), 3 * kGiB + 98);
    EXPECT_EQ(file.FSeek(0, kSeekBegin), 0);
    EXPECT_EQ(file.FSeek(0, kSeekEnd), -1);  // beyond the 32-bit seek
    file.FClose();
    // Appending to a file past 2 GiB starts at its true end.
    Open(file, "big", kOpenAppendBinary);
    EXPECT_EQ(file.FWrite(bytes, 2), 2);
    EXPECT_EQ(file.GetSize(), 3 * kGiB + 102);
}

TEST_F(MFileUnivTest, LinesReadAtHalfTheLimitAndCutAtZero) {
    const std::string forty(40, 'x');
    Write("t", forty + "\r\nab" + std::string(1, '\0') + "cd\n\xC3\xA9\n");
    Probe file;
    Open(file, "t", kOpenReadText);
    char16_t line[128];
    const std::u16string expected[] = {std::u16string(37, u'x'), u"xxx\n", u"ab", u"\u00e9\n"};
    for (const auto& e : expected) {
        ASSERT_EQ(file.FGetts(line, 19), 0);
        EXPECT_EQ(std::u16string(line), e);
    }
    line[0] = u'#';
    EXPECT_EQ(file.FGetts(line, 19), -1);
    EXPECT_EQ(line[0], u'#');  // untouched at the end
    EXPECT_EQ(file.FGetts(line, 0), -1);
}

TEST_F(MFileUnivTest, TextIsNarrowedToTheSystemCodePage) {
    Probe file;
    Open(file, "t", kOpenWriteText);
    char16_t text[] = {u'e', 0x00E9, 0xD800, u'\n', 0};  // a lone surrogate has no 8-bit form
    EXPECT_GE(file.FPutts(text), 0);
    char16_t wide[] = u"w";
    EXPECT_EQ(file.FPuttsForUnicodeFile(wide), 0);
    file.FClose();
    file.FClose();  // the second close does nothing
    EXPECT_EQ(Read("t"), "e\xC3\xA9\xEF\xBF\xBD\nw");
}

TEST_F(MFileUnivTest, CopiesAreViewsOfOneFile) {
    Write("f", "0123456789");
    auto original = std::make_unique<Probe>();
    Open(*original, "f", kOpenReadBinary);
    Probe copy(*original);
    original->FClose();  // another view remains: nothing is closed
    char got[4] = {};
    EXPECT_EQ(copy.FRead(got, 3), 3);
    EXPECT_EQ(std::string(got), "012");
    original.reset();
    Probe assigned;
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
    EXPECT_EQ(file.mIsOverlapped, 1);
    EXPECT_EQ(file.FSetFileSize(3 * kGiB), 0);
    EXPECT_EQ(file.GetSize(), 3 * kGiB);
    int64_t position = 5;
    EXPECT_EQ(file.FTell64(position), 0);
    EXPECT_EQ(position, 5);
    file.FClose();
    EXPECT_EQ(file.mIsOverlapped, 0);
    for (file_open_t mode : {kOpenOverlappedWrite, kOpenOverlappedRead, kOpenOverlappedReadWrite}) {
        Open(file, "new", mode);
        EXPECT_EQ(file.GetSize(), 3 * kGiB);
        file.FClose();
    }
    Open(file, "new", kOpenUpdateBinary);
    EXPECT_EQ(file.FSeek64(100, kSeekBegin), 100);
    EXPECT_EQ(file.FSetEndOfFile(), 0);
    EXPECT_EQ(file.GetSize(), 100);
    file.FClose();
    EXPECT_EQ(file.FSetEndOfFile(), -1);
    EXPECT_EQ(MFileUniv().GetSize(), -1);  // no path: no status
}

TEST_F(MFileUnivTest, IdealCacheSizeIsAnEighthWithinBounds) {
    const int64_t cases[][2] = {
        {0, 100000}, {800000, 100000}, {2000000, 250000}, {kGiB, 500000}};
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
}  // namespace basicutils
