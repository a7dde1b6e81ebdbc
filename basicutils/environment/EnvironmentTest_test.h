// Shared by the environment's tests: a fixture whose home, data and
// settings folders are a fresh temporary folder, with the settings kept in
// a file there, so no test reads or writes the user's own.
#pragma once

#include <basicutils/environment/CVelmorantProfile.h>
#include <basicutils/platform/testing/ScopedVariable.h>
#include <basicutils/platform/testing/TempFolder.h>
#include <gtest/gtest.h>

namespace basicutils::environmenttest {

class UserFolders : public ::testing::Test {
  protected:
    void SetUp() override {
        CVelmorantProfile::SetProfilePath(mHome.Library("settings.ini").c_str());
    }
    void TearDown() override { CVelmorantProfile::SetProfilePath(nullptr); }

    testing::TempFolder mHome;
    testing::ScopedVariable mHomeVariable{"HOME", mHome.Path().string()};
    testing::ScopedVariable mConfig{"XDG_CONFIG_HOME", mHome / "config"};
    testing::ScopedVariable mData{"XDG_DATA_HOME", nullptr};
};

}  // namespace basicutils::environmenttest
