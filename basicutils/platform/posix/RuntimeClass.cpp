// Run-time class descriptors and demangled type names.
#include <basicutils/platform/RuntimeClass.h>
#include <cxxabi.h>

#include <cstdlib>
#include <cstring>
#include <memory>

namespace basicutils {

const CRuntimeClass CObject::classCObject = {"CObject", static_cast<int32_t>(sizeof(CObject)),
                                             nullptr, nullptr};

const CRuntimeClass* CObject::GetRuntimeClass() const {
    return &classCObject;
}

CObject* CRuntimeClass::CreateObject() const {
    return m_pfnCreateObject ? m_pfnCreateObject() : nullptr;
}

bool CRuntimeClass::IsDerivedFrom(const CRuntimeClass* base) const {
    for (const CRuntimeClass* c = this; c; c = c->m_pBaseClass)
        if (c == base) return true;
    return false;
}

std::string DemangledClassName(const std::type_info& type) {
    int status = 0;
    std::unique_ptr<char, void (*)(void*)> name(
        abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), std::free);
    return status == 0 && name ? std::string(name.get()) : std::string(type.name());
}

}  // namespace basicutils
