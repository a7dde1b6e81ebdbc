// UMemUtils: the block copy and block fill under every array edit and every
// Handle resize.
//
// UMemUtils::memcpy always gives the effect of a move: the destination ends
// up holding what the source held before the call, whichever way the two
// blocks overlap. The size is read as a signed 32-bit number, so 0 and
// anything from 0x80000000 up copy nothing. UMemUtils::memset fills with the
// low byte of `value` (a value outside 0..255 is cut to its low 8 bits, as
// the C memset does) and returns the destination.
#pragma once

#include <basicutils/Export.h>

namespace basicutils {

class BASICUTILS_EXPORT UMemUtils {
  public:
    static void memcpy(void* destination, const void* source, unsigned int size);
    static void* memset(void* destination, int value, unsigned int size);
};

}  // namespace basicutils
