// Whether an output stream is a terminal, so that a tool can redraw a line
// in place there and write plain lines to files and pipes.
#pragma once

#include <basicutils/Export.h>

#include <cstdio>

namespace basicutils {

BASICUTILS_EXPORT bool IsTerminal(std::FILE* stream);

}  // namespace basicutils
