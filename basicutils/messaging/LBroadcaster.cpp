#include <basicutils/containers/LArrayIterator.h>
#include <basicutils/containers/LList.h>
#include <basicutils/messaging/LBroadcaster.h>

namespace basicutils {

namespace {

// Walks a list of pointers from position 0 to the end, as LListIterator's
// Next does, calling visit(item) for each. A plain LList is walked without
// going through the array's virtual operations.
template <class Item, class Visit>
void WalkList(LList& list, Visit visit) {
    if (list.IsPlainList()) {
        LArrayIterator::WalkPlainList<Item>(list, visit);
        return;
    }
    LListIterator iterator(list, 0);
    Item item = nullptr;
    uint32_t size = sizeof item;
    while (iterator.Next(&item, size)) visit(item);
}

}  // namespace

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
        WalkList<LListener*>(*mListeners,
                             [this](LListener* listener) { listener->RemoveBroadcaster(this); });
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
    Deliver(*mListeners, message, param);
}

// The walk registers with the list, so it survives listeners coming and
// going and ends cleanly if the broadcaster is destroyed by a handler:
// nothing here touches the broadcaster. (g++ would otherwise guard each call
// with a test for LListener's own handler, which costs every listener.)
#if defined(__GNUC__) && !defined(__clang__)
__attribute__((optimize("no-devirtualize-speculatively")))
#endif
void LBroadcaster::Deliver(LList& listeners, int32_t message, void* param) {
    WalkList<LListener*>(listeners, [message, param](LListener* listener) {
        if (listener->IsListening()) listener->ListenToMessage(message, param);
    });
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
        WalkList<LBroadcaster*>(*mBroadcasters, [this](LBroadcaster* broadcaster) {
            broadcaster->RemoveListener(this);
        });
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
