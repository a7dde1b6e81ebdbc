// The info file on real files: how a path opens, the writers' exact bytes,
// and the status, sizes, moving and deletion of a logical file.
#include "MFilesTest_test.h"

namespace basicutils::filestest {
namespace {

// What an existing P holds is read against a model in fuzz/InfoFile_fuzz.cpp;
// here what it does not reach: nothing at P, the segment opened first, and
// the limit of 2,048 paths.
TEST_F(MFilesTest, WhatAPathHoldsDecidesHowItOpens) {
    MFiles missing, created;
    EXPECT_EQ(missing.FOpen(P().c_str(), kOpenReadBinary), -1);
    EXPECT_EQ(missing.GetFileNum() - missing.GetCurrentFileNum(), 1) << "stays closed: 0 and -1";
    EXPECT_EQ(created.FOpen(P().c_str(), kOpenWriteBinary), 0);  // a new plain file
    EXPECT_EQ(created.GetFileNum() + created.GetCurrentFileNum(), 2);
    EXPECT_EQ(std::u16string(created.GetInfoFilePath()), u"");
    created.FClose();
    Write("s", "segment");
    for (int count : {2048, 2049}) {
        std::string text = "# Velmorant c_files \n";
        for (int i = 0; i < count; ++i) text += (mDir / "s").string() + "\n";
        Write("P", text);
        MFiles files;
        EXPECT_EQ(files.FOpen(P().c_str(), kOpenReadBinary), count == 2048 ? 0 : -1);
        EXPECT_EQ(files.GetFileNum(), count == 2048 ? 2048 : 0);
        EXPECT_EQ(files.GetCurrentFileNum(), count == 2048 ? 1 : -1);
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
