// The alternative's loop, apart from the listeners it calls.
#include "Tasks_bench.h"

namespace bench {

void CallEachListener(basicutils::LListener* const* listeners, size_t count, int32_t message,
                      void* param) {
    for (size_t i = 0; i < count; ++i) listeners[i]->ListenToMessage(message, param);
}

}  // namespace bench
