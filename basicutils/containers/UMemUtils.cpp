// Copy strategy. Up to 64 bytes every byte of the source is loaded before
// the first store, which makes the copy correct for any overlap. Above that,
// the first and last 32 bytes are loaded up front, the middle is copied in
// 32-byte vector steps with the destination aligned (forward, or backward
// when the destination lies ahead of the source inside it), and the two
// saved ends are stored last. Every step loads a whole block before storing
// it and walks away from the bytes it has written, so overlap in either
// direction needs no temporary block. Copies of several megabytes between
// separate blocks use streaming stores, which do not pull the destination
// through the cache. Where the processor has AVX2 the middle loops use
// 32-byte registers; the result is the same either way.

#include <basicutils/containers/UMemUtils.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#define BASICUTILS_HAVE_X86 1
#endif

namespace basicutils {
namespace detail {
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

// One step: every byte of the block is loaded before any is stored.
inline void Copy32(Byte* d, const Byte* s) {
    const V16 a = Load<V16>(s), b = Load<V16>(s + 16);
    Store(d, a);
    Store(d + 16, b);
}

inline void Copy128(Byte* d, const Byte* s) {
    const V16 a = Load<V16>(s), b = Load<V16>(s + 16), c = Load<V16>(s + 32), e = Load<V16>(s + 48);
    const V16 f = Load<V16>(s + 64), g = Load<V16>(s + 80), h = Load<V16>(s + 96),
              k = Load<V16>(s + 112);
    Store(d, a);
    Store(d + 16, b);
    Store(d + 32, c);
    Store(d + 48, e);
    Store(d + 64, f);
    Store(d + 80, g);
    Store(d + 96, h);
    Store(d + 112, k);
}

// Copies of at most 64 bytes: all loads, then all stores.
inline void MoveSmall(Byte* d, const Byte* s, size_t n) {
    if (n >= 32) {
        const V16 a = Load<V16>(s), b = Load<V16>(s + 16);
        const V16 c = Load<V16>(s + n - 32), e = Load<V16>(s + n - 16);
        Store(d, a);
        Store(d + 16, b);
        Store(d + n - 32, c);
        Store(d + n - 16, e);
    } else if (n >= 16) {
        V16 a = Load<V16>(s), b = Load<V16>(s + n - 16);
        Store(d, a);
        Store(d + n - 16, b);
    } else if (n >= 8) {
        uint64_t a = Load<uint64_t>(s), b = Load<uint64_t>(s + n - 8);
        Store(d, a);
        Store(d + n - 8, b);
    } else if (n >= 4) {
        uint32_t a = Load<uint32_t>(s), b = Load<uint32_t>(s + n - 4);
        Store(d, a);
        Store(d + n - 4, b);
    } else if (n >= 2) {
        uint16_t a = Load<uint16_t>(s), b = Load<uint16_t>(s + n - 2);
        Store(d, a);
        Store(d + n - 2, b);
    } else if (n == 1) {
        *d = *s;
    }
}

constexpr size_t kStreamThreshold = size_t{8} << 20;

#if defined(BASICUTILS_HAVE_X86)
// Separate blocks only. Destination 16-aligned on entry, n a multiple of 64.
void StreamCopy(Byte* d, const Byte* s, size_t n) {
    for (size_t i = 0; i < n; i += 64) {
        __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i));
        __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i + 16));
        __m128i c = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i + 32));
        __m128i e = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i + 48));
        _mm_stream_si128(reinterpret_cast<__m128i*>(d + i), a);
        _mm_stream_si128(reinterpret_cast<__m128i*>(d + i + 16), b);
        _mm_stream_si128(reinterpret_cast<__m128i*>(d + i + 32), c);
        _mm_stream_si128(reinterpret_cast<__m128i*>(d + i + 48), e);
    }
    _mm_sfence();
}

// The middle loops again in 32-byte registers, on processors that have them.
__attribute__((target("avx2"))) size_t ForwardBulkAvx2(Byte* d, const Byte* s, size_t i,
                                                       size_t end) {
    for (; i + 128 <= end; i += 128) {
        const __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(s + i));
        const __m256i b = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(s + i + 32));
        const __m256i c = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(s + i + 64));
        const __m256i e = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(s + i + 96));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(d + i), a);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(d + i + 32), b);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(d + i + 64), c);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(d + i + 96), e);
    }
    _mm256_zeroupper();
    return i;
}

