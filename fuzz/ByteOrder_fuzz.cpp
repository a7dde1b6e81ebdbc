// The named byte orders, the swapper and the byte cursor against a model that
// assembles numbers byte by byte. Every read and write happens at an odd
// offset of an exact heap copy, so misalignment and any byte touched outside
// a field show up (the latter as a changed guard or a sanitizer error).
//
// Input: any bytes; the first ones are the field, the rest drive the cursor.
#include <basicutils/bitstream/ByteOrder.h>
#include <basicutils/bitstream/CAppBytes.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "FuzzSupport.h"

namespace {

namespace bu = basicutils;
using Bytes = std::vector<unsigned char>;

using fuzzsupport::Check;

// The n bytes at p, most (big) or least significant first.
uint64_t Model(const unsigned char* p, int n, bool big) {
    uint64_t v = 0;
    for (int i = 0; i < n; ++i) v = v << 8 | p[big ? i : n - 1 - i];
    return v;
}

void ModelStore(unsigned char* p, uint64_t v, int n, bool big) {
    for (int i = 0; i < n; ++i) p[big ? n - 1 - i : i] = static_cast<unsigned char>(v >> (8 * i));
}

// Runs `write` on a guarded copy of `field` and checks the result against the model store.
template <class Write>
void CheckStore(const Bytes& field, uint64_t value, int n, bool big, Write write) {
    Bytes got(field.size() + 2, 0xEE), want = got;
    write(got.data() + 1);
    ModelStore(want.data() + 1, value, n, big);
    Check(got == want);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 9) return 0;
    Bytes buf(data, data + size);
    unsigned char* p = buf.data() + 1;  // odd on purpose
    char* c = reinterpret_cast<char*>(p);
    const uint32_t m32 = static_cast<uint32_t>(Model(p, 4, true)),
                   l32 = static_cast<uint32_t>(Model(p, 4, false));
    const uint16_t m16 = static_cast<uint16_t>(Model(p, 2, true)),
                   l16 = static_cast<uint16_t>(Model(p, 2, false));

    Check(static_cast<uint32_t>(bu::GetMB32(p)) == m32 &&
          static_cast<uint32_t>(bu::GetInt32(p)) == m32);
    Check(static_cast<uint32_t>(bu::GetLong(c)) == m32 &&
          static_cast<uint32_t>(bu::GetLong(p)) == m32);
    Check(static_cast<uint32_t>(bu::GetLB32(c)) == l32);
    Check(bu::GetMB16(p) == m16 && bu::GetInt16(p) == m16 && bu::GetLB16(p) == l16);
    Check(bu::GetShort(c) == static_cast<int16_t>(m16) &&
          bu::GetShort(p) == static_cast<int16_t>(m16));
    // The swapper reverses the host's order: on a little-endian host it reads big-endian.
    const bool little = std::endian::native == std::endian::little;
    const uint32_t r32 = little ? m32 : l32;
    const uint16_t r16 = little ? m16 : l16;
    Check(bu::UByteSwapper::SwapUL(c) == r32 &&
          static_cast<uint32_t>(bu::UByteSwapper::SwapSL(c)) == r32);
    Check(bu::UByteSwapper::SwapUS(c) == r16 &&
          static_cast<uint16_t>(bu::UByteSwapper::SwapSS(c)) == r16);
    Check(bu::UByteSwapper::SwapLong(m32) == l32 && bu::UByteSwapper::SwapShort(m16) == l16);
    const uint64_t m64 = Model(p, 8, true);
    Check(static_cast<uint64_t>(bu::UByteSwapper::SwapLongLong(static_cast<int64_t>(m64))) ==
          Model(p, 8, false));

