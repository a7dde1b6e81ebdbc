// A real background task, run the way an application hosts the library:
// the task checksums generated data on a worker thread and reports its
// progress; the main thread waits for its message queue and pumps, so that
// the task's end comes back to it. (An application with its own event loop
// would watch GetMessageQueueFd() instead.)
#include <atomic>
#include <cstdio>
#include <vector>

#include "Commands.h"
#include "Progress.h"

namespace basicutils_tool {
namespace {

using namespace basicutils;

class ChecksumTask : public CVelmorantThread {
  public:
    ChecksumTask(int megabytes, std::atomic<bool>* ended) : mMegabytes(megabytes), mEnded(ended) {
        SetWorkerThread(true);
        mHasProgress = true;
        mDescription = u"Checksum";
    }
    ~ChecksumTask() override { *mEnded = true; }

    void RunSelf() override {
        constexpr int kBlock = 64 * 1024;
        const int64_t blocks = static_cast<int64_t>(mMegabytes) * (1024 * 1024 / kBlock);
        std::vector<uint8_t> block(kBlock);
        CThreadStatus::SetDescription(GetDescription());
        CThreadStatus::Status(0, blocks, u"starting");
        uint64_t sum = 1469598103934665603ULL;  // FNV-1a over the bytes
        uint32_t seed = 12345;
        for (int64_t b = 0; b < blocks && !mCanceled; ++b) {
            for (auto& byte : block) {
                seed = seed * 1103515245u + 12345u;
                byte = static_cast<uint8_t>(seed >> 24);
            }
            for (uint8_t byte : block) sum = (sum ^ byte) * 1099511628211ULL;
            SetPos(b + 1);
            if ((b + 1) % 16 == 0 || b + 1 == blocks) {
                MString status;
                status.Format(u"block %d of %d", static_cast<int>(b + 1), static_cast<int>(blocks));
                CThreadStatus::Status(b + 1, blocks, status);
            }
        }
        mSum = sum;
    }

    void PostPlay() override {
        char hex[17];
        std::snprintf(hex, sizeof hex, "%016llx", static_cast<unsigned long long>(mSum));
        MString digits;
        digits.ImportASCII(hex, -1);
        MString text;
        text.Format(u"Checksum of %d MiB: %s", mMegabytes, static_cast<const char16_t*>(digits));
        CMessageAction::Inform(nullptr, text);
    }

  private:
    int mMegabytes;
    std::atomic<bool>* mEnded;
    uint64_t mSum = 0;
};

}  // namespace

int RunTaskExample(int megabytes) {
    CThreadDispatcher::GetThreadDispatcher();  // on the main thread, before any task ends
    ProgressDisplay progress(stderr);
    ReportPrinter reports(stdout, stderr, &progress);
    progress.Attach();
    reports.Attach();

    std::atomic<bool> ended{false};
    (new ChecksumTask(megabytes, &ended))->Execute();
    while (!ended) PumpMessages(200);
    reports.Detach();
    progress.Detach();
    return 0;
}

int RunTaskExample() {
    return RunTaskExample(16);
}

int RunTask(const Args& args) {
    long long megabytes = 64;
    if (args.size() > 1) return UsageError("task takes at most one argument");
    if (!args.empty() && (!ParseInt(args[0], megabytes) || megabytes < 1 || megabytes > 4096))
        return UsageError("task: the size must be a whole number of MiB from 1 to 4096");
    return RunTaskExample(static_cast<int>(megabytes));
}

}  // namespace basicutils_tool
