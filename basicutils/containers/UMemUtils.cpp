// Copy strategy. Up to 64 bytes every byte of the source is loaded before
// the first store: a handful of (possibly overlapping) register moves, which
// is correct for any overlap and beats a call into the C library at these
// sizes. Larger blocks go to the C library's memmove, which has the same
// contract (the result of a move, whatever the overlap) and picks its
// vector width, direction and cache-bypassing stores from the processor it
// runs on; a hand-written loop only ever matched it at some sizes and lost
// at others. The fill follows the same split.

#include <basicutils/containers/UMemUtils.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace basicutils {
namespace {

using Byte = unsigned char;
using V16 = uint64_t __attribute__((vector_size(16)));

template <typename T>
inline T Load(const Byte* p) {
    T v;
    __builtin_memcpy(&v, p, sizeof(T));
    return v;
}

template <typename T>
inline void Store(Byte* p, T v) {
    __builtin_memcpy(p, &v, sizeof(T));
}

// Both ends of the block as two (possibly overlapping) units of T: all loads
// first, then all stores, so overlap in either direction is harmless.
template <typename T>
inline void MoveEnds(Byte* d, const Byte* s, size_t n) {
    const T a = Load<T>(s), b = Load<T>(s + n - sizeof(T));
    Store(d, a);
    Store(d + n - sizeof(T), b);
}

// Copies of at most 64 bytes.
inline void MoveSmall(Byte* d, const Byte* s, size_t n) {
    if (n >= 32) {
        const V16 a = Load<V16>(s), b = Load<V16>(s + 16);
        const V16 c = Load<V16>(s + n - 32), e = Load<V16>(s + n - 16);
        Store(d, a);
        Store(d + 16, b);
        Store(d + n - 32, c);
        Store(d + n - 16, e);
    } else if (n >= 16) {
        MoveEnds<V16>(d, s, n);
    } else if (n >= 8) {
        MoveEnds<uint64_t>(d, s, n);
    } else if (n >= 4) {
        MoveEnds<uint32_t>(d, s, n);
    } else if (n >= 2) {
        MoveEnds<uint16_t>(d, s, n);
    } else if (n == 1) {
        *d = *s;
    }
}

constexpr size_t kSmallCopy = 64;
constexpr size_t kSmallFill = 32;

}  // namespace

void UMemUtils::memcpy(void* destination, const void* source, unsigned int size) {
    if (static_cast<int32_t>(size) <= 0 || destination == source) return;
    auto* d = static_cast<Byte*>(destination);
    const auto* s = static_cast<const Byte*>(source);
    if (size <= kSmallCopy) {
        MoveSmall(d, s, size);
    } else {
        std::memmove(d, s, size);
    }
}

void* UMemUtils::memset(void* destination, int value, unsigned int size) {
    auto* d = static_cast<Byte*>(destination);
    const auto byte = static_cast<Byte>(value);
    if (size > kSmallFill) return std::memset(d, byte, size);
    const uint64_t pattern = 0x0101010101010101ull * byte;
    if (size >= 16) {
        const V16 v = {pattern, pattern};
        Store(d, v);
        Store(d + size - 16, v);
    } else if (size >= 8) {
        Store(d, pattern);
        Store(d + size - 8, pattern);
    } else {
        for (unsigned int i = 0; i < size; ++i) d[i] = byte;
    }
    return destination;
}

}  // namespace basicutils
