#include <basicutils/environment/CSharedLibrary.h>

namespace basicutils {

CSharedLibrary::CSharedLibrary(const char16_t* name) : mLibraryName(name) {}

CSharedLibrary::~CSharedLibrary() {
    Unload();
}

bool CSharedLibrary::Load() {
    if (mModule) return true;
    mModule = LoadLibraryW(mLibraryName);
    return mModule != nullptr;
}

FARPROC CSharedLibrary::LoadFunction(const char* name) {
    Load();
    if (!mModule) return nullptr;
    return GetProcAddress(mModule, name);
}

void CSharedLibrary::Unload() {
    if (!mModule) return;
    FreeLibrary(mModule);
    mModule = nullptr;
}

}  // namespace basicutils
