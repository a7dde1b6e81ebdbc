// Fuzzes the line reader of the working file against a model of it.
//
// The input's first byte picks text or binary reading and seeds the limits;
// the rest is written to a real file and read back with FGetts, each call
// with another n from 1 to 48. The model: text reading turns "\r\n" into
// "\n"; a call takes up to 2n-1 bytes, through the first newline; the piece
// is cut at its first zero byte and widened from the system code page (ASCII
// widens unit for unit). At the end FGetts answers -1 and leaves its
// destination alone.
#include <basicutils/files/MFileUniv.h>

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

using fuzzsupport::Check;

std::u16string Widen(const std::string& bytes) {
    bool ascii = true;
    for (unsigned char c : bytes) ascii = ascii && c < 0x80;
    if (ascii) return std::u16string(bytes.begin(), bytes.end());
    MString wide;
    wide.ImportASCII(bytes.c_str(), -1);
    return std::u16string(wide);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::filesystem::path& scratch = fuzzsupport::ScratchFile("FGetts");
    if (size == 0) return 0;
    const bool text = data[0] & 1;
    uint32_t seed = data[0];
    std::string content(reinterpret_cast<const char*>(data) + 1, size - 1);
    std::ofstream(scratch, std::ios::binary | std::ios::trunc) << content;

    std::string model = content;
    if (text) {
        std::string translated;
        for (size_t i = 0; i < model.size(); ++i)
            if (!(model[i] == '\r' && i + 1 < model.size() && model[i + 1] == '\n'))
                translated += model[i];
        model = translated;
    }

    MFileUniv file;
    const std::u16string path = scratch.u16string();
    Check(file.FOpen(path.c_str(), text ? kOpenReadText : kOpenReadBinary) == 0);
    std::vector<char16_t> line(100);
    size_t at = 0;
    for (;;) {
        seed = seed * 1103515245u + 12345u;
        const int n = 1 + static_cast<int>((seed >> 16) % 48);
        line.assign(line.size(), u'#');
        const int answer = file.FGetts(line.data(), n);
        if (at == model.size()) {
            Check(answer == -1 && line[0] == u'#');
            break;
        }
        Check(answer == 0);
        size_t end = std::min(model.size(), at + static_cast<size_t>(2 * n - 1));
        const size_t newline = model.find('\n', at);
        if (newline != std::string::npos && newline < end) end = newline + 1;
        std::string piece = model.substr(at, end - at);
        piece = piece.c_str();  // cut at the first zero byte
        Check(std::u16string(line.data()) == Widen(piece));
        at = end;
    }
    file.FClose();
    std::filesystem::remove(scratch);
    return 0;
}