    // Setters write exactly their bytes; 16-bit ones keep the low 16 bits.
    const Bytes field(p, p + 4);
    CheckStore(field, m32, 4, true, [&](unsigned char* q) { bu::SetMB32(q, m32); });
    CheckStore(field, m32, 4, true, [&](unsigned char* q) { bu::SetInt32(q, m32); });
    CheckStore(field, m32, 4, true, [&](unsigned char* q) {
        bu::SetLong(reinterpret_cast<char*>(q), static_cast<int32_t>(m32));
    });
    CheckStore(field, m32, 4, false, [&](unsigned char* q) { bu::SetLB32(q, m32); });
    CheckStore(field, m32, 2, true, [&](unsigned char* q) { bu::SetMB16(q, m32); });
    CheckStore(field, m32, 2, true, [&](unsigned char* q) { bu::SetInt16(q, m32); });
    CheckStore(field, m32, 2, false, [&](unsigned char* q) { bu::SetLB16(q, m32); });
    CheckStore(field, m16, 2, true,
               [&](unsigned char* q) { bu::SetShort(q, static_cast<int16_t>(m16)); });
    CheckStore(field, m16, 2, true, [&](unsigned char* q) {
        bu::SetShort(reinterpret_cast<char*>(q), static_cast<int16_t>(m16));
    });
    CheckStore(field, m32, 4, little, [&](unsigned char* q) {
        bu::UByteSwapper::SwapToBuf(m32, reinterpret_cast<char*>(q));
    });
    CheckStore(field, m16, 2, little, [&](unsigned char* q) {
        bu::UByteSwapper::SwapToBuf(static_cast<int16_t>(m16), reinterpret_cast<char*>(q));
    });

    // Runs: reversed end to end, or swapped in pairs, and nothing beyond.
    const auto length = static_cast<int16_t>(static_cast<int8_t>(data[0]) % 40);
    const size_t run = std::min<size_t>(length < 0 ? 0 : static_cast<size_t>(length), size - 1);
    Bytes whole = buf, pairs = buf, wantWhole = buf, wantPairs = buf;
    bu::UByteSwapper::Swap(reinterpret_cast<char*>(whole.data() + 1), static_cast<int16_t>(run));
    bu::UByteSwapper::SwapShort(pairs.data() + 1, static_cast<int16_t>(run));
    std::reverse(wantWhole.begin() + 1, wantWhole.begin() + 1 + static_cast<std::ptrdiff_t>(run));
    for (size_t i = 0; i + 1 < run; i += 2) std::swap(wantPairs[1 + i], wantPairs[2 + i]);
    Check(whole == wantWhole && pairs == wantPairs);

    // The byte cursor: reads of 1..4 bytes, writes mirrored, and steps.
    Bytes mine(buf.begin() + 1, buf.end()), model = mine;
    bu::CAppBytes cursor(mine.data(), static_cast<int>(mine.size()));
    int64_t at = 0;
    for (size_t i = 1; i + 1 < size; i += 2) {
        const int n = data[i] % 7 - 1;  // -1..5
        const bool fits =
            n >= 1 && n <= 4 && at >= 0 && at + n <= static_cast<int64_t>(mine.size());
        switch (data[i + 1] % 4) {
            case 0:
            case 1:
                if (n >= 1 && n <= 4 && !fits) break;  // a caller's duty
                Check(static_cast<uint32_t>(
                          cursor.GetBytes(n, static_cast<bu::cbytes_get_t>(data[i + 1] % 2))) ==
                      (fits ? Model(model.data() + at, n, true) : 0));
                if (fits && data[i + 1] % 2) at += n;
                break;
            case 2:
                if (n >= 1 && n <= 4 && !fits) break;
                Check(cursor.PutBytes(static_cast<int>(m32), n) == 0);
                if (fits) ModelStore(model.data() + at, m32, n, true), at += n;
                break;
            default:
                if (at + n < 0 || at + n > static_cast<int64_t>(mine.size())) break;
                cursor.FlushBytes(n);
                at += n;
                break;
        }
        Check(mine == model);
        Check(cursor.IsEOB() == (at >= static_cast<int64_t>(mine.size()) ? 1 : 0));
    }
    return 0;
}
