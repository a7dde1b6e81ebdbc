// Report numbers by kind and window, the record of each kind, listeners that
// change the list during reports, and reports from many threads.
#include <basicutils/messaging/CMessageAction.h>
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace basicutils {
namespace {

struct Heard {
    int32_t message;
    void* context;
    bool textIsNull;
    std::u16string text;
};

class Recorder : public LListener {
  public:
    std::vector<Heard> heard;
    std::function<void(int32_t)> onMessage;
    bool ListenToMessage(int32_t message, void* param) override {
        auto* info = static_cast<SInteractionInfo*>(param);
        heard.push_back({message, info->mContext, info->mText == nullptr,
                         info->mText ? std::u16string(info->mText) : std::u16string()});
        if (onMessage) onMessage(message);
        return true;
    }
};

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
    struct Case {
        message_action_t defaultType;
        Call call;
        int type;
        int32_t expected;  // 0: nothing is sent
    } cases[] = {
        {kMessageWindow1, error, 0, 26000},    {kMessageWindow1, error, 3, 26020},
        {kMessageWindow4, error, 3, 26020},    {kMessageWindow4, warning, 0, 26031},
        {kMessageWindow1, inform, 5, 26042},   {kMessageWindow1, clear, 3, 26023},
        {kMessageWindow2, noReturn, 0, 26014}, {kMessageWindow1, simple, 1, 26005},
        {kMessageWindow1, ret, 2, 26016},      {kMessageWindow5, ret, 0, 26046},
        {kMessageWindowDefault, error, 0, 0},  {kMessageWindowDefault, inform, 2, 26012},
        {kMessageWindow3, simple, 0, 26025},   {kMessageWindow1, error, 6, 0},
        {kMessageWindow1, warning, -1, 0},     {static_cast<message_action_t>(9), clear, 0, 0},
    };
    Recorder recorder;
    CMessageAction::GetMessageAction()->AddListener(&recorder);
    for (const Case& c : cases) {
        CMessageAction::SetDefault(c.defaultType);
        recorder.heard.clear();
        c.call(static_cast<message_action_t>(c.type));
        if (c.expected == 0) {
            EXPECT_TRUE(recorder.heard.empty())
                << "default " << c.defaultType << " type " << c.type;
        } else {
            ASSERT_EQ(recorder.heard.size(), 1u);
            EXPECT_EQ(recorder.heard[0].message, c.expected);
        }
    }
    CMessageAction::GetMessageAction()->RemoveListener(&recorder);
}

TEST(CMessageAction, RecordsCarryContextAndTextByKind) {
    Recorder recorder;
    CMessageAction::GetMessageAction()->AddListener(&recorder);
    int context = 0;
    CMessageAction::Warning(&context, u"disk full", kMessageWindow2);
    CMessageAction::Return(kMessageWindow2);
    CMessageAction::Clear(kMessageWindow2);
    CMessageAction::GetMessageAction()->RemoveListener(&recorder);
    CMessageAction::Error(nullptr, u"nobody hears this");
    ASSERT_EQ(recorder.heard.size(), 3u);
    EXPECT_EQ(recorder.heard[0].context, &context);
    EXPECT_EQ(recorder.heard[0].text, u"disk full");
    EXPECT_FALSE(recorder.heard[1].textIsNull) << "Return sends an empty text, not null";
    EXPECT_EQ(recorder.heard[1].text, u"");
    EXPECT_EQ(recorder.heard[1].context, nullptr);
    EXPECT_TRUE(recorder.heard[2].textIsNull) << "Clear sends no text";
}

// A derived channel sees every report in BroadcastInteraction.
class Counting : public CMessageAction {
  public:
    std::vector<int32_t> numbers;
    void ErrorHere(const char16_t* text, message_action_t t) { _Error(nullptr, text, t); }
    void ClearHere(message_action_t t) { _Clear(t); }

  protected:
    void BroadcastInteraction(int32_t message, void* context, const char16_t* text) override {
        numbers.push_back(message);
        CMessageAction::BroadcastInteraction(message, context, text);
    }
};

TEST(CMessageAction, SubclassCatchesReportsInOnePlace) {
    Counting channel;
    channel.ErrorHere(u"a", kMessageWindow4);
    channel.ClearHere(kMessageWindow1);
    channel.ErrorHere(u"b", kMessageWindowDefault);  // unresolved 0 selects nothing
    EXPECT_EQ(channel.numbers, (std::vector<int32_t>{26030, 26003}));
}

TEST(CMessageAction, ListenersMayJoinLeaveAndReportDuringAReport) {
    Recorder late, leaver, reporter;
    CMessageAction* channel = CMessageAction::GetMessageAction();
    leaver.onMessage = [&](int32_t) {
        channel->RemoveListener(&leaver);
        channel->AddListener(&late);
    };
    reporter.onMessage = [&](int32_t message) {
        if (message == 26000) CMessageAction::Inform(nullptr, u"nested");
    };
    channel->AddListener(&leaver);
    channel->AddListener(&reporter);
    CMessageAction::Error(nullptr, u"first");
    CMessageAction::Error(nullptr, u"second");
    channel->RemoveListener(&reporter);
    channel->RemoveListener(&late);
    EXPECT_EQ(leaver.heard.size(), 1u);
    // The late listener joined during the first report: the nested report
    // reaches it first, then the rest of the walk under way, then the second.
    std::vector<std::u16string> texts;
    for (auto& h : late.heard) texts.push_back(h.text);
    EXPECT_EQ(texts, (std::vector<std::u16string>{u"nested", u"first", u"nested", u"second"}));
    size_t nested = 0;
    for (auto& h : reporter.heard) nested += h.message == 26002;
    EXPECT_EQ(nested, 2u);
}

TEST(CMessageAction, ReportsFromWorkersWhileListenersComeAndGo) {
    struct Counter : LListener {
        std::atomic<int> count{0};
        bool ListenToMessage(int32_t, void*) override {
            count.fetch_add(1);
            return true;
        }
    } steady, churn;
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
    EXPECT_EQ(steady.count.load(), 6000);
}

}  // namespace
}  // namespace basicutils
