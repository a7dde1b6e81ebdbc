// `basicutils bits` and `basicutils bytes`: bit fields and byte-order reads
// from a file, through CAppBits and the named-order functions.
//
// The library's cursors leave bounds to their caller; these commands are
// that caller. Every field is checked against the file size before anything
// is printed, and only the few bytes a field covers are read from the file,
// so large files cost nothing extra.
#include <basicutils/BasicUtils.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <new>
#include <string>
#include <vector>

#include "Commands.h"

namespace basicutils_tool {

namespace {

// A file opened for reads at given offsets.
class InputFile {
  public:
    // Opens path; on failure returns false with a message for the user.
    bool Open(const std::string& path, std::string& error) {
        // Judged by the status alone: opening a FIFO would wait for a writer.
        std::error_code ec;
        const std::filesystem::file_status status = std::filesystem::status(path, ec);
        if (std::filesystem::is_directory(status)) {
            error = "'" + path + "' is a directory";
            return false;
        }
        if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) {
            error = "'" + path + "' is not a regular file";
            return false;
        }
        errno = 0;
        mIn.open(path, std::ios::binary);
        if (!mIn) {
            error =
                "cannot open '" + path + "': " + (errno ? std::strerror(errno) : "unknown error");
            return false;
        }
        mIn.seekg(0, std::ios::end);
        std::streamoff end = mIn.tellg();
        if (end < 0) {
            error = "cannot find the size of '" + path + "'";
            return false;
        }
        mSize = static_cast<uint64_t>(end);
        mPath = path;
        return true;
    }

    uint64_t Size() const { return mSize; }

    // Reads count bytes at offset, which the caller has checked are there.
    bool ReadAt(uint64_t offset, size_t count, std::vector<unsigned char>& out,
                std::string& error) {
        out.assign(count, 0);
        if (count == 0) return true;
        mIn.clear();
        mIn.seekg(static_cast<std::streamoff>(offset));
        mIn.read(reinterpret_cast<char*>(out.data()), static_cast<std::streamsize>(count));
        if (static_cast<size_t>(mIn.gcount()) != count) {
            error = "cannot read '" + mPath + "' at byte " + std::to_string(offset);
            return false;
        }
        return true;
    }

  private:
    std::ifstream mIn;
    uint64_t mSize = 0;
    std::string mPath;
};

// Unsigned decimal through the library's own conversion.
std::string Decimal(uint64_t value) {
    int64_t v = static_cast<int64_t>(value);
    char* text = basicutils::ToString10(v);
    std::string s = text;
    ::operator delete(text);
    return s;
}

std::string Hex(uint64_t value, int digits) {
    static const char kDigits[] = "0123456789abcdef";
    std::string text;
    for (int shift = 60; shift >= 0; shift -= 4) {
        unsigned nibble = static_cast<unsigned>(value >> shift) & 0xF;
        if (nibble != 0 || !text.empty() || shift < 4 * digits) text += kDigits[nibble];
    }
    return "0x" + text;
}

// A non-negative decimal number.
bool ParseCount(const std::string& text, long long& value) {
    return ParseInt(text, value) && value >= 0;
}

struct BitField {
    std::string text;
    long long position;
    int width;
};

}  // namespace

int RunBits(const Args& args) {
    if (args.size() < 2) return UsageError("bits: expected FILE and at least one POS:WIDTH");
    std::vector<BitField> fields;
    for (size_t i = 1; i < args.size(); ++i) {
        const std::string& spec = args[i];
        size_t colon = spec.find(':');
        long long position = 0, width = 0;
        if (colon == std::string::npos) return UsageError("bits: '" + spec + "' is not POS:WIDTH");
        if (!ParseCount(spec.substr(0, colon), position))
            return UsageError("bits: position in '" + spec + "' is not a bit number");
        if (!ParseCount(spec.substr(colon + 1), width) || width > 32)
            return UsageError("bits: width in '" + spec + "' is not a number from 0 to 32");
        fields.push_back({spec, position, static_cast<int>(width)});
    }

    InputFile file;
    std::string error;
    if (!file.Open(args[0], error)) return Failure("bits: " + error);
    const uint64_t totalBits = file.Size() * 8;
    for (const BitField& f : fields) {
        if (static_cast<uint64_t>(f.position) > totalBits ||
            static_cast<uint64_t>(f.width) > totalBits - static_cast<uint64_t>(f.position))
            return Failure("bits: field " + f.text + " ends beyond the end of '" + args[0] + "' (" +
                           std::to_string(file.Size()) + " bytes)");
    }

    std::vector<unsigned char> bytes;
    std::string out;
    for (const BitField& f : fields) {
        const int offset = static_cast<int>(f.position & 7);
        const size_t covered = static_cast<size_t>((offset + f.width + 7) >> 3);
        if (!file.ReadAt(static_cast<uint64_t>(f.position) >> 3, covered, bytes, error))
            return Failure("bits: " + error);
        basicutils::CAppBits cursor(bytes.data(), static_cast<int>(bytes.size()));
        uint32_t value = static_cast<uint32_t>(cursor.GetBitsAt(offset, f.width));
        out += std::to_string(f.position) + ":" + std::to_string(f.width) + " " + Decimal(value) +
               " " + Hex(value, f.width == 0 ? 1 : (f.width + 3) / 4) + "\n";
    }
    std::fputs(out.c_str(), stdout);
    return 0;
}