__attribute__((target("avx2"))) size_t BackwardBulkAvx2(Byte* d, const Byte* s, size_t j) {
    for (; j >= 32 + 128; j -= 128) {
        const __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(s + j - 32));
        const __m256i b = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(s + j - 64));
        const __m256i c = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(s + j - 96));
        const __m256i e = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(s + j - 128));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(d + j - 32), a);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(d + j - 64), b);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(d + j - 96), c);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(d + j - 128), e);
    }
    _mm256_zeroupper();
    return j;
}

bool HasAvx2() {
    return __builtin_cpu_supports("avx2");
}
#endif

// n > 64; the destination does not lie inside the source ahead of it.
void MoveForward(Byte* d, const Byte* s, size_t n) {
    const V16 head0 = Load<V16>(s), head1 = Load<V16>(s + 16);
    const V16 tail0 = Load<V16>(s + n - 32), tail1 = Load<V16>(s + n - 16);
    size_t i = (32 - (reinterpret_cast<uintptr_t>(d) & 31)) & 31;
    const size_t end = n - 32;  // the saved tail covers [end, n)
#if defined(BASICUTILS_HAVE_X86)
    const bool separate = (d + n <= s) || (s + n <= d);
    if (separate && n >= kStreamThreshold) {
        size_t bulk = (end - i) & ~size_t{63};
        StreamCopy(d + i, s + i, bulk);
        i += bulk;
    }
    if (HasAvx2()) i = ForwardBulkAvx2(d, s, i, end);
#endif
    for (; i + 128 <= end; i += 128) Copy128(d + i, s + i);
    for (; i < end; i += 32) Copy32(d + i, s + i);
    Store(d, head0);
    Store(d + 16, head1);
    Store(d + end, tail0);
    Store(d + end + 16, tail1);
}

// n > 64; s < d < s + n: copy from the end down.
void MoveBackward(Byte* d, const Byte* s, size_t n) {
    const V16 head0 = Load<V16>(s), head1 = Load<V16>(s + 16);
    const V16 tail0 = Load<V16>(s + n - 32), tail1 = Load<V16>(s + n - 16);
    // j is the end of the part still to copy; the saved head covers [0, 32).
    size_t j = n - (reinterpret_cast<uintptr_t>(d + n) & 31);
#if defined(BASICUTILS_HAVE_X86)
    if (HasAvx2()) j = BackwardBulkAvx2(d, s, j);
#endif
    for (; j >= 32 + 128; j -= 128) Copy128(d + j - 128, s + j - 128);
    // A last step that starts inside the first 32 bytes is harmless: the
    // saved head is stored afterwards with the same bytes.
    for (; j > 32; j -= 32) Copy32(d + j - 32, s + j - 32);
    Store(d + n - 32, tail0);
    Store(d + n - 16, tail1);
    Store(d, head0);
    Store(d + 16, head1);
}

}  // namespace
}  // namespace detail

void UMemUtils::memcpy(void* destination, const void* source, unsigned int size) {
    if (static_cast<int32_t>(size) <= 0 || destination == source) return;
    auto* d = static_cast<detail::Byte*>(destination);
    auto* s = static_cast<const detail::Byte*>(source);
    const size_t n = size;
    if (n <= 64) {
        detail::MoveSmall(d, s, n);
    } else if (static_cast<size_t>(d - s) < n) {  // destination ahead, inside the source
        detail::MoveBackward(d, s, n);
    } else {
        detail::MoveForward(d, s, n);
    }
}

void* UMemUtils::memset(void* destination, int value, unsigned int size) {
    if (size == 0) return destination;
    auto* d = static_cast<detail::Byte*>(destination);
    const uint64_t pattern = 0x0101010101010101ull * static_cast<detail::Byte>(value);
    const detail::V16 v = {pattern, pattern};
    const size_t n = size;
    if (n < 8) {
        for (size_t i = 0; i < n; ++i) d[i] = static_cast<detail::Byte>(value);
    } else if (n <= 32) {
        if (n >= 16) {
            detail::Store(d, v);
            detail::Store(d + n - 16, v);
        } else {
            detail::Store(d, pattern);
            detail::Store(d + n - 8, pattern);
        }
    } else {
        detail::Store(d, v);
        detail::Store(d + 16, v);
        size_t i = (32 - (reinterpret_cast<uintptr_t>(d) & 31)) & 31;
        for (; i + 128 <= n; i += 128) {
            for (size_t k = 0; k < 128; k += 16) detail::Store(d + i + k, v);
        }
        for (; i + 16 <= n; i += 16) detail::Store(d + i, v);
        detail::Store(d + n - 16, v);
    }
    return destination;
}

}  // namespace basicutils
