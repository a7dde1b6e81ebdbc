// CVoidList: a doubly linked list of untyped, non-null pointers that carries
// its own cursor (the current node and its 1-based position), so a list is
// walked with GetHead and then GetNext until null, without an iterator.
//
// The list owns its nodes and never the elements: whoever adds a pointer
// deletes what it points at. Since null can never be stored, a null result
// always means "no element".
//
// Cursor states:
//   on a node         mCurrent set, mPosition 1..mCount
//   no current node   mCurrent null, mPosition 0 (new, cleared, after a
//                     removal, after GetNext ran off the tail)
//   position cleared  mCurrent set, mPosition 0 (ViewNext/ViewPrev at an
//                     end, GetPrev(element) for an unknown element); walking
//                     still works from mCurrent, GetAt restarts at the head.
//
// The Get operations move the cursor, the View operations leave it. The
// element forms of the operations search from the head and always mean the
// first node holding that pointer.
//
// Choices of this implementation:
//   - GetPosition(element), like the other Get operations, moves the cursor:
//     when the element is found both mCurrent and mPosition go to its node,
//     so they never disagree; when it is not found it answers 0 and the
//     cursor stays exactly where it was.
//   - Copying a list (constructor or assignment) builds new nodes holding
//     the same element pointers in the same order, and puts the copy's
//     cursor on the node at the same index, in the same state. Two lists
//     never share a node. ListNode cannot be copied: a node belongs to one
//     chain.
//   - CopyTo(null) answers -1 and CopyTo(this) answers 0 and leaves the list
//     as it is, instead of emptying it.
//
// Not thread-safe; even a read moves the cursor.
#pragma once

#include <basicutils/Export.h>

namespace basicutils {

// One node of a CVoidList. Destroying a node links its two neighbours to
// each other and clears its own links; the element is not touched.
class BASICUTILS_EXPORT ListNode {
  public:
    explicit ListNode(void* element);
    ~ListNode();
    ListNode(const ListNode&) = delete;
    ListNode& operator=(const ListNode&) = delete;

    void SetPrev(ListNode* node) { mPrev = node; }
    ListNode* GetPrev() const { return mPrev; }
    void SetNext(ListNode* node) { mNext = node; }
    ListNode* GetNext() const { return mNext; }
    void* GetElement() const { return mElement; }

  protected:
    ListNode* mPrev;
    ListNode* mNext;
    void* mElement;
};

// A bare link for singly linked chains that a client threads itself.
class BASICUTILS_EXPORT LinkNode {
  public:
    LinkNode() : mNext(nullptr) {}
    ~LinkNode() {}

    LinkNode* GetNext() const { return mNext; }
    void SetNext(LinkNode* node) { mNext = node; }

  protected:
    LinkNode* mNext;
};

class BASICUTILS_EXPORT CVoidList {
  public:
    CVoidList();
    CVoidList(const CVoidList& other);
    CVoidList& operator=(const CVoidList& other);
    ~CVoidList();

    // Moving reads.
    void* GetHead();
    void* GetTail();
    void* GetAt(int position);
    void* GetCurrent();
    void* GetNext();
    void* GetPrev();
    void* GetNext(void* element);
    void* GetPrev(void* element);

    // Reads that leave the cursor (but ViewNext/ViewPrev clear the position
    // when there is nothing to see).
    void* ViewHead();
    void* ViewTail();
    void* ViewNext();
    void* ViewPrev();
    void* ViewNext(void* element);
    void* ViewPrev(void* element);

    int GetCount() const { return mCount; }
    int GetPosition() const { return mPosition; }
    int GetPosition(void* element);

    // Additions: 0 for a null element, -1 when nothing could be added,
    // otherwise the count or position named by each operation.
    int AddList(void* element) { return AddListToTail(element); }
    int AddListToTail(void* element);
    int AddListToHead(void* element);
    int AddListAfterCurrent(void* element);
    int AddListBeforeCurrent(void* element);

    // Removals: the new count, or -1 when there is nothing to remove. The
    // cursor is gone afterwards.
    int DeleteList();
    int DeleteList(void* element);
    int ClearList();

    // Replaces the target's content with this list's elements (shared, not
    // copied). 0, or the negative result of a failed addition.
    int CopyTo(CVoidList* target);

  protected:
    ListNode* mHead;
    ListNode* mTail;
    ListNode* mCurrent;
    int mPosition;
    int mCount;

  private:
    // First node holding element and its 1-based position; null/0 if none.
    ListNode* Find(void* element, int* position) const;
    void Unlink(ListNode* node);
    void CopyFrom(const CVoidList& other);
};

}  // namespace basicutils
