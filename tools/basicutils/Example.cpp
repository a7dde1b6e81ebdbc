// The built-in example: what `basicutils` with no argument shows.
#include <cstdio>

#include <basicutils/BasicUtils.h>

#include "Commands.h"

namespace basicutils_tool {

int RunExample() {
    std::printf("BasicUtils example\n");
    return 0;
}

}  // namespace basicutils_tool
