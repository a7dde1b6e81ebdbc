// What the report benchmark calls out of the compiler's sight, in the shared
// library Tasks_bench_targets: the listeners and the alternative's loop (see
// Messaging_bench.h for why both sides reach them from a shared library).
#pragma once

#include <basicutils/messaging/LBroadcaster.h>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace bench {

// A listener whose handler only looks at its arguments.
std::unique_ptr<basicutils::LListener> MakeNullListener();

// The alternative to a report: ListenToMessage(message, param) on each.
void CallEachListener(basicutils::LListener* const* listeners, size_t count, int32_t message,
                      void* param);

}  // namespace bench
