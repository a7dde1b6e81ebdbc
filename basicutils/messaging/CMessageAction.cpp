// CMessageAction: reports as numbered broadcasts.
#include <basicutils/messaging/CMessageAction.h>

namespace basicutils {

namespace {
enum : int32_t {
    kKindError = 0,
    kKindWarning = 1,
    kKindInform = 2,
    kKindClear = 3,
    kKindInformWithoutReturn = 4,
    kKindSimpleOutput = 5,
    kKindReturn = 6,
};
const char16_t kEmptyText[] = u"";
}  // namespace

CMessageAction::CMessageAction() = default;

void CMessageAction::Error(void* context, const char16_t* text, message_action_t type) {
    sMessageAction._Error(context, text, GetWindowType(type));
}
void CMessageAction::Warning(void* context, const char16_t* text, message_action_t type) {
    sMessageAction._Warning(context, text, GetWindowType(type));
}
void CMessageAction::Inform(void* context, const char16_t* text, message_action_t type) {
    sMessageAction._Inform(context, text, GetWindowType(type));
}
void CMessageAction::InformWithoutReturn(void* context, const char16_t* text,
                                         message_action_t type) {
    sMessageAction._InformWithoutReturn(context, text, GetWindowType(type));
}
void CMessageAction::SimpleOutput(void* context, const char16_t* text, message_action_t type) {
    sMessageAction._SimpleOutput(context, text, GetWindowType(type));
}
void CMessageAction::Return(message_action_t type) {
    sMessageAction._Return(GetWindowType(type));
}
void CMessageAction::Clear(message_action_t type) {
    sMessageAction._Clear(GetWindowType(type));
}

void CMessageAction::SetDefault(message_action_t type) {
    sDefaultType.store(type, std::memory_order_relaxed);
}

message_action_t CMessageAction::GetWindowType(message_action_t type) {
    return type != kMessageWindowDefault ? type : sDefaultType.load(std::memory_order_relaxed);
}

CMessageAction* CMessageAction::GetMessageAction() {
    return &sMessageAction;
}

void CMessageAction::_Error(void* context, const char16_t* text, message_action_t type) {
    Report(kKindError, type, context, text);
}
void CMessageAction::_Warning(void* context, const char16_t* text, message_action_t type) {
    Report(kKindWarning, type, context, text);
}
void CMessageAction::_Inform(void* context, const char16_t* text, message_action_t type) {
    Report(kKindInform, type, context, text);
}
void CMessageAction::_InformWithoutReturn(void* context, const char16_t* text,
                                          message_action_t type) {
    Report(kKindInformWithoutReturn, type, context, text);
}
void CMessageAction::_SimpleOutput(void* context, const char16_t* text, message_action_t type) {
    Report(kKindSimpleOutput, type, context, text);
}
void CMessageAction::_Return(message_action_t type) {
    Report(kKindReturn, type, nullptr, kEmptyText);
}
void CMessageAction::_Clear(message_action_t type) {
    Report(kKindClear, type, nullptr, nullptr);
}

void CMessageAction::Report(int32_t kind, message_action_t type, void* context,
                            const char16_t* text) {
    if (type < kMessageWindow1 || type > kMessageWindow5) return;
    BroadcastInteraction(kMsgMessageActionFirst + 10 * (type - 1) + kind, context, text);
}

void CMessageAction::BroadcastInteraction(int32_t message, void* context, const char16_t* text) {
    SInteractionInfo info{context, text};
    BroadcastLocked(message, &info);
}

}  // namespace basicutils
