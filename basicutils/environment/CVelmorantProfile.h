// CVelmorantProfile: the application's settings by section and key.
//
// Every function goes to the current application object (AfxGetModuleState)
// and its settings store; WinApp.h tells where that store lives and how it
// reads and writes. Without SetProfilePath or SetAppProfile the settings are
// the user's own file "<program>.ini" in $XDG_CONFIG_HOME (else ~/.config).
// SetProfilePath moves them into the given file; SetAppProfile into the file
// beside the program that CVelmorantDirectories::GetAppProfile names.
// Call either once at start, before settings are read.
//
// sProfilePath is kept for client code; nothing in the library reads or
// writes it.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/platform/CString.h>

namespace basicutils {

class BASICUTILS_EXPORT CVelmorantProfile {
  public:
    static void SetAppProfile();
    // Drops the registry key and keeps the settings in `path` from now on.
    static void SetProfilePath(const char16_t* path);

    static int GetProfileIntW(const char16_t* section, const char16_t* key, int defaultValue);
    // A failed write is not reported.
    static void WriteProfileInt(const char16_t* section, const char16_t* key, int value);
    static CString GetProfileStringW(const char16_t* section, const char16_t* key,
                                     const char16_t* defaultValue);
    // A null value removes the key. A failed write is not reported.
    static void WriteProfileStringW(const char16_t* section, const char16_t* key,
                                    const char16_t* value);

    static CString sProfilePath;
};

}  // namespace basicutils
