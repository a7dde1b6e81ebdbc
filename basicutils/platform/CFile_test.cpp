// CFile on real files: what raises and what answers, caught by reference;
// the status record; and CString's clamping.
#include <basicutils/platform/CFile.h>
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/FileTesting_test.h>
#include <basicutils/platform/testing/FaultEnv.h>
#include <unistd.h>

#include <ctime>

namespace basicutils {
namespace {

using testing::SysCall;
using testing::TempFolder;

TEST(CFile, OpenFlagsAnswerWithoutRaising) {
    struct Case {
        UINT flags;
        const char* name;  // "f" holds "old"
        BOOL opens;
        int cause;
        const char* contents;  // after Write("W")
    } cases[] = {
        {CFile::modeRead, "f", 1, 0, "old"},
        {CFile::modeRead, "none", 0, CFileException::fileNotFound, nullptr},
        {CFile::modeRead, "gone/x", 0, CFileException::badPath, nullptr},
        {CFile::modeCreate, "f", 1, 0, ""},  // empties, even for reading
        {CFile::modeWrite | CFile::modeCreate | CFile::modeNoTruncate, "f", 1, 0, "Wld"},
        {CFile::modeReadWrite | CFile::shareDenyNone, "f", 1, 0, "Wld"},
        {CFile::modeWrite, "none", 0, CFileException::fileNotFound, nullptr},
        {3, "f", 0, CFileException::genericException, "old"},
    };
    for (const Case& c : cases) {
        TempFolder folder;
        folder.Write("f", "old");
        CFile file;
        CFileException failure;
        ASSERT_EQ(file.Open(folder.Wide(c.name).c_str(), c.flags, &failure), c.opens) << c.flags;
        if (c.opens) {
            try {
                file.Write("W", 1);
            } catch (CFileException&) {
            }
            file.Close();
        } else {
            EXPECT_EQ(failure.m_cause, c.cause);
            EXPECT_EQ(failure.m_lOsError, static_cast<LONG>(GetLastError()));
            EXPECT_EQ(failure.m_strFileName, folder.Wide(c.name).c_str());
        }
        if (c.contents) {
            EXPECT_EQ(folder.Read(c.name), c.contents);
        }
    }
}

TEST(CFile, FailuresRaiseAndAreCaughtByReference) {
    TempFolder folder;
    CFile file(folder.Wide("f").c_str(), CFile::modeCreate | CFile::modeReadWrite);
    EXPECT_EQ(file.GetFilePath(), folder.Wide("f").c_str());
    file.Write("0123456789", 10);
    EXPECT_EQ(file.Seek(-4, CFile::end), 6);
    char four[8] = {};
    EXPECT_EQ(file.Read(four, 8), 4u);
    EXPECT_STREQ(four, "6789");
    EXPECT_EQ(file.GetPosition(), 10u);
    struct Case {
        LONG offset;
        UINT from;
        int cause;
        uint32_t osError;
    } cases[] = {{-11, CFile::current, CFileException::badSeek, ERROR_NEGATIVE_SEEK},
                 {0x7FFFFFFF, CFile::begin, -1, 0}};
    for (const Case& c : cases) {
        try {
            EXPECT_EQ(file.Seek(c.offset, c.from), c.offset);
            EXPECT_EQ(c.cause, -1);
        } catch (CFileException& e) {
            EXPECT_EQ(e.m_cause, c.cause);
            EXPECT_EQ(static_cast<uint32_t>(e.m_lOsError), c.osError);
        }
    }
    {
        testing::FaultEnv faults;
        faults.LimitToThisThread()
            .FailNth(SysCall::kWrite, 1, ENOSPC)
            .FailNth(SysCall::kRead, 1, EIO);
        testing::ScopedEnv use(faults);
        int raised = 0;
        try {
            file.Write("x", 1);
        } catch (const CFileException& e) {
            ++raised;
            EXPECT_EQ(e.m_cause, CFileException::diskFull);
            EXPECT_EQ(e.m_lOsError, static_cast<LONG>(ERROR_DISK_FULL));
            EXPECT_STREQ(e.what(), "disk full");
        }
        try {
            file.Read(four, 1);
        } catch (CFileException& e) {
            ++raised;
            EXPECT_EQ(e.m_cause, CFileException::hardIO);
        }
        EXPECT_EQ(raised, 2);
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
    std::tm now{};
    const std::time_t seconds = status.m_mtime.GetTime();
    ::localtime_r(&seconds, &now);
    EXPECT_EQ(status.m_mtime.GetYear(), now.tm_year + 1900);
    EXPECT_EQ(status.m_mtime.GetMonth(), now.tm_mon + 1);
    EXPECT_EQ(status.m_mtime.GetHour(), now.tm_hour);

    char before[4096];
    ASSERT_NE(::getcwd(before, sizeof before), nullptr);
    ASSERT_EQ(::chdir(folder.Path().c_str()), 0);
    CFile file(u"f", CFile::modeRead);
    CFileStatus open;
    ASSERT_TRUE(file.GetStatus(open));
    EXPECT_EQ(open.m_size, 5);
    std::u16string full = folder.Wide("f");
    for (char16_t& c : full) c = c == u'/' ? u'\\' : c;
    EXPECT_EQ(std::u16string(open.m_szFullName), full);  // the current folder in front
    ASSERT_EQ(::chdir(before), 0);
}

TEST(CString, ClampsAndFinds) {
    const CString s(u"a\\b\\c.txt");
    struct Case {
        CString got;
        const char16_t* expected;
    } cases[] = {
        {s.Left(3), u"a\\b"},
        {s.Left(-1), u""},
        {s.Left(99), u"a\\b\\c.txt"},
        {s.Right(3), u"txt"},
        {s.Right(99), u"a\\b\\c.txt"},
        {s.Mid(4), u"c.txt"},
        {s.Mid(4, 1), u"c"},
        {s.Mid(99), u""},
        {s.Mid(-2, 1), u"a"},
        {s + u"!", u"a\\b\\c.txt!"},
        {CString(u"x") + s.Right(1), u"xt"},
        {CString(nullptr), u""},
    };
    for (const Case& c : cases) EXPECT_EQ(c.got, c.expected);
    EXPECT_EQ(s.ReverseFind(u'\\'), 3);
    EXPECT_EQ(s.Find(u'\\'), 1);
    EXPECT_EQ(s.Find(u"c.t"), 4);
    EXPECT_EQ(s.Find(u'z'), -1);
    EXPECT_EQ(s.GetLength(), 9);
    EXPECT_TRUE(CString(u"a") < CString(u"b"));
    EXPECT_TRUE(CString(u"\xE9") > u"z");  // units compare unsigned
    CString buffer;
    char16_t* room = buffer.GetBuffer(8);
    room[0] = u'h';
    room[1] = u'i';
    room[2] = 0;
    buffer.ReleaseBuffer();
    EXPECT_EQ(buffer, u"hi");
    EXPECT_EQ(buffer.GetLength(), 2);
}

}  // namespace
}  // namespace basicutils
