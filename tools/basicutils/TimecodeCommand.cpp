#include "Commands.h"

namespace basicutils_tool {

int RunTimecode(const Args&) { return Failure("timecode: not built yet"); }

}  // namespace basicutils_tool
