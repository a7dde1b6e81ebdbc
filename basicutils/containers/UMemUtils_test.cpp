#include <basicutils/containers/UMemUtils.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

namespace basicutils {
namespace {

std::vector<unsigned char> Pattern(size_t n, uint32_t seed) {
    std::vector<unsigned char> v(n);
    for (size_t i = 0; i < n; ++i) {
        seed = seed * 1103515245u + 12345u;
        v[i] = static_cast<unsigned char>(seed >> 16);
    }
    return v;
}

// Runs UMemUtils::memcpy and memmove on two copies of one buffer and
// compares every byte, guard bytes around the target included.
void ExpectSameAsMemmove(size_t bufferSize, size_t srcOffset, size_t dstOffset, size_t size) {
    std::vector<unsigned char> ours =
        Pattern(bufferSize, static_cast<uint32_t>(size * 31 + srcOffset));
    std::vector<unsigned char> model = ours;
    UMemUtils::memcpy(ours.data() + dstOffset, ours.data() + srcOffset,
                      static_cast<unsigned>(size));
    std::memmove(model.data() + dstOffset, model.data() + srcOffset, size);
    ASSERT_TRUE(ours == model) << "size " << size << " src " << srcOffset << " dst " << dstOffset;
}

// The copy under every array edit: all small sizes, every alignment of
// both ends, and destinations before, inside and after the source.
TEST(UMemUtilsMemcpy, MatchesMemmoveForEverySmallSizeAlignmentAndOverlap) {
    const int deltas[] = {-200, -65, -64, -33, -32, -31, -9, -8, -7, -1, 0,
                          1,    7,   8,   9,   31,  32,  33, 64, 65, 200};
    for (size_t size = 0; size <= 300; ++size) {
        for (size_t srcAlign = 0; srcAlign < 8; ++srcAlign) {
            for (int delta : deltas) {
                const size_t base = 256 + srcAlign;
                const size_t dst = static_cast<size_t>(static_cast<long>(base) + delta);
                ExpectSameAsMemmove(base + size + 512, base, dst, size);
            }
            for (size_t dstAlign = 0; dstAlign < 8; ++dstAlign) {
                // Separate blocks, every relative alignment.
                ExpectSameAsMemmove(2 * size + 64, srcAlign, size + 16 + dstAlign, size);
                ExpectSameAsMemmove(2 * size + 64, size + 16 + dstAlign, srcAlign, size);
            }
        }
    }
}

TEST(UMemUtilsMemcpy, LargeBlocksMatchMemmove) {
    const size_t mib = size_t{1} << 20;
    const struct {
        size_t size;
        long delta;  // destination minus source; 0 means separate blocks
    } cases[] = {{9 * mib + 13, 0}, {5 * mib + 13, 1}, {5 * mib + 13, -1}, {5 * mib, 4096},
                 {5 * mib, -33},    {70000, 3},        {70000, -3},        {4096, 0}};
    for (const auto& c : cases) {
        const size_t src = 64 + 3;
        if (c.delta == 0) {
            ExpectSameAsMemmove(2 * c.size + 256, src, c.size + 128 + 5, c.size);
        } else {
            const size_t base = src + 8192;
            ExpectSameAsMemmove(c.size + 3 * 8192, base,
                                static_cast<size_t>(static_cast<long>(base) + c.delta), c.size);
        }
    }
}

TEST(UMemUtilsMemcpy, ZeroAndNegativeSizesCopyNothing) {
    for (unsigned size : {0u, 0x80000000u, 0xFFFFFFFFu, 0x90000000u}) {
        std::vector<unsigned char> a = Pattern(64, 1), b = Pattern(64, 2);
        const auto before = b;
        UMemUtils::memcpy(b.data(), a.data(), size);
        EXPECT_EQ(b, before) << size;
    }
}

TEST(UMemUtilsMemset, FillsExactlyTheRangeAndReturnsDestination) {
    const int values[] = {0, 255, 0x5A, 0x1A5, -1};
    for (size_t size = 0; size <= 300; ++size) {
        for (size_t align = 0; align < 8; ++align) {
            for (int value : values) {
                std::vector<unsigned char> buffer = Pattern(size + 48, static_cast<uint32_t>(size));
                std::vector<unsigned char> model = buffer;
                void* result = UMemUtils::memset(buffer.data() + 16 + align, value,
                                                 static_cast<unsigned>(size));
                std::memset(model.data() + 16 + align, value, size);
                ASSERT_EQ(result, buffer.data() + 16 + align);
                ASSERT_TRUE(buffer == model)
                    << "size " << size << " align " << align << " value " << value;
            }
        }
    }
}

}  // namespace
}  // namespace basicutils
