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

// Blocks below 4096 bytes, every overlap, the fill value and memset's result
// are held to memmove and memset by the UMemUtils fuzz replay; here, the
// sizes it does not reach.
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

}  // namespace
}  // namespace basicutils
