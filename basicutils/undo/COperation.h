// Undo and redo: operations and their one linear history.
//
// A client derives from COperation, overrides ExecuteSelf and UndoSelf, makes
// the operation with new and calls Execute. A done operation is filed in the
// history (COperationList::sOperationList, made by the application); a
// failed one, or one done while no history exists, is deleted. The caller
// never owns an operation after Execute.
//
// The history is linear: items 1..mCurrent are done, the rest are undone and
// can be redone; filing a new operation first deletes the undone ones,
// newest first. There is no depth limit. Undo and Redo move the position
// whatever the operation answers. Every change holds the history's section
// (recursive, so an operation's Undo may file or undo again on its thread);
// operations' Undo, Redo and destructors run with it held. canUndo and
// canRedo read without the lock.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/containers/LList.h>
#include <basicutils/platform/Sync.h>

#include <atomic>
#include <cstdint>

namespace basicutils {

class BASICUTILS_EXPORT COperation {
  public:
    COperation() = default;
    virtual ~COperation() = default;
    // ExecuteSelf; files the operation when it succeeded, else deletes it.
    virtual bool Execute();
    virtual bool Redo();
    virtual bool ExecuteSelf();
    virtual bool Undo();
    virtual bool UndoSelf();
};

class BASICUTILS_EXPORT COperationList {
  public:
    // Becomes the history (sOperationList).
    COperationList();
    // Deletes every operation; afterwards there is no history.
    virtual ~COperationList();
    COperationList(const COperationList&) = delete;
    COperationList& operator=(const COperationList&) = delete;

    static COperationList* GetOperationList();
    static void AddOperation(COperation* operation);
    static bool CanUndo();
    static void Undo();
    static bool CanRedo();
    static void Redo();

    void addOperation(COperation* operation);
    bool canUndo() const;
    void undo();
    bool canRedo() const;
    void redo();
    void removeAfterCurrent();
    void removeOperationList();

    static std::atomic<COperationList*> sOperationList;

  protected:
    CCriticalSection mCriticalSection;
    LList mOperations;
    std::atomic<uint32_t> mCurrent;
    std::atomic<uint32_t> mCount;  // mirror of the list's count, for canRedo
};

}  // namespace basicutils
