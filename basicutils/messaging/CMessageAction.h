// CMessageAction: the library's one channel for errors, warnings and
// information.
//
// A report becomes a numbered broadcast to whoever listens; with no listener
// it is lost. The number says both the kind of report and the output window
// it is meant for: 26000 + 10 * (window - 1) + kind, with the kinds Error 0,
// Warning 1, Inform 2, Clear 3, InformWithoutReturn 4, SimpleOutput 5 and
// Return 6. A report that names window 0 goes to the default window
// (sDefaultType, 1 at load); a resolved window outside 1..5 sends nothing.
// The parameter is an SInteractionInfo on the reporter's stack, valid only
// during the broadcast: Clear carries a null text, Return an empty one.
//
// Threads. Reports run their listeners synchronously on the reporter's
// thread, often a task's worker thread. So that a listener can be attached or
// detached on the main thread while a worker reports, this class's
// AddListener and RemoveListener and its broadcasts share one recursive lock
// (a listener may report again from inside a report). Two consequences:
// attach and detach through GetMessageAction() (not by destroying a listener
// that is still attached while tasks run), and never let a listener wait for
// another thread that might be reporting. sDefaultType is atomic.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/messaging/ChannelBroadcaster.h>

#include <atomic>
#include <cstdint>

namespace basicutils {

enum message_action_t : int32_t {
    kMessageWindowDefault = 0,
    kMessageWindow1 = 1,
    kMessageWindow2 = 2,
    kMessageWindow3 = 3,
    kMessageWindow4 = 4,
    kMessageWindow5 = 5,
};

// The first report number; see the rule at the top.
inline constexpr int32_t kMsgMessageActionFirst = 26000;

struct SInteractionInfo {
    void* mContext;
    const char16_t* mText;
};

class BASICUTILS_EXPORT CMessageAction : public detail::ChannelBroadcaster {
  public:
    CMessageAction();
    CMessageAction(const CMessageAction& other) = default;
    CMessageAction& operator=(const CMessageAction& other) = default;
    ~CMessageAction() override = default;

    static void Error(void* context, const char16_t* text,
                      message_action_t type = kMessageWindowDefault);
    static void Warning(void* context, const char16_t* text,
                        message_action_t type = kMessageWindowDefault);
    static void Inform(void* context, const char16_t* text,
                       message_action_t type = kMessageWindowDefault);
    static void InformWithoutReturn(void* context, const char16_t* text,
                                    message_action_t type = kMessageWindowDefault);
    static void SimpleOutput(void* context, const char16_t* text,
                             message_action_t type = kMessageWindowDefault);
    static void Return(message_action_t type = kMessageWindowDefault);
    static void Clear(message_action_t type = kMessageWindowDefault);
    // Stores the default window, unchecked.
    static void SetDefault(message_action_t type);
    // `type` unless it is 0, else the default.
    static message_action_t GetWindowType(message_action_t type);
    static CMessageAction* GetMessageAction();

    static CMessageAction sMessageAction;
    static std::atomic<message_action_t> sDefaultType;

  protected:
    void _Error(void* context, const char16_t* text, message_action_t type);
    void _Warning(void* context, const char16_t* text, message_action_t type);
    void _Inform(void* context, const char16_t* text, message_action_t type);
    void _InformWithoutReturn(void* context, const char16_t* text, message_action_t type);
    void _SimpleOutput(void* context, const char16_t* text, message_action_t type);
    void _Return(message_action_t type);
    void _Clear(message_action_t type);

    // Every report passes here; a subclass can catch them all.
    virtual void BroadcastInteraction(int32_t message, void* context, const char16_t* text);

  private:
    // Sends one report of `kind` to the resolved window `type`.
    void Report(int32_t kind, message_action_t type, void* context, const char16_t* text);
};

}  // namespace basicutils
