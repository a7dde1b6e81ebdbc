#include <basicutils/environment/CVersionControl.h>

namespace basicutils {

const int16_t kMajorVersion = 1;
const int16_t kMinorVersion = 2;
const int16_t kBugFixVersion = 0;
const int16_t kDataFormatVersion = 4;
const int32_t kBuildVersion = 19980918;

// Constant-initialised: null before any load-time code runs.
CVersionControl* CVersionControl::gVersionControl = nullptr;

CVersionControl::CVersionControl() {
    gVersionControl = this;
}

CVersionControl::~CVersionControl() {
    gVersionControl = nullptr;
}

const char16_t* CVersionControl::GetEditionNameString() const {
    static constexpr const char16_t* kEditions[] = {
        u"Standard Edition", u"Professional Edition", u"Studio Edition",
        u"Trial Edition",    u"Academic Edition",
    };
    constexpr int32_t kCount = sizeof kEditions / sizeof kEditions[0];
    if (mEdition >= 1 && mEdition <= kCount) return kEditions[mEdition - 1];
    return u"Unknown Edition";
}

}  // namespace basicutils
