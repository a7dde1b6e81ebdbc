#include <basicutils/environment/CVelmorantDirectories.h>
#include <basicutils/environment/CVelmorantProfile.h>
#include <basicutils/platform/WinApp.h>

#include <cstdlib>

namespace basicutils {

namespace {
CWinApp* App() {
    return AfxGetModuleState()->m_pCurrentWinApp;
}
}  // namespace

void CVelmorantProfile::SetAppProfile() {
    SetProfilePath(CVelmorantDirectories::GetAppProfile());
}

void CVelmorantProfile::SetProfilePath(const char16_t* path) {
    CWinApp* app = App();
    std::free(const_cast<char16_t*>(app->m_pszRegistryKey));
    app->m_pszRegistryKey = nullptr;
    std::free(const_cast<char16_t*>(app->m_pszProfileName));
    app->m_pszProfileName = _wcsdup(path);
}

int CVelmorantProfile::GetProfileIntW(const char16_t* section, const char16_t* key,
                                      int defaultValue) {
    return static_cast<int>(App()->GetProfileIntW(section, key, defaultValue));
}

void CVelmorantProfile::WriteProfileInt(const char16_t* section, const char16_t* key, int value) {
    App()->WriteProfileInt(section, key, value);
}

CString CVelmorantProfile::GetProfileStringW(const char16_t* section, const char16_t* key,
                                             const char16_t* defaultValue) {
    return App()->GetProfileStringW(section, key, defaultValue);
}

void CVelmorantProfile::WriteProfileStringW(const char16_t* section, const char16_t* key,
                                            const char16_t* value) {
    App()->WriteProfileStringW(section, key, value);
}

}  // namespace basicutils
