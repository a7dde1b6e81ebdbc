// The tool's terminal view of the library's channels.
//
// ProgressDisplay listens to CThreadStatus (progress: position, range,
// status and description) and to CThreadAction (tasks that come and go) and
// keeps one line up to date:
//     Checksum [##########----------]  50% 512/1024 reading block 512
// It redraws in place on a terminal and only when the line changed; at a
// task's end it finishes the line. Progress arrives on worker threads, so
// the state and the drawing are under one lock.
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
    // The line as it would be drawn now.
    std::string Line();
    int Redraws();

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
    int mRedraws = 0;
};

class ReportPrinter : public basicutils::LListener {
  public:
    ReportPrinter(std::FILE* out, std::FILE* err) : mOut(out), mErr(err) {}
    ~ReportPrinter() override;
    void Attach();
    void Detach();
    bool ListenToMessage(int32_t message, void* param) override;

  private:
    std::mutex mLock;
    std::FILE* mOut;
    std::FILE* mErr;
};

}  // namespace basicutils_tool
