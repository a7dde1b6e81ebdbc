// `basicutils sum FILE`: reads FILE through AsyncReadBuffer on a worker task
// (the ring's next read runs while the task sums the current one) and prints
// its Adler-32 checksum, its size and the throughput, with a progress line.
#include <basicutils/BasicUtils.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "Commands.h"
#include "Progress.h"

namespace basicutils_tool {
namespace {

using namespace basicutils;

constexpr int kRing = 4 << 20;   // each buffer of the ring
constexpr int kPiece = 1 << 20;  // what the task takes at a time
constexpr int64_t kMiB = 1 << 20;

// Adler-32 (as zlib computes it), with the modulo taken once per 5,552 bytes.
uint32_t Adler32(uint32_t adler, const unsigned char* bytes, size_t count) {
    uint32_t a = adler & 0xFFFF, b = adler >> 16;
    while (count > 0) {
        const size_t run = count < 5552 ? count : 5552;
        for (size_t i = 0; i < run; ++i) {
            a += bytes[i];
            b += a;
        }
        a %= 65521;
        b %= 65521;
        bytes += run;
        count -= run;
    }
    return b << 16 | a;
}

struct Outcome {
    bool ok = false;
    uint32_t sum = 1;
    int64_t bytes = 0;
    double seconds = 0;
};

class SumTask : public CVelmorantThread {
  public:
    SumTask(MString path, Outcome* outcome, std::atomic<bool>* ended)
        : mPath(std::move(path)), mOutcome(outcome), mEnded(ended) {
        SetWorkerThread(true);
        mHasProgress = true;
        mDescription = u"Sum";
    }
    ~SumTask() override { *mEnded = true; }

    void RunSelf() override {
        const auto begin = std::chrono::steady_clock::now();
        MFileUniv file;
        if (file.FOpen(mPath, kOpenOverlappedRead) != 0) return;
        AsyncReadBuffer ring;
        const int64_t size = file.GetSize();
        const int primed = ring.InitReadBuffer(&file, 0, kRing, 0);
        if (primed != 0 && primed != -4) return;
        CThreadStatus::SetDescription(GetDescription());
        CThreadStatus::Status(0, size / kMiB, u"reading");
        std::vector<char> piece(kPiece);
        int64_t at = 0;
        while (primed == 0 && !mCanceled) {
            const int n = ring.ReadBuffer(at, piece.data(), kPiece);
            if (n < 0) return;
            if (n == 0) break;
            mOutcome->sum = Adler32(mOutcome->sum, reinterpret_cast<unsigned char*>(piece.data()),
                                    static_cast<size_t>(n));
            if ((at + n) / (16 * kMiB) != at / (16 * kMiB) || at + n == size)
                CThreadStatus::SetPosition((at + n) / kMiB);
            at += n;
        }
        mOutcome->bytes = at;
        mOutcome->ok = !mCanceled;
        mOutcome->seconds =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    }

  private:
    MString mPath;
    Outcome* mOutcome;
    std::atomic<bool>* mEnded;
};

}  // namespace

int RunSum(const Args& args) {
    if (args.size() != 1) return UsageError("sum takes one FILE");
    std::error_code ec;
    if (!std::filesystem::is_regular_file(args[0], ec))
        return Failure("sum: '" + args[0] + "' is not a file");
    MString path;
    path.ImportASCII(args[0].c_str(), -1);

    CThreadDispatcher::GetThreadDispatcher();  // on the main thread, before the task ends
    ProgressDisplay progress(stderr);
    ReportPrinter reports(stdout, stderr);
    progress.Attach();
    reports.Attach();
    Outcome outcome;
    std::atomic<bool> ended{false};
    (new SumTask(path, &outcome, &ended))->Execute();
    while (!ended) PumpMessages(200);
    reports.Detach();
    progress.Detach();
    if (!outcome.ok) return Failure("sum: could not read '" + args[0] + "'");
    const double rate = outcome.seconds > 0 ? outcome.bytes / outcome.seconds / kMiB : 0;
    std::printf("%08x  %lld bytes  %.1f MiB/s  %s\n", outcome.sum,
                static_cast<long long>(outcome.bytes), rate, args[0].c_str());
    return 0;
}

}  // namespace basicutils_tool
