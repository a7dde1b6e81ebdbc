// UMemUtils::memcpy and memset against memmove and memset on one buffer:
// the input chooses size, source and destination offsets (so every overlap
// direction occurs) and the fill value; the bytes must match exactly.
#include <basicutils/containers/UMemUtils.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 8) return 0;
    const size_t n = (static_cast<size_t>(data[0]) | (static_cast<size_t>(data[1]) << 8)) % 4096;
    const size_t src = (static_cast<size_t>(data[2]) | (static_cast<size_t>(data[3]) << 8)) % 4096;
    const size_t dst = (static_cast<size_t>(data[4]) | (static_cast<size_t>(data[5]) << 8)) % 4096;
    const int value = data[6] | (data[7] << 8);
    std::vector<unsigned char> ours(8192 + 64), model;
    for (size_t i = 0; i < ours.size(); ++i)
        ours[i] = static_cast<unsigned char>(i * 131 + data[i % size]);
    model = ours;
    basicutils::UMemUtils::memcpy(ours.data() + dst, ours.data() + src, static_cast<unsigned>(n));
    std::memmove(model.data() + dst, model.data() + src, n);
    if (ours != model) std::abort();
    void* r = basicutils::UMemUtils::memset(ours.data() + src, value, static_cast<unsigned>(n));
    std::memset(model.data() + src, value, n);
    if (r != ours.data() + src || ours != model) std::abort();
    return 0;
}
