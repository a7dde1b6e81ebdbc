// Broadcasters and listeners: registration on both sides, and what happens
// when the set of listeners, or the broadcaster itself, changes during a
// broadcast.
#include <basicutils/containers/LList.h>
#include <basicutils/messaging/LBroadcaster.h>
#include <basicutils/messaging/LNotifier.h>
#include <basicutils/messaging/Recorder_test.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace basicutils {
namespace {

using Log = std::vector<std::string>;
using testing_support::Recorder;

struct Broadcaster : LBroadcaster {
    uint32_t ListenerCount() const { return mListeners ? mListeners->GetCount() : 0; }
};

TEST(LBroadcaster, RegistersOnceDeliversInOrderAndHonoursSwitches) {
    Log log;
    Broadcaster b;
    b.BroadcastMessage(1, nullptr);  // never had a listener: nothing happens
    Recorder x("x", &log), y("y", &log), stranger("s", &log);
    b.AddListener(&y);
    b.AddListener(&x);
    b.AddListener(&x);
    b.RemoveListener(&stranger);
    EXPECT_EQ(b.ListenerCount(), 2u);
    EXPECT_EQ(x.BroadcasterCount(), 1u);
    int payload = 0;
    b.BroadcastMessage(7, &payload);
    x.StopListening();  // stays registered, hears nothing
    b.BroadcastMessage(8, &payload);
    b.StopBroadcasting();
    b.BroadcastMessage(9, nullptr);
    b.StartBroadcasting();
    x.StartListening();
    b.RemoveListener(&y);
    b.BroadcastMessage(10, nullptr);
    EXPECT_EQ(log, (Log{"y:7", "x:7", "y:8", "x:10"}));
    EXPECT_EQ(x.lastParam, nullptr);
    EXPECT_EQ(y.lastParam, &payload);
    EXPECT_EQ(y.BroadcasterCount(), 0u);
}

TEST(LBroadcaster, ChangesDuringABroadcast) {
    using Ls = std::vector<std::unique_ptr<Recorder>>;
    using Bc = std::unique_ptr<Broadcaster>;
    // Given the broadcaster and listeners a, b, c, the action of the listener
    // `who`; `expected` is the log of message 1.
    struct Case {
        const char* name;
        int who;
        std::function<void(Bc&, Ls&, Log&, int32_t)> act;
        Log expected;
    };
    const Case cases[] = {
        {"current removes itself: the others still hear",
         0,
         [](Bc& bc, Ls& ls, Log&, int32_t) { bc->RemoveListener(ls[0].get()); },
         {"a:1", "b:1", "c:1"}},
        {"current removes a later one: it is not called",
         0,
         [](Bc& bc, Ls& ls, Log&, int32_t) { bc->RemoveListener(ls[2].get()); },
         {"a:1", "b:1"}},
        {"current destroys itself",
         0,
         [](Bc&, Ls& ls, Log&, int32_t) { ls[0].reset(); },
         {"a:1", "b:1", "c:1"}},
        {"current destroys a later one",
         0,
         [](Bc&, Ls& ls, Log&, int32_t) { ls[1].reset(); },
         {"a:1", "c:1"}},
        {"a listener added during the walk hears the message under way",
         0,
         [](Bc& bc, Ls& ls, Log& log, int32_t) {
             if (ls.size() != 3) return;
             ls.push_back(std::make_unique<Recorder>("d", &log));
             bc->AddListener(ls.back().get());
         },
         {"a:1", "b:1", "c:1", "d:1"}},
        {"the last one removing itself does not see one it appends",
         2,
         [](Bc& bc, Ls& ls, Log& log, int32_t) {
             if (ls.size() != 3) return;
             bc->RemoveListener(ls[2].get());
             ls.push_back(std::make_unique<Recorder>("d", &log));
             bc->AddListener(ls.back().get());
         },
         {"a:1", "b:1", "c:1"}},
        {"a nested broadcast runs its own full walk",
         0,
         [](Bc& bc, Ls&, Log&, int32_t m) {
             if (m == 1) bc->BroadcastMessage(2, nullptr);
         },
         {"a:1", "a:2", "b:2", "c:2", "b:1", "c:1"}},
        {"StopBroadcasting in a handler does not end the walk under way",
         0,
         [](Bc& bc, Ls&, Log&, int32_t) { bc->StopBroadcasting(); },
         {"a:1", "b:1", "c:1"}},
        {"destroying the broadcaster ends the walk after its own 202",
         0,
         [](Bc& bc, Ls&, Log&, int32_t m) {
             if (m == 1) bc.reset();
         },
         {"a:1", "a:202", "b:202", "c:202"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Log log;
        auto bc = std::make_unique<Broadcaster>();
        Ls ls;
        for (const char* n : {"a", "b", "c"}) {
            ls.push_back(std::make_unique<Recorder>(n, &log));
            bc->AddListener(ls.back().get());
        }
        ls[c.who]->then = [&, c](int32_t m) { c.act(bc, ls, log, m); };
        bc->BroadcastMessage(1, nullptr);
        EXPECT_EQ(log, c.expected);
        for (auto& l : ls) {
            if (l && !bc) {
                EXPECT_EQ(l->BroadcasterCount(), 0u);
            }
        }
    }
}

TEST(LBroadcaster, DyingBroadcasterAnnouncesItselfUnlessStopped) {
    for (bool stopped : {false, true}) {
        Log log;
        Recorder l("l", &log);
        auto bc = std::make_unique<Broadcaster>();
        void* base = static_cast<LBroadcaster*>(bc.get());
        bc->AddListener(&l);
        if (stopped) bc->StopBroadcasting();
        bc.reset();
        EXPECT_EQ(log, stopped ? Log{} : Log{"l:202"});
        EXPECT_EQ(l.lastParam, stopped ? nullptr : base);
        EXPECT_EQ(l.BroadcasterCount(), 0u);  // unlinked either way
    }
}

TEST(LBroadcaster, DyingListenerLeavesEveryBroadcaster) {
    Log log;
    Broadcaster one, two;
    auto l = std::make_unique<Recorder>("l", &log);
    Recorder other("o", &log);
    one.AddListener(l.get());
    two.AddListener(l.get());
    two.AddListener(&other);
    l.reset();
    two.BroadcastMessage(3, nullptr);
    EXPECT_EQ(one.ListenerCount(), 0u);
    EXPECT_EQ(log, (Log{"o:3"}));
}

TEST(LBroadcaster, CopiesTakeTheSwitchButNoRegistrations) {
    Log log;
    Broadcaster bc, assigned;
    Recorder l("l", &log), other("o", &log);
    bc.AddListener(&l);
    bc.StopBroadcasting();
    l.StopListening();
    Broadcaster bcCopy(bc);
    Recorder lCopy(l);
    EXPECT_EQ(bcCopy.ListenerCount(), 0u);
    EXPECT_FALSE(bcCopy.IsBroadcasting());
    EXPECT_EQ(lCopy.BroadcasterCount(), 0u);
    EXPECT_FALSE(lCopy.IsListening());
    assigned.AddListener(&other);
    assigned = bc;  // switch copied, own listeners kept
    EXPECT_FALSE(assigned.IsBroadcasting());
    EXPECT_EQ(assigned.ListenerCount(), 1u);
}

std::string Record(int32_t message, const void* notifier, int32_t p1, intptr_t p2) {
    std::ostringstream out;
    out << message << ' ' << notifier << ' ' << p1 << ' ' << p2;
    return out.str();
}

struct Responder : LResponder {
    bool Respond(int32_t message, LNotifier* notifier, int32_t p1, intptr_t p2) override {
        calls.push_back(Record(message, notifier, p1, p2));
        return true;
    }
    Log calls;
};

struct RelayingResponder : LResponder, LBroadcaster {
    bool Respond(int32_t message, LNotifier* notifier, int32_t p1, intptr_t p2) override {
        PassNotify(message, notifier, p1, p2);
        return true;
    }
};

TEST(LNotifier, RecordsReachRespondAndRelayKeepsTheFirstNotifier) {
    static const char16_t kText[] = u"hello";
    LNotifier source;
    RelayingResponder relay;
    Responder r, end;
    source.AddResponder(&r);
    source.AddResponder(&relay);
    relay.AddListener(&end);
    source.Notify(7130, 1, 2);
    source.Notify(7201, kText);
    EXPECT_FALSE(r.ListenToMessage(5, nullptr));  // not a notification
    r.PassNotify(1, nullptr, 0, 0);               // not a broadcaster: nothing happens
    const Log expected{Record(7130, &source, 1, 2),
                       Record(7201, &source, 0, reinterpret_cast<intptr_t>(kText))};
    EXPECT_EQ(r.calls, expected);
    EXPECT_EQ(end.calls, expected);
}

}  // namespace
}  // namespace basicutils
