// Helpers shared by the time tests: a short timecode constructor, a
// one-string view of a timecode's fields and rate, and a listener that
// records what it hears.
#pragma once

#include <basicutils/time/CTimecode.h>

#include <cstdio>
#include <string>
#include <vector>

namespace basicutils::timetest {

inline CTimecode T(int h, int m, int s, int f, double rate = 30.0) {
    return CTimecode(static_cast<uint16_t>(h), static_cast<uint16_t>(m), static_cast<uint16_t>(s),
                     static_cast<uint16_t>(f), rate);
}

// "HH:MM:SS:FF@rate", so that a whole timecode is compared in one assertion.
inline std::string S(const CTimecode& t) {
    char buf[40];
    std::snprintf(buf, sizeof buf, "%02d:%02d:%02d:%02d@%g", t.GetHour(), t.GetMinute(),
                  t.GetSecond(), t.GetFrame(), t.GetFrameRate());
    return buf;
}
inline std::string S(const CTimecode* t) {
    return t ? S(*t) : "null";
}

// Records every message it hears, tagged with '*' when it comes from another
// notifier than the watched one.
struct Recorder : LResponder {
    bool Respond(int32_t message, LNotifier* notifier, int32_t, intptr_t) override {
        codes.push_back(message);
        log.push_back(std::to_string(message) + (notifier == watched ? "" : "*"));
        return true;
    }
    size_t Count() const { return codes.size(); }
    LNotifier* watched = nullptr;
    std::vector<int32_t> codes;
    std::vector<std::string> log;
};

}  // namespace basicutils::timetest
