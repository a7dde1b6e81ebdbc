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

class BASICUTILS_EXPORT StHandleBlock {
  public:
    StHandleBlock(int32_t size, bool useTempMemory = false, bool throwFail = true);
    StHandleBlock(const StHandleBlock&) = delete;
    StHandleBlock& operator=(const StHandleBlock&) = delete;
    ~StHandleBlock();
    operator Handle*() const { return mHandle; }

  protected:
    Handle* mHandle;
};

class BASICUTILS_EXPORT StClearHandleBlock {
  public:
    StClearHandleBlock(int32_t size, bool throwFail = true);
    StClearHandleBlock(const StClearHandleBlock&) = delete;
    StClearHandleBlock& operator=(const StClearHandleBlock&) = delete;
    ~StClearHandleBlock();
    operator Handle*() const { return mHandle; }

  protected:
    Handle* mHandle;
};

class BASICUTILS_EXPORT StTempHandle {
  public:
    StTempHandle(int32_t size, bool throwFail = true);
    StTempHandle(const StTempHandle&) = delete;
    StTempHandle& operator=(const StTempHandle&) = delete;
    ~StTempHandle();
    operator Handle*() const { return mHandle; }

  protected:
    Handle* mHandle;
};

class BASICUTILS_EXPORT StHandleLocker {
  public:
    explicit StHandleLocker(Handle* handle);
    StHandleLocker(const StHandleLocker&) = delete;
    StHandleLocker& operator=(const StHandleLocker&) = delete;
    ~StHandleLocker();
};

class BASICUTILS_EXPORT StPointerBlock {
  public:
    StPointerBlock(int32_t size, bool throwFail = true);
    StPointerBlock(const StPointerBlock&) = delete;
    StPointerBlock& operator=(const StPointerBlock&) = delete;
    ~StPointerBlock();
    operator char*() const { return mPointer; }

  protected:
    char* mPointer;
};

class BASICUTILS_EXPORT StClearPointerBlock {
  public:
    StClearPointerBlock(int32_t size, bool throwFail = true);
    StClearPointerBlock(const StClearPointerBlock&) = delete;
    StClearPointerBlock& operator=(const StClearPointerBlock&) = delete;
    ~StClearPointerBlock();
    operator char*() const { return mPointer; }

  protected:
    char* mPointer;
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
