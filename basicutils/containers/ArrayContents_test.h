// Helpers shared by the array and iterator tests: build an array of
// 4-byte integers and read it back as a vector.
#pragma once

#include <basicutils/containers/LArray.h>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <vector>

namespace basicutils::test {

inline std::vector<int32_t> Contents(const LArray& array) {
    std::vector<int32_t> out(array.GetCount());
    for (std::size_t i = 0; i < out.size(); ++i)
        array.FetchItemAt(static_cast<int32_t>(i + 1), &out[i]);
    return out;
}

inline int32_t Insert(LArray& array, int32_t value, int32_t index) {
    return array.InsertItemsAt(1, index, &value, 0);
}

inline void Fill(LArray& array, std::initializer_list<int32_t> values) {
    for (int32_t v : values) Insert(array, v, kLastIndex);
}

}  // namespace basicutils::test
