#include <basicutils/text/CaseCompare.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "TextTest_test.h"

namespace basicutils {
namespace {
using texttest::Narrow;

// The two functions differ in width and sign; each row pins both.
TEST(CaseCompare, WidthsAndSigns) {
    struct Case {
        std::u16string a, b;
        uint32_t n;
        int full;     // strcasecmp
        int counted;  // strncasecmp(a, b, n)
    } cases[] = {
        {u"abc", u"ABC", 10, 0, 0},
        {u"abc", u"abd", 10, -1, -1},
        {u"abd", u"abc", 10, 1, 1},
        {u"ab", u"abc", 10, -1, -1},
        {u"abcd", u"ABxx", 2, -1, 0},
        {u"abcd", u"ABxx", 3, -1, -1},
        {u"abc", u"xyz", 0, -1, 0},
        // Only the low byte counts in strcasecmp, the whole unit in strncasecmp.
        {u"\x0141", u"\x0041", 1, 0, 1},
        {u"\x0141", u"\x0061", 1, 0, 1},
        // Signed low bytes: 0xC9 is negative and sorts below 'A'; unsigned it is above.
        {u"\x00C9", u"A", 1, -1, 1},
        {u"A", u"\x00C9", 1, 1, -1},
        // A unit with a zero low byte ends strcasecmp as if it were the end.
        {u"a\x0100z", u"a", 5, 0, 1},
        {u"[", u"a", 1, 1, 1},  // folded to upper case, 0x5B sorts above the letters
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(Narrow(c.a) + " / " + Narrow(c.b) + " n=" + std::to_string(c.n));
        EXPECT_EQ(strcasecmp(c.a.c_str(), c.b.c_str()), c.full);
        EXPECT_EQ(strncasecmp(c.a.c_str(), c.b.c_str(), c.n), c.counted);
    }
    // The library's 16-bit overloads must not have replaced the C library's.
    EXPECT_EQ(::strcasecmp("Hello", "hELLO"), 0);
    EXPECT_LT(::strcasecmp("abc", "ABD"), 0);
    EXPECT_EQ(::strncasecmp("abcX", "ABCy", 3), 0);
}

// The loaded library, found in the process's own memory map, must define none
// of the C library's names, or it would interpose on every caller.
TEST(CaseCompare, LibraryExportsNoCLibraryNames) {
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
