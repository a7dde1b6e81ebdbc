// Holders that own a block of memory for the length of a scope.
//
// StHandleBlock, StClearHandleBlock and StTempHandle each own a new Handle of
// the given size (contents undefined: none of them clears it; the flags are
// accepted and ignored) and delete it when they go. StPointerBlock and
// StClearPointerBlock own a zero-filled global memory block at a fixed
// address, released through its address alone. StHandleLocker does
// nothing, since a Handle needs no locking. StMemoryState is an empty marker
// whose two fields stay empty and 0.
//
// Choices:
// - None of the holders can be copied or assigned: a copy would be a second
//   owner of one block and free it twice.
// - A negative size is taken as 0: the holder still owns a valid, empty
//   block.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/containers/Handle.h>
#include <basicutils/platform/CString.h>

#include <cstdint>

namespace basicutils {

namespace detail {

// The owner of a new Handle of `size` bytes, deleted with the holder.
class BASICUTILS_EXPORT HandleHolder {
  public:
    explicit HandleHolder(int32_t size);
    HandleHolder(const HandleHolder&) = delete;
    HandleHolder& operator=(const HandleHolder&) = delete;
    ~HandleHolder();
    operator Handle*() const { return mHandle; }

  protected:
    Handle* mHandle;
};

// The owner of a zero-filled global block of `size` bytes at a fixed address.
class BASICUTILS_EXPORT PointerHolder {
  public:
    explicit PointerHolder(int32_t size);
    PointerHolder(const PointerHolder&) = delete;
    PointerHolder& operator=(const PointerHolder&) = delete;
    ~PointerHolder();
    operator char*() const { return mPointer; }

  protected:
    char* mPointer;
};

}  // namespace detail

class BASICUTILS_EXPORT StHandleBlock : public detail::HandleHolder {
  public:
    StHandleBlock(int32_t size, bool /*useTempMemory*/ = false, bool /*throwFail*/ = true)
        : HandleHolder(size) {}
};

class BASICUTILS_EXPORT StClearHandleBlock : public detail::HandleHolder {
  public:
    StClearHandleBlock(int32_t size, bool /*throwFail*/ = true) : HandleHolder(size) {}
};

class BASICUTILS_EXPORT StTempHandle : public detail::HandleHolder {
  public:
    StTempHandle(int32_t size, bool /*throwFail*/ = true) : HandleHolder(size) {}
};

class BASICUTILS_EXPORT StHandleLocker {
  public:
    explicit StHandleLocker(Handle*) {}
    StHandleLocker(const StHandleLocker&) = delete;
    StHandleLocker& operator=(const StHandleLocker&) = delete;
};

class BASICUTILS_EXPORT StPointerBlock : public detail::PointerHolder {
  public:
    StPointerBlock(int32_t size, bool /*throwFail*/ = true) : PointerHolder(size) {}
};

class BASICUTILS_EXPORT StClearPointerBlock : public detail::PointerHolder {
  public:
    StClearPointerBlock(int32_t size, bool /*throwFail*/ = true) : PointerHolder(size) {}
};

class BASICUTILS_EXPORT StMemoryState {
  public:
    explicit StMemoryState(const char16_t* text = nullptr);
    StMemoryState(const StMemoryState&) = delete;
    StMemoryState& operator=(const StMemoryState&) = delete;
    ~StMemoryState();

  protected:
    CString mText;
    int32_t mState;
};

}  // namespace basicutils
