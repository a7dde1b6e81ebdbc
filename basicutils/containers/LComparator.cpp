#include <basicutils/containers/LComparator.h>

#include <cstring>

namespace basicutils {

bool BlocksAreEqual(const void* a, const void* b, uint32_t size) {
    return size == 0 || std::memcmp(a, b, size) == 0;
}

int32_t BlockCompare(const void* a, const void* b, uint32_t size) {
    const auto* pa = static_cast<const unsigned char*>(a);
    const auto* pb = static_cast<const unsigned char*>(b);
    // memcmp finds whether and roughly where; the byte difference is ours.
    if (size == 0 || std::memcmp(pa, pb, size) == 0) return 0;
    for (uint32_t i = 0;; ++i) {
        if (pa[i] != pb[i]) return int32_t{pa[i]} - int32_t{pb[i]};
    }
}

int32_t BlockCompare(const void* a, const void* b, uint32_t aSize, uint32_t bSize) {
    const int32_t r = BlockCompare(a, b, aSize < bSize ? aSize : bSize);
    if (r != 0) return r;
    return static_cast<int32_t>(aSize - bSize);
}

LComparator::~LComparator() = default;

int32_t LComparator::Compare(const void* a, const void* b, uint32_t aSize, uint32_t bSize) const {
    return BlockCompare(a, b, aSize, bSize);
}

bool LComparator::IsEqualTo(const void* a, const void* b, uint32_t aSize, uint32_t bSize) const {
    return Compare(a, b, aSize, bSize) == 0;
}

int32_t LComparator::CompareToKey(const void*, uint32_t, const void*) const {
    return 1;
}

bool LComparator::IsEqualToKey(const void* item, uint32_t size, const void* key) const {
    return CompareToKey(item, size, key) == 0;
}

LLongComparator::~LLongComparator() = default;

namespace {
inline uint32_t Load32(const void* p) {
    uint32_t v;
    std::memcpy(&v, p, sizeof v);
    return v;
}
inline intptr_t LoadPointer(const void* p) {
    intptr_t v;
    std::memcpy(&v, p, sizeof v);
    return v;
}
}  // namespace

int32_t LLongComparator::Compare(const void* a, const void* b, uint32_t, uint32_t) const {
    return static_cast<int32_t>(Load32(a) - Load32(b));
}

bool LLongComparator::IsEqualTo(const void* a, const void* b, uint32_t, uint32_t) const {
    return Load32(a) == Load32(b);
}

LPointerComparator::~LPointerComparator() = default;

int32_t LPointerComparator::Compare(const void* a, const void* b, uint32_t, uint32_t) const {
    const intptr_t x = LoadPointer(a), y = LoadPointer(b);
    return x < y ? -1 : (x > y ? 1 : 0);
}

bool LPointerComparator::IsEqualTo(const void* a, const void* b, uint32_t, uint32_t) const {
    return LoadPointer(a) == LoadPointer(b);
}

}  // namespace basicutils
