// Global memory blocks on the C heap. Each block carries a small header in
// front of the caller's bytes: a tag that tells a live block from anything
// else, the byte count and the lock count. The HGLOBAL is the header's
// address, the locked address the first byte after it, so both conversions
// are pointer arithmetic plus a check of the tag.

#include <basicutils/platform/GlobalMemory.h>
#include <basicutils/platform/internal/GlobalSize.h>

#include <cstdlib>
#include <cstring>
#include <new>

namespace basicutils {
namespace {

constexpr uint64_t kLiveTag = 0x42C0FFEE6C6F6261ull;
constexpr uint64_t kDeadTag = 0xDEADB10C6C6F6261ull;

// 32 bytes keep the caller's bytes aligned as malloc aligns (16).
struct alignas(16) BlockHeader {
    uint64_t tag;
    size_t bytes;
    uint32_t locks;
    uint32_t flags;
    uint64_t reserved;
};

BlockHeader* HeaderOf(HGLOBAL block) {
    auto* header = static_cast<BlockHeader*>(block);
    if (header == nullptr || header->tag != kLiveTag) return nullptr;
    return header;
}

}  // namespace

HGLOBAL GlobalAlloc(uint32_t flags, size_t bytes) {
    if (bytes > SIZE_MAX - sizeof(BlockHeader)) return nullptr;
    void* raw = (flags & GMEM_ZEROINIT) ? std::calloc(1, sizeof(BlockHeader) + bytes)
                                        : std::malloc(sizeof(BlockHeader) + bytes);
    if (raw == nullptr) return nullptr;
    auto* header = new (raw) BlockHeader{kLiveTag, bytes, 0, flags, 0};
    return header;
}

void* GlobalLock(HGLOBAL block) {
    BlockHeader* header = HeaderOf(block);
    if (header == nullptr) return nullptr;
    ++header->locks;
    return header + 1;
}

int GlobalUnlock(HGLOBAL block) {
    BlockHeader* header = HeaderOf(block);
    if (header == nullptr || header->locks == 0) return 0;
    --header->locks;
    return header->locks != 0 ? 1 : 0;
}

HGLOBAL GlobalHandle(const void* address) {
    if (address == nullptr) return nullptr;
    auto* header = const_cast<BlockHeader*>(static_cast<const BlockHeader*>(address) - 1);
    return HeaderOf(header);
}

HGLOBAL GlobalFree(HGLOBAL block) {
    if (block == nullptr) return nullptr;
    BlockHeader* header = HeaderOf(block);
    if (header == nullptr) return block;
    header->tag = kDeadTag;
    std::free(header);
    return nullptr;
}

size_t GlobalSize(HGLOBAL block) {
    BlockHeader* header = HeaderOf(block);
    return header == nullptr ? 0 : header->bytes;
}

}  // namespace basicutils
