// Random bit-field writes and reads through CAppBits, checked against a
// bit-by-bit model of the buffer after every step. The buffer is an exact
// heap allocation, so any byte touched beyond it is a sanitizer error.
//
// Input: one byte for the buffer size (1..64), that many bytes of initial
// contents, then operations of 6 bytes each: kind, width, 4 bytes of value
// (or position).
#include <basicutils/bitstream/CAppBits.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "FuzzSupport.h"

namespace {

using basicutils::CAppBits;

using fuzzsupport::Check;

struct Model {
    std::vector<unsigned char> bytes;

    uint32_t Read(int64_t pos, int n) const {
        uint32_t v = 0;
        for (int i = 0; i < n; ++i) {
            int64_t bit = pos + i;
            v = (v << 1) | ((bytes[static_cast<size_t>(bit >> 3)] >> (7 - (bit & 7))) & 1u);
        }
        return v;
    }

    // A byte entered at its bit 0 is cleared; a begun byte is ORed into.
    // A 32-bit value with its top bit set starting mid-byte is a negative
    // int and also sets the bits before it in that byte.
    void Write(int64_t pos, uint32_t value, int n) {
        if (n == 32 && (value >> 31) != 0 && (pos & 7) != 0)
            bytes[static_cast<size_t>(pos >> 3)] |=
                static_cast<unsigned char>(~(0xFFu >> (pos & 7)));
        for (int i = 0; i < n; ++i) {
            int64_t bit = pos + i;
            unsigned char& b = bytes[static_cast<size_t>(bit >> 3)];
            if ((bit & 7) == 0) b = 0;
            if ((value >> (n - 1 - i)) & 1u) b |= static_cast<unsigned char>(0x80u >> (bit & 7));
        }
    }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1) return 0;
    const int bufSize = 1 + data[0] % 64;
    ++data;
    --size;
    if (size < static_cast<size_t>(bufSize)) return 0;
    std::unique_ptr<unsigned char[]> buf(new unsigned char[static_cast<size_t>(bufSize)]);
    std::memcpy(buf.get(), data, static_cast<size_t>(bufSize));
    Model model{std::vector<unsigned char>(data, data + bufSize)};
    data += bufSize;
    size -= static_cast<size_t>(bufSize);

    const int64_t totalBits = int64_t{bufSize} * 8;
    CAppBits cursor(buf.get(), bufSize);
    int64_t pos = 0;  // the model's cursor, in bits

    for (; size >= 6; data += 6, size -= 6) {
        const int kind = data[0] % 6;
        int n = data[1] % 33;
        uint32_t word;
        std::memcpy(&word, data + 2, 4);
        // Fit the value to its field, except a full 32-bit field.
        uint32_t value = n == 0 ? 0 : (n == 32 ? word : word & ((1u << n) - 1));
        int64_t at = static_cast<int64_t>(word % static_cast<uint32_t>(totalBits + 1));

        switch (kind) {
            case 0:  // sequential write
                if (pos + n > totalBits) n = static_cast<int>(totalBits - pos);
                if (n < 32) value &= n == 0 ? 0 : (1u << n) - 1;
                Check(cursor.PutBits(static_cast<int>(value), n) == 0);
                model.Write(pos, value, n);
                pos += n;
                break;
            case 1: {  // positioned write of the position word's bytes reversed
                if (at + n > totalBits) n = static_cast<int>(totalBits - at);
                uint32_t v = __builtin_bswap32(word);
                if (n < 32) v &= n == 0 ? 0 : (1u << n) - 1;
                Check(cursor.PutBitsAt(static_cast<int>(at), static_cast<int>(v), n) == 0);
                model.Write(at, v, n);
                pos = at + n;
                break;
            }
            case 2:  // sequential read, consuming
                if (pos + n > totalBits) n = static_cast<int>(totalBits - pos);
                Check(static_cast<uint32_t>(cursor.GetBits(n, basicutils::kCBitsConsume)) ==
                      model.Read(pos, n));
                pos += n;
                break;
            case 3: {  // show: both forms agree and the cursor stays
                if (pos + n > totalBits) n = static_cast<int>(totalBits - pos);
                const uint32_t want = model.Read(pos, n);
                Check(static_cast<uint32_t>(cursor.ShowBits(n)) == want);
                Check(static_cast<uint32_t>(cursor.GetBits(n, basicutils::kCBitsShow)) == want);
                break;
            }
            case 4:  // positioned read
                if (at + n > totalBits) n = static_cast<int>(totalBits - at);
                Check(static_cast<uint32_t>(cursor.GetBitsAt(static_cast<int>(at), n)) ==
                      model.Read(at, n));
                pos = at + n;
                break;
            default:  // skip forward
                if (pos + n > totalBits) n = static_cast<int>(totalBits - pos);
                cursor.FlushBits(n);
                pos += n;
                break;
        }
        Check(cursor.GetBytePosition() == pos >> 3);
        Check(cursor.IsByteAlligned() == ((pos & 7) == 0 ? 1 : 0));
        Check(cursor.IsEOB() == (pos >> 3 >= bufSize ? 1 : 0));
        Check(std::memcmp(buf.get(), model.bytes.data(), static_cast<size_t>(bufSize)) == 0);
    }
    return 0;
}
