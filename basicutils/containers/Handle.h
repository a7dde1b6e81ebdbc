// Handle: a resizable block of memory owned by one object.
//
// The block size seen through mAllocSize is always GetAllocSize(mSize), the
// next multiple of 256 strictly above the size asked for, so a block always
// has at least one byte more than requested and 0 bytes still get 256.
// Resize keeps the first min(old size, new block size) bytes; new bytes are
// not cleared.
//
// Behind that figure the real storage grows by half again whenever it must
// grow, and is given back when the block falls below a quarter of it, so a
// run of small growths costs amortised constant time and mBlock often stays
// where it is. Large blocks grow through realloc, which moves pages rather
// than bytes.
//
// Choices:
// - Copying a Handle copies the block: the copy has the same mSize and
//   mAllocSize and its own block holding the same first mSize bytes.
// - A size of 0xFFFFFF00 or more has no 32-bit block size. GetAllocSize
//   answers 0 for it, and Resize and the constructor refuse it as exhausted
//   memory (std::bad_alloc) with the Handle unchanged.
#pragma once

#include <basicutils/Export.h>

#include <cstddef>
#include <cstdint>

namespace basicutils {

class BASICUTILS_EXPORT Handle {
  public:
    Handle();
    explicit Handle(uint32_t size);
    Handle(const Handle& other);
    Handle& operator=(const Handle& other);
    virtual ~Handle();

    // The next multiple of 256 above size; 0 when that does not fit 32 bits.
    static uint32_t GetAllocSize(uint32_t size) {
        return size > kLargestSize ? 0 : ((size >> 8) + 1) << 8;
    }

    virtual void Resize(uint32_t size);
    virtual char* Lock();
    virtual void Unlock();
    virtual char* GetPtr();

    uint32_t GetSize() const { return mSize; }

    // Handle::Resize(size) where it needs no memory: records the sizes and
    // returns true; returns false, changing nothing, where Resize would have
    // to allocate, move or give back memory. Only for an object that is
    // exactly a Handle (no override of Resize).
    bool ResizeInPlace(uint32_t size) {
        if (mBlock == nullptr || size > kLargestSize) return false;
        const uint32_t alloc = GetAllocSize(size);
        if (alloc != mAllocSize && (alloc > mCapacity || alloc < mCapacity / 4)) return false;
        mAllocSize = alloc;
        mSize = size;
        return true;
    }

  protected:
    friend class LArray;          // reads mBlock on its inline paths
    friend class LArrayIterator;  // reads mBlock on the broadcasters' walk

    static constexpr uint32_t kLargestSize = 0xFFFFFEFFu;

    uint32_t mSize;
    uint32_t mAllocSize;
    char* mBlock;

  private:
    // Bytes really allocated at mBlock; never below mAllocSize.
    size_t mCapacity;
};

}  // namespace basicutils
