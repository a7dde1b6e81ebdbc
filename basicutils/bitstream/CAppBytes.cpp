#include <basicutils/bitstream/CAppBytes.h>

#include <cassert>
#include <cstdint>

namespace basicutils {

CAppBytes::CAppBytes() : CAppBytes(nullptr, 0) {}

CAppBytes::CAppBytes(unsigned char* buffer, int size)
    : mBuffer(buffer), mBytePos(0), mBufSize(size) {}

void CAppBytes::SetBuf(unsigned char* buffer, int size) {
    mBuffer = buffer;
    mBytePos = 0;
    mBufSize = size;
}

int CAppBytes::GetBytes(int n, cbytes_get_t mode) {
    if (n < 1 || n > 4) return 0;
    assert(mBytePos >= 0 && static_cast<int64_t>(mBytePos) + n <= mBufSize);
    const unsigned char* p = mBuffer + mBytePos;
    uint32_t value = 0;
    for (int i = 0; i < n; ++i) value = (value << 8) | p[i];
    if (mode != kCBytesShow) mBytePos += n;
    return static_cast<int>(value);
}

int CAppBytes::ShowBytes(int n) {
    return GetBytes(n, kCBytesShow);
}

void CAppBytes::FlushBytes(int n) {
    mBytePos += n;
}

int CAppBytes::PutBytes(int value, int n) {
    if (n < 1 || n > 4) return 0;
    assert(mBytePos >= 0 && static_cast<int64_t>(mBytePos) + n <= mBufSize);
    unsigned char* p = mBuffer + mBytePos;
    const uint32_t v = static_cast<uint32_t>(value);
    for (int i = 0; i < n; ++i) p[i] = static_cast<unsigned char>(v >> (8 * (n - 1 - i)));
    mBytePos += n;
    return 0;
}

}  // namespace basicutils
