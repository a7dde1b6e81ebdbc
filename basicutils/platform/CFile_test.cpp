// CFile on real files: what answers and what raises, caught by reference;
// the status record; and CString's clamping.
#include <basicutils/platform/CFile.h>
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/FileTesting_test.h>
#include <unistd.h>

#include <ctime>

namespace basicutils {
namespace {

using testing::TempFolder;

TEST(CFile, OpenAnswersWithoutRaising) {
    // "f" holds "old"; cause -1: opens
    // clang-format off
    struct Case { UINT flags; const char* name; int cause; const char* contents; } cases[] = {
        {CFile::modeRead, "f", -1, "old"},  // the write is refused
        {CFile::modeCreate, "f", -1, ""},   // empties, even for reading
        {CFile::modeWrite | CFile::modeCreate | CFile::modeNoTruncate, "f", -1, "Wld"},
        {CFile::modeReadWrite | CFile::shareDenyNone, "f", -1, "Wld"},
        {CFile::modeRead, "none", CFileException::fileNotFound, "old"},
        {CFile::modeRead, "gone/x", CFileException::badPath, "old"},
        {3, "f", CFileException::genericException, "old"},
    };
    // clang-format on
    for (const Case& c : cases) {
        TempFolder folder;
        folder.Write("f", "old");
        CFile file;
        CFileException failure;
        ASSERT_EQ(file.Open(folder.Wide(c.name).c_str(), c.flags, &failure), c.cause < 0);
        if (c.cause < 0) {
            try {
                file.Write("W", 1);
            } catch (CFileException&) {
            }
        }
        EXPECT_EQ(c.cause < 0 ? -1 : failure.m_cause, c.cause);
        file.Close();
        EXPECT_EQ(folder.Read("f"), c.contents);
    }
}

TEST(CFile, FailuresRaiseAndAreCaughtByReference) {
    TempFolder folder;
    CFile file(folder.Wide("f").c_str(), CFile::modeCreate | CFile::modeReadWrite);
    file.Write("0123456789", 10);
    EXPECT_EQ(file.Seek(-4, CFile::end), 6);
    char four[8] = {};
    EXPECT_EQ(file.Read(four, 8), 4u);
    EXPECT_STREQ(four, "6789");
    EXPECT_EQ(file.GetPosition(), 10u);
    try {
        file.Seek(-11, CFile::current);
        ADD_FAILURE() << "nothing raised";
    } catch (const CFileException& e) {
        EXPECT_EQ(e.m_cause, CFileException::badSeek);
        EXPECT_EQ(static_cast<uint32_t>(e.m_lOsError), ERROR_NEGATIVE_SEEK);
        EXPECT_STREQ(e.what(), "bad seek");
    }
    file.SetLength(3);
    EXPECT_EQ(file.GetLength(), 3u);
    file.Close();
    EXPECT_THROW(file.GetLength(), CFileException);
    EXPECT_THROW(CFile(folder.Wide("none").c_str(), CFile::modeRead), CFileException);
}

TEST(CFile, StatusOfANameAndOfAnOpenFile) {
    TempFolder folder;
    folder.Write("f", "12345");
    ASSERT_EQ(::symlink("nowhere", folder.Path("dangling").c_str()), 0);
    CFileStatus status;
    EXPECT_EQ(CFile::GetStatus(folder.Wide("none").c_str(), status), 0);
    EXPECT_EQ(CFile::GetStatus(folder.Wide("dangling").c_str(), status), 1);  // the name is taken
    EXPECT_EQ(CFile::GetStatus(folder.Wide("*").c_str(), status), 0);         // no wildcards
    ASSERT_EQ(CFile::GetStatus(folder.Wide("f").c_str(), status), 1);
    EXPECT_EQ(status.m_size, 5);
    EXPECT_EQ(status.m_attribute, 0);
    EXPECT_EQ(std::u16string(status.m_szFullName), folder.Wide("f"));
    std::tm local{};
    const std::time_t seconds = status.m_mtime.GetTime();
    ::localtime_r(&seconds, &local);
    EXPECT_EQ(status.m_mtime.GetHour(), local.tm_hour);  // local time, not UTC

    char before[4096];
    ASSERT_NE(::getcwd(before, sizeof before), nullptr);
    ASSERT_EQ(::chdir(folder.Path().c_str()), 0);
    CFile file(u"f", CFile::modeRead);
    ASSERT_TRUE(file.GetStatus(status));
    std::u16string full = folder.Wide("f");
    std::replace(full.begin(), full.end(), u'/', u'\\');
    EXPECT_EQ(std::u16string(status.m_szFullName), full);  // the current folder in front
    ASSERT_EQ(::chdir(before), 0);
}

TEST(CString, ClampsAndFinds) {
    const CString s(u"a\\b\\c.txt");
    const std::pair<CString, const char16_t*> cases[] = {
        {s.Left(3), u"a\\b"}, {s.Left(-1), u""},
        {s.Right(3), u"txt"}, {s.Right(99), u"a\\b\\c.txt"},
        {s.Mid(4, 1), u"c"},  {s.Mid(99), u""},
        {s.Mid(-2, 1), u"a"}, {u"x" + s.Right(1) + u'!', u"xt!"}};
    for (const auto& [got, expected] : cases) EXPECT_EQ(got, expected);
    EXPECT_EQ(s.ReverseFind(u'\\') * 100 + s.Find(u'\\') * 10 + s.Find(u"c.t"), 314);
    EXPECT_EQ(s.Find(u'z'), -1);
    EXPECT_TRUE(CString(u"\xE9") > u"z");  // units compare unsigned
    CString buffer;
    std::char_traits<char16_t>::copy(buffer.GetBuffer(8), u"hi", 3);
    buffer.ReleaseBuffer();
    EXPECT_EQ(buffer.GetLength(), 2);
}

}  // namespace
}  // namespace basicutils
