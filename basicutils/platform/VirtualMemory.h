// Page-granular memory: the part of the Windows virtual-memory API that
// unbuffered file I/O uses for its buffers.
//
// VirtualAlloc(nullptr, size, MEM_COMMIT [| MEM_RESERVE], PAGE_READWRITE)
// gives a fresh, page-aligned, zero-filled block of at least `size` bytes,
// rounded up to whole pages; VirtualFree(address, 0, MEM_RELEASE) gives the
// whole block back. Page alignment is what direct I/O needs, so these blocks
// suit transfers on handles opened with FILE_FLAG_NO_BUFFERING.
//
// Only what the library uses is offered, and anything else fails cleanly with
// GetLastError set: a chosen address or MEM_RESERVE without MEM_COMMIT
// (ERROR_INVALID_PARAMETER), a protection other than PAGE_READWRITE or
// PAGE_READONLY (ERROR_INVALID_PARAMETER), a size of 0 (ERROR_INVALID_PARAMETER),
// no memory (ERROR_NOT_ENOUGH_MEMORY). VirtualFree accepts MEM_RELEASE with
// size 0 on an address VirtualAlloc gave (else ERROR_INVALID_PARAMETER or
// ERROR_INVALID_ADDRESS), and MEM_DECOMMIT, which drops the contents of the
// pages in range (they read as zeros afterwards) but keeps them usable.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/platform/Handles.h>

#include <cstddef>

namespace basicutils {

inline constexpr DWORD MEM_COMMIT = 0x00001000;
inline constexpr DWORD MEM_RESERVE = 0x00002000;
inline constexpr DWORD MEM_DECOMMIT = 0x00004000;
inline constexpr DWORD MEM_RELEASE = 0x00008000;
inline constexpr DWORD PAGE_NOACCESS = 0x01;
inline constexpr DWORD PAGE_READONLY = 0x02;
inline constexpr DWORD PAGE_READWRITE = 0x04;

BASICUTILS_EXPORT void* VirtualAlloc(void* address, size_t size, DWORD allocationType,
                                     DWORD protect);
BASICUTILS_EXPORT BOOL VirtualFree(void* address, size_t size, DWORD freeType);

}  // namespace basicutils
