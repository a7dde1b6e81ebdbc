// The run-time loader against a shared library built for the test, a file
// that is not a library and names that exist nowhere.
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/Modules.h>
#include <basicutils/platform/testing/TempFolder.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace basicutils {
namespace {

using testing::TempFolder;

std::u16string LibrarySpelling(std::string path) {
    std::u16string out(path.begin(), path.end());
    for (char16_t& c : out)
        if (c == u'/') c = u'\\';
    return out;
}

// The test library's folder in the library's spelling, with its separator.
std::u16string PluginFolder() {
    return LibrarySpelling(std::filesystem::path(BASICUTILS_TEST_PLUGIN).parent_path().string() +
                           "/");
}

TEST(Modules, WindowsStyleNamesFindTheLinuxLibrary) {
    TempFolder folder;
    folder.Write("notalib.so", "just text");
    struct Case {
        std::u16string name;
        uint32_t error;  // 0: loads
    };
    const Case cases[] = {
        {PluginFolder() + u"buplugin.dll", 0},
        {PluginFolder() + u"BUPLUGIN.DLL", ERROR_MOD_NOT_FOUND},  // the stem keeps its case
        {PluginFolder() + u"buplugin", 0},
        {PluginFolder() + u"libbuplugin.so", 0},
        {u"buplugin.dll", 0},  // a bare name: the program's folder first
        {u"libc.so.6", 0},     // the system's loader
        {PluginFolder() + u"missing.dll", ERROR_MOD_NOT_FOUND},
        {u"no-such-library-anywhere", ERROR_MOD_NOT_FOUND},
        {folder.Library("notalib.so"), ERROR_BAD_EXE_FORMAT},
        {u"", ERROR_MOD_NOT_FOUND},
    };
    for (const Case& c : cases) {
        SetLastError(0);
        HMODULE module = LoadLibraryW(c.name.c_str());
        EXPECT_EQ(module ? 0 : GetLastError(), c.error)
            << std::string(c.name.begin(), c.name.end());
        if (module) FreeLibrary(module);
    }
    EXPECT_EQ(LoadLibraryW(nullptr), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
}

TEST(Modules, PathsOfTheLibraryAndOfTheProgram) {
    HMODULE module = LoadLibraryW((PluginFolder() + u"buplugin.dll").c_str());
    ASSERT_NE(module, nullptr);
    char16_t path[1024];
    DWORD n = GetModuleFileNameW(module, path, 1024);
    EXPECT_EQ(std::u16string(path, n), LibrarySpelling(BASICUTILS_TEST_PLUGIN));
    EXPECT_EQ(GetProcAddress(nullptr, "buplugin_answer"), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    EXPECT_TRUE(FreeLibrary(module));
    n = GetModuleFileNameW(nullptr, path, 1024);
    const std::u16string program(path, n);
    EXPECT_EQ(program, LibrarySpelling(std::filesystem::read_symlink("/proc/self/exe").string()));
    char16_t small[5];
    EXPECT_EQ(GetModuleFileNameW(nullptr, small, 5), 5u);
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(std::u16string(small), program.substr(0, 4)) << "cut and terminated";
}

}  // namespace
}  // namespace basicutils
