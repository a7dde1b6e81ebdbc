// Notifications: one message number (kMsgNotify) whose argument is a
// four-field record saying what happened and who said so.
//
// An LNotifier fills an SNotifyRecord on its stack and broadcasts it; an
// LResponder turns the record back into a call of Respond. Value classes
// such as CTimecode are notifiers: every change reaches the responders
// registered with that very object before the setter returns. The record
// lives only for the length of the broadcast.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/messaging/LBroadcaster.h>

#include <cstdint>

namespace basicutils {

class LNotifier;
class LResponder;

// Notify codes (the mMessage field of SNotifyRecord).
inline constexpr int32_t kNotifyTimecodeChanged = 7130;
inline constexpr int32_t kNotifyResolutionChanged = 7200;
inline constexpr int32_t kNotifyDropTypeChanged = 7201;
inline constexpr int32_t kNotifyStartTimeChanged = 7202;
inline constexpr int32_t kNotifyDurationChanged = 7203;

// The argument of kMsgNotify. mParam2 is pointer-wide because the text form
// of Notify carries a text pointer in it.
struct SNotifyRecord {
    int32_t mMessage;      // the notify code
    LNotifier* mNotifier;  // who notified first
    int32_t mParam1;
    intptr_t mParam2;
};

// A broadcaster that sends notifications. LBroadcaster is a virtual base, so
// a class that is a notifier by several paths has one broadcaster part.
class BASICUTILS_EXPORT LNotifier : public virtual LBroadcaster {
  public:
    LNotifier() = default;
    LNotifier(const LNotifier& other) : LBroadcaster(other) {}
    // Assigns nothing: neither listeners nor the broadcasting switch.
    LNotifier& operator=(const LNotifier&) { return *this; }
    virtual ~LNotifier() = default;

    void Notify(int32_t message, int32_t param1, intptr_t param2);
    // Notify(message, 0, text).
    void Notify(int32_t message, const char16_t* text);
    void AddResponder(LResponder* responder);
};

class BASICUTILS_EXPORT LResponder : public LListener {
  public:
    LResponder() = default;
    virtual ~LResponder() = default;

    // kMsgNotify becomes a call of Respond with the record's fields; any
    // other message is answered false without a call.
    bool ListenToMessage(int32_t message, void* param) override;
    // Receives a notification; the library's own implementation ignores it.
    virtual bool Respond(int32_t message, LNotifier* notifier, int32_t param1, intptr_t param2);
    // Relays a notification to this object's own listeners, keeping the
    // first notifier, when this responder is also a broadcaster; otherwise
    // does nothing.
    virtual void PassNotify(int32_t message, LNotifier* notifier, int32_t param1, intptr_t param2);
};

}  // namespace basicutils
