// The two families of name splitters, side by side on the same inputs.
#include <basicutils/files/PathNames.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace basicutils {
namespace {

TEST(PathNames, FamiliesAnswerTheSameInputDifferently) {
    struct Case {
        std::u16string path;
        std::u16string dirname, basename, basenameLeaves;  // in-place family
        std::u16string dirName, baseName;                  // CString family
    } cases[] = {
        {u"", u".", u".", u"", u".", u"."},
        {u"file", u".", u"file", u"file", u"file", u"file"},
        {u"a\\", u".", u"a", u"a", u"a", u""},
        {u"\\", u"\\", u"\\", u"\\", u"", u""},
        {u"\\a", u"\\", u"a", u"\\a", u"", u"a"},
        {u"a\\b", u"a", u"b", u"a\\b", u"a", u"b"},
        {u"a\\b\\\\", u"a", u"b", u"a\\b", u"a\\b\\", u""},
        {u"\\\\\\", u"\\", u"\\", u"\\", u"\\\\", u""},
        {u"\\\\a", u"\\", u"a", u"\\\\a", u"\\", u"a"},
        {u"a/b", u".", u"a/b", u"a/b", u"a/b", u"a/b"},  // only the backslash separates
    };
    for (const Case& c : cases) {
        std::u16string forDir = c.path, forBase = c.path;
        EXPECT_EQ(std::u16string(dirname(forDir.data())), c.dirname);
        EXPECT_EQ(std::u16string(basename(forBase.data())), c.basename);
        EXPECT_EQ(std::u16string(forBase.c_str()), c.basenameLeaves);
        EXPECT_EQ(std::u16string(DirName(CString(c.path.c_str()))), c.dirName);
        EXPECT_EQ(std::u16string(BaseName(CString(c.path.c_str()))), c.baseName);
        // The 8-bit basename, named once as its callers do beside the C library's.
        using basicutils::basename;
        std::string narrow(c.path.begin(), c.path.end());
        EXPECT_EQ(std::string(basename(narrow.data())),
                  std::string(c.basename.begin(), c.basename.end()));
    }
    EXPECT_EQ(std::u16string(dirname(static_cast<char16_t*>(nullptr))), u".");
    EXPECT_EQ(std::string(basicutils::basename(static_cast<char*>(nullptr))), ".");
}

}  // namespace
}  // namespace basicutils
