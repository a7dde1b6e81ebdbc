// MStringList: a list of strings that it owns, over a CVoidList, counted
// from 0 in its index arguments.
//
// Walking uses the CVoidList's own current node as the only cursor: every
// read shifts it, const operations included, as does copying from a list
// (assignment, AddList). GetAt walks from the head on every call and
// leaves the cursor on the string it returns; a negative index walks the
// whole list and answers null. DeleteAt leaves no current node.
//
// Choices of this implementation: AddList of the list itself, and assigning
// a list to itself, change nothing; a list cannot be copy-constructed (use
// assignment). AddFormat formats like MString::Format.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/containers/CVoidList.h>
#include <basicutils/text/MString.h>
#include <basicutils/text/MStringArray.h>

namespace basicutils {

class BASICUTILS_EXPORT MStringList {
  public:
    MStringList();
    ~MStringList();
    MStringList(const MStringList&) = delete;

    // Appends a copy; the new node becomes current.
    void Add(const char16_t* s);
    void AddFormat(const char16_t* format, ...);
    void AddList(MStringList* other);
    void AddArray(const MStringArray& array);
    void DeleteAll();
    void DeleteAt(int i);

    MString* GetAt(int i) const;
    MString* GetHead() const { return static_cast<MString*>(mList->GetHead()); }
    MString* GetTail() const { return static_cast<MString*>(mList->GetTail()); }
    MString* GetNext() const { return static_cast<MString*>(mList->GetNext()); }
    int GetSize() const { return mList->GetCount(); }

    MStringList& operator=(MStringList& other);
    MStringList& operator=(const MStringArray& array);

  protected:
    CVoidList* mList;
};

}  // namespace basicutils
