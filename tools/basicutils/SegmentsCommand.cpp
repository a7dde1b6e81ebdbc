// `basicutils split`, `join` and `info`: segmented files on the command line.
//
//   split IN OUT --max SIZE   copies IN (a file, or - for standard input) into
//                             the logical file OUT through MFiles::FWrite, a
//                             new segment each SIZE bytes, with a progress line
//   join LOGICAL [OUT]        reads LOGICAL through MFiles::FRead into OUT or
//                             standard output
//   info LOGICAL              plain or segmented, each segment and its size,
//                             and the total
//
// split refuses an OUT that exists: writing over a logical file in place
// would keep the old segments that the new contents do not reach.
#include <basicutils/BasicUtils.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

#include "Commands.h"
#include "Progress.h"

namespace basicutils_tool {
namespace {

using namespace basicutils;
namespace fs = std::filesystem;

constexpr int kChunk = 4 << 20;

MString Wide(const std::string& text) {
    MString wide;
    wide.ImportASCII(text.c_str(), -1);
    return wide;
}

// "512", "64K", "700M", "1G": bytes, in units of 1,024; 0 for anything else.
long long ParseSize(const std::string& text) {
    if (text.empty()) return 0;
    long long scale = 1;
    std::string digits = text;
    switch (text.back()) {
        case 'K':
        case 'k':
            scale = 1LL << 10;
            break;
        case 'M':
        case 'm':
            scale = 1LL << 20;
            break;
        case 'G':
        case 'g':
            scale = 1LL << 30;
            break;
        default:
            break;
    }
    if (scale > 1) digits.pop_back();
    long long value = 0;
    if (!ParseInt(digits, value) || value < 1 || value > (1LL << 52) / scale) return 0;
    return value * scale;
}

struct CloseFile {
    void operator()(std::FILE* f) const {
        if (f && f != stdin && f != stdout) std::fclose(f);
    }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

}  // namespace

int RunSplit(const Args& args) {
    std::string in, out, max;
    for (size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "--max" && i + 1 < args.size())
            max = args[++i];
        else if (in.empty())
            in = args[i];
        else if (out.empty())
            out = args[i];
        else
            return UsageError("split: usage: basicutils split IN OUT --max SIZE");
    }
    const long long limit = ParseSize(max);
    if (in.empty() || out.empty() || limit == 0)
        return UsageError("split: usage: basicutils split IN OUT --max SIZE (SIZE like 700M)");
    std::error_code ec;
    if (fs::exists(fs::symlink_status(out, ec)))
        return Failure("split: '" + out + "' exists; remove it first");
    long long total = 0;
    if (in != "-") {
        if (!fs::is_regular_file(in, ec))
            return Failure("split: '" + in + "' is not a regular file");
        total = static_cast<long long>(fs::file_size(in, ec));
    }
    File source(in == "-" ? stdin : std::fopen(in.c_str(), "rb"));
    if (!source) return Failure("split: cannot open '" + in + "'");

    MFiles files;
    files.SetMaxFileSize(limit);
    if (files.FOpen(Wide(out), kOpenWriteBinary) != 0)
        return Failure("split: cannot create '" + out + "'");
    ProgressDisplay progress(stderr);
    progress.Attach();
    CThreadStatus::SetDescription(u"split");
    CThreadStatus::SetRange(total);
    // No piece longer than a segment: FWrite rolls over once a call, so a
    // longer one would leave a segment past the limit.
    const size_t piece = static_cast<size_t>(std::min<long long>(kChunk, limit));
    std::unique_ptr<char[]> buffer(new char[piece]);
    long long written = 0;
    for (;;) {
        const size_t got = std::fread(buffer.get(), 1, piece, source.get());
        if (got == 0) break;
        if (files.FWrite(buffer.get(), static_cast<int>(got)) != static_cast<int>(got)) {
            progress.BreakLine();
            return Failure("split: writing '" + out + "' failed");
        }
        written += static_cast<long long>(got);
        CThreadStatus::SetPosition(written);
    }
    if (total == 0) {  // standard input: the range is known only now
        CThreadStatus::SetRange(written);
        CThreadStatus::SetPosition(written);
    }
    progress.BreakLine();
    progress.Detach();
    if (std::ferror(source.get())) return Failure("split: reading '" + in + "' failed");
    std::printf("%s: %lld bytes in %d segment%s\n", out.c_str(), written, files.GetFileNum(),
                files.GetFileNum() == 1 ? "" : "s");
    return 0;
}

int RunJoin(const Args& args) {
    if (args.empty() || args.size() > 2)
        return UsageError("join: usage: basicutils join LOGICAL [OUT]");
    MFiles files;
    if (files.FOpen(Wide(args[0]), kOpenReadBinary) != 0)
        return Failure("join: cannot open '" + args[0] + "'");
    File out(args.size() == 2 ? std::fopen(args[1].c_str(), "wb") : stdout);
    if (!out) return Failure("join: cannot create '" + args[1] + "'");
    std::unique_ptr<char[]> buffer(new char[kChunk]);
    for (;;) {
        const int got = files.FRead(buffer.get(), kChunk);
        if (got < 0) return Failure("join: reading '" + args[0] + "' failed");
        if (got == 0) break;
        if (std::fwrite(buffer.get(), 1, static_cast<size_t>(got), out.get()) !=
            static_cast<size_t>(got))
            return Failure("join: writing failed");
    }
    if (std::fflush(out.get()) != 0) return Failure("join: writing failed");
    return 0;
}

int RunInfo(const Args& args) {
    if (args.size() != 1) return UsageError("info: usage: basicutils info LOGICAL");
    MFiles files;
    if (files.FOpen(Wide(args[0]), kOpenReadBinary) != 0)
        return Failure("info: cannot open '" + args[0] + "'");
    const bool segmented = files.GetInfoFilePath()[0] != 0;
    std::printf("%s: %s, %d segment%s\n", args[0].c_str(),
                segmented ? "segmented (info file)" : "plain file", files.GetFileNum(),
                files.GetFileNum() == 1 ? "" : "s");
    long long total = 0;
    bool missing = false;
    for (int i = 1; i <= files.GetFileNum(); ++i) {
        MFileSpecWin* spec = nullptr;
        files.GetFileNames()->FetchItemAt(i, &spec);
        MFileUniv segment;
        struct _stati64 status {};
        const std::string name = ToUtf8(spec->GetFilePath());
        if (segment.FStat(*spec, &status) != 0) {
            std::printf("  %4d  %s  missing\n", i - 1, name.c_str());
            missing = true;
            continue;
        }
        std::printf("  %4d  %s  %lld bytes\n", i - 1, name.c_str(),
                    static_cast<long long>(status.st_size));
        total += status.st_size;
    }
    std::printf("total: %lld bytes\n", total);
    return missing ? 1 : 0;
}

}  // namespace basicutils_tool
