// Runs `basicutils env`, `settings` and `choose` as a user does, with the
// home and settings folders in a temporary folder.
#include <basicutils/platform/testing/ScopedVariable.h>
#include <basicutils/platform/testing/TempFolder.h>
#include <gtest/gtest.h>

#include <string>

#include "RunTool_test.h"

namespace {

using basicutils::testing::ScopedVariable;
using basicutils::testing::TempFolder;
using basicutils_tool_test::RunTool;

class EnvironmentCommands : public testing::Test {
  protected:
    TempFolder mHome;
    ScopedVariable mHomeVariable{"HOME", mHome.Path().string()};
    ScopedVariable mConfig{"XDG_CONFIG_HOME", mHome / "config"};
    ScopedVariable mData{"XDG_DATA_HOME", nullptr};
};

TEST_F(EnvironmentCommands, EnvShowsTheMappedFoldersAndCreatesNothing) {
    const auto run = RunTool({"env"});
    ASSERT_EQ(run.status, 0) << run.err;
    for (const std::string& expected :
         {"settings file          " + (mHome / "config/basicutils.ini"),
          "system drive (home)    " + mHome.Path().string(),
          "system folder          " + (mHome / ".local/share/"),
          "scenarios              " + (mHome / "My Scenarios/") + "   (default)",
          std::string("library                1.2.0, build 19980918"),
          std::string("edition 0 (Unknown Edition)")})
        EXPECT_NE(run.out.find(expected), std::string::npos) << expected << "\n" << run.out;
    EXPECT_FALSE(std::filesystem::exists(mHome / "My Scenarios"));
    EXPECT_FALSE(std::filesystem::exists(mHome / "config"));
}

TEST_F(EnvironmentCommands, SettingsRoundTripAndMissingKeys) {
    const std::string file = mHome / "chosen.ini";
    struct Step {
        std::vector<std::string> args;
        int status;
        std::string out;
    };
    const Step steps[] = {
        {{"settings", "get", "VELMORANT", "Key"}, 1, ""},
        {{"settings", "set", "VELMORANT", "Key", "a value"}, 0, ""},
        {{"settings", "get", "velmorant", "KEY"}, 0, "a value\n"},
        {{"settings", "set", "S", "k", "in a file", "--file", file}, 0, ""},
        {{"settings", "get", "S", "k", "--file", file}, 0, "in a file\n"},
        {{"settings", "get", "S", "k"}, 1, ""},
        {{"settings", "set", "S", "k=1", "v"}, 1, ""},
        {{"settings", "get", "S"}, 2, ""},
    };
    for (const Step& step : steps) {
        const auto run = RunTool(step.args);
        EXPECT_EQ(run.status, step.status) << step.args[1] << " " << step.args.back() << run.err;
        EXPECT_EQ(run.out, step.out);
    }
    EXPECT_EQ(mHome.Read("config/basicutils.ini"), "[VELMORANT]\nKey=a value\n");
    EXPECT_EQ(mHome.Read("chosen.ini"), "[S]\nk=in a file\n");
}

TEST_F(EnvironmentCommands, ChooseWithoutADisplayAnswersAtOnce) {
    ScopedVariable x("DISPLAY", nullptr), wayland("WAYLAND_DISPLAY", nullptr);
    const auto run = RunTool({"choose", "--video"});
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.err.find("no display"), std::string::npos) << run.err;
    EXPECT_EQ(RunTool({"choose", "--bogus"}).status, 2);
}

}  // namespace
