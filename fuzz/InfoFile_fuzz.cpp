// Fuzzes the reader of the segmented file's info file against a model.
//
// The input, with each '@' standing for the scratch folder and a slash, is
// the file P; the folder also holds a segment file "s". MFiles opens P for
// reading. The model reads P in text mode ("\r\n" becomes "\n"): its first
// piece of at most 37 bytes decides, by the 19 units "# Velmorant c_files",
// whether P is an info file. A plain P opens as its own one segment. An info
// file is read in pieces of at most 4,095 bytes through a newline, each cut
// at its first zero byte and widened from the system code page; a piece
// starting with '#' is a comment, every other is a path with one newline
// cut. More than 2,048 paths fail the opening, as do none, or a first one
// that does not open; otherwise the segments are the paths in order.
// IsVelmorantMFiles agrees with the model's header test.
#include <basicutils/files/MFileUniv.h>
#include <basicutils/files/MFiles.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "FuzzSupport.h"

using namespace basicutils;

namespace {

namespace fs = std::filesystem;

using fuzzsupport::Check;

// The scratch folder, removed when the process ends.
struct Scratch {
    fs::path dir =
        fs::temp_directory_path() / ("InfoFile_fuzz_" + std::to_string(std::random_device{}()));
    Scratch() {
        fs::create_directories(dir);
        std::ofstream(dir / "s", std::ios::binary) << "segment";
    }
    ~Scratch() { fs::remove_all(dir); }
};

const fs::path& Folder() {
    static Scratch scratch;
    return scratch.dir;
}

std::u16string Widen(const std::string& bytes) {
    MString wide;
    wide.ImportASCII(bytes.c_str(), -1);  // up to the first zero byte
    return std::u16string(wide);
}

// The pieces FGetts(n) would read from `text`: at most 2n-1 bytes, through
// the first newline.
std::vector<std::string> Pieces(const std::string& text, size_t n) {
    std::vector<std::string> pieces;
    for (size_t at = 0; at < text.size();) {
        size_t end = std::min(text.size(), at + 2 * n - 1);
        const size_t newline = text.find('\n', at);
        if (newline != std::string::npos && newline < end) end = newline + 1;
        pieces.push_back(text.substr(at, end - at));
        at = end;
    }
    return pieces;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string folder = Folder().string() + "/";
    std::string content;
    for (size_t i = 0; i < size; ++i)
        content += data[i] == '@' ? folder : std::string(1, static_cast<char>(data[i]));
    const fs::path p = Folder() / "P";
    std::ofstream(p, std::ios::binary | std::ios::trunc) << content;

    std::string text;
    for (size_t i = 0; i < content.size(); ++i)
        if (!(content[i] == '\r' && i + 1 < content.size() && content[i + 1] == '\n'))
            text += content[i];
    const std::vector<std::string> first = Pieces(text, 19);
    const bool info = !first.empty() && Widen(first[0]).compare(0, 19, u"# Velmorant c_files") == 0;
    std::vector<std::u16string> paths;
    if (!info) paths.push_back(p.u16string());
    for (const std::string& piece : info ? Pieces(text, 2048) : std::vector<std::string>{}) {
        std::u16string line = Widen(piece);
        if (line[0] == u'#') continue;
        if (!line.empty() && line.back() == u'\n') line.pop_back();
        paths.push_back(line);
    }
    bool opens = !paths.empty() && paths.size() <= 2048;
    if (opens) {
        MFileUniv probe;
        opens = probe.FOpen(paths[0].c_str(), kOpenReadBinary) == 0;
    }

    MFiles files;
    const std::u16string path = p.u16string();
    MFileSpecWin spec(path.c_str());
    Check(IsVelmorantMFiles(spec) == (info ? 1 : 0));
    Check(files.FOpen(path.c_str(), kOpenReadBinary) == (opens ? 0 : -1));
    Check(std::u16string(files.GetInfoFilePath()) == (info ? path : u""));
    Check(files.GetFileNum() == (opens ? static_cast<int>(paths.size()) : 0));
    for (int i = 1; opens && i <= files.GetFileNum(); ++i) {
        MFileSpecWin* segment = nullptr;
        files.GetFileNames()->FetchItemAt(i, &segment);
        Check(std::u16string(segment->GetFilePath()) == paths[static_cast<size_t>(i - 1)]);
    }
    files.FClose();
    fs::remove(p);
    return 0;
}
