// `basicutils concat OUT IN... [--block SECTORS] [--offset BYTES]`: appends
// whole files to OUT through MFileUniv's concatenation, each padded with
// zeros to the block, with a progress line fed by the library's advances.
// Ctrl-C sets the run's cancel flag: the run ends after its current buffer,
// and OUT keeps everything written up to then, which the tool states.
#include <basicutils/BasicUtils.h>

#include <atomic>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "Commands.h"
#include "Progress.h"

namespace basicutils_tool {
namespace {

using namespace basicutils;
namespace fs = std::filesystem;

constexpr int64_t kSector = 2048;
constexpr long long kMaxSectors = 64;  // 64 sectors: buffers of 256 MiB

bool gCancel = false;

extern "C" void OnInterrupt(int) {
    std::atomic_ref<bool>(gCancel).store(true, std::memory_order_relaxed);
}

MString Wide(const std::string& text) {
    MString wide;
    wide.ImportASCII(text.c_str(), -1);
    return wide;
}

struct Options {
    std::string out;
    std::vector<std::string> inputs;
    long long sectors = 1;
    long long offset = -1;  // -1: a new OUT from its start
};

int Parse(const Args& args, Options& o) {
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a == "--block" || a == "--offset") {
            long long value = 0;
            if (i + 1 >= args.size() || !ParseInt(args[++i], value))
                return UsageError("concat: " + a + " needs a whole number");
            if (a == "--block" && (value < 1 || value > kMaxSectors))
                return UsageError("concat: --block takes 1 to 64 sectors");
            if (a == "--offset" && (value < 0 || value % kSector != 0))
                return UsageError("concat: --offset takes a multiple of 2048 bytes");
            (a == "--block" ? o.sectors : o.offset) = value;
        } else if (o.out.empty()) {
            o.out = a;
        } else {
            o.inputs.push_back(a);
        }
    }
    if (o.inputs.empty()) return UsageError("concat needs OUT and at least one IN");
    return 0;
}

std::string Bytes(int64_t n) {
    return std::to_string(n) + (n == 1 ? " byte" : " bytes");
}

}  // namespace

int RunConcat(const Args& args) {
    Options o;
    if (int status = Parse(args, o)) return status;
    const int64_t block = o.sectors * kSector;
    std::vector<int64_t> padded;  // each input's share of OUT
    int64_t total = 0;
    for (const std::string& in : o.inputs) {
        std::error_code ec;
        if (!fs::is_regular_file(in, ec)) return Failure("concat: '" + in + "' is not a file");
        const auto size = static_cast<int64_t>(fs::file_size(in, ec));
        padded.push_back((size + block - 1) / block * block);
        total += padded.back();
    }

    MFileUniv out;
    if (out.FOpen(Wide(o.out), o.offset < 0 ? kOpenOverlappedCreate : kOpenOverlappedWrite) != 0)
        return Failure("concat: cannot open '" + o.out + "' for writing");
    const int64_t start = o.offset < 0 ? 0 : o.offset;
    if (out.ConcatInitialize(static_cast<int32_t>(block), start) != 0)
        return Failure("concat: no memory for two buffers of " + Bytes(block * kSector));

    ProgressDisplay progress(stderr);
    ReportPrinter reports(stdout, stderr);
    progress.Attach();
    reports.Attach();
    gCancel = false;
    auto previous = std::signal(SIGINT, OnInterrupt);
    CThreadStatus::SetDescription(u"Concat");
    int status = 0;
    for (size_t i = 0; i < o.inputs.size() && !std::atomic_ref<bool>(gCancel).load(); ++i) {
        MString note;
        note.Format(u"file %d of %d", static_cast<int>(i + 1), static_cast<int>(o.inputs.size()));
        CThreadStatus::Status((out.ConcatPosition() - start) / kSector, total / kSector, note);
        const int32_t result = out.ConcatFile(Wide(o.inputs[i]), 0, gCancel, 0);
        if (result != 0) {
            const std::u16string why = result == -1 ? u"" : FormatMessageText(result);
            status = Failure("concat: could not append '" + o.inputs[i] + "'" +
                             (why.empty() ? "" : ": " + ToUtf8(why.c_str())));
            break;
        }
    }
    std::signal(SIGINT, previous);
    const int64_t kept = out.ConcatPosition() - start;
    out.FClose();
    if (IsTerminal(stderr)) std::fprintf(stderr, "\n");
    progress.Detach();
    reports.Detach();
    if (status != 0) return status;
    size_t whole = 0;
    int64_t sum = 0;
    while (whole < padded.size() && sum + padded[whole] <= kept) sum += padded[whole++];
    if (kept < total) {  // cancelled
        std::fprintf(stderr,
                     "basicutils: concat cancelled: '%s' keeps %s from offset %lld: "
                     "%zu of %zu files whole%s\n",
                     o.out.c_str(), Bytes(kept).c_str(), static_cast<long long>(start), whole,
                     o.inputs.size(), kept > sum ? " and the next in part" : "");
        return 130;
    }
    std::printf("%s: %s from offset %lld, %zu files each padded to a multiple of %s\n",
                o.out.c_str(), Bytes(kept).c_str(), static_cast<long long>(start), whole,
                Bytes(block).c_str());
    return 0;
}

}  // namespace basicutils_tool
