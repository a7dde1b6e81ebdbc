// The wide-string primitives of the library, on 16-bit units.
//
// The legacy code calls the runtime library's wcs* family on 16-bit text. On
// Linux the C library's wchar_t has 32 bits, so these are the library's own
// versions on char16_t, with the results of the Windows runtime. They live in
// namespace basicutils with C++ linkage and never replace the C library's
// functions in a process.
//
// Results that differ from the C standard's freedom:
// - wcscmp answers exactly -1, 0 or 1; wcsncmp, _wcsicmp and _wcsnicmp answer
//   the difference of the first differing units (after folding to lower case
//   for the case-blind pair). Units compare as unsigned 16-bit values.
// - wcsncpy fills with zero units up to the count and writes no terminator
//   when the source has the count or more units.
// - _wtoi skips blanks, tabs, line feeds, vertical tabs, form feeds and
//   carriage returns, takes one optional sign and then decimal digits 0-9. A
//   value beyond the int range is clamped to INT_MAX or INT_MIN; a text with
//   no digits gives 0.
// - _wtof reads what the runtime's atof reads: the same leading white space,
//   a sign, then a decimal number with optional fraction and exponent, a hex
//   number after 0x or 0X (with optional binary exponent), "inf", "infinity"
//   or "nan" in any case. Overflow gives plus or minus HUGE_VAL, underflow
//   plus or minus 0; no digits give 0. The decimal point is always '.',
//   whatever the locale.
// - wcstok keeps its position per thread, as the Windows runtime does, so
//   two threads can tokenise at the same time; wcstok_r takes the position
//   from the caller instead.
// - The one-unit case and class functions ask the C library's wide
//   functions in the current locale. A unit whose mapping would leave the
//   16-bit range is returned unchanged. Surrogates are neither upper nor
//   lower case.
//
// Every function expects valid pointers to zero-terminated text, as the
// runtime's functions do; null is the caller's fault.
#pragma once

#include <basicutils/Export.h>

#include <cstddef>

namespace basicutils {

BASICUTILS_EXPORT size_t wcslen(const char16_t* s);
BASICUTILS_EXPORT char16_t* wcscpy(char16_t* dst, const char16_t* src);
BASICUTILS_EXPORT char16_t* wcsncpy(char16_t* dst, const char16_t* src, size_t count);
BASICUTILS_EXPORT char16_t* wcscat(char16_t* dst, const char16_t* src);
// Appends at most count units and always a terminator.
BASICUTILS_EXPORT char16_t* wcsncat(char16_t* dst, const char16_t* src, size_t count);

BASICUTILS_EXPORT int wcscmp(const char16_t* a, const char16_t* b);
BASICUTILS_EXPORT int wcsncmp(const char16_t* a, const char16_t* b, size_t count);
BASICUTILS_EXPORT int _wcsicmp(const char16_t* a, const char16_t* b);
BASICUTILS_EXPORT int _wcsnicmp(const char16_t* a, const char16_t* b, size_t count);

// The first (last) unit c, or null. c may be 0, which finds the terminator.
BASICUTILS_EXPORT const char16_t* wcschr(const char16_t* s, char16_t c);
BASICUTILS_EXPORT const char16_t* wcsrchr(const char16_t* s, char16_t c);
// The first occurrence of needle; an empty needle gives s.
BASICUTILS_EXPORT const char16_t* wcsstr(const char16_t* s, const char16_t* needle);
inline char16_t* wcschr(char16_t* s, char16_t c) {
    return const_cast<char16_t*>(wcschr(const_cast<const char16_t*>(s), c));
}
inline char16_t* wcsrchr(char16_t* s, char16_t c) {
    return const_cast<char16_t*>(wcsrchr(const_cast<const char16_t*>(s), c));
}
inline char16_t* wcsstr(char16_t* s, const char16_t* needle) {
    return const_cast<char16_t*>(wcsstr(const_cast<const char16_t*>(s), needle));
}

BASICUTILS_EXPORT int _wtoi(const char16_t* s);
BASICUTILS_EXPORT double _wtof(const char16_t* s);

// Splits s at any unit of delims. A null s continues where the last call on
// this thread stopped. Returns null when no token is left.
BASICUTILS_EXPORT char16_t* wcstok(char16_t* s, const char16_t* delims);
// The same with the position kept in *context.
BASICUTILS_EXPORT char16_t* wcstok_r(char16_t* s, const char16_t* delims, char16_t** context);

BASICUTILS_EXPORT char16_t towupper(char16_t c);
BASICUTILS_EXPORT char16_t towlower(char16_t c);
BASICUTILS_EXPORT int iswupper(char16_t c);
BASICUTILS_EXPORT int iswlower(char16_t c);

}  // namespace basicutils
