// A virtual X server (Xvfb) for the dialog tests, started once per test
// program and stopped at its end, and a driver that works a dialog with
// xdotool. Processes start through the shell; every wait has a deadline.
#pragma once

#include <basicutils/platform/testing/TempFolder.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <string>
#include <thread>

namespace basicutils::environmenttest {

inline bool Shell(const std::string& command) {
    return std::system(command.c_str()) == 0;
}

// The server of this program, started on first use; it sets DISPLAY and
// keeps GTK's settings in memory. Why() is empty once it runs, else it says
// why no server could be started.
class XServer {
  public:
    static const std::string& Why() {
        static XServer server;
        return server.mWhy;
    }
    ~XServer() { Shell("kill $(cat '" + (mFolder / "pid") + "' 2>/dev/null) 2>/dev/null"); }

  private:
    XServer() {
        const std::string here = "cd '" + mFolder.Path().string() + "' && ";
        if (!Shell("command -v Xvfb >/dev/null && command -v xdotool >/dev/null")) {
            mWhy = "no X server can be started: Xvfb or xdotool is not installed";
        } else if (!Shell(here + "{ Xvfb -displayfd 1 -screen 0 1280x1024x24 -nolisten tcp " +
                          ">display 2>/dev/null & echo $! >pid; } && timeout 15 sh -c " +
                          "'until [ -s display ]; do sleep 0.05; done'")) {
            mWhy = "no X server can be started: Xvfb named no display within 15 s";
        } else {
            ::setenv("DISPLAY", (":" + std::to_string(std::stoi(mFolder.Read("display")))).c_str(),
                     1);
            ::setenv("GSETTINGS_BACKEND", "memory", 1);
            ::setenv("NO_AT_BRIDGE", "1", 1);
        }
    }

    testing::TempFolder mFolder;
    std::string mWhy;
};

// Works the dialog titled `title` from a thread of its own while the test
// thread runs it: waits for the window, focuses it and runs the shell
// commands `keys` (no single quotes). The window may take up to 60 s to
// come on a busy machine; a dialog still open 30 s after the keys is sent
// Escape, and 10 s after that the program aborts rather than hang.
class DialogDriver {
  public:
    DialogDriver(const std::string& title, const std::string& keys)
        : mThread([this, title, keys] { Drive(title, keys); }) {}
    ~DialogDriver() { Finish(); }
    // Call once the dialog has returned: whether every command succeeded.
    bool Finish() {
        if (mThread.joinable()) {
            mClosed.set_value();
            mThread.join();
        }
        return mWorked;
    }

  private:
    void Drive(const std::string& title, const std::string& keys) {
        mWorked =
            Shell("timeout 60 sh -c 'until W=$(xdotool search --onlyvisible --name \"^" + title +
                  "$\" | head -n 1) && [ -n \"$W\" ]; do sleep 0.1; done; " +
                  "xdotool windowfocus --sync $W && sleep 0.3 && " + keys + "' >/dev/null 2>&1");
        if (mClosedSeen.wait_for(std::chrono::seconds(30)) == std::future_status::ready) return;
        Shell("timeout 5 xdotool key Escape");
        if (mClosedSeen.wait_for(std::chrono::seconds(10)) == std::future_status::ready) return;
        std::fprintf(stderr, "the dialog '%s' did not close: giving up\n", title.c_str());
        std::abort();
    }

    std::promise<void> mClosed;
    std::future<void> mClosedSeen = mClosed.get_future();
    std::atomic<bool> mWorked{false};
    std::thread mThread;
};

}  // namespace basicutils::environmenttest
