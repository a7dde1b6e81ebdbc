// Numbered, synchronous messages from broadcasters to listeners.
//
// An LBroadcaster sends a message number and one untyped argument to every
// LListener registered with it, in order of registration, on the caller's
// thread, before BroadcastMessage returns. Registration is recorded on both
// sides, so either side may be destroyed first: a dying broadcaster tells its
// listeners (message 202) and unlinks itself from them, a dying listener
// unlinks itself from every broadcaster.
//
// A broadcast walks the listener list with an LListIterator, so handlers may
// add or remove listeners, destroy themselves, destroy the broadcaster or
// broadcast again while a broadcast is under way:
//   - a listener removed during the walk gets no further call;
//   - a listener added during the walk is appended and hears the message
//     under way (unless the current listener was the last and removed itself);
//   - if the broadcaster dies, the walk ends without touching it again.
// The "broadcasting" and "listening" switches are independent of
// registration; the broadcasting switch is read once, when a walk starts.
//
// None of these classes locks: an object shared between threads is guarded
// by its owner.
#pragma once

#include <basicutils/Export.h>

#include <cstdint>

namespace basicutils {

class LList;
class LListener;

// Message numbers used by the library's broadcasters.
inline constexpr int32_t kMsgBroadcasterDied = 202;  // argument: the LBroadcaster*
inline constexpr int32_t kMsgNotify = 99999;         // argument: SNotifyRecord*

// An empty base class shared by broadcasters and idle processes. It has no
// data and does nothing; the flag of its constructor is ignored.
class BASICUTILS_EXPORT CMemoryCheck {
  public:
    CMemoryCheck() = default;
    explicit CMemoryCheck(bool) {}
};

class BASICUTILS_EXPORT LBroadcaster : public CMemoryCheck {
  public:
    LBroadcaster();
    // A copy has no listeners; only the broadcasting switch is copied.
    LBroadcaster(const LBroadcaster& other);
    LBroadcaster& operator=(const LBroadcaster& other);
    // Broadcasts kMsgBroadcasterDied (if broadcasting), then unlinks every
    // listener.
    virtual ~LBroadcaster();

    // Registers both ways; a second registration of one listener is ignored.
    void AddListener(LListener* listener);
    // Unregisters both ways; removing what was never added has no effect.
    void RemoveListener(LListener* listener);
    // Calls ListenToMessage of every listening listener; results are ignored.
    void BroadcastMessage(int32_t message, void* param);

    void StartBroadcasting() { mIsBroadcasting = true; }
    void StopBroadcasting() { mIsBroadcasting = false; }
    bool IsBroadcasting() const { return mIsBroadcasting; }

  protected:
    LList* mListeners;     // LListener* items; made by the first AddListener
    bool mIsBroadcasting;  // true in a new object

  private:
    // The walk of a broadcast, apart so that a broadcast to nobody costs
    // no more than its two tests.
    static void Deliver(LList& listeners, int32_t message, void* param);
};

class BASICUTILS_EXPORT LListener {
  public:
    LListener();
    // A copy has no registrations; only the listening switch is copied.
    LListener(const LListener& other);
    LListener& operator=(const LListener& other);
    // Removes itself from every broadcaster it is registered with.
    virtual ~LListener();

    // Receives a message; the library's own implementation ignores it.
    virtual bool ListenToMessage(int32_t message, void* param);

    void StartListening() { mIsListening = true; }
    void StopListening() { mIsListening = false; }
    bool IsListening() const { return mIsListening; }

  protected:
    friend class LBroadcaster;
    // Kept by LBroadcaster: appends (no duplicate search) and removes.
    void AddBroadcaster(LBroadcaster* broadcaster);
    void RemoveBroadcaster(LBroadcaster* broadcaster);

    LList* mBroadcasters;  // LBroadcaster* items; made on first need
    bool mIsListening;     // true in a new object
};

}  // namespace basicutils
