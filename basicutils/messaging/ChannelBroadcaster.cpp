// Locked registration and broadcasts for the report and progress channels.
#include <basicutils/messaging/ChannelBroadcaster.h>

namespace basicutils::detail {

void ChannelBroadcaster::AddListener(LListener* listener) {
    std::lock_guard<std::recursive_mutex> g(mChannelLock);
    LBroadcaster::AddListener(listener);
}

void ChannelBroadcaster::RemoveListener(LListener* listener) {
    std::lock_guard<std::recursive_mutex> g(mChannelLock);
    LBroadcaster::RemoveListener(listener);
}

void ChannelBroadcaster::BroadcastLocked(int32_t message, void* param) {
    std::lock_guard<std::recursive_mutex> g(mChannelLock);
    BroadcastMessage(message, param);
}

}  // namespace basicutils::detail
