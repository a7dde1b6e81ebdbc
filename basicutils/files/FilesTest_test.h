// Shared by the file layer's tests: a temporary folder on the real file
// system, a recorder of the library's reports, and the fault seam.
#pragma once

#include <basicutils/files/MFileUniv.h>
#include <basicutils/messaging/CMessageAction.h>
#include <basicutils/messaging/LBroadcaster.h>
#include <basicutils/platform/testing/FaultEnv.h>
#include <basicutils/platform/testing/TempFolder.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace basicutils::filestest {

namespace fs = std::filesystem;
using testing::FaultEnv;
using testing::ScopedEnv;
using testing::SysCall;
using Heard = std::vector<std::pair<int32_t, std::u16string>>;

inline constexpr int32_t kErrorReport = 26000;
inline constexpr int32_t kInformReport = 26002;
inline constexpr int64_t kGiB = int64_t{1} << 30;

// Every report of CMessageAction while the recorder lives; all have a null context.
class Reports : public LListener {
  public:
    Reports() { CMessageAction::GetMessageAction()->AddListener(this); }
    ~Reports() override { CMessageAction::GetMessageAction()->RemoveListener(this); }
    bool ListenToMessage(int32_t message, void* param) override {
        auto* info = static_cast<SInteractionInfo*>(param);
        EXPECT_EQ(info->mContext, nullptr);
        heard.emplace_back(message, info->mText);
        return true;
    }
    Heard heard;
};

class TempDirTest : public ::testing::Test {
  protected:
    std::u16string WPath(const std::string& name) const { return mFolder.Wide(name); }
    void Write(const std::string& name, const std::string& bytes) const {
        mFolder.Write(name, bytes);
    }
    std::string Read(const std::string& name) const { return mFolder.Read(name); }
    void Open(MFileUniv& file, const std::string& name, file_open_t mode) const {
        ASSERT_EQ(file.FOpen(WPath(name).c_str(), mode), 0) << name << " mode " << mode;
    }

    testing::TempFolder mFolder;
    const fs::path& mDir = mFolder.Path();
};

}  // namespace basicutils::filestest
