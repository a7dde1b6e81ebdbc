// Shared libraries loaded at run time, and the paths of loaded modules.
//
// LoadLibraryW takes a library's path or bare name in the library's
// spelling. Names written for Windows keep working: for a name that ends in
// ".dll" (any case), or has no extension at all, two Linux names are tried
// after the name as given, "lib" NAME ".so" and NAME ".so", in the same
// folder; so "codec.dll" tries codec.dll, libcodec.so, codec.so (names keep
// their case: Linux file names are case-sensitive). A name with
// any other extension ("libcodec.so.2") is tried as given only.
//   A name with a separator is a path (relative to the current folder when
//   it doesn't start with one). A bare name is looked for, candidate by
//   candidate, first in the running program's folder, as Windows does, and
//   then where the system's loader looks (LD_LIBRARY_PATH, the loader's
//   cache, the standard folders).
// Loading a library twice gives the same handle and needs two FreeLibrary.
// Symbols are bound at load and kept local to the library.
//
// Errors reach GetLastError: ERROR_MOD_NOT_FOUND (126) when no candidate
// exists, ERROR_BAD_EXE_FORMAT (193) when one exists but can't be loaded,
// ERROR_PROC_NOT_FOUND (127) for a missing function, ERROR_INVALID_HANDLE for
// a null module and ERROR_INVALID_PARAMETER for a null name.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/platform/Handles.h>

#include <cstdint>

namespace basicutils {

using HMODULE = void*;
using HINSTANCE = HMODULE;
// A found function, to be cast to its real type before the call. It is
// void (*)() rather than Windows's INT_PTR (*)() because compilers accept
// a cast from that one type to any function type without a warning.
using FARPROC = void (*)();

BASICUTILS_EXPORT HMODULE LoadLibraryW(const char16_t* name);
// `name` is the function's 8-bit name.
BASICUTILS_EXPORT FARPROC GetProcAddress(HMODULE module, const char* name);
BASICUTILS_EXPORT BOOL FreeLibrary(HMODULE module);

// The path of a loaded library, or of the running program for a null
// module, in the library's spelling. The text and a terminator are copied
// and the length is the result; a path that doesn't fit is cut to size - 1
// units and terminated, the result is `size` and the last error
// ERROR_INSUFFICIENT_BUFFER. 0 on failure.
BASICUTILS_EXPORT DWORD GetModuleFileNameW(HMODULE module, char16_t* buffer, DWORD size);

}  // namespace basicutils
