// COperation and the linear history.
#include <basicutils/tasks/StGlobalLock.h>
#include <basicutils/undo/COperation.h>

namespace basicutils {

std::atomic<COperationList*> COperationList::sOperationList{nullptr};

bool COperation::Execute() {
    if (!ExecuteSelf()) {
        delete this;
        return false;
    }
    COperationList::AddOperation(this);
    return true;
}

bool COperation::Redo() {
    return ExecuteSelf();
}
bool COperation::ExecuteSelf() {
    return false;
}
bool COperation::Undo() {
    return UndoSelf();
}
bool COperation::UndoSelf() {
    return false;
}

COperationList::COperationList() : mCurrent(0), mCount(0) {
    sOperationList = this;
}

COperationList::~COperationList() {
    removeOperationList();
    COperationList* self = this;
    sOperationList.compare_exchange_strong(self, nullptr);
}

COperationList* COperationList::GetOperationList() {
    return sOperationList;
}

void COperationList::AddOperation(COperation* operation) {
    if (COperationList* list = sOperationList)
        list->addOperation(operation);
    else
        delete operation;
}

bool COperationList::CanUndo() {
    COperationList* list = sOperationList;
    return list && list->canUndo();
}

void COperationList::Undo() {
    if (COperationList* list = sOperationList) list->undo();
}

bool COperationList::CanRedo() {
    COperationList* list = sOperationList;
    return list && list->canRedo();
}

void COperationList::Redo() {
    if (COperationList* list = sOperationList) list->redo();
}

void COperationList::addOperation(COperation* operation) {
    StSingleLock lock(&mCriticalSection);
    removeAfterCurrent();
    mOperations.InsertItemsAt(1, kLastIndex, &operation, 0);
    mCount = mOperations.GetCount();
    mCurrent = mCount.load();
}

bool COperationList::canUndo() const {
    return mCurrent > 0;
}
bool COperationList::canRedo() const {
    return mCurrent < mCount;
}

void COperationList::undo() {
    StSingleLock lock(&mCriticalSection);
    if (!canUndo()) return;
    COperation* operation = nullptr;
    if (mOperations.FetchItemAt(static_cast<int32_t>(mCurrent), &operation) && operation)
        operation->Undo();
    --mCurrent;
}

void COperationList::redo() {
    StSingleLock lock(&mCriticalSection);
    if (!canRedo()) return;
    COperation* operation = nullptr;
    if (mOperations.FetchItemAt(static_cast<int32_t>(mCurrent + 1), &operation) && operation)
        operation->Redo();
    ++mCurrent;
}

void COperationList::removeAfterCurrent() {
    StSingleLock lock(&mCriticalSection);
    const int32_t current = static_cast<int32_t>(mCurrent);
    const int32_t last = static_cast<int32_t>(mOperations.GetCount());
    for (int32_t i = last; i > current; --i) {
        COperation* operation = nullptr;
        if (mOperations.FetchItemAt(i, &operation)) delete operation;
    }
    if (last > current)
        mOperations.RemoveItemsAt(static_cast<uint32_t>(last - current), current + 1);
    mCount = mOperations.GetCount();
}

void COperationList::removeOperationList() {
    StSingleLock lock(&mCriticalSection);
    mCurrent = 0;
    removeAfterCurrent();
}

}  // namespace basicutils
