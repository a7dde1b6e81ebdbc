#include <basicutils/containers/CVoidList.h>

namespace basicutils {

ListNode::ListNode(void* element) : mPrev(nullptr), mNext(nullptr), mElement(element) {}

ListNode::~ListNode() {
    if (mPrev) mPrev->mNext = mNext;
    if (mNext) mNext->mPrev = mPrev;
    mPrev = nullptr;
    mNext = nullptr;
}

CVoidList::CVoidList()
    : mHead(nullptr), mTail(nullptr), mCurrent(nullptr), mPosition(0), mCount(0) {}

CVoidList::CVoidList(const CVoidList& other) : CVoidList() {
    CopyFrom(other);
}

CVoidList& CVoidList::operator=(const CVoidList& other) {
    if (this != &other) {
        ClearList();
        CopyFrom(other);
    }
    return *this;
}

CVoidList::~CVoidList() {
    ClearList();
}

void CVoidList::CopyFrom(const CVoidList& other) {
    ListNode* current = nullptr;
    for (ListNode* n = other.mHead; n; n = n->GetNext()) {
        AddListToTail(n->GetElement());
        if (n == other.mCurrent) current = mTail;
    }
    mCurrent = current;
    mPosition = other.mPosition;
}

ListNode* CVoidList::Find(void* element, int* position) const {
    int index = 1;
    for (ListNode* n = mHead; n; n = n->GetNext(), ++index) {
        if (n->GetElement() == element) {
            if (position) *position = index;
            return n;
        }
    }
    if (position) *position = 0;
    return nullptr;
}

void* CVoidList::GetHead() {
    mCurrent = mHead;
    mPosition = mHead ? 1 : 0;
    return mHead ? mHead->GetElement() : nullptr;
}

void* CVoidList::GetTail() {
    mCurrent = mTail;
    mPosition = mTail ? mCount : 0;
    return mTail ? mTail->GetElement() : nullptr;
}

void* CVoidList::GetAt(int position) {
    if (position < 1 || position > mCount) return nullptr;
    if (mPosition < 1 || mPosition > mCount) GetHead();
    // The walk trusts mPosition; if it disagrees with mCurrent (a walk that
    // went on from a cleared position) the steps can run off an end, and the
    // answer is then null instead of a loop that never ends.
    while (mPosition < position && mCurrent) GetNext();
    while (mPosition > position && mCurrent && GetPrev()) {
    }
    return mPosition == position ? GetCurrent() : nullptr;
}

void* CVoidList::GetCurrent() {
    return mCurrent ? mCurrent->GetElement() : nullptr;
}

void* CVoidList::GetNext() {
    if (!mCurrent || !mCurrent->GetNext()) {
        mCurrent = nullptr;
        mPosition = 0;
        return nullptr;
    }
    mCurrent = mCurrent->GetNext();
    ++mPosition;
    return mCurrent->GetElement();
}

void* CVoidList::GetPrev() {
    if (!mCurrent) {
        mPosition = 0;
        return nullptr;
    }
    if (!mCurrent->GetPrev()) {
        mPosition = 1;
        return nullptr;
    }
    mCurrent = mCurrent->GetPrev();
    --mPosition;
    return mCurrent->GetElement();
}

void* CVoidList::GetNext(void* element) {
    int position = 0;
    ListNode* node = Find(element, &position);
    if (!node || !node->GetNext()) {
        mCurrent = nullptr;
        mPosition = 0;
        return nullptr;
    }
    mCurrent = node->GetNext();
    mPosition = position + 1;
    return mCurrent->GetElement();
}

void* CVoidList::GetPrev(void* element) {
    int position = 0;
    ListNode* node = Find(element, &position);
    if (!node) {
        mPosition = 0;
        return nullptr;
    }
    if (!node->GetPrev()) {
        mCurrent = node;
        mPosition = 1;
        return nullptr;
    }
    mCurrent = node->GetPrev();
    mPosition = position - 1;
    return mCurrent->GetElement();
}

void* CVoidList::ViewHead() {
    return mHead ? mHead->GetElement() : nullptr;
}

void* CVoidList::ViewTail() {
    return mTail ? mTail->GetElement() : nullptr;
}

void* CVoidList::ViewNext() {
    if (mCurrent && mCurrent->GetNext()) return mCurrent->GetNext()->GetElement();
    mPosition = 0;
    return nullptr;
}

void* CVoidList::ViewPrev() {
    if (mCurrent && mCurrent->GetPrev()) return mCurrent->GetPrev()->GetElement();
    mPosition = 0;
    return nullptr;
}

void* CVoidList::ViewNext(void* element) {
    ListNode* node = Find(element, nullptr);
    return node && node->GetNext() ? node->GetNext()->GetElement() : nullptr;
}

void* CVoidList::ViewPrev(void* element) {
    ListNode* node = Find(element, nullptr);
    return node && node->GetPrev() ? node->GetPrev()->GetElement() : nullptr;
}

int CVoidList::GetPosition(void* element) {
    int position = 0;
    ListNode* node = Find(element, &position);
    if (node) {
        mCurrent = node;
        mPosition = position;
    }
    return position;
}

int CVoidList::AddListToTail(void* element) {
    if (!element) return 0;
    ListNode* node = new ListNode(element);
    if (mTail) {
        mTail->SetNext(node);
    } else {
        mHead = node;
    }
    node->SetPrev(mTail);
    mTail = node;
    mCurrent = node;
    mPosition = ++mCount;
    return mCount;
}

int CVoidList::AddListToHead(void* element) {
    if (!element) return 0;
    ListNode* node = new ListNode(element);
    if (mHead) {
        mHead->SetPrev(node);
    } else {
        mTail = node;
    }
    node->SetNext(mHead);
    mHead = node;
    mCurrent = node;
    mPosition = 1;
    ++mCount;
    return 1;
}

int CVoidList::AddListAfterCurrent(void* element) {
    if (!element) return 0;
    if (!mCurrent) return mCount == 0 ? AddListToTail(element) : -1;
    ListNode* node = new ListNode(element);
    ListNode* next = mCurrent->GetNext();
    node->SetPrev(mCurrent);
    node->SetNext(next);
    mCurrent->SetNext(node);
    if (next) {
        next->SetPrev(node);
    } else {
        mTail = node;
    }
    mCurrent = node;
    ++mPosition;
    ++mCount;
    return mPosition;
}

int CVoidList::AddListBeforeCurrent(void* element) {
    if (!element) return 0;
    if (!mCurrent) return mCount == 0 ? AddListToHead(element) : -1;
    ListNode* node = new ListNode(element);
    ListNode* prev = mCurrent->GetPrev();
    node->SetPrev(prev);
    node->SetNext(mCurrent);
    mCurrent->SetPrev(node);
    if (prev) {
        prev->SetNext(node);
    } else {
        mHead = node;
    }
    mCurrent = node;
    ++mCount;
    return mPosition;
}

void CVoidList::Unlink(ListNode* node) {
    if (node == mHead) mHead = node->GetNext();
    if (node == mTail) mTail = node->GetPrev();
    delete node;  // the destructor joins the neighbours
    --mCount;
    mCurrent = nullptr;
    mPosition = 0;
}

int CVoidList::DeleteList() {
    if (!mCurrent) return -1;
    Unlink(mCurrent);
    return mCount;
}

int CVoidList::DeleteList(void* element) {
    if (!element) return -1;
    ListNode* node = Find(element, nullptr);
    if (!node) return -1;
    Unlink(node);
    return mCount;
}

int CVoidList::ClearList() {
    ListNode* node = mHead;
    while (node) {
        ListNode* next = node->GetNext();
        node->SetPrev(nullptr);
        delete node;
        node = next;
    }
    mHead = mTail = mCurrent = nullptr;
    mPosition = 0;
    mCount = 0;
    return 0;
}

int CVoidList::CopyTo(CVoidList* target) {
    if (!target) return -1;
    if (target == this) return 0;
    target->ClearList();
    for (void* element = GetHead(); element; element = GetNext()) {
        int result = target->AddList(element);
        if (result < 0) return result;
    }
    return 0;
}

}  // namespace basicutils
