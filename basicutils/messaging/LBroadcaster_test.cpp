// Broadcasters and listeners: registration on both sides, and what happens
// when the set of listeners, or the broadcaster itself, changes during a
// broadcast.
#include <basicutils/containers/LList.h>
#include <basicutils/messaging/LBroadcaster.h>
#include <basicutils/messaging/LNotifier.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace basicutils {
namespace {

struct Broadcaster : LBroadcaster {
    uint32_t ListenerCount() const { return mListeners ? mListeners->GetCount() : 0; }
};

// Records the messages it hears in a shared log as "name:message", and runs
// an optional action on each call.
struct Listener : LListener {
    Listener(std::string n, std::vector<std::string>* l) : name(std::move(n)), log(l) {}
    bool ListenToMessage(int32_t message, void* param) override {
        log->push_back(name + ":" + std::to_string(message));
        lastParam = param;
        if (action) action(message);
        return true;
    }
    uint32_t BroadcasterCount() const { return mBroadcasters ? mBroadcasters->GetCount() : 0; }
    std::string name;
    std::vector<std::string>* log;
    void* lastParam = nullptr;
    std::function<void(int32_t)> action;
};

using Log = std::vector<std::string>;

TEST(LBroadcaster, RegistrationIsHeldOnBothSidesAndOnlyOnce) {
    Log log;
    Broadcaster b;
    Listener l("a", &log);
    b.AddListener(&l);
    b.AddListener(&l);
    EXPECT_EQ(b.ListenerCount(), 1u);
    EXPECT_EQ(l.BroadcasterCount(), 1u);
    b.BroadcastMessage(5, nullptr);
    EXPECT_EQ(log, (Log{"a:5"}));

    Listener stranger("s", &log);
    b.RemoveListener(&stranger);
    EXPECT_EQ(b.ListenerCount(), 1u);

    b.RemoveListener(&l);
    EXPECT_EQ(b.ListenerCount(), 0u);
    EXPECT_EQ(l.BroadcasterCount(), 0u);
    b.BroadcastMessage(6, nullptr);
    EXPECT_EQ(log.size(), 1u);
}

TEST(LBroadcaster, DeliversInOrderOfRegistrationAndHonoursSwitches) {
    Log log;
    Broadcaster b;
    b.BroadcastMessage(1, nullptr);  // never had a listener: nothing happens
    Listener x("x", &log), y("y", &log), z("z", &log);
    b.AddListener(&y);
    b.AddListener(&x);
    b.AddListener(&z);
    int payload = 0;
    b.BroadcastMessage(7, &payload);
    EXPECT_EQ(log, (Log{"y:7", "x:7", "z:7"}));
    EXPECT_EQ(z.lastParam, &payload);

    log.clear();
    x.StopListening();
    b.BroadcastMessage(8, nullptr);
    EXPECT_EQ(log, (Log{"y:8", "z:8"}));
    EXPECT_EQ(b.ListenerCount(), 3u);  // a stopped listener stays registered

    log.clear();
    b.StopBroadcasting();
    b.BroadcastMessage(9, nullptr);
    EXPECT_TRUE(log.empty());
    b.StartBroadcasting();
    x.StartListening();
    b.BroadcastMessage(10, nullptr);
    EXPECT_EQ(log, (Log{"y:10", "x:10", "z:10"}));
}

// Changes made by a handler while a broadcast walks the list.
struct WalkCase {
    const char* name;
    // Given the three listeners (registered a, b, c) and the broadcaster,
    // makes a's handler do something.
    std::function<void(Broadcaster&, std::vector<std::unique_ptr<Listener>>&, Log&)> arrange;
    Log expected;
};

TEST(LBroadcaster, ChangesDuringABroadcast) {
    const WalkCase cases[] = {
        {"current removes itself: the others still hear",
         [](Broadcaster& bc, auto& ls, Log&) {
             ls[0]->action = [&bc, l = ls[0].get()](int32_t) { bc.RemoveListener(l); };
         },
         {"a:1", "b:1", "c:1"}},
        {"current removes a later one: it is not called",
         [](Broadcaster& bc, auto& ls, Log&) {
             ls[0]->action = [&bc, l = ls[2].get()](int32_t) { bc.RemoveListener(l); };
         },
         {"a:1", "b:1"}},
        {"current destroys itself",
         [](Broadcaster&, auto& ls, Log&) { ls[0]->action = [&ls](int32_t) { ls[0].reset(); }; },
         {"a:1", "b:1", "c:1"}},
        {"current destroys a later one",
         [](Broadcaster&, auto& ls, Log&) { ls[0]->action = [&ls](int32_t) { ls[1].reset(); }; },
         {"a:1", "c:1"}},
        {"a listener added during the walk hears the message under way",
         [](Broadcaster& bc, auto& ls, Log& log) {
             ls[0]->action = [&bc, &ls, &log](int32_t) {
                 if (ls.size() != 3) return;
                 ls.push_back(std::make_unique<Listener>("d", &log));
                 bc.AddListener(ls.back().get());
             };
         },
         {"a:1", "b:1", "c:1", "d:1"}},
        {"a nested broadcast runs its own full walk",
         [](Broadcaster& bc, auto& ls, Log&) {
             ls[0]->action = [&bc, l = ls[0].get()](int32_t m) {
                 if (m == 1) bc.BroadcastMessage(2, nullptr);
                 (void)l;
             };
         },
         {"a:1", "a:2", "b:2", "c:2", "b:1", "c:1"}},
        {"StopBroadcasting in a handler does not end the walk under way",
         [](Broadcaster& bc, auto& ls, Log&) {
             ls[0]->action = [&bc](int32_t) { bc.StopBroadcasting(); };
         },
         {"a:1", "b:1", "c:1"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Log log;
        Broadcaster bc;
        std::vector<std::unique_ptr<Listener>> ls;
        for (const char* n : {"a", "b", "c"}) {
            ls.push_back(std::make_unique<Listener>(n, &log));
            bc.AddListener(ls.back().get());
        }
        c.arrange(bc, ls, log);
        bc.BroadcastMessage(1, nullptr);
        EXPECT_EQ(log, c.expected);
    }
}

TEST(LBroadcaster, LastListenerRemovingItselfDoesNotSeeAnAppendedOne) {
    Log log;
    Broadcaster bc;
    Listener a("a", &log), b("b", &log);
    auto late = std::make_unique<Listener>("late", &log);
    bc.AddListener(&a);
    bc.AddListener(&b);
    b.action = [&](int32_t) {
        bc.RemoveListener(&b);
        bc.AddListener(late.get());
    };
    bc.BroadcastMessage(1, nullptr);
    EXPECT_EQ(log, (Log{"a:1", "b:1"}));
    log.clear();
    bc.BroadcastMessage(2, nullptr);
    EXPECT_EQ(log, (Log{"a:2", "late:2"}));
}

TEST(LBroadcaster, BroadcasterDestroyedByAHandlerEndsTheWalk) {
    Log log;
    auto bc = std::make_unique<Broadcaster>();
    Listener a("a", &log), b("b", &log);
    bc->AddListener(&a);
    bc->AddListener(&b);
    a.action = [&](int32_t m) {
        if (m == 1) bc.reset();
    };
    bc->BroadcastMessage(1, nullptr);
    // a heard 1, then the dying broadcaster's 202 reached a and b; the walk
    // of message 1 ended there.
    EXPECT_EQ(log, (Log{"a:1", "a:202", "b:202"}));
    EXPECT_EQ(a.BroadcasterCount(), 0u);
    EXPECT_EQ(b.BroadcasterCount(), 0u);
}

TEST(LBroadcaster, DyingBroadcasterAnnouncesItselfUnlessStopped) {
    for (bool stopped : {false, true}) {
        SCOPED_TRACE(stopped ? "stopped" : "broadcasting");
        Log log;
        Listener l("l", &log);
        void* base = nullptr;
        {
            Broadcaster bc;
            base = static_cast<LBroadcaster*>(&bc);
            bc.AddListener(&l);
            if (stopped) bc.StopBroadcasting();
        }
        EXPECT_EQ(log, stopped ? Log{} : Log{"l:202"});
        if (!stopped) {
            EXPECT_EQ(l.lastParam, base);
        }
        EXPECT_EQ(l.BroadcasterCount(), 0u);  // unlinked either way
    }
}

TEST(LBroadcaster, DyingListenerLeavesEveryBroadcaster) {
    Log log;
    Broadcaster one, two;
    auto l = std::make_unique<Listener>("l", &log);
    Listener other("o", &log);
    one.AddListener(l.get());
    two.AddListener(l.get());
    two.AddListener(&other);
    l.reset();
    EXPECT_EQ(one.ListenerCount(), 0u);
    EXPECT_EQ(two.ListenerCount(), 1u);
    two.BroadcastMessage(3, nullptr);
    EXPECT_EQ(log, (Log{"o:3"}));
}

TEST(LBroadcaster, CopiesHaveNoRegistrations) {
    Log log;
    Broadcaster bc;
    Listener l("l", &log);
    bc.AddListener(&l);
    bc.StopBroadcasting();
    l.StopListening();

    Broadcaster bcCopy(bc);
    Listener lCopy(l);
    EXPECT_EQ(bcCopy.ListenerCount(), 0u);
    EXPECT_FALSE(bcCopy.IsBroadcasting());
    EXPECT_EQ(lCopy.BroadcasterCount(), 0u);
    EXPECT_FALSE(lCopy.IsListening());

    Broadcaster assigned;
    Listener other("o", &log);
    assigned.AddListener(&other);
    assigned = bc;  // switch copied, own listeners kept
    EXPECT_FALSE(assigned.IsBroadcasting());
    EXPECT_EQ(assigned.ListenerCount(), 1u);
}

// Notifications.
struct Responder : LResponder {
    bool Respond(int32_t message, LNotifier* notifier, int32_t p1, intptr_t p2) override {
        calls.push_back({message, notifier, p1, p2});
        return true;
    }
    std::vector<SNotifyRecord> calls;
};

struct RelayingResponder : LResponder, LBroadcaster {
    bool Respond(int32_t message, LNotifier* notifier, int32_t p1, intptr_t p2) override {
        PassNotify(message, notifier, p1, p2);
        return true;
    }
};

TEST(LNotifier, RecordsReachRespond) {
    LNotifier notifier;
    Responder r;
    notifier.AddResponder(&r);
    notifier.Notify(7130, 1, 2);
    static const char16_t kText[] = u"hello";
    notifier.Notify(7201, kText);
    ASSERT_EQ(r.calls.size(), 2u);
    EXPECT_EQ(r.calls[0].mMessage, 7130);
    EXPECT_EQ(r.calls[0].mNotifier, &notifier);
    EXPECT_EQ(r.calls[0].mParam1, 1);
    EXPECT_EQ(r.calls[0].mParam2, 2);
    EXPECT_EQ(r.calls[1].mParam1, 0);
    EXPECT_EQ(reinterpret_cast<const char16_t*>(r.calls[1].mParam2), kText);

    // Any other message number is not a notification.
    EXPECT_FALSE(r.ListenToMessage(5, nullptr));
    EXPECT_EQ(r.calls.size(), 2u);
}

TEST(LNotifier, PassNotifyRelaysOnlyFromABroadcaster) {
    Responder plain;
    plain.PassNotify(1, nullptr, 0, 0);  // not a broadcaster: nothing happens

    LNotifier source;
    RelayingResponder relay;
    Responder end;
    source.AddResponder(&relay);
    relay.AddListener(&end);
    source.Notify(7202, 3, 4);
    ASSERT_EQ(end.calls.size(), 1u);
    EXPECT_EQ(end.calls[0].mMessage, 7202);
    EXPECT_EQ(end.calls[0].mNotifier, &source);  // the first notifier is kept
    EXPECT_EQ(end.calls[0].mParam1, 3);
    EXPECT_EQ(end.calls[0].mParam2, 4);
}

// Not exactly an LList: a broadcast over it walks with Next.
struct GeneralList : LList {
    uint32_t GrabItemSize(int32_t index) const override { return LList::GrabItemSize(index); }
};
struct GeneralBroadcaster : LBroadcaster {
    GeneralBroadcaster() { mListeners = new GeneralList; }
};

// Listeners that, as a seeded generator says, remove, add, stop, start or
// destroy listeners (themselves included), broadcast again or destroy the
// broadcaster while a broadcast walks. The log of calls is the result.
struct World {
    struct Actor : LListener {
        Actor(World* w, int i) : world(w), id(i) {}
        bool ListenToMessage(int32_t message, void*) override { return world->Act(id, message); }
        World* world;
        int id;
    };
    World(bool general, unsigned seed) : rng(seed) {
        broadcaster.reset(general ? new GeneralBroadcaster : new LBroadcaster);
        for (int i = 0; i < 10; ++i) Add(i);
        for (int round = 0; round < 30 && broadcaster; ++round) {
            broadcaster->BroadcastMessage(round, nullptr);
        }
    }
    void Add(int i) {
        if (!actors[i]) actors[i] = std::make_unique<Actor>(this, i);
        if (broadcaster) broadcaster->AddListener(actors[i].get());
    }
    bool Act(int self, int32_t message) {
        log.push_back(std::to_string(self) + ":" + std::to_string(message));
        for (int edits = rng() % 3; edits > 0 && broadcaster; --edits) {
            const int k = static_cast<int>(rng() % 10), what = static_cast<int>(rng() % 40);
            if (what < 8 && actors[k]) broadcaster->RemoveListener(actors[k].get());
            if (what >= 8 && what < 16) Add(k);
            if (what == 16 && actors[k]) actors[k]->StopListening();
            if (what == 17 && actors[k]) actors[k]->StartListening();
            if (what == 18) actors[k].reset();
            if (what == 19 && depth < 2)
                ++depth, broadcaster->BroadcastMessage(message + 1000, nullptr), --depth;
            if (what == 20 && rng() % 20 == 0) broadcaster.reset();
        }
        return true;
    }
    std::mt19937 rng;
    std::unique_ptr<LBroadcaster> broadcaster;
    std::unique_ptr<Actor> actors[10];
    int depth = 0;
    Log log;
};

TEST(LBroadcaster, PlainListWalkHearsWhatTheGeneralWalkHears) {
    for (unsigned seed = 0; seed < 300; ++seed) {
        World plain(false, seed), general(true, seed);
        ASSERT_EQ(plain.log, general.log) << "seed " << seed;
    }
}

}  // namespace
}  // namespace basicutils
