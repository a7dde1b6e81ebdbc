// Win32-style error numbers for the platform layer.
//
// Every operation of the platform layer that can fail leaves a Win32 error
// number in a per-thread slot, exactly as the legacy callers expect to read
// it with GetLastError. Operating-system failures arrive as errno values and
// are translated by ErrnoToWin32Error. FormatMessageW gives a readable
// English sentence for a number.
//
// WAIT_TIMEOUT (258) is a wait result and lives with the waits in Sync.h;
// FormatMessageW still knows its text.
//
// Only the numbers listed here are produced by the library. An errno without
// a counterpart of its own maps to ERROR_GEN_FAILURE (31).
#pragma once

#include <basicutils/Export.h>

#include <cstdint>
#include <string>

namespace basicutils {

inline constexpr uint32_t ERROR_SUCCESS = 0;
inline constexpr uint32_t NO_ERROR = 0;
inline constexpr uint32_t ERROR_INVALID_FUNCTION = 1;
inline constexpr uint32_t ERROR_FILE_NOT_FOUND = 2;
inline constexpr uint32_t ERROR_PATH_NOT_FOUND = 3;
inline constexpr uint32_t ERROR_TOO_MANY_OPEN_FILES = 4;
inline constexpr uint32_t ERROR_ACCESS_DENIED = 5;
inline constexpr uint32_t ERROR_INVALID_HANDLE = 6;
inline constexpr uint32_t ERROR_NOT_ENOUGH_MEMORY = 8;
inline constexpr uint32_t ERROR_INVALID_DATA = 13;
inline constexpr uint32_t ERROR_OUTOFMEMORY = 14;
inline constexpr uint32_t ERROR_NOT_SAME_DEVICE = 17;
inline constexpr uint32_t ERROR_NO_MORE_FILES = 18;
inline constexpr uint32_t ERROR_WRITE_PROTECT = 19;
inline constexpr uint32_t ERROR_NOT_READY = 21;
inline constexpr uint32_t ERROR_SEEK = 25;
inline constexpr uint32_t ERROR_WRITE_FAULT = 29;
inline constexpr uint32_t ERROR_READ_FAULT = 30;
inline constexpr uint32_t ERROR_GEN_FAILURE = 31;
inline constexpr uint32_t ERROR_SHARING_VIOLATION = 32;
inline constexpr uint32_t ERROR_LOCK_VIOLATION = 33;
inline constexpr uint32_t ERROR_HANDLE_EOF = 38;
inline constexpr uint32_t ERROR_HANDLE_DISK_FULL = 39;
inline constexpr uint32_t ERROR_NOT_SUPPORTED = 50;
inline constexpr uint32_t ERROR_FILE_EXISTS = 80;
inline constexpr uint32_t ERROR_INVALID_PARAMETER = 87;
inline constexpr uint32_t ERROR_BROKEN_PIPE = 109;
inline constexpr uint32_t ERROR_OPEN_FAILED = 110;
inline constexpr uint32_t ERROR_BUFFER_OVERFLOW = 111;
inline constexpr uint32_t ERROR_DISK_FULL = 112;
inline constexpr uint32_t ERROR_CALL_NOT_IMPLEMENTED = 120;
inline constexpr uint32_t ERROR_SEM_TIMEOUT = 121;
inline constexpr uint32_t ERROR_INSUFFICIENT_BUFFER = 122;
inline constexpr uint32_t ERROR_INVALID_NAME = 123;
inline constexpr uint32_t ERROR_NEGATIVE_SEEK = 131;
inline constexpr uint32_t ERROR_MOD_NOT_FOUND = 126;
inline constexpr uint32_t ERROR_PROC_NOT_FOUND = 127;
inline constexpr uint32_t ERROR_DIR_NOT_EMPTY = 145;
inline constexpr uint32_t ERROR_BUSY = 170;
inline constexpr uint32_t ERROR_ALREADY_EXISTS = 183;
inline constexpr uint32_t ERROR_FILENAME_EXCED_RANGE = 206;
inline constexpr uint32_t ERROR_BAD_EXE_FORMAT = 193;
inline constexpr uint32_t ERROR_NO_MORE_ITEMS = 259;
inline constexpr uint32_t ERROR_DIRECTORY = 267;
inline constexpr uint32_t ERROR_NOT_OWNER = 288;
inline constexpr uint32_t ERROR_TOO_MANY_POSTS = 298;
inline constexpr uint32_t ERROR_INVALID_ADDRESS = 487;
inline constexpr uint32_t ERROR_OPERATION_ABORTED = 995;
inline constexpr uint32_t ERROR_IO_INCOMPLETE = 996;
inline constexpr uint32_t ERROR_IO_PENDING = 997;
inline constexpr uint32_t ERROR_NOACCESS = 998;
inline constexpr uint32_t ERROR_INVALID_FLAGS = 1004;
inline constexpr uint32_t ERROR_NO_UNICODE_TRANSLATION = 1113;
inline constexpr uint32_t ERROR_IO_DEVICE = 1117;
inline constexpr uint32_t ERROR_TOO_MANY_LINKS = 1142;
inline constexpr uint32_t ERROR_NOT_FOUND = 1168;
inline constexpr uint32_t ERROR_NOT_ENOUGH_QUOTA = 1816;
inline constexpr uint32_t ERROR_CANT_RESOLVE_FILENAME = 1921;
inline constexpr uint32_t ERROR_TIMEOUT = 1460;

// The per-thread last error. A fresh thread starts with ERROR_SUCCESS.
BASICUTILS_EXPORT uint32_t GetLastError();
BASICUTILS_EXPORT void SetLastError(uint32_t dwErrCode);

// The Win32 number for an errno value; 0 gives ERROR_SUCCESS, anything
// without a counterpart of its own ERROR_GEN_FAILURE.
BASICUTILS_EXPORT uint32_t ErrnoToWin32Error(int errnum);

// Translates errno and stores it as the last error; returns the stored number.
BASICUTILS_EXPORT uint32_t SetLastErrorFromErrno(int errnum);

// The English sentence for a Win32 number, ending in a period and CR LF as
// the system's messages do. An unknown number gives an empty text.
BASICUTILS_EXPORT std::u16string FormatMessageText(uint32_t dwMessageId);

inline constexpr uint32_t FORMAT_MESSAGE_ALLOCATE_BUFFER = 0x00000100;
inline constexpr uint32_t FORMAT_MESSAGE_IGNORE_INSERTS = 0x00000200;
inline constexpr uint32_t FORMAT_MESSAGE_FROM_STRING = 0x00000400;
inline constexpr uint32_t FORMAT_MESSAGE_FROM_HMODULE = 0x00000800;
inline constexpr uint32_t FORMAT_MESSAGE_FROM_SYSTEM = 0x00001000;
inline constexpr uint32_t FORMAT_MESSAGE_ARGUMENT_ARRAY = 0x00002000;
inline constexpr uint32_t ERROR_MR_MID_NOT_FOUND = 317;

// The system-message subset of the Win32 call: FORMAT_MESSAGE_FROM_SYSTEM is
// required (anything else fails with ERROR_INVALID_PARAMETER); inserts are
// never expanded, since the library's texts hold none; the language is
// ignored (English always).
//
// With FORMAT_MESSAGE_ALLOCATE_BUFFER, lpBuffer is really a char16_t** that
// receives a block the caller frees with LocalFree, and nSize is a minimum.
// Without it, lpBuffer receives the text and its terminator when nSize units
// hold them; otherwise the call fails with ERROR_INSUFFICIENT_BUFFER.
// The result is the number of units stored, terminator excluded, or 0 on
// failure (an unknown number gives ERROR_MR_MID_NOT_FOUND).
BASICUTILS_EXPORT uint32_t FormatMessageW(uint32_t dwFlags, const void* lpSource,
                                          uint32_t dwMessageId, uint32_t dwLanguageId,
                                          char16_t* lpBuffer, uint32_t nSize, void* Arguments);

// Frees a block handed out by FormatMessageW with FORMAT_MESSAGE_ALLOCATE_BUFFER.
// Returns null on success, as the Win32 call does; a null block is accepted.
BASICUTILS_EXPORT void* LocalFree(void* hMem);

}  // namespace basicutils
