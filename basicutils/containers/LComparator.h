// Comparison strategies for LArray, and the byte-block comparisons under
// them.
//
// LComparator orders items as blocks of unsigned bytes (BlockCompare with
// sizes) and has no key: CompareToKey always answers 1, so nothing ever
// matches a key. LLongComparator orders 4-byte items as signed 32-bit
// numbers by a wrapping subtraction, so values less than 2^31 apart order
// correctly and others may not (0x7FFFFFFF against -1 comes out negative).
// LPointerComparator orders pointer-sized items as intptr_t values; since a
// 32-bit result cannot hold the difference of two 64-bit values it answers
// -1, 0 or 1.
//
// A comparator must give opposite signs when its two items change places:
// the linear search and Sort pass the searched item first, the binary
// searches pass it second.
#pragma once

#include <basicutils/Export.h>

#include <cstdint>

namespace basicutils {

// True when the blocks hold the same bytes; true for a size of 0.
BASICUTILS_EXPORT bool BlocksAreEqual(const void* a, const void* b, uint32_t size);
// At the first differing byte, the byte of a minus the byte of b (both
// unsigned); 0 when none differs.
BASICUTILS_EXPORT int32_t BlockCompare(const void* a, const void* b, uint32_t size);
// As above over the shorter size; when that much is equal, aSize - bSize as
// a wrapping 32-bit number, so a block sorts before any longer block that
// begins with it.
BASICUTILS_EXPORT int32_t BlockCompare(const void* a, const void* b, uint32_t aSize,
                                       uint32_t bSize);

class BASICUTILS_EXPORT LComparator {
  public:
    LComparator() = default;
    virtual ~LComparator();

    virtual int32_t Compare(const void* a, const void* b, uint32_t aSize, uint32_t bSize) const;
    virtual bool IsEqualTo(const void* a, const void* b, uint32_t aSize, uint32_t bSize) const;
    virtual int32_t CompareToKey(const void* item, uint32_t size, const void* key) const;
    virtual bool IsEqualToKey(const void* item, uint32_t size, const void* key) const;
};

class BASICUTILS_EXPORT LLongComparator : public LComparator {
  public:
    LLongComparator() = default;
    ~LLongComparator() override;

    int32_t Compare(const void* a, const void* b, uint32_t aSize, uint32_t bSize) const override;
    bool IsEqualTo(const void* a, const void* b, uint32_t aSize, uint32_t bSize) const override;
};

class BASICUTILS_EXPORT LPointerComparator : public LComparator {
  public:
    LPointerComparator() = default;
    ~LPointerComparator() override;

    int32_t Compare(const void* a, const void* b, uint32_t aSize, uint32_t bSize) const override;
    bool IsEqualTo(const void* a, const void* b, uint32_t aSize, uint32_t bSize) const override;
};

}  // namespace basicutils
