// What the broadcast benchmark calls out of the compiler's sight, in the
// shared library Messaging_bench_targets: the listeners of both sides and
// the alternative's loop. Neither loop sees a dynamic type or a handler, so
// both make real virtual calls, and both reach the handlers across the same
// distance (a call from the program's own code into a shared library is
// slower on some processors than one between two shared libraries).
#pragma once

#include <basicutils/messaging/LBroadcaster.h>

#include <cstdint>
#include <memory>

namespace bench {

// The alternative's listener: a hand-written observer interface.
struct PlainListener {
    virtual ~PlainListener();
    virtual bool Listen(int32_t message, void* param) = 0;
};

// Both handlers add the message number to a sum kept in the object.
std::unique_ptr<basicutils::LListener> MakeCountingListener();
std::unique_ptr<PlainListener> MakeCountingPlain();

// The alternative to a broadcast: Listen(message, param) on each listener.
void CallEach(PlainListener* const* listeners, size_t count, int32_t message, void* param);

}  // namespace bench
