// The static settings functions reach the application object's store, and
// the two ways of moving the settings into a file.
#include <basicutils/environment/CVelmorantDirectories.h>
#include <basicutils/environment/CVelmorantProfile.h>
#include <basicutils/platform/WinApp.h>
#include <gtest/gtest.h>

#include "EnvironmentTest_test.h"

namespace basicutils {
namespace {

class Profile : public environmenttest::UserFolders {};

TEST_F(Profile, ValuesGoToTheFileGivenBySetProfilePath) {
    CVelmorantProfile::WriteProfileInt(u"VELMORANT", u"Count", 12);
    CVelmorantProfile::WriteProfileStringW(u"VELMORANT", u"Name", u"disc");
    EXPECT_EQ(CVelmorantProfile::GetProfileIntW(u"VELMORANT", u"Count", 0), 12);
    EXPECT_EQ(CVelmorantProfile::GetProfileStringW(u"VELMORANT", u"Name", u""), u"disc");
    EXPECT_EQ(mHome.Read("settings.ini"), "[VELMORANT]\nCount=12\nName=disc\n");
}

TEST_F(Profile, WithoutAPathTheUsersOwnFileAndSetAppProfileTheProgramsFile) {
    CWinApp* app = AfxGetModuleState()->m_pCurrentWinApp;
    app->SetRegistryKey(u"Maker");
    CVelmorantProfile::SetProfilePath(nullptr);
    EXPECT_EQ(app->GetProfileFile(), mHome.Library("config\\environment_tests.ini"))
        << "the registry key is dropped";
    CVelmorantProfile::SetAppProfile();
    const MString beside = CVelmorantDirectories::GetAppProfile();
    EXPECT_EQ(app->GetProfileFile(), static_cast<const char16_t*>(beside));
}

}  // namespace
}  // namespace basicutils
