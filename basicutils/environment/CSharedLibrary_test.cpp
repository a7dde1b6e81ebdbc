// Loading on demand against the shared library the build makes for the
// tests, and against one that exists nowhere.
#include <basicutils/environment/CSharedLibrary.h>
#include <basicutils/platform/Errors.h>
#include <gtest/gtest.h>

namespace basicutils {
namespace {

class Library : public CSharedLibrary {
  public:
    using CSharedLibrary::CSharedLibrary;
    HMODULE Module() const { return mModule; }
};

TEST(CSharedLibrary, LoadsOnceUnloadsAndLoadsAgain) {
    Library library(u"buplugin.dll");  // libbuplugin.so, beside the test program
    library.Unload();                  // nothing loaded: nothing happens
    ASSERT_TRUE(library.Load());
    const HMODULE first = library.Module();
    EXPECT_TRUE(library.Load());
    EXPECT_EQ(library.Module(), first);
    auto answer = reinterpret_cast<int (*)()>(library.LoadFunction("buplugin_answer"));
    ASSERT_NE(answer, nullptr);
    EXPECT_EQ(answer(), 42);
    EXPECT_EQ(library.LoadFunction("buplugin_nothing"), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_PROC_NOT_FOUND);
    library.Unload();
    EXPECT_EQ(library.Module(), nullptr);
    EXPECT_NE(library.LoadFunction("buplugin_answer"), nullptr) << "loads again on demand";
}

TEST(CSharedLibrary, AMissingLibraryGivesNullEveryTime) {
    Library library(u"no-such-codec.dll");
    for (int attempt = 0; attempt < 2; ++attempt) {
        EXPECT_FALSE(library.Load());
        EXPECT_EQ(GetLastError(), ERROR_MOD_NOT_FOUND);
        EXPECT_EQ(library.LoadFunction("anything"), nullptr);
    }
}

}  // namespace
}  // namespace basicutils
