// Internals of the message queues, for the library's own code; not installed.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/platform/MessageQueue.h>

#include <vector>

namespace basicutils::detail {

// Takes the messages still queued for a window out of its owner's queue,
// oldest first: for a window about to go whose messages must not be lost.
BASICUTILS_EXPORT std::vector<MSG> TakeWindowMessages(HWND window);

}  // namespace basicutils::detail
