// The size of a global memory block: what the tests of the scoped holders
// check, and no part of the public interface (not installed).
#pragma once

#include <basicutils/Export.h>
#include <basicutils/platform/GlobalMemory.h>

#include <cstddef>

namespace basicutils {

// Bytes of a live block, 0 for a null or unknown handle.
BASICUTILS_EXPORT size_t GlobalSize(HGLOBAL block);

}  // namespace basicutils
