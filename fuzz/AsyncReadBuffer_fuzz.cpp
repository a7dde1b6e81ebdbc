// Fuzzes the read-ahead ring against the file's own bytes.
//
// The input's first five bytes choose the file (its size, up to 64 KiB, and
// the seed of its contents), the ring's buffer size (1 to 8 sectors, or an
// odd size) and where it starts; the file is written to disk and opened for
// overlapped reading. Each following group of four bytes is one request: a
// position (near the last one, anywhere, or before the start of the file)
// and a count (0 and negative counts included), or, now and then, a new
// InitReadBuffer. The model is the file read whole: every answer must be
// -1 exactly for a negative position, 0 at or past the end, the count for a
// count of 0 or less, and otherwise bytes equal to the file's at that
// position; no more than asked or than the file holds, and all of them when
// the request fits one buffer.
#include <basicutils/files/AsyncReadBuffer.h>

#include <algorithm>
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

int BufferSize(uint8_t choice) {
    return choice < 200 ? 2048 * (1 + choice % 8) : 1000 + 37 * choice;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::filesystem::path& scratch = fuzzsupport::ScratchFile("AsyncReadBuffer");
    if (size < 5) return 0;
    const int64_t fileSize = ((data[0] << 8) | data[1]);
    std::string content(static_cast<size_t>(fileSize), '\0');
    std::minstd_rand bytes(data[2]);
    for (char& c : content) c = static_cast<char>(bytes());
    std::ofstream(scratch, std::ios::binary | std::ios::trunc) << content;
    const int bufferSize = BufferSize(data[3]);
    int64_t start = fileSize * data[4] / 256;

    MFileUniv file;
    const std::u16string path = scratch.u16string();
    Check(file.FOpen(path.c_str(), kOpenOverlappedRead) == 0);
    {
        AsyncReadBuffer ring;
        int primed = ring.InitReadBuffer(&file, start, bufferSize, 0);
        Check(primed == (start >= fileSize ? -4 : 0));
        std::vector<char> out(3 * 8192 + 16);
        int64_t last = start;
        for (size_t i = 5; i + 4 <= size; i += 4) {
            const uint8_t kind = data[i];
            const int offset = static_cast<int8_t>(data[i + 1]) * 97;
            const int count = ((data[i + 2] << 8 | data[i + 3]) % (3 * 8192 + 16)) - 16;
            if (kind >= 250) {  // a new start
                start = fileSize * data[i + 1] / 256;
                primed = ring.InitReadBuffer(&file, start, bufferSize, 0);
                Check(primed == (start >= fileSize ? -4 : 0));
                last = start;
                continue;
            }
            if (primed != 0) continue;  // nothing to read from
            const int64_t position = kind < 160   ? last + offset
                                     : kind < 240 ? fileSize * kind / 240 + offset
                                                  : -1 - offset % 5;
            const int answer = ring.ReadBuffer(position, out.data(), count);
            if (position < 0) {
                Check(answer == -1);
            } else if (position >= fileSize) {
                Check(answer == 0);
            } else if (count <= 0) {
                Check(answer == count);
            } else {
                const int64_t possible = std::min<int64_t>(count, fileSize - position);
                Check(answer > 0 && answer <= possible);
                if (count <= bufferSize) Check(answer == possible);
                Check(std::equal(out.begin(), out.begin() + answer,
                                 content.begin() + static_cast<std::ptrdiff_t>(position)));
                last = position + answer;
            }
        }
    }
    file.FClose();
    std::filesystem::remove(scratch);
    return 0;
}
