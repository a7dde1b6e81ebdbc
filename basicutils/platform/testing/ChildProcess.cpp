// Forked children for crash tests.
#include <basicutils/platform/testing/ChildProcess.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <thread>

namespace basicutils::testing {

ChildEnd RunInChild(const std::function<int()>& body, int seconds) {
    const pid_t child = ::fork();
    if (child == 0) std::_Exit(body());
    if (child < 0) return {false, -1, 0};
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    int status = 0;
    auto pause = std::chrono::microseconds(10);
    for (;;) {
        const pid_t done = ::waitpid(child, &status, WNOHANG);
        if (done == child) break;
        if (done < 0 && errno != EINTR) return {false, -1, 0};
        if (std::chrono::steady_clock::now() > deadline) {
            ::kill(child, SIGKILL);
            ::waitpid(child, &status, 0);
            break;
        }
        std::this_thread::sleep_for(pause);
        pause = std::min(2 * pause, std::chrono::microseconds(200));
    }
    if (WIFEXITED(status)) return {true, WEXITSTATUS(status), 0};
    return {false, -1, WIFSIGNALED(status) ? WTERMSIG(status) : 0};
}

}  // namespace basicutils::testing
