// Each status call delivers one record with its mask and only its fields.
#include <basicutils/messaging/CThreadStatus.h>
#include <basicutils/messaging/Recorder_test.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace basicutils {
namespace {

// "mask position range status description" of a record.
std::string Fields(int32_t message, void* param) {  // the mask is -1 for another message
    auto* i = static_cast<SThreadStatusInfo*>(param);
    auto text = [](const char16_t* t) {
        return std::string(t, t + std::char_traits<char16_t>::length(t));
    };
    return std::to_string(message == kMsgThreadStatus ? i->mMask : -1) + " " +
           std::to_string(i->mPosition) + " " + std::to_string(i->mRange) + " " + text(i->mStatus) +
           "|" + text(i->mDescription);
}

TEST(CThreadStatus, EachCallSendsItsMaskAndFields) {
    // clang-format off
    struct { std::function<void()> call; std::string expected; } cases[] = {
        {[] { CThreadStatus::Status(5, 10, u"x"); }, "7 5 10 x|"},
        {[] { CThreadStatus::SetRange(100, 7); }, "2 0 100 |"},
        {[] { CThreadStatus::SetPosition(-3); }, "4 -3 0 |"},
        {[] { CThreadStatus::AdvancePosition(3); }, "8 3 0 |"},
        {[] { CThreadStatus::SetStatus(nullptr); }, "1 0 0 |"},
        {[] { CThreadStatus::SetDescription(u"Disc 1"); }, "16 0 0 |Disc 1"},
        {[] { CThreadStatus::Status(1LL << 40, 1LL << 41, nullptr); }, "7 1099511627776 2199023255552 |"},
    };
    // clang-format on
    testing_support::Recorder recorder;
    recorder.describe = Fields;
    CThreadStatus::GetThreadStatus()->AddListener(&recorder);
    for (const auto& c : cases) {
        recorder.Clear();
        c.call();
        EXPECT_EQ(recorder.Entries(), std::vector<std::string>{c.expected});
    }
    CThreadStatus::GetThreadStatus()->RemoveListener(&recorder);
    CThreadStatus::SetStatus(u"lost");
    EXPECT_EQ(recorder.Entries().size(), 1u);
}

}  // namespace
}  // namespace basicutils
