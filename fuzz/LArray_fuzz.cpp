// Drives an LArray of 4-byte items and a walking iterator with a byte
// script, and checks both against a std::vector model: contents after every
// edit, the item the iterator reports, and in keep-sorted mode sortedness and
// that an insertion answers an index among the items equal to its own.
#include <basicutils/containers/LArray.h>
#include <basicutils/containers/LArrayIterator.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

using namespace basicutils;

namespace {

void Check(bool ok) {
    if (!ok) std::abort();
}

int32_t Index(uint8_t b, size_t count) {
    // Mostly valid indices, sometimes 0, negative, past the end or kLastIndex.
    switch (b & 7) {
        case 0:
            return 0;
        case 1:
            return -static_cast<int32_t>(b >> 3);
        case 2:
            return kLastIndex;
        case 3:
            return static_cast<int32_t>(count) + 1 + (b >> 3);
        default:
            return count == 0 ? 1 : 1 + static_cast<int32_t>((b >> 3) % count);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1) return 0;
    const bool keep = data[0] & 1;
    LArray array(4, nullptr, keep);
    std::vector<int32_t> model;
    auto it = std::make_unique<LArrayIterator>(array, 0);
    for (size_t p = 1; p + 2 < size && model.size() < 4096; p += 3) {
        const uint8_t op = data[p] % 6, a = data[p + 1], b = data[p + 2];
        const size_t n = model.size();
        const int32_t value = static_cast<int8_t>(b);
        switch (op) {
            case 0: {  // insert
                const uint32_t count = (a >> 5) + 1;
                int32_t at = Index(a, n);
                const int32_t got = array.InsertItemsAt(count, at, &value, 0);
                if (keep) {
                    auto pos = std::lower_bound(model.begin(), model.end(), value);
                    const auto end = std::upper_bound(model.begin(), model.end(), value);
                    Check(got >= pos - model.begin() + 1 && got <= end - model.begin() + 1);
                    model.insert(pos, count, value);
                } else {
                    int64_t clamped = at > static_cast<int64_t>(n) ? static_cast<int64_t>(n) + 1
                                                                   : (at < 1 ? 1 : at);
                    Check(got == clamped);
                    model.insert(model.begin() + (clamped - 1), count, value);
                }
                break;
            }
            case 1: {  // remove
                const uint32_t count = (a >> 5) + 1;
                int32_t at = Index(a, n);
                if (at == kLastIndex) at = static_cast<int32_t>(n);
                array.RemoveItemsAt(count, at);
                if (at >= 1 && static_cast<size_t>(at) <= n) {
                    const size_t end = std::min(n, static_cast<size_t>(at - 1) + count);
                    model.erase(model.begin() + (at - 1), model.begin() + end);
                }
                break;
            }
            case 2: {  // swap or move
                int32_t x = Index(a, n), y = Index(b, n);
                if (a & 0x80) {
                    array.MoveItem(x, y);
                } else {
                    array.SwapItems(x, y);
                }
                if (x == kLastIndex) x = static_cast<int32_t>(n);
                if (y == kLastIndex) y = static_cast<int32_t>(n);
                const bool valid =
                    x >= 1 && y >= 1 && static_cast<size_t>(x) <= n && static_cast<size_t>(y) <= n;
                if (!keep && valid) {
                    if (a & 0x80) {
                        const int32_t v = model[x - 1];
                        model.erase(model.begin() + (x - 1));
                        model.insert(model.begin() + (y - 1), v);
                    } else {
                        std::swap(model[x - 1], model[y - 1]);
                    }
                }
                break;
            }
            case 3: {  // walk one step and compare with the model
                int32_t got = 0;
                const bool ok = (a & 1) ? it->Previous(&got) : it->Next(&got);
                const int32_t at = it->GetCurrentIndex();
                Check(ok == (at >= 1 && static_cast<size_t>(at) <= n));
                if (ok) Check(got == model[at - 1]);
                break;
            }
            case 4: {  // search
                const int32_t found = array.FetchIndexOf(&value, 0);
                const bool present = std::find(model.begin(), model.end(), value) != model.end();
                Check((found != 0) == present);
                if (found != 0) Check(model[found - 1] == value);
                break;
            }
            case 5:
                if (a & 1) {
                    array.Sort();
                    std::stable_sort(model.begin(), model.end());
                    // Equal values are indistinguishable here, so order suffices.
                } else {
                    it = std::make_unique<LArrayIterator>(array, Index(b, n));
                }
                break;
        }
        Check(array.GetCount() == model.size());
        for (size_t i = 0; i < model.size(); ++i) {
            int32_t v = 0;
            Check(array.FetchItemAt(static_cast<int32_t>(i + 1), &v) && v == model[i]);
        }
        if (keep) Check(std::is_sorted(model.begin(), model.end()));
    }
    return 0;
}
