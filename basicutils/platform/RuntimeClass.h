// Run-time classes and dynamic creation.
//
// A class that declares DECLARE_DYNCREATE(Name) in its body and
// IMPLEMENT_DYNCREATE(Name, Base) in one source file gets a constant
// descriptor `Name::className` (as in CRuntimeClass `classCWinThread`),
// reachable as RUNTIME_CLASS(Name), whose CreateObject makes a new object
// with the default constructor, protected or not. The descriptors are
// constant-initialised, so they exist before any static object is built.
//
// DemangledClassName gives the readable name of an object's most derived
// class as the compiler spells it (namespaces included, e.g.
// "basicutils::CThreadDispatcher"), for messages and for telling two
// objects' classes apart by name.
#pragma once

#include <basicutils/Export.h>

#include <cstdint>
#include <string>
#include <typeinfo>

namespace basicutils {

class CObject;

struct BASICUTILS_EXPORT CRuntimeClass {
    const char* m_lpszClassName;
    int32_t m_nObjectSize;
    CObject* (*m_pfnCreateObject)();  // null for a class without dynamic creation
    const CRuntimeClass* m_pBaseClass;

    // A new object, or nullptr for a class that can't be created this way.
    CObject* CreateObject() const;
    bool IsDerivedFrom(const CRuntimeClass* base) const;
};

class BASICUTILS_EXPORT CObject {
  public:
    static const CRuntimeClass classCObject;
    virtual ~CObject() = default;
    virtual const CRuntimeClass* GetRuntimeClass() const;
    bool IsKindOf(const CRuntimeClass* cls) const { return GetRuntimeClass()->IsDerivedFrom(cls); }
};

// The demangled name of a type: "int", "basicutils::CObject", ...
BASICUTILS_EXPORT std::string DemangledClassName(const std::type_info& type);

}  // namespace basicutils

#define RUNTIME_CLASS(name) (&name::class##name)

#define DECLARE_DYNCREATE(name)                           \
  public:                                                 \
    static const ::basicutils::CRuntimeClass class##name; \
    static ::basicutils::CObject* CreateObject();         \
    const ::basicutils::CRuntimeClass* GetRuntimeClass() const override;

#define IMPLEMENT_DYNCREATE(name, base)                                                       \
    ::basicutils::CObject* name::CreateObject() {                                             \
        return new name;                                                                      \
    }                                                                                         \
    const ::basicutils::CRuntimeClass name::class##name = {                                   \
        #name, static_cast<int32_t>(sizeof(name)), &name::CreateObject, RUNTIME_CLASS(base)}; \
    const ::basicutils::CRuntimeClass* name::GetRuntimeClass() const {                        \
        return RUNTIME_CLASS(name);                                                           \
    }

// A run-time class without dynamic creation (CreateObject answers nullptr).
#define DECLARE_DYNAMIC(name)                             \
  public:                                                 \
    static const ::basicutils::CRuntimeClass class##name; \
    const ::basicutils::CRuntimeClass* GetRuntimeClass() const override;

#define IMPLEMENT_DYNAMIC(name, base)                                             \
    const ::basicutils::CRuntimeClass name::class##name = {                       \
        #name, static_cast<int32_t>(sizeof(name)), nullptr, RUNTIME_CLASS(base)}; \
    const ::basicutils::CRuntimeClass* name::GetRuntimeClass() const {            \
        return RUNTIME_CLASS(name);                                               \
    }
