// Page-granular memory over anonymous mappings.
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/VirtualMemory.h>
#include <basicutils/platform/internal/Env.h>
#include <sys/mman.h>
#include <unistd.h>

#include <map>
#include <mutex>

namespace basicutils {
namespace {

// The live blocks by base address, with their mapped lengths: munmap needs
// the length, and VirtualFree must refuse addresses it did not hand out.
struct Blocks {
    std::mutex lock;
    std::map<char*, size_t> sizes;
};

Blocks& TheBlocks() {
    static Blocks* blocks = new Blocks;  // never destroyed: blocks may outlive exit
    return *blocks;
}

size_t PageSize() {
    static const size_t page = static_cast<size_t>(::sysconf(_SC_PAGESIZE));
    return page;
}

BOOL Fail(uint32_t error) {
    SetLastError(error);
    return 0;
}

}  // namespace

void* VirtualAlloc(void* address, size_t size, DWORD allocationType, DWORD protect) {
    const bool commit = (allocationType & MEM_COMMIT) != 0;
    const bool known = (allocationType & ~(MEM_COMMIT | MEM_RESERVE)) == 0;
    if (address || !commit || !known || size == 0 ||
        (protect != PAGE_READWRITE && protect != PAGE_READONLY)) {
        Fail(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    const size_t page = PageSize();
    const size_t length = (size + page - 1) / page * page;
    if (length < size) {  // the rounding overflowed
        Fail(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    const int protection = protect == PAGE_READWRITE ? PROT_READ | PROT_WRITE : PROT_READ;
    void* block = detail::CurrentEnv().Mmap(length, protection);
    if (block == MAP_FAILED) {
        Fail(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    Blocks& blocks = TheBlocks();
    std::lock_guard<std::mutex> g(blocks.lock);
    blocks.sizes[static_cast<char*>(block)] = length;
    return block;
}

BOOL VirtualFree(void* address, size_t size, DWORD freeType) {
    auto* base = static_cast<char*>(address);
    Blocks& blocks = TheBlocks();
    std::unique_lock<std::mutex> l(blocks.lock);
    if (freeType == MEM_RELEASE) {
        if (size != 0) return Fail(ERROR_INVALID_PARAMETER);
        auto it = blocks.sizes.find(base);
        if (it == blocks.sizes.end()) return Fail(ERROR_INVALID_ADDRESS);
        const size_t length = it->second;
        blocks.sizes.erase(it);
        l.unlock();
        if (detail::CurrentEnv().Munmap(base, length) != 0) {
            SetLastErrorFromErrno(errno);
            return 0;
        }
        return 1;
    }
    if (freeType != MEM_DECOMMIT) return Fail(ERROR_INVALID_PARAMETER);
    // The range must lie inside one live block; size 0 means the rest of it.
    auto it = blocks.sizes.upper_bound(base);
    if (it == blocks.sizes.begin()) return Fail(ERROR_INVALID_ADDRESS);
    --it;
    char* const end = it->first + it->second;
    if (base >= end) return Fail(ERROR_INVALID_ADDRESS);
    const size_t page = PageSize();
    char* const first = it->first + (base - it->first) / page * page;
    char* last = size == 0 ? end : base + size;
    if (last > end) return Fail(ERROR_INVALID_PARAMETER);
    last = it->first + (last - it->first + page - 1) / page * page;
    if (::madvise(first, static_cast<size_t>(last - first), MADV_DONTNEED) != 0) {
        SetLastErrorFromErrno(errno);
        return 0;
    }
    return 1;
}

}  // namespace basicutils
