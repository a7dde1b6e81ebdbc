// Terminal progress line and report printing.
#include "Progress.h"

#include <vector>

namespace basicutils_tool {

using namespace basicutils;

std::string ToUtf8(const char16_t* text) {
    MString copy(text);
    std::vector<char> buffer(static_cast<size_t>(copy.GetLength()) * 3 + 4);
    int n =
        copy.ExportASCII(buffer.data(), static_cast<int>(buffer.size()) - 1, kCharacterSetWindows);
    return std::string(buffer.data(), n > 0 ? static_cast<size_t>(n) : 0);
}

ProgressDisplay::ProgressDisplay(std::FILE* out, int barWidth)
    : mOut(out), mBarWidth(barWidth), mTerminal(IsTerminal(out)) {}

ProgressDisplay::~ProgressDisplay() {
    Detach();
}

void ProgressDisplay::Attach() {
    CThreadStatus::GetThreadStatus()->AddListener(this);
    CThreadAction::GetThreadAction()->AddListener(this);
}

void ProgressDisplay::Detach() {
    CThreadStatus::GetThreadStatus()->RemoveListener(this);
    CThreadAction::GetThreadAction()->RemoveListener(this);
}

bool ProgressDisplay::ListenToMessage(int32_t message, void* param) {
    std::lock_guard<std::mutex> g(mLock);
    switch (message) {
        case kMsgThreadAdded: {
            auto* task = static_cast<CVelmorantThread*>(param);
            mDescription = ToUtf8(task->GetDescription());
            mPosition = mRange = 0;
            mStatus.clear();
            mLastDrawn.clear();
            mLastTenth = -1;
            return true;
        }
        case kMsgThreadStatus: {
            auto* info = static_cast<SThreadStatusInfo*>(param);
            if (info->mMask & kStatusMaskStatus) mStatus = ToUtf8(info->mStatus);
            if (info->mMask & kStatusMaskRange) mRange = info->mRange;
            if (info->mMask & kStatusMaskPosition) mPosition = info->mPosition;
            if (info->mMask & kStatusMaskAdvance) mPosition += info->mPosition;
            if (info->mMask & kStatusMaskDescription) mDescription = ToUtf8(info->mDescription);
            DrawLocked(false);
            return true;
        }
        case kMsgThreadRemoved:
            DrawLocked(true);
            return true;
        default:
            return false;
    }
}

std::string ProgressDisplay::LineLocked() const {
    std::string line = mDescription.empty() ? std::string("task") : mDescription;
    int64_t position = mPosition < 0 ? 0 : mPosition;
    int filled = 0;
    int percent = 0;
    if (mRange > 0) {
        int64_t clamped = position > mRange ? mRange : position;
        filled = static_cast<int>(clamped * mBarWidth / mRange);
        percent = static_cast<int>(clamped * 100 / mRange);
    }
    line += " [" + std::string(filled, '#') + std::string(mBarWidth - filled, '-') + "] ";
    char numbers[64];
    if (mRange > 0)
        std::snprintf(numbers, sizeof numbers, "%3d%% %lld/%lld", percent,
                      static_cast<long long>(position), static_cast<long long>(mRange));
    else
        std::snprintf(numbers, sizeof numbers, "%lld", static_cast<long long>(position));
    line += numbers;
    if (!mStatus.empty()) line += " " + mStatus;
    return line;
}

void ProgressDisplay::DrawLocked(bool finish) {
    if (!mOut) return;
    std::string line = LineLocked();
    if (mTerminal) {
        if (line != mLastDrawn) {
            std::fprintf(mOut, "\r\033[K%s", line.c_str());
            mLastDrawn = line;
            mLineOpen = true;
        }
        if (finish && mLineOpen) {
            std::fprintf(mOut, "\n");
            mLineOpen = false;
        }
    } else {
        // A line at each tenth of a known range, and the last one at the end.
        const int64_t position = mPosition < 0 ? 0 : mPosition > mRange ? mRange : mPosition;
        const int tenth = mRange > 0 ? static_cast<int>(position * 10 / mRange) : -1;
        if (line != mLastDrawn && ((tenth >= 0 && tenth != mLastTenth) || (finish && mRange > 0))) {
            std::fprintf(mOut, "%s\n", line.c_str());
            mLastDrawn = line;
            mLastTenth = tenth;
        }
    }
    std::fflush(mOut);
}

void ProgressDisplay::BreakLine() {
    std::lock_guard<std::mutex> g(mLock);
    if (!mLineOpen) return;
    std::fprintf(mOut, "\n");
    std::fflush(mOut);
    mLineOpen = false;
    mLastDrawn.clear();
}

ReportPrinter::~ReportPrinter() {
    Detach();
}

void ReportPrinter::Attach() {
    CMessageAction::GetMessageAction()->AddListener(this);
}
void ReportPrinter::Detach() {
    CMessageAction::GetMessageAction()->RemoveListener(this);
}

bool ReportPrinter::ListenToMessage(int32_t message, void* param) {
    if (message < kMsgMessageActionFirst || message > kMsgMessageActionFirst + 46) return false;
    auto* info = static_cast<SInteractionInfo*>(param);
    const int kind = (message - kMsgMessageActionFirst) % 10;
    const std::string text = info->mText ? ToUtf8(info->mText) : std::string();
    std::lock_guard<std::mutex> g(mLock);
    if (mProgress && kind != 3) mProgress->BreakLine();
    switch (kind) {
        case 0:
            std::fprintf(mErr, "basicutils: error: %s\n", text.c_str());
            break;
        case 1:
            std::fprintf(mErr, "basicutils: warning: %s\n", text.c_str());
            break;
        case 2:
            std::fprintf(mOut, "%s\n", text.c_str());
            break;
        case 4:
        case 5:
            std::fprintf(mOut, "%s", text.c_str());
            break;
        case 6:
            std::fprintf(mOut, "\n");
            break;
        default:  // Clear: a terminal keeps its lines
            return true;
    }
    std::fflush(kind <= 1 ? mErr : mOut);
    return true;
}

}  // namespace basicutils_tool
