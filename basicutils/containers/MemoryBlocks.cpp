#include <basicutils/containers/MemoryBlocks.h>
#include <basicutils/platform/GlobalMemory.h>

namespace basicutils {
namespace {

uint32_t NonNegative(int32_t size) {
    return size < 0 ? 0u : static_cast<uint32_t>(size);
}

char* AllocateZeroedBlock(int32_t size) {
    HGLOBAL block = GlobalAlloc(GHND, NonNegative(size));
    return block == nullptr ? nullptr : static_cast<char*>(GlobalLock(block));
}

void ReleaseBlock(char* pointer) {
    if (pointer == nullptr) return;
    GlobalUnlock(GlobalHandle(pointer));
    GlobalFree(GlobalHandle(pointer));
}

}  // namespace

StHandleBlock::StHandleBlock(int32_t size, bool, bool) : mHandle(new Handle(NonNegative(size))) {}
StHandleBlock::~StHandleBlock() {
    delete mHandle;
}

StClearHandleBlock::StClearHandleBlock(int32_t size, bool)
    : mHandle(new Handle(NonNegative(size))) {}
StClearHandleBlock::~StClearHandleBlock() {
    delete mHandle;
}

StTempHandle::StTempHandle(int32_t size, bool) : mHandle(new Handle(NonNegative(size))) {}
StTempHandle::~StTempHandle() {
    delete mHandle;
}

StHandleLocker::StHandleLocker(Handle*) {}
StHandleLocker::~StHandleLocker() = default;

StPointerBlock::StPointerBlock(int32_t size, bool) : mPointer(AllocateZeroedBlock(size)) {}
StPointerBlock::~StPointerBlock() {
    ReleaseBlock(mPointer);
}

StClearPointerBlock::StClearPointerBlock(int32_t size, bool)
    : mPointer(AllocateZeroedBlock(size)) {}
StClearPointerBlock::~StClearPointerBlock() {
    ReleaseBlock(mPointer);
}

StMemoryState::StMemoryState(const char16_t*) : mText(), mState(0) {}
StMemoryState::~StMemoryState() = default;

}  // namespace basicutils
