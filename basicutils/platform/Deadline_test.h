// Deadlines for tests of code that could hang.
//
// WaitUntil polls a condition until a time limit. EXPECT_COMPLETES_WITHIN
// runs a scenario in a fresh child process (a death test that re-runs this
// test program), which the system ends with SIGALRM if it outlives its
// deadline: a deadlock then fails the test instead of hanging the run, and
// leaves no stuck thread behind in the parent. The scenario returns an empty
// text on success, else what went wrong (shown with the failure).
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <thread>

namespace basicutils::testing_support {

inline bool WaitUntil(const std::function<bool()>& done,
                      std::chrono::milliseconds limit = std::chrono::seconds(20)) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (!done()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        std::this_thread::sleep_for(std::chrono::microseconds(100));
    }
    return true;
}

[[noreturn]] inline void RunScenarioInChild(unsigned seconds,
                                            const std::function<std::string()>& scenario) {
    alarm(seconds);
    const std::string failure = scenario();
    if (!failure.empty()) std::fprintf(stderr, "scenario failed: %s\n", failure.c_str());
    std::fflush(nullptr);
    std::_Exit(failure.empty() ? 0 : 1);
}

#define EXPECT_COMPLETES_WITHIN(seconds, scenario)                                        \
    do {                                                                                  \
        GTEST_FLAG_SET(death_test_style, "threadsafe");                                   \
        EXPECT_EXIT(::basicutils::testing_support::RunScenarioInChild(seconds, scenario), \
                    ::testing::ExitedWithCode(0), "");                                    \
    } while (0)

}  // namespace basicutils::testing_support
