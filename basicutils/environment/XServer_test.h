// A virtual X server (Xvfb) for the dialog tests, started once per test
// program and stopped at its end, and a driver that works a dialog with
// xdotool. Processes start through the shell; every wait has a deadline.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <thread>

namespace basicutils::environmenttest {

inline bool Shell(const std::string& command) {
    return std::system(command.c_str()) == 0;
}

class XServer {
  public:
    // The server of this program, started on first use; it sets DISPLAY and
    // keeps GTK's settings in memory.
    static XServer& Shared() {
        static XServer server;
        return server;
    }
    bool Running() const { return mWhy.empty(); }
    const std::string& Why() const { return mWhy; }
    ~XServer() {
        if (!mPid.empty()) Shell("kill " + mPid);
        std::error_code ignored;
        std::filesystem::remove_all(mFolder, ignored);
    }

  private:
    XServer() {
        mFolder = std::filesystem::temp_directory_path() /
                  ("basicutils-xvfb-" + std::to_string(std::random_device{}()));
        std::filesystem::create_directories(mFolder);
        const std::string display = (mFolder / "display").string(),
                          pid = (mFolder / "pid").string();
        if (!Shell("command -v xdotool >/dev/null") ||
            !Shell("Xvfb -displayfd 1 -screen 0 1280x1024x24 -nolisten tcp >'" + display +
                   "' 2>/dev/null & echo $! >'" + pid + "'; command -v Xvfb >/dev/null")) {
            mWhy = "no X server can be started: Xvfb or xdotool is not installed";
            return;
        }
        std::ifstream(pid) >> mPid;
        for (int tries = 0; tries < 300; ++tries) {  // up to 15 s
            std::string number;
            std::ifstream(display) >> number;
            if (!number.empty()) {
                ::setenv("DISPLAY", (":" + number).c_str(), 1);
                ::setenv("GSETTINGS_BACKEND", "memory", 1);
                ::setenv("NO_AT_BRIDGE", "1", 1);
                return;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        mWhy = "no X server can be started: Xvfb named no display within 15 s";
    }

    std::filesystem::path mFolder;
    std::string mPid, mWhy;
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
        mDialogDone = true;
        if (mThread.joinable()) mThread.join();
        return mWorked;
    }

  private:
    void Drive(const std::string& title, const std::string& keys) {
        mWorked =
            Shell("timeout 60 sh -c 'until W=$(xdotool search --onlyvisible --name \"^" + title +
                  "$\" | head -n 1) && [ -n \"$W\" ]; do sleep 0.1; done; " +
                  "xdotool windowfocus --sync $W && sleep 0.3 && " + keys + "' >/dev/null 2>&1");
        for (int second = 0; second < 40 && !mDialogDone; ++second) {
            if (second == 30) Shell("timeout 5 xdotool key Escape");  // 30 s after the keys
            for (int tick = 0; tick < 50 && !mDialogDone; ++tick)
                std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        if (mDialogDone) return;
        std::fprintf(stderr, "the dialog '%s' did not close: giving up\n", title.c_str());
        std::abort();
    }

    std::atomic<bool> mDialogDone{false}, mWorked{false};
    std::thread mThread;
};

}  // namespace basicutils::environmenttest
