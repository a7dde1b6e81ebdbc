#include <basicutils/bitstream/CAppBits.h>

#include <cassert>

namespace basicutils {

// The tables are constant-initialised to zero here and filled by
// InitializeByteMasks from the first load-time object.
unsigned char CAppBits::sFirstByteMasks[9][8] = {};
unsigned char CAppBits::sSecondByteMasks[9][8] = {};
unsigned char CAppBits::sRemainingBitsMasks[8] = {};

namespace {

// Bytes a field of n bits at offset o covers.
[[maybe_unused]] inline int BytesCovered(int offset, int n) {
    return (offset + n + 7) >> 3;
}

}  // namespace

CAppBits::CAppBits() : CAppBits(nullptr, 0) {}

CAppBits::CAppBits(unsigned char* buffer, int size)
    : mBuffer(buffer), mBitOffset(0), mBytePos(0), mBufSize(size) {}

void CAppBits::SetBuf(unsigned char* buffer, int size) {
    mBuffer = buffer;
    mBitOffset = 0;
    mBytePos = 0;
    mBufSize = size;
}

bool CAppBits::InitializeByteMasks() {
    for (int n = 0; n <= 8; ++n) {
        // n top bits of a 16-bit word; row 0 stays all zero.
        unsigned word = n == 0 ? 0u : (0xFFFFu << (16 - n)) & 0xFFFFu;
        for (int o = 0; o < 8; ++o) {
            unsigned shifted = word >> o;
            sFirstByteMasks[n][o] = static_cast<unsigned char>(shifted >> 8);
            sSecondByteMasks[n][o] = static_cast<unsigned char>(shifted & 0xFF);
        }
    }
    for (int o = 0; o < 8; ++o) sRemainingBitsMasks[o] = static_cast<unsigned char>(0xFFu >> o);
    return true;
}

int CAppBits::FastGetBits(int n, cbits_get_t mode) {
    int result = MaskedPair(mBuffer + mBytePos, mBitOffset, n);
    if (mode == kCBitsConsume) Advance(n);
    return result;
}

int CAppBits::PeekBitsNearEnd(const unsigned char* buffer, int size, int p, int o, int n) {
    assert(n <= 32);
    if (n <= 0) return 0;
    assert(p >= 0 && static_cast<int64_t>(p) + BytesCovered(o, n) <= size);
    const unsigned char* bytes = buffer + p;

    if (n <= 8 && static_cast<int64_t>(p) + 2 <= size) return MaskedPair(bytes, o, n);

    const uint32_t first = bytes[0] & sRemainingBitsMasks[o];
    const int avail = 8 - o;
    if (n <= avail) return static_cast<int>(first >> (avail - n));
    const int rem = n - avail;
    const int k = (rem + 7) >> 3;
    uint32_t acc = first;
    for (int i = 1; i <= k; ++i) acc = (acc << 8) | bytes[i];
    uint32_t result = acc >> (8 * k - rem);
    // Five bytes: the first byte's bits were shifted out of the accumulator.
    if (k == 4) result |= first << rem;
    return static_cast<int>(result);
}

void CAppBits::FlushBits(int n) {
    Advance(n);
}

int CAppBits::PutBits(int value, int n) {
    assert(n <= 32);
    if (n <= 0) return 0;
    assert(mBytePos >= 0 &&
           static_cast<int64_t>(mBytePos) + BytesCovered(mBitOffset, n) <= mBufSize);
    const unsigned v = static_cast<unsigned>(value);
    int free = 8 - mBitOffset;
    while (n >= free) {
        if (free == 8) mBuffer[mBytePos] = 0;
        n -= free;
        // Arithmetic shift: a negative value brings ones down from above.
        mBuffer[mBytePos] |= static_cast<unsigned char>((value >> n) & 0xFF);
        ++mBytePos;
        mBitOffset = 0;
        free = 8;
    }
    if (n == 0) return 0;
    if (free == 8) mBuffer[mBytePos] = 0;
    mBuffer[mBytePos] |= static_cast<unsigned char>((v << (free - n)) & 0xFF);
    mBitOffset += n;
    return 0;
}

int CAppBits::PutBitsAt(int bitPosition, int value, int n) {
    mBytePos = bitPosition >> 3;
    mBitOffset = bitPosition & 7;
    return PutBits(value, n);
}

}  // namespace basicutils
