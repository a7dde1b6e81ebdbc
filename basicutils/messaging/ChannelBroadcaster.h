// A broadcaster whose registration and broadcasts share one recursive lock,
// for the process-wide channels that workers report through while the main
// thread attaches and detaches listeners. Recursive, so that a listener may
// report again, or change the registration, from inside a broadcast. Its
// registration functions hide those of LBroadcaster: call them through the
// channel's own type (GetMessageAction(), GetThreadStatus()).
#pragma once

#include <basicutils/Export.h>
#include <basicutils/messaging/LBroadcaster.h>

#include <cstdint>
#include <mutex>

namespace basicutils::detail {

class BASICUTILS_EXPORT ChannelBroadcaster : public LBroadcaster {
  public:
    ChannelBroadcaster() = default;
    ChannelBroadcaster(const ChannelBroadcaster& other) : LBroadcaster(other) {}
    ChannelBroadcaster& operator=(const ChannelBroadcaster& other) {
        LBroadcaster::operator=(other);
        return *this;
    }

    void AddListener(LListener* listener);
    void RemoveListener(LListener* listener);

  protected:
    void BroadcastLocked(int32_t message, void* param);

  private:
    std::recursive_mutex mChannelLock;
};

}  // namespace basicutils::detail
