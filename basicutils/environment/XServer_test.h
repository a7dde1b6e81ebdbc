// A virtual X server (Xvfb) for the dialog tests, started once per test
// program and stopped at its end, and a driver that works a dialog through
// xdotool. Processes are started with the shell, and every wait has a
// deadline.
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
    // The server of this program, started at the first call. Sets DISPLAY
    // (and keeps GTK's settings in memory) when it runs.
    static XServer& Shared() {
        static XServer server;
        return server;
    }
    bool Running() const { return !mDisplay.empty(); }
    // Why there is no server, for the skip message.
    const std::string& Why() const { return mWhy; }

    ~XServer() {
        if (!mPid.empty()) Shell("kill " + mPid + " 2>/dev/null");
        std::error_code ignored;
        std::filesystem::remove_all(mFolder, ignored);
    }

  private:
    XServer() {
        if (!Shell("command -v Xvfb >/dev/null 2>&1")) {
            mWhy = "no X server can be started: Xvfb is not installed (Debian package xvfb)";
            return;
        }
        if (!Shell("command -v xdotool >/dev/null 2>&1")) {
            mWhy = "no dialog can be driven: xdotool is not installed";
            return;
        }
        mFolder = std::filesystem::temp_directory_path() /
                  ("basicutils-xvfb-" + std::to_string(std::random_device{}()));
        std::filesystem::create_directories(mFolder);
        const std::string display = (mFolder / "display").string();
        const std::string pid = (mFolder / "pid").string();
        Shell("Xvfb -displayfd 1 -screen 0 1280x1024x24 -nolisten tcp >'" + display +
              "' 2>/dev/null & echo $! >'" + pid + "'");
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(15);
        while (std::chrono::steady_clock::now() < deadline) {
            std::string number;
            std::ifstream(display) >> number;
            if (!number.empty() && number.find_first_not_of("0123456789") == std::string::npos) {
                std::ifstream(pid) >> mPid;
                mDisplay = ":" + number;
                ::setenv("DISPLAY", mDisplay.c_str(), 1);
                ::setenv("GSETTINGS_BACKEND", "memory", 1);
                ::setenv("NO_AT_BRIDGE", "1", 1);
                return;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        std::ifstream(pid) >> mPid;
        mWhy = "no X server can be started: Xvfb did not report a display within 15 s";
    }

    std::filesystem::path mFolder;
    std::string mDisplay, mPid, mWhy;
};

// Works the dialog titled `title` with xdotool on a thread of its own while
// the test thread runs it: waits for the window, focuses it and runs the
// shell commands `keys` (e.g. "xdotool key Escape"; no single quotes). If the dialog is still open
// 30 s later it is sent Escape, and 10 s after that the test program gives up and aborts rather
// than hang.
class DialogDriver {
  public:
    DialogDriver(const std::string& title, const std::string& keys)
        : mThread([this, title, keys] { Drive(title, keys); }) {}
    ~DialogDriver() { Finish(); }
    // Call when the dialog has returned: waits for the driver's last command
    // and tells whether all of them succeeded.
    bool Finish() {
        mDialogDone = true;
        if (mThread.joinable()) mThread.join();
        return mWorked;
    }

  private:
    void Drive(const std::string& title, const std::string& keys) {
        const std::string find =
            "W=$(xdotool search --onlyvisible --name \"^" + title + "$\" 2>/dev/null | head -n 1)";
        mWorked = Shell("timeout 20 sh -c 'until " + find +
                        " && [ -n \"$W\" ]; do sleep 0.1; done; "
                        "xdotool windowfocus --sync $W && sleep 0.3 && " +
                        keys + "' >/dev/null 2>&1");
        if (Wait(std::chrono::seconds(30))) return;
        Shell("timeout 5 xdotool key Escape >/dev/null 2>&1");
        if (Wait(std::chrono::seconds(10))) return;
        std::fprintf(stderr, "the dialog '%s' did not close: giving up\n", title.c_str());
        std::abort();
    }
    bool Wait(std::chrono::seconds limit) {
        const auto deadline = std::chrono::steady_clock::now() + limit;
        while (!mDialogDone && std::chrono::steady_clock::now() < deadline)
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        return mDialogDone;
    }

    std::atomic<bool> mDialogDone{false};
    std::atomic<bool> mWorked{false};
    std::thread mThread;
};

}  // namespace basicutils::environmenttest
