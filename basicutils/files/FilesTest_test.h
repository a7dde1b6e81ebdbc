// Shared by the file layer's tests: a temporary folder on the real file
// system, a recorder of the library's reports, and 16-bit paths.
#pragma once

#include <basicutils/messaging/CMessageAction.h>
#include <basicutils/messaging/LBroadcaster.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace basicutils::filestest {

namespace fs = std::filesystem;

inline constexpr int32_t kErrorReport = 26000;
inline constexpr int32_t kInformReport = 26002;

inline std::u16string U16(const std::string& s) { return std::u16string(s.begin(), s.end()); }

// Every report of CMessageAction while the recorder lives.
class Reports : public LListener {
  public:
    Reports() { CMessageAction::GetMessageAction()->AddListener(this); }
    ~Reports() override { CMessageAction::GetMessageAction()->RemoveListener(this); }
    bool ListenToMessage(int32_t message, void* param) override {
        auto* info = static_cast<SInteractionInfo*>(param);
        EXPECT_EQ(info->mContext, nullptr);
        heard.emplace_back(message, info->mText ? info->mText : u"");
        return true;
    }
    std::vector<std::pair<int32_t, std::u16string>> heard;
};

class TempDirTest : public ::testing::Test {
  protected:
    void SetUp() override {
        mDir = fs::temp_directory_path() / ("bu_files_" + std::to_string(std::random_device{}()));
        fs::create_directories(mDir);
    }
    void TearDown() override {
        std::error_code ec;
        fs::permissions(mDir, fs::perms::owner_all, fs::perm_options::add, ec);
        fs::remove_all(mDir, ec);
    }
    std::string Path(const std::string& name) const { return (mDir / name).string(); }
    std::u16string WPath(const std::string& name) const { return U16(Path(name)); }
    void Write(const std::string& name, const std::string& bytes) const {
        std::ofstream(mDir / name, std::ios::binary) << bytes;
    }
    std::string Read(const std::string& name) const {
        std::ifstream in(mDir / name, std::ios::binary);
        std::stringstream s;
        s << in.rdbuf();
        return s.str();
    }

    fs::path mDir;
};

}  // namespace basicutils::filestest
