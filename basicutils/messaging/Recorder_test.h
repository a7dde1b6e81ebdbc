// The one listener the tests of every broadcaster share: it records each
// message it hears, from any thread, as its number and an entry that
// `describe` makes of the argument (the number alone by default), then runs
// `then`, where a test may change the listener lists or report again. Given
// a name and a log, it also appends "name:entry" to the log, which several
// recorders share to show the order in which they heard.
#pragma once

#include <basicutils/containers/LList.h>
#include <basicutils/messaging/LBroadcaster.h>

#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace basicutils::testing_support {

class Recorder : public LListener {
  public:
    explicit Recorder(std::string name = {}, std::vector<std::string>* log = nullptr)
        : mName(std::move(name)), mLog(log) {}
    Recorder(const Recorder& other) : LListener(other) {}  // the switch only, as a listener
    std::function<std::string(int32_t message, void* param)> describe;
    std::function<void(int32_t message)> then;
    void* lastParam = nullptr;

    bool ListenToMessage(int32_t message, void* param) override {
        std::string entry = describe ? describe(message, param) : std::to_string(message);
        {
            std::lock_guard<std::mutex> g(mLock);
            mNumbers.push_back(message);
            if (mLog) mLog->push_back(mName + ":" + entry);
            mEntries.push_back(std::move(entry));
            lastParam = param;
        }
        if (then) then(message);
        return true;
    }
    uint32_t BroadcasterCount() const { return mBroadcasters ? mBroadcasters->GetCount() : 0; }
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
    std::string mName;
    std::vector<std::string>* mLog = nullptr;
    std::mutex mLock;
    std::vector<int32_t> mNumbers;
    std::vector<std::string> mEntries;
};

}  // namespace basicutils::testing_support
