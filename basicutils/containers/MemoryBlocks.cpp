#include <basicutils/containers/MemoryBlocks.h>
#include <basicutils/platform/GlobalMemory.h>

namespace basicutils {
namespace {

uint32_t NonNegative(int32_t size) {
    return size < 0 ? 0u : static_cast<uint32_t>(size);
}

}  // namespace

namespace detail {

HandleHolder::HandleHolder(int32_t size) : mHandle(new Handle(NonNegative(size))) {}
HandleHolder::~HandleHolder() {
    delete mHandle;
}

PointerHolder::PointerHolder(int32_t size) : mPointer(nullptr) {
    HGLOBAL block = GlobalAlloc(GHND, NonNegative(size));
    if (block != nullptr) mPointer = static_cast<char*>(GlobalLock(block));
}
PointerHolder::~PointerHolder() {
    if (mPointer == nullptr) return;
    GlobalUnlock(GlobalHandle(mPointer));
    GlobalFree(GlobalHandle(mPointer));
}

}  // namespace detail

StMemoryState::StMemoryState(const char16_t*) : mText(), mState(0) {}
StMemoryState::~StMemoryState() = default;

}  // namespace basicutils
