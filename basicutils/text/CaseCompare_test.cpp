// The widths and signs of the two comparisons are checked against a model by
// fuzz/WideString_fuzz.cpp; here, that the library leaves the C library's
// 8-bit functions alone.
#include <basicutils/text/CaseCompare.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

namespace basicutils {
namespace {

// The loaded library, found in the process's own memory map, must define none
// of the C library's names, or it would interpose on every caller.
TEST(CaseCompare, LibraryExportsNoCLibraryNames) {
    EXPECT_EQ(::strncasecmp("abcX", "ABCy", 3), 0) << "the C library's own function answers";
    EXPECT_EQ(strcasecmp(u"abc", u"ABC"), 0);
    std::ifstream maps("/proc/self/maps");
    std::string line, library;
    while (library.empty() && std::getline(maps, line))
        if (line.find('/') != std::string::npos &&
            line.find("libbasicutils.so") != std::string::npos)
            library = line.substr(line.find('/'));
    if (library.empty()) GTEST_SKIP() << "library not found in the memory map";
    const std::string listing = ::testing::TempDir() + "basicutils_nm.txt";
    const std::string command =
        "nm -D --defined-only '" + library + "' > '" + listing + "' 2>/dev/null";
    if (std::system(command.c_str()) != 0) GTEST_SKIP() << "nm is not available";
    std::stringstream symbols;
    symbols << std::ifstream(listing).rdbuf();
    std::remove(listing.c_str());
    ASSERT_NE(symbols.str().find("MString"), std::string::npos) << "the listing is not empty";
    while (std::getline(symbols, line)) {
        std::string name = line.substr(line.rfind(' ') + 1);
        for (const char* forbidden :
             {"strcasecmp", "strncasecmp", "basename", "wcslen", "wcscmp", "wcscpy", "wcstok",
              "towupper", "towlower", "MultiByteToWideChar"})
            EXPECT_NE(name, forbidden);
    }
}

}  // namespace
}  // namespace basicutils
