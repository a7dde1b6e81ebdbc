// `basicutils file`: the file layer on the command line.
//
//   info PATH        size (through the 64-bit status), dates, whether the
//                    drive counts as read-only, whether the file is the info
//                    file of a segmented file
//   unique PATH EXT  the name CreateUniqueFileSpec gives beside PATH
//   rmtree DIR       DeleteDirectory, its reports printed on stderr
//
// Whatever is not what the action expects (a FIFO, a device, a folder where
// a file is expected, a file or a link where a folder is) is refused from its
// status alone, before anything opens it, so the tool never waits on it.
#include <basicutils/BasicUtils.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "Commands.h"
#include "Progress.h"

namespace basicutils_tool {
namespace {

using namespace basicutils;
namespace fs = std::filesystem;

// The first line of a segmented file's info file starts with these 19 units.
constexpr char16_t kInfoHeader[] = u"# Velmorant c_files";
constexpr int kInfoHeaderLength = 19;

MString FromUtf8(const std::string& text) {
    MString wide;
    wide.ImportASCII(text.c_str(), -1);
    return wide;
}

// Why `path` is not a regular file, or empty when it is one.
std::string NotAFile(const std::string& path) {
    std::error_code ec;
    const fs::file_status status = fs::status(path, ec);
    if (ec || !fs::exists(status)) return "'" + path + "' does not exist";
    if (fs::is_directory(status)) return "'" + path + "' is a directory";
    if (!fs::is_regular_file(status)) return "'" + path + "' is not a regular file";
    return {};
}

std::string Date(CDateTime date) {
    char text[40];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", date.GetYear(),
                  date.GetMonth(), date.GetDay(), date.GetHour(), date.GetMinute(),
                  date.GetSecond());
    return text;
}

int Info(const std::string& path) {
    if (std::string why = NotAFile(path); !why.empty()) return Failure("file info: " + why);
    MString wide = FromUtf8(path);
    MFileUniv file;
    if (file.FOpen(wide, kOpenReadBinary) != 0)
        return Failure("file info: cannot open '" + path + "'");
    const int64_t size = file.GetSize();
    char16_t line[2 * kInfoHeaderLength] = {};
    const bool segmented = file.FGetts(line, kInfoHeaderLength) == 0 &&
                           wcsncmp(line, kInfoHeader, kInfoHeaderLength) == 0;
    file.FClose();

    MFileWin dated;
    MFileSpecWin spec(wide);
    dated.SetFileSpec(spec);
    if (!dated.FOpen(kOpenReadBinary)) return Failure("file info: cannot open '" + path + "'");
    std::printf("path: %s\nsize: %lld bytes\n", path.c_str(), static_cast<long long>(size));
    std::printf("status changed: %s\n", Date(dated.GetCreateTime()).c_str());
    std::printf("modified: %s\n", Date(dated.GetModifyTime()).c_str());
    std::printf("accessed: %s\n", Date(dated.GetAccessTime()).c_str());
    dated.FClose();
    std::printf("read-only drive: %s\n", MFileSpecWin::IsFileOnReadOnlyDrive(wide) ? "yes" : "no");
    std::printf("segmented info file: %s\n", segmented ? "yes" : "no");
    return 0;
}

int Unique(const std::string& path, const std::string& extension) {
    std::error_code ec;
    if (fs::exists(fs::symlink_status(path, ec)))
        if (std::string why = NotAFile(path); !why.empty()) return Failure("file unique: " + why);
    ReportPrinter reports(stderr, stderr);
    reports.Attach();
    MFileSpecWin source(FromUtf8(path)), result;
    if (!MFileSpecWin::CreateUniqueFileSpec(source, FromUtf8(extension), &result)) return 1;
    std::printf("%s\n", ToUtf8(result.GetFilePath()).c_str());
    return 0;
}

int RemoveTree(const std::string& path) {
    std::error_code ec;
    const fs::file_status status = fs::symlink_status(path, ec);
    if (ec || !fs::exists(status)) return Failure("file rmtree: '" + path + "' does not exist");
    if (fs::is_symlink(status))
        return Failure("file rmtree: '" + path + "' is a symbolic link, not a directory");
    if (!fs::is_directory(status)) return Failure("file rmtree: '" + path + "' is not a directory");
    ReportPrinter reports(stderr, stderr);
    reports.Attach();
    return DeleteDirectory(FromUtf8(path)) == 0 ? 0 : 1;
}

}  // namespace

int RunFile(const Args& args) {
    const std::string action = args.empty() ? std::string() : args[0];
    if (action == "info" && args.size() == 2) return Info(args[1]);
    if (action == "unique" && args.size() == 3) return Unique(args[1], args[2]);
    if (action == "rmtree" && args.size() == 2) return RemoveTree(args[1]);
    return UsageError("file: usage: basicutils file info PATH | unique PATH EXT | rmtree DIR");
}

}  // namespace basicutils_tool
