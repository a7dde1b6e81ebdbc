// A forked child process for crash tests: the child runs a function and
// exits with its answer, or dies on the way (a FaultEnv kill rule); the
// parent waits for it, with a deadline, and learns how it ended.
//
// Not installed: this lives in the test-support library.
#pragma once

#include <functional>

namespace basicutils::testing {

struct ChildEnd {
    bool exited;  // the child returned from `body` (or called exit)
    int status;   // its exit status when it exited
    int signal;   // the signal that ended it otherwise (SIGKILL is 9)
};

// Forks; the child runs `body` and leaves with _Exit(its answer), skipping
// the parent's atexit work. A child still running after `seconds` is killed
// and reported as ended by that kill.
ChildEnd RunInChild(const std::function<int()>& body, int seconds = 60);

}  // namespace basicutils::testing
