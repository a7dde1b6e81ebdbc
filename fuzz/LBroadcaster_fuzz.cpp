// Runs one byte script twice: on a broadcaster whose listener list is a plain
// LList (walked by the inline fast path) and on one whose list is a subclass
// (walked through the virtual Next), with ten listeners that, as the bytes
// say, remove, add, stop, start or destroy listeners (themselves included),
// broadcast again (two levels deep) or destroy the broadcaster while a
// broadcast walks. The general walk is the model: the plain one must call
// the same listeners with the same messages in the same order. After the
// run, both sides of every registration must agree (a live listener is in
// the broadcaster's list exactly when the broadcaster is in its own, and a
// dead broadcaster is in no list).
#include <basicutils/containers/LList.h>
#include <basicutils/messaging/LBroadcaster.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

#include "FuzzSupport.h"

using namespace basicutils;

namespace {

using fuzzsupport::Check;

// Not exactly an LList: a broadcast over it walks with Next.
struct GeneralList : LList {
    uint32_t GrabItemSize(int32_t index) const override { return LList::GrabItemSize(index); }
};

struct Broadcaster : LBroadcaster {
    explicit Broadcaster(bool general) {
        if (general) mListeners = new GeneralList;
    }
    bool Has(LListener* l) const { return mListeners && mListeners->FetchIndexOf(&l, 0) != 0; }
    uint32_t Count() const { return mListeners ? mListeners->GetCount() : 0; }
};

struct World {
    struct Actor : LListener {
        Actor(World* w, int i) : world(w), id(i) {}
        bool ListenToMessage(int32_t message, void*) override { return world->Act(id, message); }
        bool Has(LBroadcaster* b) const {
            return mBroadcasters && mBroadcasters->FetchIndexOf(&b, 0) != 0;
        }
        uint32_t Count() const { return mBroadcasters ? mBroadcasters->GetCount() : 0; }
        World* world;
        int id;
    };

    World(bool general, const uint8_t* data, size_t size) : mData(data), mSize(size) {
        broadcaster = std::make_unique<Broadcaster>(general);
        for (int i = 0; i < 10; ++i) Add(i);
        for (int round = 0; round < 30 && broadcaster && (round == 0 || mPos < mSize); ++round)
            broadcaster->BroadcastMessage(round, nullptr);
    }
    uint8_t Next() { return mPos < mSize ? mData[mPos++] : 0; }
    void Add(int i) {
        if (!actors[i]) actors[i] = std::make_unique<Actor>(this, i);
        if (broadcaster) broadcaster->AddListener(actors[i].get());
    }
    bool Act(int self, int32_t message) {
        log.push_back(self * 100000 + message);
        for (int edits = Next() % 3; edits > 0 && broadcaster; --edits) {
            const uint8_t c = Next();
            const int k = c % 10, what = c / 10;
            if (what < 8 && actors[k]) broadcaster->RemoveListener(actors[k].get());
            if (what >= 8 && what < 16) Add(k);
            if (what == 16 && actors[k]) actors[k]->StopListening();
            if (what == 17 && actors[k]) actors[k]->StartListening();
            if (what == 18) actors[k].reset();
            if (what == 19 && depth < 2)
                ++depth, broadcaster->BroadcastMessage(message + 1000, nullptr), --depth;
            if (what == 20 && Next() % 16 == 0) broadcaster.reset();
        }
        return true;
    }
    void CheckRegistrations() const {
        uint32_t registered = 0;
        for (const auto& a : actors) {
            if (!a) continue;
            const bool inList = broadcaster && broadcaster->Has(a.get());
            Check(a->Count() == (inList ? 1u : 0u));
            Check(!inList || a->Has(broadcaster.get()));
            registered += inList;
        }
        if (broadcaster) Check(broadcaster->Count() == registered);
    }

    const uint8_t* mData;
    size_t mSize;
    size_t mPos = 0;
    std::unique_ptr<Broadcaster> broadcaster;
    std::unique_ptr<Actor> actors[10];
    int depth = 0;
    std::vector<int32_t> log;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    World plain(false, data, size), general(true, data, size);
    Check(plain.log == general.log);
    plain.CheckRegistrations();
    general.CheckRegistrations();
    return 0;
}
