// Shared by the environment's tests: a fixture whose home, data and
// settings folders are a fresh temporary folder, with the settings kept in
// a file there, so no test reads or writes the user's own.
#pragma once

#include <basicutils/environment/CVelmorantProfile.h>
#include <basicutils/platform/testing/ScopedVariable.h>
#include <basicutils/platform/testing/TempFolder.h>
#include <gtest/gtest.h>

#include <string>

namespace basicutils::environmenttest {

inline std::string Narrow(const char16_t* s) {
    std::string out;
    for (; s && *s; ++s) out += static_cast<char>(*s);  // the tests' texts are ASCII
    return out;
}

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
