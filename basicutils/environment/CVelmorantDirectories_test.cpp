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
    return static_cast<const char16_t*>(s);
}

TEST_F(Directories, PathPartsAndTheCacheChain) {
    struct Case {
        const char16_t *path, *directory, *body;
    };
    const Case cases[] = {
        {u"D:\\Work\\Movie.ext", u"D:\\Work\\", u"D:\\Work\\Movie"},
        {u"\\a\\b.c\\name", u"\\a\\b.c\\", u"\\a\\b.c\\name"},  // no extension: unchanged
        {u"a.b.ext", u"", u"a.b"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Text(CVelmorantDirectories::GetDirectory(c.path)), c.directory) << Narrow(c.path);
        EXPECT_EQ(Text(CVelmorantDirectories::GetBody(c.path)), c.body) << Narrow(c.path);
    }
    const std::u16string project = mHome.Library("a.b.ext");
    EXPECT_EQ(Text(CVelmorantDirectories::GetEncodedJacketDataDirectory(project.c_str())),
              mHome.Library("a.b Cache\\Encoded Files\\Jacket Files\\"));
    EXPECT_TRUE(fs::is_directory(mHome / "a.b Cache/Encoded Files/Jacket Files"));
    EXPECT_EQ(Text(CVelmorantDirectories::GetSubtitleTextDirectory(mHome.Library("plain").c_str())),
              mHome.Library("plain Cache\\Subtitle Files\\"));
}

TEST_F(Directories, UserFoldersFromSettingsAndTheirDefaults) {
    const std::u16string home = mHome.Library(), scenarios = mHome.Library("My Scenarios\\");
    EXPECT_EQ(Text(CVelmorantDirectories::GetSystemDrive()), home.substr(0, home.size() - 1));
    EXPECT_EQ(Text(CVelmorantDirectories::GetSystemDriverDirectory()),
              mHome.Library(".local\\share\\drivers\\"));
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
}

TEST_F(Directories, TheProgramsFolderSettingsFileAndDataFiles) {
    const std::string exe = fs::read_symlink("/proc/self/exe").string();
    std::u16string program(exe.begin(), exe.end());
    for (char16_t& c : program)
        if (c == u'/') c = u'\\';
    EXPECT_EQ(Text(CVelmorantDirectories::GetAppProfile()), program + u".ini")
        << "no extension: .ini is appended";
    const std::u16string folder = program.substr(0, program.rfind(u'\\') + 1);
    EXPECT_EQ(Text(CVelmorantDirectories::GetAppDirectory()), folder);
    EXPECT_EQ(Text(CVelmorantDirectories::GetTemplateDirectory()),
              folder + u"\\My Scenarios\\Templates\\");
    const std::pair<MString, const char16_t*> cases[] = {
        {CVelmorantDirectories::GetDefaultBackgroundImageFile(kResolutionNTSC), u"bg_ntsc.mps"},
        {CVelmorantDirectories::GetPlaceHolderWarningMpegFile(resolution_t(2)), u"w_ph_pal.mps"},
        {CVelmorantDirectories::GetMissingVobWarningVobFile(kResolutionPAL), u"w_vob_pal.vob"},
    };
    for (const auto& [file, name] : cases)
        EXPECT_EQ(Text(file), folder + u"Data\\" + name) << Narrow(name);
}

}  // namespace
}  // namespace basicutils
