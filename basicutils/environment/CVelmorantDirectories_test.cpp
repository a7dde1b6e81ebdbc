// The application's folders: the program's own, the user's with their
// settings, the per-project cache chain, and the well-known files.
#include <basicutils/environment/CVelmorantDirectories.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "EnvironmentTest_test.h"

namespace basicutils {
namespace {

using environmenttest::Narrow;
namespace fs = std::filesystem;

class Directories : public environmenttest::UserFolders {};

std::u16string Text(const MString& s) {
    return std::u16string(static_cast<const char16_t*>(s));
}

TEST_F(Directories, PathPartsByTheRuntimesSplit) {
    struct Case {
        const char16_t *path, *directory, *body;
    };
    const Case cases[] = {
        {u"D:\\Work\\Movie.ext", u"D:\\Work\\", u"D:\\Work\\Movie"},
        {u"\\a\\b.c\\name", u"\\a\\b.c\\", u"\\a\\b.c\\name"},  // no extension: unchanged
        {u"a.b.ext", u"", u"a.b"},
        {u"", u"", u""},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Text(CVelmorantDirectories::GetDirectory(c.path)), c.directory) << Narrow(c.path);
        EXPECT_EQ(Text(CVelmorantDirectories::GetBody(c.path)), c.body) << Narrow(c.path);
    }
}

TEST_F(Directories, TheCacheChainCreatesEveryLevel) {
    const std::u16string project = mHome.Library("a.b.ext");
    EXPECT_EQ(Text(CVelmorantDirectories::GetEncodedJacketDataDirectory(project.c_str())),
              mHome.Library("a.b Cache\\Encoded Files\\Jacket Files\\"));
    EXPECT_TRUE(fs::is_directory(mHome / "a.b Cache/Encoded Files/Jacket Files"));
    EXPECT_EQ(Text(CVelmorantDirectories::GetSubtitleTextDirectory(mHome.Library("plain").c_str())),
              mHome.Library("plain Cache\\Subtitle Files\\"));
    EXPECT_TRUE(fs::is_directory(mHome / "plain Cache/Subtitle Files"));
}

TEST_F(Directories, UserFoldersFromSettingsAndTheirDefaults) {
    const std::u16string scenarios = mHome.Library("My Scenarios\\");
    const std::u16string home = mHome.Library();  // with its trailing separator
    EXPECT_EQ(Text(CVelmorantDirectories::GetSystemDrive()), home.substr(0, home.size() - 1));
    EXPECT_EQ(Text(CVelmorantDirectories::GetScenarioDirectory()), scenarios);
    EXPECT_TRUE(fs::is_directory(mHome / "My Scenarios")) << "the default is created";
    fs::remove(mHome / "My Scenarios");
    CVelmorantDirectories::SetScenarioDirectory(u"");
    EXPECT_EQ(Text(CVelmorantDirectories::GetScenarioDirectory()), scenarios);
    EXPECT_FALSE(fs::exists(mHome / "My Scenarios")) << "an empty setting creates nothing";
    CVelmorantDirectories::SetScenarioDirectory(mHome.Library("mine").c_str());
    EXPECT_EQ(Text(CVelmorantDirectories::GetScenarioDirectory()), mHome.Library("mine"));
    EXPECT_TRUE(fs::is_directory(mHome / "mine")) << "stored as given, no separator added";

    EXPECT_EQ(Text(CVelmorantDirectories::GetScriptDirectory()),
              mHome.Library("My Scenarios\\Script\\"));
    CVelmorantDirectories::SetScriptDirectory(u"");
    EXPECT_EQ(Text(CVelmorantDirectories::GetScriptDirectory()), u"");
    const std::u16string mine = mHome.Library("mine");
    EXPECT_EQ(mHome.Read("settings.ini"),
              "[VELMORANT]\nScenario Directory=" + std::string(mine.begin(), mine.end()) +
                  "\nScript Directory=\n");
}

TEST_F(Directories, SystemFoldersLandInTheHome) {
    EXPECT_EQ(Text(CVelmorantDirectories::GetSystemDirectoryW()), mHome.Library(".local\\share\\"));
    EXPECT_EQ(Text(CVelmorantDirectories::GetSystemDriverDirectory()),
              mHome.Library(".local\\share\\drivers\\"));
}

TEST_F(Directories, TheProgramsFolderAndSettingsFile) {
    const std::string program = fs::read_symlink("/proc/self/exe").string();
    std::u16string expected(program.begin(), program.end());
    for (char16_t& c : expected)
        if (c == u'/') c = u'\\';
    EXPECT_EQ(Text(CVelmorantDirectories::GetAppProfile()), expected + u".ini")
        << "no extension: .ini is appended";
    const std::u16string folder = expected.substr(0, expected.rfind(u'\\') + 1);
    EXPECT_EQ(Text(CVelmorantDirectories::GetAppDirectory()), folder);
    EXPECT_EQ(Text(CVelmorantDirectories::GetDocumentationDirectory()),
              folder + u"Documentation\\");
    EXPECT_EQ(Text(CVelmorantDirectories::GetTemplateDirectory()),
              folder + u"\\My Scenarios\\Templates\\");
    struct Case {
        MString (*file)(resolution_t);
        resolution_t resolution;
        const char16_t* name;
    };
    const Case cases[] = {
        {CVelmorantDirectories::GetDefaultBackgroundImageFile, kResolutionNTSC, u"bg_ntsc.mps"},
        {CVelmorantDirectories::GetDefaultBackgroundImageFile, kResolutionPAL, u"bg_pal.mps"},
        {CVelmorantDirectories::GetPlaceHolderWarningMpegFile, resolution_t(2), u"w_ph_pal.mps"},
        {CVelmorantDirectories::GetMissingVobWarningMpegFile, kResolutionNTSC, u"w_vob_ntsc.mps"},
        {CVelmorantDirectories::GetPlaceHolderWarningVobFile, kResolutionPAL, u"w_ph_pal.vob"},
        {CVelmorantDirectories::GetMissingVobWarningVobFile, resolution_t(2), u"w_vob_pal.vob"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(Text(c.file(c.resolution)), folder + u"Data\\" + c.name) << Narrow(c.name);
    EXPECT_EQ(Text(CVelmorantDirectories::GetDefaultSubPicBackgroundPALVideo()),
              folder + u"Data\\defaultStill_PAL.mps");
}

}  // namespace
}  // namespace basicutils
