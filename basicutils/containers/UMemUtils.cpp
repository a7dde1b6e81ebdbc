// Copy strategy. Up to 64 bytes every byte of the source is loaded before
// the first store, which makes the copy correct for any overlap. Above that,
// the first and last 32 bytes are loaded up front, the middle is copied in
// 32-byte vector steps with the destination aligned (forward, or backward
// when the destination lies ahead of the source inside it), and the two
// saved ends are stored last. Every step loads a whole block before storing
// it and walks away from the bytes it has written, so overlap in either
// direction needs no temporary block. Copies of several megabytes between
// separate blocks use streaming stores, which do not pull the destination
// through the cache.

#include <basicutils/containers/UMemUtils.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace basicutils {
namespace detail {
namespace {

using Byte = unsigned char;
using V16 = uint64_t __attribute__((vector_size(16)));
// Two 16-byte lanes: a 32-byte vector type would change the calling
// convention without AVX.
struct V32 {
  V16 lo, hi;
};

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

// Copies of at most 64 bytes: all loads, then all stores.
inline void MoveSmall(Byte* d, const Byte* s, size_t n) {
  if (n >= 32) {
    V32 a = Load<V32>(s), b = Load<V32>(s + n - 32);
    Store(d, a);
    Store(d + n - 32, b);
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

constexpr size_t kStreamThreshold = size_t{4} << 20;

#if defined(__SSE2__)
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
#endif

// n > 64; the destination does not lie inside the source ahead of it.
void MoveForward(Byte* d, const Byte* s, size_t n) {
  const V32 head = Load<V32>(s);
  const V32 tail = Load<V32>(s + n - 32);
  size_t i = (32 - (reinterpret_cast<uintptr_t>(d) & 31)) & 31;
  const size_t end = n - 32;  // the saved tail covers [end, n)
#if defined(__SSE2__)
  const bool separate = (d + n <= s) || (s + n <= d);
  if (separate && n >= kStreamThreshold) {
    size_t bulk = (end - i) & ~size_t{63};
    StreamCopy(d + i, s + i, bulk);
    i += bulk;
  }
#endif
  for (; i + 128 <= end; i += 128) {
    V32 a = Load<V32>(s + i), b = Load<V32>(s + i + 32);
    V32 c = Load<V32>(s + i + 64), e = Load<V32>(s + i + 96);
    Store(d + i, a);
    Store(d + i + 32, b);
    Store(d + i + 64, c);
    Store(d + i + 96, e);
  }
  for (; i < end; i += 32) {
    Store(d + i, Load<V32>(s + i));
  }
  Store(d, head);
  Store(d + end, tail);
}

// n > 64; s < d < s + n: copy from the end down.
void MoveBackward(Byte* d, const Byte* s, size_t n) {
  const V32 head = Load<V32>(s);
  const V32 tail = Load<V32>(s + n - 32);
  // j is the end of the part still to copy; the saved head covers [0, 32).
  size_t j = n - (reinterpret_cast<uintptr_t>(d + n) & 31);
  for (; j >= 32 + 128; j -= 128) {
    V32 a = Load<V32>(s + j - 32), b = Load<V32>(s + j - 64);
    V32 c = Load<V32>(s + j - 96), e = Load<V32>(s + j - 128);
    Store(d + j - 32, a);
    Store(d + j - 64, b);
    Store(d + j - 96, c);
    Store(d + j - 128, e);
  }
  // A last step that starts inside the first 32 bytes is harmless: the
  // saved head is stored afterwards with the same bytes.
  for (; j > 32; j -= 32) {
    Store(d + j - 32, Load<V32>(s + j - 32));
  }
  Store(d + n - 32, tail);
  Store(d, head);
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
  const detail::V32 v = {{pattern, pattern}, {pattern, pattern}};
  const size_t n = size;
  if (n < 8) {
    for (size_t i = 0; i < n; ++i) d[i] = static_cast<detail::Byte>(value);
  } else if (n <= 32) {
    const detail::V16 w = {pattern, pattern};
    if (n >= 16) {
      detail::Store(d, w);
      detail::Store(d + n - 16, w);
    } else {
      detail::Store(d, pattern);
      detail::Store(d + n - 8, pattern);
    }
  } else {
    detail::Store(d, v);
    size_t i = (32 - (reinterpret_cast<uintptr_t>(d) & 31)) & 31;
    for (; i + 128 <= n; i += 128) {
      detail::Store(d + i, v);
      detail::Store(d + i + 32, v);
      detail::Store(d + i + 64, v);
      detail::Store(d + i + 96, v);
    }
    for (; i + 32 <= n; i += 32) detail::Store(d + i, v);
    detail::Store(d + n - 32, v);
  }
  return destination;
}

}  // namespace basicutils
