// Case-blind comparison of 16-bit text under the 8-bit names.
//
// The two functions look alike and are not: they differ in width and sign,
// and legacy callers depend on both.
//
// strcasecmp folds each unit with the C library's 8-bit toupper (in the
// current locale; a unit above 255 is left as it is) and then compares only
// the low byte of each, as a signed 8-bit number. So byte values from 0x80
// sort below the ASCII letters, and two units with the same low byte match
// whatever their high bytes; when both low bytes are 0 the answer is 0, even
// if a unit such as 0x0100 is not the terminator.
//
// strncasecmp folds the same way but compares the whole unit, unsigned, for
// at most n units.
//
// Both answer -1, 0 or 1. They are C++ functions in namespace basicutils and
// never stand in for the C library's own 8-bit strcasecmp.
#pragma once

#include <basicutils/Export.h>

#include <cstdint>

namespace basicutils {

BASICUTILS_EXPORT int strcasecmp(const char16_t* a, const char16_t* b);
BASICUTILS_EXPORT int strncasecmp(const char16_t* a, const char16_t* b, uint32_t n);

}  // namespace basicutils
