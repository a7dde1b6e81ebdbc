// The info file on real files: how what lies at a path opens, the writers'
// exact bytes, and the status, sizes, moving and deletion of a logical file.
#include "MFilesTest_test.h"

namespace basicutils::filestest {
namespace {

// In the texts '@' stands for the test folder and a slash, and "?" for
// nothing at P; the segments opened are given with '|' between them.
TEST_F(MFilesTest, WhatAPathHoldsDecidesHowItOpens) {
    const std::tuple<std::string, file_open_t, const char*, bool> cases[] = {
        {"?", kOpenReadBinary, "", false},     // answers -1, stays closed
        {"?", kOpenWriteBinary, "@P", false},  // a new plain file
        {"", kOpenReadBinary, "@P", false},
        {"# Velmorant c_files\n@s\n", kOpenReadBinary, "@s", true},
        {"# Velmorant c_files  \r\n@s\r\n@t\r\n", kOpenReadBinary, "@s|@t", true},
        {std::string("\0\0\x01\xba", 4) + std::string(40, 'U') + "\n", kOpenReadBinary, "@P",
         false},
        {"# velmorant c_files \n@s\n", kOpenReadBinary, "@P", false},
        {"# Velmorant c_files \n", kOpenReadBinary, "", true},  // no path: -1
        {"# Velmorant c_files \n@s\n#@u\n@t\n", kOpenReadBinary, "@s|@t", true},
        {"# Velmorant c_files \n@s\n@t \n\n@s\n", kOpenReadBinary, "@s|@t ||@s", true},
    };
    const std::string dir = mDir.string() + "/";
    auto place = [&](std::string text) {
        for (size_t at; (at = text.find('@')) != std::string::npos;) text.replace(at, 1, dir);
        return text;
    };
    Write("s", "segment");
    for (const auto& [text, mode, segments, info] : cases) {
        SCOPED_TRACE(text);
        fs::remove(mDir / "P");
        if (text != "?") Write("P", place(text));
        const std::vector<std::string> paths = Split(segments, '|');
        MFiles files;
        EXPECT_EQ(files.FOpen(P().c_str(), mode), paths.empty() ? -1 : 0);
        ASSERT_EQ(files.GetFileNum(), static_cast<int>(paths.size()));
        EXPECT_EQ(files.GetCurrentFileNum(), paths.empty() ? -1 : 1);
        for (size_t i = 0; i < paths.size(); ++i) {
            MFileSpecWin* spec = nullptr;
            files.GetFileNames()->FetchItemAt(static_cast<int32_t>(i + 1), &spec);
            EXPECT_EQ(std::u16string(spec->GetFilePath()), fs::path(place(paths[i])).u16string());
        }
        EXPECT_EQ(std::u16string(files.GetInfoFilePath()), info ? P() : u"");
        EXPECT_EQ(IsVelmorantMFiles(files.GetFileSpec()), info ? 1 : 0);
    }
    for (int count : {2048, 2049}) {  // at most 2,048 paths
        std::string text = "# Velmorant c_files \n";
        for (int i = 0; i < count; ++i) text += dir + "s\n";
        Write("P", text);
        MFiles files;
        EXPECT_EQ(files.FOpen(P().c_str(), kOpenReadBinary), count == 2048 ? 0 : -1);
        EXPECT_EQ(files.GetFileNum(), count == 2048 ? 2048 : 0);
    }
}

TEST_F(MFilesTest, WritersMakeTheseBytes) {
    MFiles files;
    MFileSpecWin info(P().c_str()), a(WPath("a.mpv").c_str()), b(WPath("b.mpv").c_str());
    const std::string pathA = (mDir / "a.mpv").string() + "\n";
    EXPECT_EQ(files.AddToInfoFile(a), -1) << "no info file yet";
    Write("P", "video");
    EXPECT_EQ(files.NewInfo(info), -1);
    EXPECT_EQ(Read("P"), "video");
    Write("P", InfoText(3));
    EXPECT_EQ(files.NewInfo(info), 0);
    EXPECT_EQ(Read("P"), InfoText(0));
    fs::remove(mDir / "P");
    EXPECT_EQ(files.AddToInfoFile(a), 0) << "a missing info file starts anew";
    MFileSpecWin odd(std::u16string(u"x\xD800y").c_str());  // outside the code page
    EXPECT_EQ(files.AddToInfoFile(odd), 0);
    EXPECT_EQ(Read("P"), InfoText(0) + pathA + "x\xEF\xBF\xBDy\n");
    Write("a.mpv", "a");
    ASSERT_EQ(files.FOpen(P().c_str(), kOpenReadBinary), 0);
    MFileSpecWin* back = nullptr;
    files.GetFileNames()->FetchItemAt(2, &back);
    EXPECT_EQ(std::u16string(back->GetFilePath()), u"x\xFFFDy") << "not the name written";

    MFiles videos;
    EXPECT_EQ(videos.AddVideoFile(a), 0);
    EXPECT_EQ(videos.AddVideoFile(b), 0);
    EXPECT_EQ(std::u16string(videos.GetInfoFilePath()), WPath("a.mpv.cfx"));
    EXPECT_EQ(Read("a.mpv.cfx"),
              "# Velmorant c_files  \n" + pathA + (mDir / "b.mpv").string() + "\n");
}

TEST_F(MFilesTest, StatusSizesMovingAndDeletion) {
    MFiles files;
    files.SetMaxFileSize(100);
    ASSERT_EQ(files.FOpen(P().c_str(), kOpenWriteBinary), 0);
    std::string data(250, 'd');
    ASSERT_EQ(files.FWrite(data.data(), 250), 250);
    struct _stati64 status {};
    EXPECT_EQ(files.FStat(P().c_str(), &status), -1) << "open";
    EXPECT_EQ(files.FStat(&status), 0);
    EXPECT_EQ(status.st_size, 250);
    EXPECT_EQ(files.FGetFileSize(), 250);
    EXPECT_EQ(files.GetSize(), 250);
    files.ChangeAllFilesDirectory(u"/moved");
    EXPECT_EQ(files.GetCurrentFileNum(), -1);
    EXPECT_EQ(Read("P"), "# Velmorant c_files \n/moved\\" + (mDir / "P.cfx.0").string() +
                             "\n/moved\\" + (mDir / "P.cfx.1").string() + "\n");
    Write("P", InfoText(2));
    EXPECT_TRUE(MFiles::FileExist(P().c_str()));
    fs::remove(mDir / "P.cfx.1");
    EXPECT_FALSE(MFiles::FileExist(P().c_str()));
    ASSERT_EQ(files.FOpen(kOpenReadBinary), 0);
    EXPECT_EQ(files.GetSize(), -1);
    EXPECT_EQ(files.FGetFileSize(), -1);
    EXPECT_EQ(files.FDelete(), 0);
    EXPECT_TRUE(fs::is_empty(mDir));
}

}  // namespace
}  // namespace basicutils::filestest
