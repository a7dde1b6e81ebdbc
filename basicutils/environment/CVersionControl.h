// CVersionControl: the application's version record, and the library's own
// version constants.
//
// The application builds one record and fills it; every module reaches it
// through CVersionControl::gVersionControl. Building a record points
// gVersionControl at it, and destroying any record sets it back to null,
// even when a newer record was built in the meantime. A copy takes the
// fields and leaves gVersionControl alone. The constants describe this
// library and are not read by the record.
//
// Editions: the display names of GetEditionNameString, by edition number.
//   1 "Standard Edition"     2 "Professional Edition"   3 "Studio Edition"
//   4 "Trial Edition"        5 "Academic Edition"
// Every other number, 0 included (a fresh record), gives "Unknown Edition".
#pragma once

#include <basicutils/Export.h>

#include <cstdint>

namespace basicutils {

BASICUTILS_EXPORT extern const int16_t kMajorVersion;       // 1
BASICUTILS_EXPORT extern const int16_t kMinorVersion;       // 2
BASICUTILS_EXPORT extern const int16_t kBugFixVersion;      // 0
BASICUTILS_EXPORT extern const int16_t kDataFormatVersion;  // 4
BASICUTILS_EXPORT extern const int32_t kBuildVersion;       // 19980918

class BASICUTILS_EXPORT CVersionControl {
  public:
    CVersionControl();
    CVersionControl(const CVersionControl& other) = default;
    CVersionControl& operator=(const CVersionControl& other) = default;
    virtual ~CVersionControl();

    void SetMajorVersion(int16_t v) { mMajorVersion = v; }
    void SetMinorVersion(int16_t v) { mMinorVersion = v; }
    void SetBugFixVersion(int16_t v) { mBugFixVersion = v; }
    void SetDataFormatVersion(int16_t v) { mDataFormatVersion = v; }
    void SetBuildVersion(int32_t v) { mBuildVersion = v; }
    void SetEdition(int32_t v) { mEdition = v; }
    void SetProduct(int32_t v) { mProduct = v; }

    int16_t GetMajorVersion() const { return mMajorVersion; }
    int16_t GetMinorVersion() const { return mMinorVersion; }
    int16_t GetBugFixVersion() const { return mBugFixVersion; }
    int16_t GetDataFormatVersion() const { return mDataFormatVersion; }
    int32_t GetBuildVersion() const { return mBuildVersion; }
    int32_t GetEdition() const { return mEdition; }
    int32_t GetProduct() const { return mProduct; }

    // The display name of mEdition; see the table above.
    const char16_t* GetEditionNameString() const;

    // The application's record, or null.
    static CVersionControl* gVersionControl;

  protected:
    int16_t mMajorVersion = 0;
    int16_t mMinorVersion = 0;
    int16_t mBugFixVersion = 0;
    int16_t mDataFormatVersion = 0;
    int32_t mBuildVersion = 0;
    int32_t mEdition = 0;
    int32_t mProduct = 0;
};

}  // namespace basicutils
