// Conversions between 8-bit text and the library's 16-bit text, with the
// calling convention and the results of the Win32 calls of the same names.
//
// Code pages: CP_ACP (0, the system code page) and CP_UTF8 (65001) are UTF-8;
// CP_MACCP (2) is Mac Roman, in the variant Windows uses for it, where byte
// 0xDB is the currency sign U+00A4 and byte 0xF0 the private-use U+F8FF.
// Any other code page fails with ERROR_INVALID_PARAMETER.
//
// Lengths: a source length of -1 means the source is zero-terminated, and
// the terminator is converted and counted in the result. Any other negative
// length, or 0, fails with ERROR_INVALID_PARAMETER. A destination length of 0
// asks for the size the conversion needs, and the destination is not touched.
// A destination that is too small fails with 0 and ERROR_INSUFFICIENT_BUFFER;
// it may then hold the part that fitted.
//
// Bad input: an ill-formed UTF-8 sequence becomes one U+FFFD per maximal
// subpart (the Unicode practice: the longest prefix of a valid sequence is
// one replacement, a byte that can start nothing is one replacement), unless
// MB_ERR_INVALID_CHARS asks for failure with ERROR_NO_UNICODE_TRANSLATION.
// On the way out, a lone surrogate becomes U+FFFD in UTF-8 (or fails with
// WC_ERR_INVALID_CHARS); a character that Mac Roman lacks becomes '?' or the
// first byte of the given default character, and *lpUsedDefaultChar says so.
//
// Flags: MultiByteToWideChar accepts MB_PRECOMPOSED and MB_ERR_INVALID_CHARS;
// MB_PRECOMPOSED is accepted for every code page (Win32 refuses it for UTF-8,
// but our system code page is UTF-8 and the legacy callers pass it) and
// changes nothing, since no composition is done. WideCharToMultiByte accepts
// WC_ERR_INVALID_CHARS and WC_NO_BEST_FIT_CHARS (there is no best fit to turn
// off). Other bits fail with ERROR_INVALID_FLAGS. A default character or a
// used-default flag with UTF-8 fails with ERROR_INVALID_PARAMETER, as in Win32.
// A surrogate pair that Mac Roman cannot hold becomes one default character.
#pragma once

#include <basicutils/Export.h>

#include <cstdint>

namespace basicutils {

inline constexpr uint32_t CP_ACP = 0;
inline constexpr uint32_t CP_MACCP = 2;
inline constexpr uint32_t CP_UTF8 = 65001;

inline constexpr uint32_t MB_PRECOMPOSED = 0x1;
inline constexpr uint32_t MB_COMPOSITE = 0x2;
inline constexpr uint32_t MB_USEGLYPHCHARS = 0x4;
inline constexpr uint32_t MB_ERR_INVALID_CHARS = 0x8;

inline constexpr uint32_t WC_COMPOSITECHECK = 0x200;
inline constexpr uint32_t WC_NO_BEST_FIT_CHARS = 0x400;
inline constexpr uint32_t WC_ERR_INVALID_CHARS = 0x80;

// Returns the number of 16-bit units written (or needed, when cchWideChar is
// 0), or 0 on failure with the reason in GetLastError.
BASICUTILS_EXPORT int MultiByteToWideChar(uint32_t CodePage, uint32_t dwFlags,
                                          const char* lpMultiByteStr, int cbMultiByte,
                                          char16_t* lpWideCharStr, int cchWideChar);

// Returns the number of bytes written (or needed, when cbMultiByte is 0), or
// 0 on failure with the reason in GetLastError. lpUsedDefaultChar, when not
// null, receives 1 if a character had to be replaced by the default, else 0.
BASICUTILS_EXPORT int WideCharToMultiByte(uint32_t CodePage, uint32_t dwFlags,
                                          const char16_t* lpWideCharStr, int cchWideChar,
                                          char* lpMultiByteStr, int cbMultiByte,
                                          const char* lpDefaultChar, int* lpUsedDefaultChar);

}  // namespace basicutils
