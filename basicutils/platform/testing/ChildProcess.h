// Forked children for tests that kill a writer or run two writers at once:
// ChildProcess keeps a child running beside the test; RunInChild runs a
// function in a child and tells how the child ended. Both wait with a
// deadline. Not installed: this lives in the test-support library.
#pragma once

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <thread>

namespace basicutils::testing {

class ChildProcess {
  public:
    // Forks; the child runs `body` and ends with _exit(0).
    template <typename Body>
    explicit ChildProcess(Body body) : mPid(::fork()) {
        if (mPid == 0) {
            body();
            std::_Exit(0);
        }
    }
    ~ChildProcess() {
        if (mPid > 0 && !mReaped) {
            ::kill(mPid, SIGKILL);
            ::waitpid(mPid, nullptr, 0);
        }
    }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    bool Started() const { return mPid > 0; }

    // The wait status once the child has ended, or -1 when it is still
    // running at the deadline (it is then killed).
    int Wait(std::chrono::seconds deadline = std::chrono::seconds(60)) {
        const auto end = std::chrono::steady_clock::now() + deadline;
        int status = 0;
        while (std::chrono::steady_clock::now() < end) {
            const pid_t done = ::waitpid(mPid, &status, WNOHANG);
            if (done == mPid) {
                mReaped = true;
                return status;
            }
            if (done < 0) return -1;
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        return -1;
    }

  private:
    pid_t mPid;
    bool mReaped = false;
};

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
