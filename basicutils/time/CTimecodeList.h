// CTimecodeList and CDurationList: lists that own heap copies of the
// timecodes or durations put into them, over a CVoidList.
//
// A list has one cursor, the current node of its CVoidList: GetHead, GetNext
// and GetTail move it, and so does reading a list to copy it, which is why
// the assignment takes a non-const source (the source's cursor ends behind
// its tail). The pointers handed out are the list's own elements.
//
// Change2PAL keeps the written figures of every element and makes them
// count at 25 frames a second; frames 25 to 29 become 24. Nothing is
// converted by time, and the drop type of a duration stays.
//
// Choices of this implementation: assigning a list to itself changes
// nothing, and a list cannot be copy-constructed (use assignment).
#pragma once

#include <basicutils/Export.h>
#include <basicutils/containers/CVoidList.h>
#include <basicutils/time/CDuration.h>
#include <basicutils/time/CTimecode.h>

namespace basicutils {

namespace detail {

// What both lists are: a CVoidList of heap copies that the list owns.
template <class T>
class OwningList {
  public:
    OwningList() : mList(new CVoidList) {}
    ~OwningList() {
        DeleteAll();
        delete mList;
    }
    OwningList(const OwningList&) = delete;
    OwningList& operator=(const OwningList&) = delete;

    // Appends a copy; the new node becomes current.
    void Add(const T& value) { mList->AddList(new T(value)); }
    void DeleteAll() {
        while (T* element = GetHead()) {
            delete element;
            mList->DeleteList();
        }
    }
    int GetSize() const { return mList->GetCount(); }

    T* GetHead() { return static_cast<T*>(mList->GetHead()); }
    T* GetNext() { return static_cast<T*>(mList->GetNext()); }
    T* GetTail() { return static_cast<T*>(mList->GetTail()); }

  protected:
    // Replaces the elements by copies of those of `other`, walking its cursor.
    void CopyFrom(OwningList& other) {
        if (this == &other) return;
        DeleteAll();
        for (T* element = other.GetHead(); element; element = other.GetNext()) Add(*element);
    }

    CVoidList* mList;
};

}  // namespace detail

class BASICUTILS_EXPORT CTimecodeList : public detail::OwningList<CTimecode> {
  public:
    CTimecodeList& operator=(CTimecodeList& other) {
        CopyFrom(other);
        return *this;
    }
    void Change2PAL();
};

class BASICUTILS_EXPORT CDurationList : public detail::OwningList<CDuration> {
  public:
    CDurationList& operator=(CDurationList& other) {
        CopyFrom(other);
        return *this;
    }
    void Change2PAL();
};

}  // namespace basicutils
