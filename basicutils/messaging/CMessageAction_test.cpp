// Report numbers by kind and window, the record of each kind, listeners that
// change the list during reports, and reports from many threads.
#include <basicutils/messaging/CMessageAction.h>
#include <basicutils/messaging/Recorder_test.h>
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace basicutils {
namespace {

using testing_support::Recorder;
using Entries = std::vector<std::string>;

// "context text" of a report: the context as "ctx" or "-", the text or "(null)".
std::string Report(int32_t, void* param) {
    auto* info = static_cast<SInteractionInfo*>(param);
    std::string text = "(null)";
    if (info->mText)
        text.assign(info->mText, info->mText + std::char_traits<char16_t>::length(info->mText));
    return (info->mContext ? "ctx " : "- ") + text;
}

// Restores the default window however a test ends.
struct DefaultGuard {
    ~DefaultGuard() { CMessageAction::SetDefault(kMessageWindow1); }
};

TEST(CMessageAction, NumbersFollowKindAndResolvedWindow) {
    DefaultGuard guard;
    using Call = std::function<void(message_action_t)>;
    const Call error = [](message_action_t t) { CMessageAction::Error(nullptr, u"x", t); };
    const Call warning = [](message_action_t t) { CMessageAction::Warning(nullptr, u"x", t); };
    const Call inform = [](message_action_t t) { CMessageAction::Inform(nullptr, u"x", t); };
    const Call noReturn = [](message_action_t t) {
        CMessageAction::InformWithoutReturn(nullptr, u"x", t);
    };
    const Call simple = [](message_action_t t) { CMessageAction::SimpleOutput(nullptr, u"x", t); };
    const Call ret = [](message_action_t t) { CMessageAction::Return(t); };
    const Call clear = [](message_action_t t) { CMessageAction::Clear(t); };
    // clang-format off
    struct { message_action_t defaultType; Call call; int type; int32_t expected; } cases[] = {  // 0: nothing sent
        {kMessageWindow1, error, 0, 26000},    {kMessageWindow1, error, 3, 26020},
        {kMessageWindow4, error, 3, 26020},    {kMessageWindow4, warning, 0, 26031},
        {kMessageWindow1, inform, 5, 26042},   {kMessageWindow1, clear, 3, 26023},
        {kMessageWindow2, noReturn, 0, 26014}, {kMessageWindow1, simple, 1, 26005},
        {kMessageWindow1, ret, 2, 26016},      {kMessageWindow5, ret, 0, 26046},
        {kMessageWindowDefault, error, 0, 0},  {kMessageWindowDefault, inform, 2, 26012},
        {kMessageWindow3, simple, 0, 26025},   {kMessageWindow1, error, 6, 0},
        {kMessageWindow1, warning, -1, 0},     {static_cast<message_action_t>(9), clear, 0, 0},
    };
    // clang-format on
    Recorder recorder;
    CMessageAction::GetMessageAction()->AddListener(&recorder);
    for (const auto& c : cases) {
        CMessageAction::SetDefault(c.defaultType);
        recorder.Clear();
        c.call(static_cast<message_action_t>(c.type));
        EXPECT_EQ(recorder.Numbers(),
                  c.expected ? std::vector<int32_t>{c.expected} : std::vector<int32_t>{})
            << "default " << c.defaultType << " type " << c.type;
    }
    CMessageAction::GetMessageAction()->RemoveListener(&recorder);
}

TEST(CMessageAction, RecordsCarryContextAndTextByKind) {
    Recorder recorder;
    recorder.describe = Report;
    CMessageAction::GetMessageAction()->AddListener(&recorder);
    int context = 0;
    CMessageAction::Warning(&context, u"disk full", kMessageWindow2);
    CMessageAction::Return(kMessageWindow2);
    CMessageAction::Clear(kMessageWindow2);
    CMessageAction::GetMessageAction()->RemoveListener(&recorder);
    CMessageAction::Error(nullptr, u"nobody hears this");
    EXPECT_EQ(recorder.Entries(), (Entries{"ctx disk full", "- ", "- (null)"}))
        << "Return sends an empty text, Clear none";
}

// A derived channel sees every report in BroadcastInteraction.
class Counting : public CMessageAction {
  public:
    std::vector<int32_t> numbers;
    void Send(message_action_t t) { t ? _Error(nullptr, u"a", t) : _Clear(kMessageWindow1); }

  protected:
    void BroadcastInteraction(int32_t message, void* context, const char16_t* text) override {
        numbers.push_back(message);
        CMessageAction::BroadcastInteraction(message, context, text);
    }
};

TEST(CMessageAction, SubclassCatchesReportsInOnePlace) {
    Counting channel;
    channel.Send(kMessageWindow4);
    channel.Send(kMessageWindowDefault);  // Clear of window 1
    EXPECT_EQ(channel.numbers, (std::vector<int32_t>{26030, 26003}));
}

// The channel's lock is recursive: a listener may change the registration
// and report again from inside a report (the order of such a walk is the
// plain broadcaster's, checked there).
TEST(CMessageAction, ListenersMayLeaveAndReportDuringAReport) {
    Recorder leaver, reporter;
    CMessageAction* channel = CMessageAction::GetMessageAction();
    leaver.then = [&](int32_t) { channel->RemoveListener(&leaver); };
    reporter.then = [&](int32_t message) {
        if (message == 26000) CMessageAction::Inform(nullptr, u"nested");
    };
    channel->AddListener(&leaver);
    channel->AddListener(&reporter);
    CMessageAction::Error(nullptr, u"first");
    channel->RemoveListener(&reporter);
    EXPECT_EQ(leaver.Numbers().size(), 1u);
    EXPECT_EQ(reporter.Numbers(), (std::vector<int32_t>{26000, 26002}));
}

TEST(CMessageAction, ReportsFromWorkersWhileListenersComeAndGo) {
    Recorder steady, churn;
    CMessageAction* channel = CMessageAction::GetMessageAction();
    channel->AddListener(&steady);
    std::atomic<bool> done{false};
    std::vector<std::thread> workers;
    for (int w = 0; w < 3; ++w)
        workers.emplace_back([] {
            for (int i = 0; i < 2000; ++i) CMessageAction::Error(nullptr, u"worker");
        });
    std::thread toggler([&] {
        while (!done) {
            channel->AddListener(&churn);
            channel->RemoveListener(&churn);
        }
    });
    for (auto& t : workers) t.join();
    done = true;
    toggler.join();
    channel->RemoveListener(&steady);
    EXPECT_EQ(steady.Numbers().size(), 6000u);
}

}  // namespace
}  // namespace basicutils
