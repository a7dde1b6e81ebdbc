#include <basicutils/containers/LList.h>

namespace basicutils {

LList::LList() : LArray(sizeof(void*), nullptr, false) {
    mComparator = &sPointerComparator;
}

LList::LList(uint32_t itemSize, uint32_t reserveCount) : LArray(itemSize, nullptr, false) {
    AdjustAllocation(reserveCount, 0);
}

LList::~LList() = default;

void LList::SetItemAt(int32_t index, const void* item) {
    if (ValidIndex(index)) {
        AssignItemsAt(1, index, item, 0);
    } else {
        InsertItemsAt(1, index, item, 0);
    }
}

}  // namespace basicutils
