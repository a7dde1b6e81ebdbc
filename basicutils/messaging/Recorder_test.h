// The one listener the tests of every broadcaster share: it records each
// message it hears, from any thread, as its number and an entry that
// `describe` makes of the argument (the number alone by default), then runs
// `then`, where a test may change the listener lists or report again.
#pragma once

#include <basicutils/messaging/LBroadcaster.h>

#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace basicutils::testing_support {

class Recorder : public LListener {
  public:
    std::function<std::string(int32_t message, void* param)> describe;
    std::function<void(int32_t message)> then;

    bool ListenToMessage(int32_t message, void* param) override {
        std::string entry = describe ? describe(message, param) : std::to_string(message);
        {
            std::lock_guard<std::mutex> g(mLock);
            mNumbers.push_back(message);
            mEntries.push_back(std::move(entry));
        }
        if (then) then(message);
        return true;
    }
    std::vector<int32_t> Numbers() {
        std::lock_guard<std::mutex> g(mLock);
        return mNumbers;
    }
    std::vector<std::string> Entries() {
        std::lock_guard<std::mutex> g(mLock);
        return mEntries;
    }
    void Clear() {
        std::lock_guard<std::mutex> g(mLock);
        mNumbers.clear();
        mEntries.clear();
    }

  private:
    std::mutex mLock;
    std::vector<int32_t> mNumbers;
    std::vector<std::string> mEntries;
};

}  // namespace basicutils::testing_support
