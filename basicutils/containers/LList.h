// LList: the array that the library's classes embed, by default a list of
// pointers kept in registration order.
//
// LList() holds items of one pointer (sizeof(void*) bytes) and compares them
// with the shared LPointerComparator, so a pointer is found by its value.
// LList(itemSize, reserveCount) is a plain LArray of that item size with
// room reserved for reserveCount items. Items are bytes: a list never
// deletes what its pointers point at. Lists cannot be copied (see LArray).
#pragma once

#include <basicutils/Export.h>
#include <basicutils/containers/LArray.h>

#include <cstdint>
#include <typeinfo>

namespace basicutils {

class BASICUTILS_EXPORT LList : public LArray {
  public:
    LList();
    LList(uint32_t itemSize, uint32_t reserveCount);
    ~LList() override;

    // Overwrites the item at a valid index; otherwise inserts there, which
    // prepends or appends by the clamping of InsertItemsAt.
    virtual void SetItemAt(int32_t index, const void* item);

    // True when this object is exactly an LList, so that none of the array's
    // virtual operations is overridden and its storage may be read directly.
    bool IsPlainList() const { return typeid(*this) == typeid(LList); }
};

}  // namespace basicutils
