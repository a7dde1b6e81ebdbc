// Broadcasters and listeners: registration on both sides, and what happens
// when the set of listeners, or the broadcaster itself, changes during a
// broadcast.
#include <basicutils/containers/LList.h>
#include <basicutils/messaging/LBroadcaster.h>
#include <basicutils/messaging/LNotifier.h>
#include <basicutils/messaging/Recorder_test.h>
#include <gtest/gtest.h>

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

TEST(LBroadcaster, RegistrationSwitchesCopiesAndDeaths) {
    Log log;
    Broadcaster b, other;
    b.BroadcastMessage(1, nullptr);  // never had a listener: nothing happens
    Recorder x("x", &log), stranger("s", &log);
    auto y = std::make_unique<Recorder>("y", &log), z = std::make_unique<Recorder>("z", &log);
    for (Recorder* l : {y.get(), &x, &x, z.get()}) b.AddListener(l);
    other.AddListener(z.get());
    b.RemoveListener(&stranger);
    EXPECT_EQ(b.ListenerCount(), 3u);
    EXPECT_EQ(x.BroadcasterCount(), 1u);
    int payload = 0;
    b.BroadcastMessage(7, &payload);
    EXPECT_EQ(y->lastParam, &payload);
    x.StopListening();  // stays registered, hears nothing
    b.BroadcastMessage(8, &payload);
    b.StopBroadcasting();
    b.BroadcastMessage(9, nullptr);
    // Copies take the switch but no registrations; an assigned one keeps its own.
    Broadcaster bCopy(b), assigned;
    Recorder xCopy(x);
    assigned.AddListener(&stranger);
    assigned = b;
    EXPECT_EQ(bCopy.ListenerCount() + xCopy.BroadcasterCount(), 0u);
    EXPECT_FALSE(bCopy.IsBroadcasting() || xCopy.IsListening() || assigned.IsBroadcasting());
    EXPECT_EQ(assigned.ListenerCount(), 1u);
    b.StartBroadcasting();
    x.StartListening();
    b.RemoveListener(y.get());
    EXPECT_EQ(y->BroadcasterCount(), 0u);
    z.reset();  // leaves every broadcaster
    EXPECT_EQ(other.ListenerCount(), 0u);
    b.BroadcastMessage(10, nullptr);
    // A dying broadcaster announces itself unless stopped, and unlinks either way.
    auto loud = std::make_unique<Broadcaster>(), quiet = std::make_unique<Broadcaster>();
    loud->AddListener(&x);
    quiet->AddListener(&x);
    quiet->StopBroadcasting();
    void* base = static_cast<LBroadcaster*>(loud.get());
    quiet.reset();
    loud.reset();
    EXPECT_EQ(x.lastParam, base);
    EXPECT_EQ(x.BroadcasterCount(), 1u);
    EXPECT_EQ(log, (Log{"y:7", "x:7", "z:7", "y:8", "z:8", "x:10", "x:202"}));
}

using Ls = std::vector<std::unique_ptr<Recorder>>;
using Bc = std::unique_ptr<Broadcaster>;

// What a handler does on message 1: rN removes listener N, kN destroys it,
// `a` appends a listener d, `n` broadcasts message 2, `s` stops
// broadcasting, `B` destroys the broadcaster. Only the arguments are used,
// as the handler may have destroyed itself.
void Act(const char* ops, Bc& bc, Ls& ls, Log& log, int32_t m) {
    while (m == 1 && *ops) {
        const char op = *ops++;
        if (op == 'r') bc->RemoveListener(ls[*ops++ - '0'].get());
        if (op == 'k') ls[*ops++ - '0'].reset();
        if (op == 'a') ls.push_back(std::make_unique<Recorder>("d", &log));
        if (op == 'a') bc->AddListener(ls.back().get());
        if (op == 'n') bc->BroadcastMessage(2, nullptr);
        if (op == 's') bc->StopBroadcasting();
        if (op == 'B') bc.reset();
    }
}

TEST(LBroadcaster, ChangesDuringABroadcast) {
    // Listeners a, b, c; listener `who` acts; `expected` is the log of message 1.
    // clang-format off
    const struct { const char* name; int who; const char* ops; Log expected; } cases[] = {
        {"current removes itself: the others still hear", 0, "r0", {"a:1", "b:1", "c:1"}},
        {"current removes a later one: it is not called", 0, "r2", {"a:1", "b:1"}},
        {"current destroys itself",                       0, "k0", {"a:1", "b:1", "c:1"}},
        {"current destroys a later one",                  0, "k1", {"a:1", "c:1"}},
        {"one added during the walk hears the message",   0, "a",  {"a:1", "b:1", "c:1", "d:1"}},
        {"the last, removing itself, misses one it adds", 2, "r2a", {"a:1", "b:1", "c:1"}},
        {"a nested broadcast runs its own full walk",     0, "n",  {"a:1", "a:2", "b:2", "c:2", "b:1", "c:1"}},
        {"StopBroadcasting does not end the walk",        0, "s",  {"a:1", "b:1", "c:1"}},
        {"a dying broadcaster ends the walk after its 202", 0, "B", {"a:1", "a:202", "b:202", "c:202"}},
    };
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Log log;
        auto bc = std::make_unique<Broadcaster>();
        Ls ls;
        for (const char* n : {"a", "b", "c"}) {
            ls.push_back(std::make_unique<Recorder>(n, &log));
            bc->AddListener(ls.back().get());
        }
        ls[c.who]->then = [&bc, &ls, &log, ops = c.ops](int32_t m) { Act(ops, bc, ls, log, m); };
        bc->BroadcastMessage(1, nullptr);
        EXPECT_EQ(log, c.expected);
    }
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
