// Shared by the tests of the overlapped world: patterned file contents,
// a file whose protected state the tests can read, a sum of the progress
// channel's advances, and a helper that lets a held call go a little later.
#pragma once

#include <basicutils/files/MFileUniv.h>
#include <basicutils/messaging/CThreadStatus.h>
#include <basicutils/platform/testing/FaultEnv.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>

#include "FilesTest_test.h"

namespace basicutils::filestest {

inline constexpr int32_t kWarningReport = 26001;

// Bytes that differ from their neighbours and from zero padding.
inline std::string Pattern(size_t size, int seed = 1) {
    std::string bytes(size, '\0');
    for (size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>((i * 131 + seed) % 251 + 1);
    return bytes;
}

struct OpenFile : MFileUniv {
    using MFileUniv::mConcat;
    using MFileUniv::mSectorSkew;
};

// The sum of the advances (mask 8) heard while it lives.
class Advances : public LListener {
  public:
    Advances() { CThreadStatus::GetThreadStatus()->AddListener(this); }
    ~Advances() override { CThreadStatus::GetThreadStatus()->RemoveListener(this); }
    bool ListenToMessage(int32_t, void* param) override {
        auto* info = static_cast<SThreadStatusInfo*>(param);
        if (info->mMask == kStatusMaskAdvance) total += info->mPosition;
        return true;
    }
    int64_t total = 0;
};

// Releases the held call once it has arrived and the code under test has
// had a moment to reach it. Code that does not wait for the held transfer
// returns before Released() is true; code that waits returns after.
class LateRelease {
  public:
    explicit LateRelease(testing::FaultEnv& faults)
        : mThread([this, &faults] {
              EXPECT_TRUE(faults.WaitUntilHeld(10));
              std::this_thread::sleep_for(std::chrono::milliseconds(100));
              mReleased = true;
              faults.Release();
          }) {}
    ~LateRelease() { mThread.join(); }
    bool Released() const { return mReleased; }

  private:
    std::atomic<bool> mReleased{false};
    std::thread mThread;
};

}  // namespace basicutils::filestest
