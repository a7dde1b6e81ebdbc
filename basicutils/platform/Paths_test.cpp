// Names between the library and the system: every name on disk has one
// spelling and comes back to the same file; what cannot be spelled is refused.
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/FileApi.h>
#include <basicutils/platform/FileTesting_test.h>
#include <basicutils/platform/RuntimeFiles.h>
#include <basicutils/platform/internal/Paths.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <random>
#include <vector>

namespace basicutils {
namespace {

using testing::TempFolder;

TEST(Paths, LibraryNamesToSystemNames) {
    struct Case {
        std::u16string library;
        const char* system;  // null: refused
    } cases[] = {
        {u"a\\b/c", "a/b/c"},
        {u"C:\\x", "C:/x"},
        {u"\u00e9", "\xC3\xA9"},
        {u"\U0001F600", "\xF0\x9F\x98\x80"},
        {u"\xDC80", "\x80"},
        {u"x\xDCFFy", "x\xFFy"},
        {u"a\xDC5C"
         u"b",
         "a\\b"},
        {u"\xDCC3\xDCA9", nullptr},  // the bytes of "é": another file's name
        {u"\xD800", nullptr},        // lone high surrogate
        {u"\xDC00", nullptr},        // lone low surrogate outside the escapes
        {u"\xDC41", nullptr},        // an escape of a byte that needs none
    };
    for (const Case& c : cases) {
        std::string out;
        SetLastError(0);
        const bool ok = detail::ToSystemPath(c.library.c_str(), out);
        EXPECT_EQ(ok, c.system != nullptr) << out;
        if (c.system) {
            EXPECT_EQ(out, c.system);
        } else {
            EXPECT_EQ(GetLastError(), ERROR_NO_UNICODE_TRANSLATION);
            EXPECT_EQ(errno, EILSEQ);
        }
    }
    EXPECT_EQ(detail::FromSystemPath("/home/a\\b/c"),
              u"\\home\\a\xDC5C"
              u"b\\c");
}

TEST(Paths, EveryByteNameRoundTrips) {
    std::mt19937 random(8);
    for (int i = 0; i < 3000; ++i) {
        std::string name(1 + random() % 8, ' ');
        for (char& c : name) {
            do c = static_cast<char>(random() % 256);
            while (c == 0 || c == '/');
        }
        std::string back;
        ASSERT_TRUE(detail::ToSystemPath(detail::FromSystemName(name).c_str(), back));
        ASSERT_EQ(back, name);
    }
}

TEST(Paths, ListedNamesReachTheirOwnFiles) {
    TempFolder folder;
    folder.Write("\xFF\x41", "invalid");
    folder.Write("a\\b", "backslash");
    ASSERT_EQ(::mkdir(folder.Path("a").c_str(), 0777), 0);
    folder.Write("a/b", "nested");

    WIN32_FIND_DATAW data;
    HANDLE find = FindFirstFileW((folder.Wide() + u"*").c_str(), &data);
    ASSERT_NE(find, INVALID_HANDLE_VALUE);
    std::vector<std::u16string> names;
    do names.push_back(data.cFileName);
    while (FindNextFileW(find, &data));
    FindClose(find);
    const std::u16string invalid =
        u"\xDCFF"
        u"A";
    const std::u16string backslash =
        u"a\xDC5C"
        u"b";
    ASSERT_NE(std::find(names.begin(), names.end(), invalid), names.end());
    ASSERT_NE(std::find(names.begin(), names.end(), backslash), names.end());

    const int fd = _wopen((folder.Wide() + invalid).c_str(), _O_RDONLY | _O_BINARY);
    ASSERT_GE(fd, 0);
    char text[16] = {};
    EXPECT_EQ(_read(fd, text, sizeof text), 7);
    EXPECT_STREQ(text, "invalid");
    _close(fd);
    EXPECT_TRUE(DeleteFileW((folder.Wide() + backslash).c_str()));
    EXPECT_EQ(folder.Read("a/b"), "nested");  // a\b on disk went, a/b stayed
    EXPECT_EQ(::access(folder.Path("a\\b").c_str(), F_OK), -1);
}

TEST(Paths, SplitPathHasNoDrive) {
    struct Case {
        std::u16string path, dir, name, ext;
    } cases[] = {
        {u"/home/a/movie.mpv", u"/home/a/", u"movie", u".mpv"},
        {u"C:\\dir\\a.b.c", u"C:\\dir\\", u"a.b", u".c"},
        {u"report", u"", u"report", u""},
        {u".profile", u"", u"", u".profile"},
        {u"dir.d/file", u"dir.d/", u"file", u""},
        {u"", u"", u"", u""},
        {std::u16string(300, u'x'), u"", std::u16string(255, u'x'), u""},
    };
    for (const Case& c : cases) {
        char16_t drive[_MAX_DRIVE] = {u'?'}, dir[_MAX_DIR], name[_MAX_FNAME], ext[_MAX_EXT];
        _wsplitpath(c.path.c_str(), drive, dir, name, ext);
        EXPECT_EQ(std::u16string(drive), u"");
        EXPECT_EQ(std::u16string(dir), c.dir);
        EXPECT_EQ(std::u16string(name), c.name);
        EXPECT_EQ(std::u16string(ext), c.ext);
    }
}

}  // namespace
}  // namespace basicutils
