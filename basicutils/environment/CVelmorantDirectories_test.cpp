// The application's folders: the program's own, the user's with their
// settings, the per-project cache chain, and the well-known files.
#include <basicutils/environment/CVelmorantDirectories.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "EnvironmentTest_test.h"

namespace basicutils {
namespace {

namespace fs = std::filesystem;
using D = CVelmorantDirectories;

class Directories : public environmenttest::UserFolders {};

std::u16string Text(const MString& s) {
    return static_cast<const char16_t*>(s);
}

TEST_F(Directories, TheFolderTable) {
    const std::string exe = fs::read_symlink("/proc/self/exe").string();
    std::u16string program(exe.begin(), exe.end());
    for (char16_t& c : program)
        if (c == u'/') c = u'\\';
    const std::u16string at = program.substr(0, program.rfind(u'\\') + 1), home = mHome.Library();
    auto in = [this](const char* name) { return mHome.Library(name); };
    // clang-format off
    const std::pair<MString, std::u16string> cases[] = {
        {D::GetDirectory(u"D:\\Work\\Movie.ext"), u"D:\\Work\\"},
        {D::GetBody(u"D:\\Work\\Movie.ext"), u"D:\\Work\\Movie"},
        {D::GetBody(u"\\a\\b.c\\name"), u"\\a\\b.c\\name"},  // no extension: unchanged
        {D::GetDirectory(u"a.b.ext"), u""},
        {D::GetBody(u"a.b.ext"), u"a.b"},
        {D::GetSubtitleTextDirectory(in("plain").c_str()), in("plain Cache\\Subtitle Files\\")},
        {D::GetSystemDrive(), home.substr(0, home.size() - 1)},
        {D::GetSystemDriverDirectory(), in(".local\\share\\drivers\\")},
        {D::GetAppProfile(), program + u".ini"},  // no extension: .ini is appended
        {D::GetAppDirectory(), at},
        {D::GetTemplateDirectory(), at + u"\\My Scenarios\\Templates\\"},
        {D::GetDefaultBackgroundImageFile(kResolutionNTSC), at + u"Data\\bg_ntsc.mps"},
        {D::GetPlaceHolderWarningMpegFile(resolution_t(2)), at + u"Data\\w_ph_pal.mps"},
        {D::GetMissingVobWarningVobFile(kResolutionPAL), at + u"Data\\w_vob_pal.vob"},
    };
    // clang-format on
    for (const auto& [got, expected] : cases) EXPECT_EQ(Text(got), expected);
    EXPECT_EQ(Text(D::GetEncodedJacketDataDirectory(in("a.b.ext").c_str())),
              in("a.b Cache\\Encoded Files\\Jacket Files\\"));
    EXPECT_TRUE(fs::is_directory(mHome / "a.b Cache/Encoded Files/Jacket Files"));
}

TEST_F(Directories, UserFoldersFromSettingsAndTheirDefaults) {
    const std::u16string scenarios = mHome.Library("My Scenarios\\");
    EXPECT_EQ(Text(D::GetScenarioDirectory()), scenarios);
    EXPECT_TRUE(fs::is_directory(mHome / "My Scenarios")) << "the default is created";
    fs::remove(mHome / "My Scenarios");
    D::SetScenarioDirectory(u"");
    EXPECT_EQ(Text(D::GetScenarioDirectory()), scenarios);
    EXPECT_FALSE(fs::exists(mHome / "My Scenarios")) << "an empty setting creates nothing";
    D::SetScenarioDirectory(mHome.Library("mine").c_str());
    EXPECT_EQ(Text(D::GetScenarioDirectory()), mHome.Library("mine"));
    EXPECT_TRUE(fs::is_directory(mHome / "mine")) << "stored as given, no separator added";
    EXPECT_EQ(Text(D::GetScriptDirectory()), mHome.Library("My Scenarios\\Script\\"));
    D::SetScriptDirectory(u"");
    EXPECT_EQ(Text(D::GetScriptDirectory()), u"");
}

}  // namespace
}  // namespace basicutils
