// Fuzzes reading, writing and seeking across segments against one flat byte
// array.
//
// The first byte picks the limit, 1 to 16 bytes; each following pair of
// bytes is a step and its amount:
//   0 FWrite of 1 to limit bytes      1 FRead of 0 to 2 * limit bytes
//   2 FSeek64 from the start          3 FSeek64(0, kSeekEnd)
//   4 FClose and FOpen again
// The logical file opens in mode 9 (contents kept, from the start), where it
// acts as one flat file; no write is longer than the limit, so no segment
// passes it: all but the last hold exactly `limit` bytes, and a file of at
// most `limit` bytes stays plain. After every step the answer, each
// segment's size and bytes, and the info file's text agree with the model.
// A seek past the end fills with zero bytes and answers the logical offset,
// or the position in the last segment when that segment alone grows.
//
// Syncs are made to return at once through the system seam: they cost
// milliseconds and change nothing that this process could see.
#include <basicutils/files/MFiles.h>
#include <basicutils/platform/internal/Env.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>

#include "FuzzSupport.h"

using namespace basicutils;

namespace {

namespace fs = std::filesystem;

using fuzzsupport::Check;

class NoSyncEnv : public detail::EnvWrapper {
  public:
    NoSyncEnv() : EnvWrapper(detail::CurrentEnv()) {}
    int Fsync(int, bool) override { return 0; }
};

// The scratch folder, removed when the process ends.
struct Scratch {
    fs::path dir =
        fs::temp_directory_path() / ("MFilesModel_fuzz_" + std::to_string(std::random_device{}()));
    Scratch() { fs::create_directories(dir); }
    ~Scratch() { fs::remove_all(dir); }
};

const fs::path& Folder() {
    static Scratch scratch;
    return scratch.dir;
}

std::string Slurp(const fs::path& path) {
    std::stringstream s;
    s << std::ifstream(path, std::ios::binary).rdbuf();
    return s.str();
}

struct Model {
    std::string bytes;
    int64_t position = 0;
    int64_t limit = 1;

    int64_t Segments() const {
        const auto size = static_cast<int64_t>(bytes.size());
        return size == 0 ? 1 : (size + limit - 1) / limit;
    }
    int64_t LastStart() const { return (Segments() - 1) * limit; }

    // The disk holds the model: P plain, or P listing P.cfx.0... with each
    // segment's slice of the bytes, and no segment beyond them.
    void CheckDisk(const fs::path& p) const {
        const int64_t count = Segments();
        if (count == 1) {
            Check(Slurp(p) == bytes);
            return;
        }
        std::string info = "# Velmorant c_files \n";
        for (int64_t i = 0; i < count; ++i) {
            const std::string segment = p.string() + ".cfx." + std::to_string(i);
            info += segment + "\n";
            Check(Slurp(segment) ==
                  bytes.substr(static_cast<size_t>(i * limit), static_cast<size_t>(limit)));
        }
        Check(Slurp(p) == info);
        Check(!fs::exists(p.string() + ".cfx." + std::to_string(count)));
    }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    NoSyncEnv quiet;
    detail::Env* previous = detail::SetEnv(&quiet);
    for (const auto& entry : fs::directory_iterator(Folder())) fs::remove(entry.path());
    const fs::path p = Folder() / "P";
    const std::u16string path = p.u16string();

    Model model;
    model.limit = 1 + data[0] % 16;
    const int64_t most = 12 * model.limit;
    MFiles files;
    files.SetMaxFileSize(model.limit);
    Check(files.FOpen(path.c_str(), kOpenUpdateBinary) == 0);
    char buffer[64];
    char next = 'a';
    for (size_t i = 1; i + 1 < size && i < 64; i += 2) {
        const int amount = data[i + 1];
        const auto length = static_cast<int64_t>(model.bytes.size());
        switch (data[i] % 5) {
            case 0: {
                const int count = static_cast<int>(
                    std::min<int64_t>(1 + amount % model.limit, most - model.position));
                if (count <= 0) break;
                for (int k = 0; k < count; ++k) buffer[k] = next = next == 'z' ? 'a' : next + 1;
                Check(files.FWrite(buffer, count) == count);
                if (model.position + count > length)
                    model.bytes.resize(static_cast<size_t>(model.position + count));
                model.bytes.replace(static_cast<size_t>(model.position), static_cast<size_t>(count),
                                    buffer, static_cast<size_t>(count));
                model.position += count;
                break;
            }
            case 1: {
                const int count = amount % static_cast<int>(2 * model.limit + 1);
                const int64_t expected = std::min<int64_t>(count, length - model.position);
                Check(files.FRead(buffer, count) == expected);
                Check(std::string(buffer, static_cast<size_t>(expected)) ==
                      model.bytes.substr(static_cast<size_t>(model.position),
                                         static_cast<size_t>(expected)));
                model.position += expected;
                break;
            }
            case 2: {
                const int64_t offset = std::min<int64_t>(amount * (model.limit + 1) / 4, most);
                int64_t expected = offset;
                if (offset > length && offset - model.LastStart() <= model.limit)
                    expected = offset - model.LastStart();
                Check(files.FSeek64(offset, kSeekBegin) == expected);
                if (offset > length) model.bytes.resize(static_cast<size_t>(offset), '\0');
                model.position = offset;
                break;
            }
            case 3:
                Check(files.FSeek64(0, kSeekEnd) == length - model.LastStart());
                Check(files.GetCurrentFileNum() == model.Segments());
                model.position = length;
                break;
            default:
                files.FClose();
                Check(files.FOpen(kOpenUpdateBinary) == 0);
                model.position = 0;
                break;
        }
        Check(files.GetFileNum() == model.Segments());
        model.CheckDisk(p);
    }
    files.FClose();
    detail::SetEnv(previous);
    return 0;
}
