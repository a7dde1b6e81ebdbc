#include <basicutils/containers/Handle.h>
#include <basicutils/containers/MemoryBlocks.h>
#include <basicutils/platform/GlobalMemory.h>
#include <basicutils/platform/internal/GlobalSize.h>
#include <gtest/gtest.h>

#include <cstring>
#include <new>
#include <type_traits>

namespace basicutils {
namespace {

static_assert(!std::is_copy_constructible_v<StHandleBlock> &&
                  !std::is_copy_assignable_v<StPointerBlock>,
              "holders must not be copied: two owners would free one block twice");

TEST(Handle, BlockSizeRounding) {
    const struct {
        uint32_t size, alloc;
    } cases[] = {{0, 256},
                 {1, 256},
                 {255, 256},
                 {256, 512},
                 {257, 512},
                 {511, 512},
                 {0xFFFFFEFF, 0xFFFFFF00},
                 {0xFFFFFF00, 0},
                 {0xFFFFFFFF, 0}};
    for (const auto& c : cases) EXPECT_EQ(Handle::GetAllocSize(c.size), c.alloc) << c.size;
}

TEST(Handle, ResizeKeepsBytesAndCopiesAreDeep) {
    struct Probe : Handle {
        using Handle::Handle;
        uint32_t Alloc() const { return mAllocSize; }
    };
    Probe empty;
    EXPECT_EQ(empty.GetPtr(), nullptr);
    EXPECT_EQ(empty.Alloc(), 0u);
    Probe h(10);
    EXPECT_EQ(h.Alloc(), 256u);
    for (int i = 0; i < 10; ++i) h.GetPtr()[i] = static_cast<char>(i + 1);
    // Grow far, shrink back, grow again: the first bytes always survive.
    for (uint32_t size : {300u, 100000u, 5u, 70000u, 10u}) {
        h.Resize(size);
        EXPECT_EQ(h.Alloc(), Handle::GetAllocSize(size));
        EXPECT_EQ(h.GetSize(), size);
        for (int i = 0; i < 5; ++i) ASSERT_EQ(h.GetPtr()[i], i + 1) << size;
    }
    Handle copy(h);
    EXPECT_NE(copy.GetPtr(), h.GetPtr());
    EXPECT_EQ(std::memcmp(copy.GetPtr(), h.GetPtr(), 10), 0);
    h.GetPtr()[0] = 42;
    EXPECT_EQ(copy.GetPtr()[0], 1);
    copy = empty;
    EXPECT_EQ(copy.GetPtr(), nullptr);
    copy = h;
    EXPECT_EQ(copy.GetPtr()[0], 42);
    EXPECT_THROW(h.Resize(0xFFFFFF00u), std::bad_alloc);
    EXPECT_EQ(h.GetSize(), 10u);  // unchanged by the refusal
}

TEST(MemoryBlocks, BlocksAreZeroFilledOfTheSizeAndReleasedByAddress) {
    for (int32_t size : {0, 1, 100, 4096, -5}) {
        StPointerBlock block(size);
        StClearPointerBlock clear(size, true);
        ASSERT_NE(static_cast<char*>(block), nullptr);
        ASSERT_NE(static_cast<char*>(clear), nullptr);
        const size_t n = size < 0 ? 0 : static_cast<size_t>(size);
        for (size_t i = 0; i < n; ++i) {
            ASSERT_EQ(block[i], 0);
            ASSERT_EQ(clear[i], 0);
        }
        EXPECT_EQ(GlobalSize(GlobalHandle(block)), n);
        std::memset(block, 0x5A, n);  // the block is ours to write
        StHandleBlock a(size, true, false);
        StClearHandleBlock b(size);
        StTempHandle c(size);
        for (Handle* h :
             {static_cast<Handle*>(a), static_cast<Handle*>(b), static_cast<Handle*>(c)})
            EXPECT_EQ(h->GetSize(), n);
    }
}

TEST(GlobalMemory, Win32Results) {
    HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, 16);
    ASSERT_NE(block, nullptr);
    void* p = GlobalLock(block);
    EXPECT_EQ(GlobalLock(block), p);  // the address never changes
    EXPECT_EQ(GlobalHandle(p), block);
    EXPECT_EQ(GlobalUnlock(block), 1);  // still locked once
    EXPECT_EQ(GlobalUnlock(block), 0);
    EXPECT_EQ(GlobalUnlock(block), 0);
    EXPECT_EQ(GlobalLock(nullptr), nullptr);
    EXPECT_EQ(GlobalHandle(nullptr), nullptr);
    EXPECT_EQ(GlobalFree(nullptr), nullptr);
    EXPECT_EQ(GlobalFree(block), nullptr);
}

}  // namespace
}  // namespace basicutils
