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

class BASICUTILS_EXPORT CTimecodeList {
  public:
    CTimecodeList();
    ~CTimecodeList();
    CTimecodeList(const CTimecodeList&) = delete;
    CTimecodeList& operator=(CTimecodeList& other);

    // Appends a copy; the new node becomes current.
    void Add(const CTimecode& value);
    void DeleteAll();
    int GetSize() const { return mList->GetCount(); }

    CTimecode* GetHead() { return static_cast<CTimecode*>(mList->GetHead()); }
    CTimecode* GetNext() { return static_cast<CTimecode*>(mList->GetNext()); }
    CTimecode* GetTail() { return static_cast<CTimecode*>(mList->GetTail()); }

    void Change2PAL();

  protected:
    CVoidList* mList;
};

class BASICUTILS_EXPORT CDurationList {
  public:
    CDurationList();
    ~CDurationList();
    CDurationList(const CDurationList&) = delete;
    CDurationList& operator=(CDurationList& other);

    void Add(const CDuration& value);
    void DeleteAll();
    int GetSize() const { return mList->GetCount(); }

    CDuration* GetHead() { return static_cast<CDuration*>(mList->GetHead()); }
    CDuration* GetNext() { return static_cast<CDuration*>(mList->GetNext()); }
    CDuration* GetTail() { return static_cast<CDuration*>(mList->GetTail()); }

    void Change2PAL();

  protected:
    CVoidList* mList;
};

}  // namespace basicutils
