// The settings store behind the application object: values and defaults,
// where the file lives, failed writes, a writer killed at every system call,
// and two processes writing at once.
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/WinApp.h>
#include <basicutils/platform/internal/IniDocument.h>
#include <basicutils/platform/testing/ChildProcess.h>
#include <basicutils/platform/testing/FaultEnv.h>
#include <basicutils/platform/testing/ScopedVariable.h>
#include <basicutils/platform/testing/TempFolder.h>
#include <gtest/gtest.h>

#include <string>

namespace basicutils {
namespace {

using detail::SysCall;
using testing::ChildProcess;
using testing::FaultEnv;
using testing::ScopedEnv;
using testing::ScopedVariable;
using testing::TempFolder;

std::u16string Wide(const std::string& s) {
    return std::u16string(s.begin(), s.end());
}

// An application object whose settings live in `file`.
class FileApp : public CWinApp {
  public:
    explicit FileApp(const std::string& file) : CWinApp(u"app") {
        m_pszProfileName = _wcsdup(Wide(file).c_str());
    }
};

TEST(WinAppSettings, ValuesDefaultsAndRemoval) {
    TempFolder folder;
    FileApp app(folder / "s.ini");
    ASSERT_TRUE(app.WriteProfileStringW(u"Main", u"name", u"Ünïcode value"));
    ASSERT_TRUE(app.WriteProfileInt(u"Main", u"count", -5));
    ASSERT_TRUE(app.WriteProfileStringW(u"Main", u"empty", u""));
    ASSERT_TRUE(app.WriteProfileStringW(u"Main", u"unit", u"12px"));
    struct Case {
        const char16_t* key;
        int asInt;              // read with the default 7
        std::u16string asText;  // read with the default "dflt"
    };
    const Case cases[] = {
        {u"name", 0, u"Ünïcode value"}, {u"COUNT", -5, u"-5"},    {u"empty", 7, u""},
        {u"unit", 12, u"12px"},         {u"missing", 7, u"dflt"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(static_cast<int>(app.GetProfileIntW(u"main", c.key, 7)), c.asInt);
        EXPECT_EQ(app.GetProfileStringW(u"main", c.key, u"dflt"), c.asText.c_str());
    }
    EXPECT_EQ(app.GetProfileStringW(u"Main", u"missing"), u"") << "a null default reads empty";
    ASSERT_TRUE(app.WriteProfileStringW(u"Main", u"name", nullptr));
    EXPECT_EQ(app.GetProfileStringW(u"Main", u"name", u"gone"), u"gone");
    ASSERT_TRUE(app.WriteProfileStringW(u"Main", nullptr, nullptr));
    EXPECT_EQ(folder.Read("s.ini"), "");
}

TEST(WinAppSettings, RefusedWritesLeaveTheFileAlone) {
    TempFolder folder;
    FileApp app(folder / "s.ini");
    ASSERT_TRUE(app.WriteProfileStringW(u"S", u"k", u"old"));
    const std::string before = folder.Read("s.ini");
    EXPECT_FALSE(app.WriteProfileStringW(u"S", u"k", u"two\nlines"));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    FileApp lost(folder / "no/such/folder/s.ini");
    EXPECT_FALSE(lost.WriteProfileStringW(u"S", u"k", u"v"));
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
}

TEST(WinAppSettings, WhereTheFileLives) {
    TempFolder folder;
    ScopedVariable config("XDG_CONFIG_HOME", folder / "fresh/config");
    ScopedVariable home("HOME", folder / "home");
    CWinApp app(u"Tool");
    EXPECT_EQ(AfxGetModuleState()->m_pCurrentWinApp, &app);
    EXPECT_EQ(app.GetProfileFile(), folder.Library("fresh/config/platform_tests.ini"));
    ASSERT_TRUE(app.WriteProfileInt(u"S", u"k", 1)) << "creates the missing folders";
    EXPECT_EQ(folder.Read("fresh/config/platform_tests.ini"), "[S]\nk=1\n");
    app.m_pszProfileName = _wcsdup(u"bare.ini");
    EXPECT_EQ(app.GetProfileFile(), folder.Library("fresh/config/bare.ini"));
    app.SetRegistryKey(u"Maker");
    EXPECT_EQ(app.GetProfileFile(), folder.Library("fresh/config/Maker/Tool.ini"));
    ScopedVariable relative("XDG_CONFIG_HOME", "relative/ignored");
    EXPECT_EQ(app.GetProfileFile(), folder.Library("home/.config/Maker/Tool.ini"));
}

TEST(WinAppSettings, AWriterKilledAtAnySystemCallLeavesTheOldFileOrTheNew) {
    TempFolder folder;
    std::string original = "; settings\n[S]\nk=old\n";
    for (int i = 0; i < 50; ++i) original += "key" + std::to_string(i) + "=value\n";
    int completed = 0, killed = 0;
    for (int n = 1; n < 100 && !completed; ++n) {
        folder.Write("s.ini", original);
        ChildProcess child([&] {
            FileApp app(folder / "s.ini");
            FaultEnv env;
            env.KillAt(SysCall::kAny, n);
            ScopedEnv use(env);
            app.WriteProfileStringW(u"S", u"k", u"new");
        });
        const int status = child.Wait();
        ASSERT_NE(status, -1);
        killed += WIFSIGNALED(status);
        completed += WIFEXITED(status);
        detail::IniDocument document;
        document.Parse(folder.Read("s.ini"));
        const auto value = document.Get(u"S", u"k");
        ASSERT_TRUE(value == u"old" || value == u"new") << "killed at call " << n;
        for (int i = 0; i < 50; ++i)
            ASSERT_EQ(document.Get(u"S", Wide("key" + std::to_string(i))), u"value") << n;
    }
    EXPECT_EQ(completed, 1);
    EXPECT_GT(killed, 10) << "every call of a write was a kill point";
}

TEST(WinAppSettings, TwoProcessesWritingAtOnceKeepAllTheirKeys) {
    TempFolder folder;
    constexpr int kKeys = 60;
    auto writer = [&](char prefix) {
        return [&, prefix] {
            FileApp app(folder / "s.ini");
            for (int i = 0; i < kKeys; ++i)
                app.WriteProfileInt(u"Shared", Wide(prefix + std::to_string(i)).c_str(), i);
        };
    };
    ChildProcess a(writer('a')), b(writer('b'));
    EXPECT_EQ(a.Wait(), 0);
    EXPECT_EQ(b.Wait(), 0);
    FileApp app(folder / "s.ini");
    for (int i = 0; i < 2 * kKeys; ++i) {
        const std::u16string key = Wide((i < kKeys ? "a" : "b") + std::to_string(i % kKeys));
        EXPECT_EQ(app.GetProfileIntW(u"Shared", key.c_str(), -1), UINT(i % kKeys));
    }
}

}  // namespace
}  // namespace basicutils
