// Drives an LArray of 4-byte items and three walking iterators (made and
// destroyed in any order) with a byte script, and checks them against a
// std::vector model: contents after every edit (insertions of an item of the
// array itself included), the item each iterator reports, what a fetch of a
// given size copies and answers, and in keep-sorted mode sortedness and that
// an insertion answers an index among the items equal to its own.
//
// Every input also drives, with a second reading of its bytes, a plain array
// (exactly an LArray or LList, which takes the inline fast paths) and a
// general one (a subclass, which takes the virtual paths), for one of the
// three shared comparators (items of 4 bytes, pointers, 12 bytes): inserting
// (also an item of the array itself and while locked), removing, assigning,
// swapping, searching and walking must give both the same answers, contents,
// block sizes and iterator positions after every step.
#include <basicutils/containers/LArray.h>
#include <basicutils/containers/LArrayIterator.h>
#include <basicutils/containers/LList.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "FuzzSupport.h"

using namespace basicutils;

namespace {

using fuzzsupport::Check;

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

// Not exactly an LArray or LList: every edit and search of it takes the
// general path through the virtual operations.
template <class Base>
struct GeneralArray : Base {
    using Base::Base;
    uint32_t GrabItemSize(int32_t index) const override { return Base::GrabItemSize(index); }
};

// The plain-versus-general run: five bytes a step (operation and count,
// index, item byte, second index, flags).
void ComparePaths(const uint8_t* data, size_t size) {
    const uint32_t sizes[] = {4, sizeof(void*), 12};
    const uint32_t itemSize = sizes[(data[0] >> 1) % 3];
    std::unique_ptr<LArray> a[2];
    if (itemSize == sizeof(void*)) {
        a[0] = std::make_unique<LList>();
        a[1] = std::make_unique<GeneralArray<LList>>();
    } else {
        a[0] = std::make_unique<LArray>(itemSize, nullptr, false);
        a[1] = std::make_unique<GeneralArray<LArray>>(itemSize, nullptr, false);
    }
    std::unique_ptr<LArrayIterator> it[2];
    const Handle* block[2] = {nullptr, nullptr};
    for (size_t p = 1; p + 4 < size; p += 5) {
        const uint32_t op = data[p] % 10, n = 1 + (data[p] >> 4);
        const auto count = static_cast<int32_t>(a[0]->GetCount());
        const uint8_t flags = data[p + 4];
        const int32_t index =
            (flags & 1) ? kLastIndex : static_cast<int32_t>(data[p + 1] % (count + 3)) - 1;
        char item[12];
        std::memset(item, data[p + 2] % 40, sizeof item);
        const int32_t at = count > 0 ? 1 + static_cast<int32_t>(data[p + 3] % count) : 0;
        const bool inside = at > 0 && (flags & 2);  // an item of the array itself
        const uint32_t probeSize = (flags & 4) ? 3 : 0;
        int32_t got[2] = {0, 0};
        for (int i = 0; i < 2; ++i) {
            LArray& x = *a[i];
            const void* q = inside ? x.GetItemPtr(at) : item;
            if (op < 4) got[i] = x.InsertItemsAt(op == 0 ? n : 1, index, q, 0);
            if (op == 4) x.RemoveItemsAt(n, index);
            if (op == 5) got[i] = x.FetchIndexOf(item, probeSize) + 100 * x.FetchIndexOf(q, 0);
            if (op == 6) x.AssignItemsAt(n, index, item, 0);
            if (op == 7) x.SwapItems(index, at);
            if (op == 8 && !it[i]) it[i] = std::make_unique<LArrayIterator>(x, 0);
            if (op == 8) got[i] = it[i]->Next(item) ? it[i]->GetCurrentIndex() : -1;
            if (op == 9) x.Lock(), got[i] = x.InsertItemsAt(1, index, item, 0), x.Unlock();
            if (!block[i] && x.GetCount() > 0) block[i] = x.GetItemsHandle();
        }
        Check(got[0] == got[1]);
        Check(a[0]->GetCount() == a[1]->GetCount());
        Check((block[0] ? block[0]->GetSize() : 0) == (block[1] ? block[1]->GetSize() : 0));
        if (a[0]->GetCount() > 0)
            Check(std::memcmp(a[0]->GetItemPtr(1), a[1]->GetItemPtr(1),
                              a[0]->GetCount() * itemSize) == 0);
        if (it[0]) Check(it[0]->GetCurrentIndex() == it[1]->GetCurrentIndex());
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1) return 0;
    ComparePaths(data, size);
    const bool keep = data[0] & 1;
    LArray array(4, nullptr, keep);
    std::vector<int32_t> model;
    std::unique_ptr<LArrayIterator> its[3];
    for (auto& it : its) it = std::make_unique<LArrayIterator>(array, 0);
    for (size_t p = 1; p + 2 < size && model.size() < 4096; p += 3) {
        const uint8_t op = data[p] % 6, a = data[p + 1], b = data[p + 2];
        const size_t n = model.size();
        int32_t value = static_cast<int8_t>(b);
        LArrayIterator& it = *its[(a >> 1) % 3];
        switch (op) {
            case 0: {  // insert a value, or an item of the array itself
                const uint32_t count = (a >> 5) + 1;
                int32_t at = Index(a, n);
                const bool inside = n > 0 && (a & 0x18) == 0x18;
                if (inside) value = model[b % n];
                const void* item =
                    inside ? array.GetItemPtr(static_cast<int32_t>(b % n) + 1) : &value;
                const int32_t got = array.InsertItemsAt(count, at, item, 0);
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
                const bool ok = (a & 1) ? it.Previous(&got) : it.Next(&got);
                const int32_t at = it.GetCurrentIndex();
                Check(ok == (at >= 1 && static_cast<size_t>(at) <= n));
                if (ok) Check(got == model[at - 1]);
                break;
            }
            case 4: {  // search, and fetch at most a given size
                const int32_t found = array.FetchIndexOf(&value, 0);
                const bool present = std::find(model.begin(), model.end(), value) != model.end();
                Check((found != 0) == present);
                if (found != 0) Check(model[found - 1] == value);
                int32_t at = Index(a, n);
                const uint32_t asked = b % 7;
                uint32_t got = asked;
                unsigned char out[8];
                std::memset(out, 0xEE, sizeof out);
                const bool ok = array.FetchItemAt(at, out, got);
                if (at == kLastIndex) at = static_cast<int32_t>(n);
                Check(ok == (at >= 1 && static_cast<size_t>(at) <= n));
                Check(got == (ok ? std::min(asked, 4u) : asked));
                if (ok) Check(std::memcmp(out, &model[at - 1], got) == 0);
                for (size_t i = ok ? got : 0; i < sizeof out; ++i) Check(out[i] == 0xEE);
                break;
            }
            case 5:
                if (a & 1) {
                    array.Sort();
                    std::stable_sort(model.begin(), model.end());
                    // Equal values are indistinguishable here, so order suffices.
                } else {
                    its[(a >> 1) % 3] = std::make_unique<LArrayIterator>(array, Index(b, n));
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
