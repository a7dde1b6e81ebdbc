#include <basicutils/containers/LArrayIterator.h>
#include <basicutils/containers/LList.h>
#include <basicutils/messaging/LBroadcaster.h>

namespace basicutils {

LBroadcaster::LBroadcaster() : mListeners(nullptr), mIsBroadcasting(true) {}

LBroadcaster::LBroadcaster(const LBroadcaster& other)
    : CMemoryCheck(), mListeners(nullptr), mIsBroadcasting(other.mIsBroadcasting) {}

LBroadcaster& LBroadcaster::operator=(const LBroadcaster& other) {
    mIsBroadcasting = other.mIsBroadcasting;
    return *this;
}

LBroadcaster::~LBroadcaster() {
    BroadcastMessage(kMsgBroadcasterDied, this);
    if (mListeners != nullptr) {
        LListIterator iterator(*mListeners, 0);
        LListener* listener = nullptr;
        while (iterator.NextPointerItem(&listener)) listener->RemoveBroadcaster(this);
        delete mListeners;
    }
}

void LBroadcaster::AddListener(LListener* listener) {
    if (mListeners == nullptr) mListeners = new LList;
    if (mListeners->FetchIndexOf(&listener, 0) != 0) return;
    mListeners->InsertItemsAt(1, kLastIndex, &listener, 0);
    listener->AddBroadcaster(this);
}

void LBroadcaster::RemoveListener(LListener* listener) {
    if (mListeners == nullptr) return;
    mListeners->Remove(&listener, 0);
    listener->RemoveBroadcaster(this);
}

void LBroadcaster::BroadcastMessage(int32_t message, void* param) {
    if (mListeners == nullptr || !mIsBroadcasting) return;
    // The iterator registers with the list, so the walk survives listeners
    // coming and going and ends cleanly if this object is destroyed by a
    // handler. Nothing below touches `this`.
    LListIterator iterator(*mListeners, 0);
    LListener* listener = nullptr;
    while (iterator.NextPointerItem(&listener)) {
        if (listener->IsListening()) listener->ListenToMessage(message, param);
    }
}

LListener::LListener() : mBroadcasters(nullptr), mIsListening(true) {}

LListener::LListener(const LListener& other)
    : mBroadcasters(nullptr), mIsListening(other.mIsListening) {}

LListener& LListener::operator=(const LListener& other) {
    mIsListening = other.mIsListening;
    return *this;
}

LListener::~LListener() {
    if (mBroadcasters != nullptr) {
        LListIterator iterator(*mBroadcasters, 0);
        LBroadcaster* broadcaster = nullptr;
        while (iterator.NextPointerItem(&broadcaster)) broadcaster->RemoveListener(this);
        delete mBroadcasters;
    }
}

bool LListener::ListenToMessage(int32_t, void*) {
    return false;
}

void LListener::AddBroadcaster(LBroadcaster* broadcaster) {
    if (mBroadcasters == nullptr) mBroadcasters = new LList;
    mBroadcasters->InsertItemsAt(1, kLastIndex, &broadcaster, 0);
}

void LListener::RemoveBroadcaster(LBroadcaster* broadcaster) {
    if (mBroadcasters != nullptr) mBroadcasters->Remove(&broadcaster, 0);
}

}  // namespace basicutils
