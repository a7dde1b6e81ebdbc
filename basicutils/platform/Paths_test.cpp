// Names between the library and the system: every name on disk has one
// spelling and comes back to the same file; what cannot be spelled is refused.
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/FileApi.h>
#include <basicutils/platform/FileTesting_test.h>
#include <basicutils/platform/RuntimeFiles.h>
#include <basicutils/platform/internal/Paths.h>
#include <unistd.h>

namespace basicutils {
namespace {

TEST(Paths, LibraryNamesToSystemNames) {
    const std::pair<std::u16string, const char*> cases[] = {
        {u"a\\b/c", "a/b/c"},       {u"C:\\x", "C:/x"},
        {u"\u00e9", "\xC3\xA9"},    {u"\U0001F600", "\xF0\x9F\x98\x80"},
        {u"x\xDCFFy", "x\xFFy"},    {u"a\xDC5C.", "a\\."},
        {u"\xDCC3\xDCA9", nullptr},  // the bytes of "é": another file's name
        {u"\xD800", nullptr},        // lone surrogates outside the escapes
        {u"\xDC00", nullptr},       {u"\xDC41", nullptr},
    };
    for (const auto& [library, system] : cases) {
        std::string out;
        EXPECT_EQ(detail::ToSystemPath(library.c_str(), out), system != nullptr);
        EXPECT_EQ(system ? out : std::to_string(GetLastError()),
                  system ? system : std::to_string(ERROR_NO_UNICODE_TRANSLATION));
    }
    EXPECT_EQ(detail::FromSystemPath("/home/a\\."), u"\\home\\a\xDC5C.");
}

TEST(Paths, ListedNamesReachTheirOwnFiles) {
    testing::TempFolder folder;
    folder.Write("\xFF\x41", "invalid");
    folder.Write("a\\b", "backslash");
    const std::u16string invalid = u"\xDCFF\x41", backslash = u"a\xDC5C\x62";  // "\xFF" "A", "a\\b"
    WIN32_FIND_DATAW data;
    HANDLE find = FindFirstFileW((folder.Wide() + u"*").c_str(), &data);
    std::u16string names;
    do names += std::u16string(data.cFileName) + u"|";
    while (FindNextFileW(find, &data));
    FindClose(find);
    EXPECT_NE(names.find(u"|" + invalid + u"|"), std::u16string::npos);
    EXPECT_NE(names.find(u"|" + backslash + u"|"), std::u16string::npos);
    const int fd = _wopen((folder.Wide() + invalid).c_str(), _O_RDONLY);
    char text[8] = {};
    EXPECT_EQ(_read(fd, text, 7), 7);
    EXPECT_STREQ(text, "invalid");
    _close(fd);
    EXPECT_TRUE(DeleteFileW((folder.Wide() + backslash).c_str()));
    EXPECT_EQ(::access(folder.Path("a\\b").c_str(), F_OK), -1);
}

TEST(Paths, SplitPathHasNoDrive) {
    const std::u16string cases[][4] = {
        {u"/home/a/movie.mpv", u"/home/a/", u"movie", u".mpv"},
        {u"C:\\dir\\a.b.c", u"C:\\dir\\", u"a.b", u".c"},
        {u".profile", u"", u"", u".profile"},
        {u"dir.d/file", u"dir.d/", u"file", u""},
        {std::u16string(300, u'x'), u"", std::u16string(255, u'x'), u""},
    };
    for (const auto& c : cases) {
        char16_t drive[_MAX_DRIVE] = {u'?'}, dir[_MAX_DIR], name[_MAX_FNAME], ext[_MAX_EXT];
        _wsplitpath(c[0].c_str(), drive, dir, name, ext);
        EXPECT_EQ(std::u16string(drive) + u"|" + dir + u"|" + name + u"|" + ext,
                  u"|" + c[1] + u"|" + c[2] + u"|" + c[3]);
    }
}

}  // namespace
}  // namespace basicutils
