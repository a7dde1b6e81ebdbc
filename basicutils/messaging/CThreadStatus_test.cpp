// Each status call delivers one record with its mask and only its fields.
#include <basicutils/messaging/CThreadStatus.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace basicutils {
namespace {

struct Record {
    int mask;
    int64_t position, range;
    std::u16string status, description;
    bool operator==(const Record&) const = default;
};

class Recorder : public LListener {
  public:
    std::vector<Record> records;
    std::vector<int32_t> numbers;
    bool ListenToMessage(int32_t message, void* param) override {
        auto* info = static_cast<SThreadStatusInfo*>(param);
        numbers.push_back(message);
        records.push_back({info->mMask, info->mPosition, info->mRange,
                           std::u16string(static_cast<const char16_t*>(info->mStatus)),
                           std::u16string(static_cast<const char16_t*>(info->mDescription))});
        return true;
    }
};

TEST(CThreadStatus, EachCallSendsItsMaskAndFields) {
    struct Case {
        std::function<void()> call;
        Record expected;
    } cases[] = {
        {[] { CThreadStatus::Status(5, 10, u"x"); }, {7, 5, 10, u"x", u""}},
        {[] { CThreadStatus::SetRange(100, 7); }, {2, 0, 100, u"", u""}},
        {[] { CThreadStatus::SetPosition(-3); }, {4, -3, 0, u"", u""}},
        {[] { CThreadStatus::AdvancePosition(3); }, {8, 3, 0, u"", u""}},
        {[] { CThreadStatus::SetStatus(nullptr); }, {1, 0, 0, u"", u""}},
        {[] { CThreadStatus::SetStatus(u"copying"); }, {1, 0, 0, u"copying", u""}},
        {[] { CThreadStatus::SetDescription(u"Disc 1"); }, {16, 0, 0, u"", u"Disc 1"}},
        {[] { CThreadStatus::Status(1LL << 40, 1LL << 41, nullptr); },
         {7, 1LL << 40, 1LL << 41, u"", u""}},
    };
    Recorder recorder;
    CThreadStatus::GetThreadStatus()->AddListener(&recorder);
    for (const Case& c : cases) {
        recorder.records.clear();
        c.call();
        ASSERT_EQ(recorder.records.size(), 1u);
        EXPECT_EQ(recorder.records[0], c.expected) << "mask " << c.expected.mask;
    }
    CThreadStatus::AdvancePosition(3);
    CThreadStatus::AdvancePosition(3);
    EXPECT_EQ(recorder.records.size(), 3u) << "advances are separate records, not summed";
    for (int32_t n : recorder.numbers) EXPECT_EQ(n, kMsgThreadStatus);
    CThreadStatus::GetThreadStatus()->RemoveListener(&recorder);
    CThreadStatus::SetStatus(u"lost");
    EXPECT_EQ(recorder.records.size(), 3u);
}

}  // namespace
}  // namespace basicutils
