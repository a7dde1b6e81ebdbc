// Page-granular blocks: alignment, zero fill, and the refusals.
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/VirtualMemory.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

namespace basicutils {
namespace {

TEST(VirtualMemory, BlocksArePageAlignedZeroedAndReleasedWhole) {
    auto* block =
        static_cast<unsigned char*>(VirtualAlloc(nullptr, 5000, MEM_COMMIT, PAGE_READWRITE));
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % 4096, 0u);
    for (int i = 0; i < 8192; ++i) ASSERT_EQ(block[i], 0) << i;  // rounded up to pages
    std::memset(block, 0xAB, 8192);
    EXPECT_TRUE(VirtualFree(block + 4096, 0, MEM_DECOMMIT));
    EXPECT_EQ(block[0], 0xAB);
    EXPECT_EQ(block[4096], 0);  // decommitted pages read as zeros again
    EXPECT_FALSE(VirtualFree(block + 1, 0, MEM_RELEASE));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_ADDRESS);
    EXPECT_FALSE(VirtualFree(block, 5000, MEM_RELEASE));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_TRUE(VirtualFree(block, 0, MEM_RELEASE));
    EXPECT_FALSE(VirtualFree(block, 0, MEM_RELEASE));  // already gone
}

TEST(VirtualMemory, RefusesWhatItDoesNotOffer) {
    // clang-format off
    struct { void* address; size_t size; DWORD type; DWORD protect; } refused[] = {
        {nullptr, 0, MEM_COMMIT, PAGE_READWRITE},
        {nullptr, 4096, MEM_RESERVE, PAGE_READWRITE},
        {nullptr, 4096, MEM_COMMIT, PAGE_NOACCESS},
        {reinterpret_cast<void*>(0x10000), 4096, MEM_COMMIT, PAGE_READWRITE},
    };
    // clang-format on
    for (const auto& r : refused) {
        EXPECT_EQ(VirtualAlloc(r.address, r.size, r.type, r.protect), nullptr);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    }
}

}  // namespace
}  // namespace basicutils
