// Locked registration and broadcasts for the report and progress channels.
#include <basicutils/messaging/ChannelBroadcaster.h>
#include <basicutils/platform/internal/Suspension.h>

namespace basicutils::detail {

void ChannelBroadcaster::AddListener(LListener* listener) {
    LibraryLock g(mChannelLock);
    LBroadcaster::AddListener(listener);
}

void ChannelBroadcaster::RemoveListener(LListener* listener) {
    LibraryLock g(mChannelLock);
    LBroadcaster::RemoveListener(listener);
}

void ChannelBroadcaster::BroadcastLocked(int32_t message, void* param) {
    LibraryLock g(mChannelLock);
    BroadcastMessage(message, param);
}

}  // namespace basicutils::detail
