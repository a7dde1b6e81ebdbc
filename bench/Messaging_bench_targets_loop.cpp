// The alternative's loop, in its own translation unit: it sees only the
// interface of the listeners it calls.
#include "Messaging_bench.h"

namespace bench {

void CallEach(PlainListener* const* listeners, size_t count, int32_t message, void* param) {
    for (size_t i = 0; i < count; ++i) listeners[i]->Listen(message, param);
}

}  // namespace bench
