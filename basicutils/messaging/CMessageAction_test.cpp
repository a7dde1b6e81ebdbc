// Report numbers by kind and window, the record of each kind, listeners that
// change the list during reports, and reports from many threads.
#include <basicutils/messaging/CMessageAction.h>
#include <basicutils/messaging/Recorder_test.h>
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace basicutils {
namespace {

using testing_support::Recorder;
using Entries = std::vector<std::string>;

// "number context text" of a report: the context as "ctx" or "-", the text or "(null)".
std::string Report(int32_t message, void* param) {
    auto* info = static_cast<SInteractionInfo*>(param);
    std::string text = "(null)";
    if (info->mText)
        text.assign(info->mText, info->mText + std::char_traits<char16_t>::length(info->mText));
    return std::to_string(message) + (info->mContext ? " ctx " : " - ") + text;
}

// Restores the default window however a test ends.
struct DefaultGuard {
    ~DefaultGuard() { CMessageAction::SetDefault(kMessageWindow1); }
};

// Reports of one kind: Error, Warning, Inform, No-return inform, Simple
// output (all with a context and "x"), Return or Clear.
void Send(char kind, message_action_t t) {
    static int context;
    if (kind == 'E') CMessageAction::Error(&context, u"x", t);
    if (kind == 'W') CMessageAction::Warning(&context, u"x", t);
    if (kind == 'I') CMessageAction::Inform(&context, u"x", t);
    if (kind == 'N') CMessageAction::InformWithoutReturn(&context, u"x", t);
    if (kind == 'S') CMessageAction::SimpleOutput(&context, u"x", t);
    if (kind == 'R') CMessageAction::Return(t);
    if (kind == 'C') CMessageAction::Clear(t);
}

TEST(CMessageAction, NumberAndRecordFollowKindAndResolvedWindow) {
    DefaultGuard guard;
    // clang-format off
    struct { message_action_t defaultType; char kind; int type; std::string expected; } cases[] = {
        {kMessageWindow1, 'E', 0, "26000 ctx x"},  {kMessageWindow1, 'E', 3, "26020 ctx x"},
        {kMessageWindow4, 'E', 3, "26020 ctx x"},  {kMessageWindow4, 'W', 0, "26031 ctx x"},
        {kMessageWindow1, 'I', 5, "26042 ctx x"},  {kMessageWindow1, 'C', 3, "26023 - (null)"},
        {kMessageWindow2, 'N', 0, "26014 ctx x"},  {kMessageWindow1, 'S', 1, "26005 ctx x"},
        {kMessageWindow1, 'R', 2, "26016 - "},     {kMessageWindow5, 'R', 0, "26046 - "},
        {kMessageWindowDefault, 'E', 0, ""},       {kMessageWindowDefault, 'I', 2, "26012 ctx x"},
        {kMessageWindow3, 'S', 0, "26025 ctx x"},  {kMessageWindow1, 'E', 6, ""},  // "": nothing sent
        {kMessageWindow1, 'W', -1, ""},            {static_cast<message_action_t>(9), 'C', 0, ""},
    };
    // clang-format on
    Recorder recorder;
    recorder.describe = Report;
    CMessageAction::GetMessageAction()->AddListener(&recorder);
    for (const auto& c : cases) {
        CMessageAction::SetDefault(c.defaultType);
        recorder.Clear();
        Send(c.kind, static_cast<message_action_t>(c.type));
        EXPECT_EQ(recorder.Entries(), c.expected.empty() ? Entries{} : Entries{c.expected})
            << "default " << c.defaultType << " type " << c.type;
    }
    CMessageAction::GetMessageAction()->RemoveListener(&recorder);
    recorder.Clear();
    Send('E', kMessageWindow1);
    EXPECT_EQ(recorder.Entries(), Entries{}) << "nobody hears after leaving";
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
