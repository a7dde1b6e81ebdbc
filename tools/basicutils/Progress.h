// The tool's terminal view of the library's channels.
//
// ProgressDisplay listens to CThreadStatus (progress: position, range,
// status and description) and to CThreadAction (tasks that come and go) and
// keeps one line up to date:
//     Checksum [##########----------]  50% 512/1024 reading block 512
// On a terminal it redraws in place when the line changed, and ends the line
// before anything else is printed (BreakLine) and at a task's end. Elsewhere
// (a pipe, a log file) it writes a line only at each tenth of the range, so a
// long task leaves a dozen lines, not one per step. Progress arrives on
// worker threads, so the state and the drawing are under one lock.
//
// ReportPrinter prints what CMessageAction reports: errors and warnings to
// stderr ("basicutils: error: ..."), information and plain output to stdout.
#pragma once

#include <basicutils/BasicUtils.h>
#include <basicutils/platform/Console.h>

#include <cstdint>
#include <cstdio>
#include <mutex>
#include <string>

namespace basicutils_tool {

// Library text in UTF-8.
std::string ToUtf8(const char16_t* text);

class ProgressDisplay : public basicutils::LListener {
  public:
    explicit ProgressDisplay(std::FILE* out, int barWidth = 20);
    ~ProgressDisplay() override;
    void Attach();
    void Detach();
    bool ListenToMessage(int32_t message, void* param) override;
    // Ends a half-drawn terminal line, so that other output starts on a line
    // of its own; the next progress starts a new line.
    void BreakLine();

  private:
    std::string LineLocked() const;
    void DrawLocked(bool finish);

    std::mutex mLock;
    std::FILE* mOut;
    int mBarWidth;
    bool mTerminal;
    int64_t mPosition = 0;
    int64_t mRange = 0;
    std::string mStatus;
    std::string mDescription;
    std::string mLastDrawn;
    int mLastTenth = -1;     // elsewhere than a terminal: the tenth last written
    bool mLineOpen = false;  // on a terminal: a line is drawn without its end
};

class ReportPrinter : public basicutils::LListener {
  public:
    // `progress`, if given, ends its line before each report is printed.
    ReportPrinter(std::FILE* out, std::FILE* err, ProgressDisplay* progress = nullptr)
        : mOut(out), mErr(err), mProgress(progress) {}
    ~ReportPrinter() override;
    void Attach();
    void Detach();
    bool ListenToMessage(int32_t message, void* param) override;

  private:
    std::mutex mLock;
    std::FILE* mOut;
    std::FILE* mErr;
    ProgressDisplay* mProgress;
};

}  // namespace basicutils_tool
