// The info file on real files: how each kind of file at the path opens, the
// writers' exact bytes, and the status and size of a logical file.
#include <optional>

#include "MFilesTest_test.h"

namespace basicutils::filestest {
namespace {

using MFilesInfoTest = MFilesTest;

// "@" in an info file's text stands for the test folder and a slash.
TEST_F(MFilesInfoTest, WhatAPathHoldsDecidesHowItOpens) {
    const std::string many(2048, 'x');
    const struct {
        const char* name;
        std::optional<std::string> text;  // none: nothing at P
        file_open_t mode;
        int answer;
        std::vector<std::string> segments;  // the paths opened, "@P" the file itself
        bool info;
    } cases[] = {
        {"missing, read", std::nullopt, kOpenReadBinary, -1, {}, false},
        {"missing, write", std::nullopt, kOpenWriteBinary, 0, {"@P"}, false},
        {"empty", "", kOpenReadBinary, 0, {"@P"}, false},
        {"no blank behind the header",
         "# Velmorant c_files\n@s0\n",
         kOpenReadBinary,
         0,
         {"@s0"},
         true},
        {"two blanks, CR LF",
         "# Velmorant c_files  \r\n@s0\r\n@s1\r\n",
         kOpenReadBinary,
         0,
         {"@s0", "@s1"},
         true},
        {"video, no newline in 37 bytes",
         std::string("\0\0\x01\xba", 4) + std::string(40, 'U') + "\n",
         kOpenReadBinary,
         0,
         {"@P"},
         false},
        {"header in other case", "# velmorant c_files \n@s0\n", kOpenReadBinary, 0, {"@P"}, false},
        {"header alone", "# Velmorant c_files \n", kOpenReadBinary, -1, {}, true},
        {"comment between paths",
         "# Velmorant c_files \n@s0\n#@s9\n@s1\n",
         kOpenReadBinary,
         0,
         {"@s0", "@s1"},
         true},
        {"blanks stay, an empty line is a path",
         "# Velmorant c_files \n@s0\n@s1 \n\n",
         kOpenReadBinary,
         0,
         {"@s0", "@s1 ", ""},
         true},
    };
    const std::string dir = mDir.string() + "/";
    auto place = [&](std::string text) {
        for (size_t at; (at = text.find('@')) != std::string::npos;) text.replace(at, 1, dir);
        return text;
    };
    Write("s0", "zero");
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        fs::remove(mDir / "P");
        if (c.text) Write("P", place(*c.text));
        MFiles files;
        ::testing::internal::CaptureStderr();
        EXPECT_EQ(files.FOpen(P().c_str(), c.mode), c.answer);
        ::testing::internal::GetCapturedStderr();
        ASSERT_EQ(files.GetFileNum(), static_cast<int>(c.segments.size()));
        EXPECT_EQ(files.GetCurrentFileNum(), c.answer == 0 ? 1 : -1);
        for (size_t i = 0; i < c.segments.size(); ++i) {
            MFileSpecWin* spec = nullptr;
            files.GetFileNames()->FetchItemAt(static_cast<int32_t>(i + 1), &spec);
            EXPECT_EQ(std::u16string(spec->GetFilePath()),
                      fs::path(place(c.segments[i])).u16string());
        }
        EXPECT_EQ(std::u16string(files.GetInfoFilePath()), c.info ? P() : u"");
        EXPECT_EQ(IsVelmorantMFiles(files.GetFileSpec()), c.info ? 1 : 0);
    }
    // The count of paths: 2,048 open, 2,049 do not.
    for (int count : {2048, 2049}) {
        std::string text = "# Velmorant c_files \n";
        for (int i = 0; i < count; ++i) text += dir + "s0\n";
        Write("P", text);
        MFiles files;
        EXPECT_EQ(files.FOpen(P().c_str(), kOpenReadBinary), count == 2048 ? 0 : -1);
        EXPECT_EQ(files.GetFileNum(), count == 2048 ? 2048 : 0);
    }
}

TEST_F(MFilesInfoTest, WritersMakeTheseBytes) {
    MFiles files;
    MFileSpecWin info(P().c_str()), a(WPath("a.mpv").c_str()), b(WPath("b.mpv").c_str());
    EXPECT_EQ(files.AddToInfoFile(a), -1) << "no info file yet";
    Write("P", "video");
    EXPECT_EQ(files.NewInfo(info), -1);
    EXPECT_EQ(Read("P"), "video");
    Write("P", InfoText(3));
    EXPECT_EQ(files.NewInfo(info), 0);
    EXPECT_EQ(Read("P"), InfoText(0));
    fs::remove(mDir / "P");
    EXPECT_EQ(files.AddToInfoFile(a), 0) << "a missing info file starts anew";
    EXPECT_EQ(Read("P"), InfoText(0) + (mDir / "a.mpv").string() + "\n");
    // A unit outside the code page is written as the conversion makes it.
    MFileSpecWin odd(std::u16string(u"x\xD800y").c_str());
    EXPECT_EQ(files.AddToInfoFile(odd), 0);
    EXPECT_EQ(Read("P").substr(InfoText(0).size() + (mDir / "a.mpv").string().size() + 1),
              "x\xEF\xBF\xBDy\n");
    Write("a.mpv", "a");
    MFiles reader;
    ASSERT_EQ(reader.FOpen(P().c_str(), kOpenReadBinary), 0);
    MFileSpecWin* back = nullptr;
    reader.GetFileNames()->FetchItemAt(2, &back);
    EXPECT_EQ(std::u16string(back->GetFilePath()), u"x\xFFFDy") << "not the name written";

    MFiles videos;
    EXPECT_EQ(videos.AddVideoFile(a), 0);
    EXPECT_EQ(videos.AddVideoFile(b), 0);
    EXPECT_EQ(std::u16string(videos.GetInfoFilePath()), WPath("a.mpv.cfx"));
    EXPECT_EQ(Read("a.mpv.cfx"), "# Velmorant c_files  \n" + (mDir / "a.mpv").string() + "\n" +
                                     (mDir / "b.mpv").string() + "\n");
}

TEST_F(MFilesInfoTest, StatusSizesDirectoryAndDeletion) {
    MFiles files;
    files.SetMaxFileSize(100);
    ASSERT_EQ(files.FOpen(P().c_str(), kOpenWriteBinary), 0);
    std::string data = Expand("250d");
    ASSERT_EQ(files.FWrite(data.data(), 250), 250);
    struct _stati64 status {};
    EXPECT_EQ(files.FStat(P().c_str(), &status), -1) << "open";
    EXPECT_EQ(files.FStat(&status), 0);
    EXPECT_EQ(status.st_size, 250);
    EXPECT_EQ(files.FGetFileSize(), 250);
    EXPECT_EQ(files.GetSize(), 250);
    files.FClose();
    EXPECT_TRUE(MFiles::FileExist(P().c_str()));
    ASSERT_EQ(files.FOpen(kOpenReadBinary), 0);
    files.ChangeAllFilesDirectory(u"/moved");
    EXPECT_EQ(files.GetCurrentFileNum(), -1);
    EXPECT_EQ(Read("P"), "# Velmorant c_files \n/moved\\" + (mDir / "P.cfx.0").string() +
                             "\n/moved\\" + (mDir / "P.cfx.1").string() + "\n");
    Write("P", InfoText(2));
    fs::remove(mDir / "P.cfx.1");
    EXPECT_FALSE(MFiles::FileExist(P().c_str()));
    ASSERT_EQ(files.FOpen(kOpenReadBinary), 0);
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(files.GetSize(), -1);
    ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(files.FGetFileSize(), -1);
    EXPECT_EQ(files.FDelete(), 0);
    EXPECT_TRUE(fs::is_empty(mDir));
}

}  // namespace
}  // namespace basicutils::filestest
