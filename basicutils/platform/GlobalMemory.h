// Movable global memory blocks, the small part of the Windows heap API that
// the scoped pointer blocks of the containers use.
//
// A block is identified by an HGLOBAL; GlobalLock gives its address, which
// never changes for the block's life (blocks here never move), and
// GlobalHandle turns that address back into the HGLOBAL, so a block can be
// released knowing only its address. GMEM_ZEROINIT fills the block with
// zeros; without it the contents are undefined.
//
// Results follow Win32: GlobalAlloc gives null on failure, GlobalLock gives
// null for a null or unknown handle, GlobalUnlock returns nonzero while the
// block stays locked and 0 when the lock count reaches zero (or was already
// zero), GlobalFree returns null on success and the handle itself when it
// could not be freed. GlobalHandle expects an address that GlobalLock gave
// for a block still alive; a null address gives null.
#pragma once

#include <basicutils/Export.h>

#include <cstddef>
#include <cstdint>

namespace basicutils {

using HGLOBAL = void*;

inline constexpr uint32_t GMEM_FIXED = 0x0000;
inline constexpr uint32_t GMEM_MOVEABLE = 0x0002;
inline constexpr uint32_t GMEM_ZEROINIT = 0x0040;
inline constexpr uint32_t GHND = GMEM_MOVEABLE | GMEM_ZEROINIT;  // 0x42
inline constexpr uint32_t GPTR = GMEM_FIXED | GMEM_ZEROINIT;     // 0x40

BASICUTILS_EXPORT HGLOBAL GlobalAlloc(uint32_t flags, size_t bytes);
BASICUTILS_EXPORT void* GlobalLock(HGLOBAL block);
BASICUTILS_EXPORT int GlobalUnlock(HGLOBAL block);
BASICUTILS_EXPORT HGLOBAL GlobalHandle(const void* address);
BASICUTILS_EXPORT HGLOBAL GlobalFree(HGLOBAL block);

}  // namespace basicutils
