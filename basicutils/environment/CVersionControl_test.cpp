// The version record's global pointer and the edition names.
#include <basicutils/environment/CVersionControl.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace basicutils {
namespace {

TEST(CVersionControl, TheGlobalPointerFollowsAnyDestructionAndTheEditionNames) {
    ASSERT_EQ(CVersionControl::gVersionControl, nullptr);
    auto first = std::make_unique<CVersionControl>();
    EXPECT_EQ(CVersionControl::gVersionControl, first.get());
    CVersionControl second;
    first->SetBuildVersion(7);
    const CVersionControl copy(*first);
    EXPECT_EQ(copy.GetBuildVersion(), 7);
    EXPECT_EQ(CVersionControl::gVersionControl, &second) << "a copy leaves the pointer alone";
    first.reset();
    EXPECT_EQ(CVersionControl::gVersionControl, nullptr) << "even though `second` lives";
    const std::pair<int32_t, std::u16string> editions[] = {
        {0, u"Unknown Edition"}, {1, u"Standard Edition"}, {5, u"Academic Edition"},
        {6, u"Unknown Edition"}, {-1, u"Unknown Edition"},
    };
    for (const auto& [edition, name] : editions) {
        second.SetEdition(edition);
        EXPECT_EQ(second.GetEditionNameString(), name) << edition;
    }
}

}  // namespace
}  // namespace basicutils
