// Handles and the basic Win32 types of the platform layer.
//
// A HANDLE names a thread or an event. It stays usable until CloseHandle;
// the object behind it lives on while something else still holds it (a
// running thread keeps its own record alive). A stale or made-up handle
// gets a FALSE / failure result and never touches freed memory. See Sync.h
// for the waits on handles.
#pragma once

#include <basicutils/Export.h>

#include <cstddef>
#include <cstdint>

namespace basicutils {

using DWORD = uint32_t;
using BOOL = int;
using UINT = unsigned int;
using HANDLE = void*;
using ULONG_PTR = uintptr_t;

inline constexpr DWORD INFINITE = 0xFFFFFFFFu;

// Closes a handle: the handle is no longer valid, and the object goes when
// nothing else holds it. FALSE for a handle that is not open.
BASICUTILS_EXPORT BOOL CloseHandle(HANDLE handle);

}  // namespace basicutils
