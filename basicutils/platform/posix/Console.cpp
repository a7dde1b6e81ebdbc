// Terminal detection.
#include <basicutils/platform/Console.h>
#include <stdio.h>
#include <unistd.h>

namespace basicutils {

bool IsTerminal(std::FILE* stream) {
    return stream && isatty(fileno(stream)) == 1;
}

}  // namespace basicutils
