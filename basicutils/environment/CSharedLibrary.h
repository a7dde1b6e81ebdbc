// CSharedLibrary: a shared library loaded when it is first needed.
//
// The name goes to LoadLibraryW unchanged, so the platform's rules for names
// apply: "codec.dll" also finds libcodec.so (see platform/Modules.h). A
// failed load is tried again by the next Load; why it failed is in
// GetLastError. A copy shares the handle and both would free it: copy only
// an object that is not loaded.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/platform/CString.h>
#include <basicutils/platform/Modules.h>

namespace basicutils {

class BASICUTILS_EXPORT CSharedLibrary {
  public:
    // Stores the name; loads nothing.
    explicit CSharedLibrary(const char16_t* name);
    CSharedLibrary(const CSharedLibrary& other) = default;
    CSharedLibrary& operator=(const CSharedLibrary& other) = default;
    // Unload.
    virtual ~CSharedLibrary();

    // True when the library is loaded, now or before.
    virtual bool Load();
    // Loads if need be and finds the function; null when either fails.
    FARPROC LoadFunction(const char* name);
    // Frees the library if it is loaded; functions found before are invalid.
    void Unload();

  protected:
    HMODULE mModule = nullptr;
    CString mLibraryName;
};

}  // namespace basicutils
