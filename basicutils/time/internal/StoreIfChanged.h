// The one step every notifying setter of the time classes takes once it has
// validated a value: if `current` (what the getter answers now) already
// equals it, nothing happens and the answer is false; else the value is
// stored, the field's TrickleDown hook runs and the owner notifies `code`.
#pragma once

#include <cstdint>

namespace basicutils::detail {

template <class Owner, class T>
bool StoreIfChanged(Owner& owner, T& field, const T& value, const T& current, void (Owner::*hook)(),
                    int32_t code) {
    if (current == value) return false;
    field = value;
    (owner.*hook)();
    owner.Notify(code, 0, 0);
    return true;
}

}  // namespace basicutils::detail