namespace {

// The number forms of `bytes`: width in bytes and order.
struct NumberForm {
    const char* option;
    int size;
    bool mostSignificantFirst;
};

const NumberForm kForms[] = {
    {"--mb16", 2, true},  {"--mb32", 4, true},  {"--mb64", 8, true},
    {"--lb16", 2, false}, {"--lb32", 4, false}, {"--lb64", 8, false},
};

uint64_t ReadNumber(const NumberForm& form, std::vector<unsigned char>& b) {
    using namespace basicutils;
    unsigned char* p = b.data();
    char* c = reinterpret_cast<char*>(p);
    auto u32 = [](int v) { return static_cast<uint64_t>(static_cast<uint32_t>(v)); };
    switch (form.size) {
        case 2:
            return static_cast<uint64_t>(form.mostSignificantFirst ? GetMB16(p) : GetLB16(p));
        case 4:
            return u32(form.mostSignificantFirst ? GetMB32(p) : GetLB32(c));
        default:
            return form.mostSignificantFirst ? (u32(GetMB32(p)) << 32) | u32(GetMB32(p + 4))
                                             : (u32(GetLB32(c + 4)) << 32) | u32(GetLB32(c));
    }
}

std::string HexDump(uint64_t offset, const std::vector<unsigned char>& b) {
    std::string out;
    char cell[32];
    for (size_t line = 0; line < b.size(); line += 16) {
        std::snprintf(cell, sizeof cell, "%08llx ", static_cast<unsigned long long>(offset + line));
        out += cell;
        std::string ascii;
        for (size_t i = line; i < line + 16; ++i) {
            if (i - line == 8) out += ' ';
            if (i < b.size()) {
                std::snprintf(cell, sizeof cell, " %02x", b[i]);
                out += cell;
                ascii += (b[i] >= 0x20 && b[i] < 0x7F) ? static_cast<char>(b[i]) : '.';
            } else {
                out += "   ";
            }
        }
        out += "  |" + ascii + "|\n";
    }
    return out;
}

}  // namespace

int RunBytes(const Args& args) {
    if (args.empty()) return UsageError("bytes: expected FILE");
    long long at = 0, count = 16;
    const NumberForm* form = nullptr;
    bool dump = false;
    for (size_t i = 1; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a == "--at" || a == "--count") {
            if (i + 1 >= args.size()) return UsageError("bytes: " + a + " needs a number");
            long long& target = a == "--at" ? at : count;
            if (!ParseCount(args[++i], target))
                return UsageError("bytes: " + a + " takes a number of bytes, not '" + args[i] +
                                  "'");
            if (a == "--count") {
                if (form) return UsageError("bytes: give one of --count and the number forms");
                dump = true;
            }
            continue;
        }
        const NumberForm* found = nullptr;
        for (const NumberForm& f : kForms)
            if (a == f.option) found = &f;
        if (!found) return UsageError("bytes: unknown option '" + a + "'");
        if (form || dump) return UsageError("bytes: give one of --count and the number forms");
        form = found;
    }

    InputFile file;
    std::string error;
    if (!file.Open(args[0], error)) return Failure("bytes: " + error);
    uint64_t want = form ? static_cast<uint64_t>(form->size) : static_cast<uint64_t>(count);
    // The default dump shows what there is of its 16 bytes; asked-for sizes are checked.
    if (!form && !dump && static_cast<uint64_t>(at) <= file.Size())
        want = std::min(want, file.Size() - static_cast<uint64_t>(at));
    if (static_cast<uint64_t>(at) > file.Size() || want > file.Size() - static_cast<uint64_t>(at))
        return Failure("bytes: " + std::to_string(want) + " bytes at " + std::to_string(at) +
                       " run beyond the end of '" + args[0] + "' (" + std::to_string(file.Size()) +
                       " bytes)");
    std::vector<unsigned char> bytes;
    if (!form) {
        // A dump of any size goes out in pieces of whole lines.
        constexpr uint64_t kPiece = 64 * 1024;
        for (uint64_t done = 0; done < want; done += kPiece) {
            const size_t piece = static_cast<size_t>(std::min(kPiece, want - done));
            if (!file.ReadAt(static_cast<uint64_t>(at) + done, piece, bytes, error))
                return Failure("bytes: " + error);
            std::fputs(HexDump(static_cast<uint64_t>(at) + done, bytes).c_str(), stdout);
        }
        return 0;
    }
    if (!file.ReadAt(static_cast<uint64_t>(at), static_cast<size_t>(want), bytes, error))
        return Failure("bytes: " + error);
    const uint64_t value = ReadNumber(*form, bytes);
    std::printf("%lld %s %s %s\n", at, form->option + 2, Decimal(value).c_str(),
                Hex(value, 2 * form->size).c_str());
    return 0;
}

}  // namespace basicutils_tool
