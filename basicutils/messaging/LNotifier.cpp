#include <basicutils/messaging/LNotifier.h>

namespace basicutils {

void LNotifier::Notify(int32_t message, int32_t param1, intptr_t param2) {
    SNotifyRecord record{message, this, param1, param2};
    BroadcastMessage(kMsgNotify, &record);
}

void LNotifier::Notify(int32_t message, const char16_t* text) {
    Notify(message, 0, reinterpret_cast<intptr_t>(text));
}

void LNotifier::AddResponder(LResponder* responder) {
    AddListener(responder);
}

bool LResponder::ListenToMessage(int32_t message, void* param) {
    if (message != kMsgNotify) return false;
    const auto* record = static_cast<const SNotifyRecord*>(param);
    return Respond(record->mMessage, record->mNotifier, record->mParam1, record->mParam2);
}

bool LResponder::Respond(int32_t, LNotifier*, int32_t, intptr_t) {
    return false;
}

void LResponder::PassNotify(int32_t message, LNotifier* notifier, int32_t param1, intptr_t param2) {
    auto* broadcaster = dynamic_cast<LBroadcaster*>(this);
    if (broadcaster == nullptr) return;
    SNotifyRecord record{message, notifier, param1, param2};
    broadcaster->BroadcastMessage(kMsgNotify, &record);
}

}  // namespace basicutils
