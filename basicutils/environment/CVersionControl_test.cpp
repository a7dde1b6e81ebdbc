// The version record's global pointer, its fields and the edition names.
#include <basicutils/environment/CVersionControl.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace basicutils {
namespace {

TEST(CVersionControl, TheGlobalPointerFollowsConstructionAndAnyDestruction) {
    ASSERT_EQ(CVersionControl::gVersionControl, nullptr);
    auto first = std::make_unique<CVersionControl>();
    EXPECT_EQ(CVersionControl::gVersionControl, first.get());
    EXPECT_EQ(first->GetMajorVersion() | first->GetMinorVersion() | first->GetBugFixVersion() |
                  first->GetDataFormatVersion(),
              0);
    EXPECT_EQ(first->GetBuildVersion() | first->GetEdition() | first->GetProduct(), 0);
    CVersionControl second;
    EXPECT_EQ(CVersionControl::gVersionControl, &second);
    first->SetBuildVersion(7);
    const CVersionControl copy(*first);
    EXPECT_EQ(copy.GetBuildVersion(), 7);
    EXPECT_EQ(CVersionControl::gVersionControl, &second) << "a copy leaves the pointer alone";
    first.reset();
    EXPECT_EQ(CVersionControl::gVersionControl, nullptr) << "even though `second` lives";
}

TEST(CVersionControl, EditionNamesAndTheUnknownOnes) {
    struct Case {
        int32_t edition;
        const char16_t* name;
    };
    const Case cases[] = {
        {0, u"Unknown Edition"}, {1, u"Standard Edition"}, {5, u"Academic Edition"},
        {6, u"Unknown Edition"}, {-1, u"Unknown Edition"}, {INT32_MIN, u"Unknown Edition"},
    };
    CVersionControl record;
    for (const Case& c : cases) {
        record.SetEdition(c.edition);
        EXPECT_EQ(std::u16string(record.GetEditionNameString()), c.name) << c.edition;
    }
}

TEST(CVersionControl, LibraryConstants) {
    EXPECT_EQ(kMajorVersion, 1);
    EXPECT_EQ(kMinorVersion, 2);
    EXPECT_EQ(kBugFixVersion, 0);
    EXPECT_EQ(kDataFormatVersion, 4);
    EXPECT_EQ(kBuildVersion, 19980918);
}

}  // namespace
}  // namespace basicutils
