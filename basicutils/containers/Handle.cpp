#include <basicutils/containers/Handle.h>
#include <basicutils/containers/UMemUtils.h>

#include <cstdlib>
#include <new>

namespace basicutils {
namespace {

char* AllocateBlock(size_t bytes) {
    void* p = std::malloc(bytes);
    if (p == nullptr) throw std::bad_alloc();
    return static_cast<char*>(p);
}

}  // namespace

Handle::Handle() : mSize(0), mAllocSize(0), mBlock(nullptr), mCapacity(0) {}

Handle::Handle(uint32_t size) : mSize(0), mAllocSize(0), mBlock(nullptr), mCapacity(0) {
    if (size > kLargestSize) throw std::bad_alloc();
    const uint32_t alloc = GetAllocSize(size);
    mBlock = AllocateBlock(alloc);
    mCapacity = alloc;
    mAllocSize = alloc;
    mSize = size;
}

Handle::Handle(const Handle& other) : Handle() {
    if (other.mBlock == nullptr) return;
    mBlock = AllocateBlock(other.mAllocSize);
    mCapacity = other.mAllocSize;
    mAllocSize = other.mAllocSize;
    mSize = other.mSize;
    UMemUtils::memcpy(mBlock, other.mBlock, mSize);
}

Handle& Handle::operator=(const Handle& other) {
    if (this == &other) return *this;
    if (other.mBlock == nullptr) {
        std::free(mBlock);
        mBlock = nullptr;
        mCapacity = mAllocSize = mSize = 0;
        return *this;
    }
    Resize(other.mSize);
    UMemUtils::memcpy(mBlock, other.mBlock, mSize);
    return *this;
}

Handle::~Handle() {
    std::free(mBlock);
}

void Handle::Resize(uint32_t size) {
    if (size > kLargestSize) throw std::bad_alloc();
    const uint32_t alloc = GetAllocSize(size);
    if (alloc == mAllocSize && mBlock != nullptr) {
        mSize = size;
        return;
    }
    if (mBlock == nullptr) {
        mBlock = AllocateBlock(alloc);
        mCapacity = alloc;
    } else if (alloc > mCapacity) {
        // Grow by half again at least, so that repeated growth is amortised.
        size_t target = mCapacity + mCapacity / 2;
        if (target < alloc) target = alloc;
        target = (target + 255) & ~size_t{255};
        void* p = std::realloc(mBlock, target);
        if (p == nullptr) throw std::bad_alloc();
        mBlock = static_cast<char*>(p);
        mCapacity = target;
    } else if (alloc < mCapacity / 4) {
        // Give memory back; a failed shrink keeps the larger block.
        if (void* p = std::realloc(mBlock, alloc)) {
            mBlock = static_cast<char*>(p);
            mCapacity = alloc;
        }
    }
    mAllocSize = alloc;
    mSize = size;
}

char* Handle::Lock() {
    return mBlock;
}

void Handle::Unlock() {}

char* Handle::GetPtr() {
    return mBlock;
}

}  // namespace basicutils
