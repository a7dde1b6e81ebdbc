// Idle work and the task base.
//
// A CIdleProcess is one piece of work for an idle moment: made with new, it
// enters gIdleProcesses in its constructor; the application's idle handling
// calls gIdleProcesses.ExecuteAll(), which runs each waiting process once
// (ExecuteSelf) and deletes it. The list empties itself as it runs, and a
// process made while the list runs is run in the same call. Deleting a
// process that hasn't run takes it out unrun; at unload the processes still
// waiting are deleted without running. gIdleProcesses belongs to the main
// thread and has no lock.
//
// MVelmorantTaskBase gives an object two flags that live elsewhere (a stop
// flag, a may-be-killed flag), by pointer; a copy shares its source's flags.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/containers/LList.h>
#include <basicutils/messaging/LBroadcaster.h>

namespace basicutils {

class BASICUTILS_EXPORT MVelmorantTaskBase {
  public:
    MVelmorantTaskBase() : mStopFlagPtr(nullptr), mCanKillPtr(nullptr) {}
    virtual ~MVelmorantTaskBase() = default;
    virtual void SetStopFlagPtr(bool* flag) { mStopFlagPtr = flag; }
    // The stop flag's value; false while there is no flag.
    virtual bool IsStop() { return mStopFlagPtr && *mStopFlagPtr; }
    virtual bool* GetStopFlagPtr() { return mStopFlagPtr; }
    virtual void SetCanKillPtr(bool* flag) { mCanKillPtr = flag; }
    virtual bool* GetCanKillPtr() { return mCanKillPtr; }

  protected:
    bool* mStopFlagPtr;
    bool* mCanKillPtr;
};

class BASICUTILS_EXPORT CIdleProcess : public CMemoryCheck {
  public:
    CIdleProcess();
    virtual ~CIdleProcess();
    CIdleProcess(const CIdleProcess&) = delete;
    CIdleProcess& operator=(const CIdleProcess&) = delete;
    // ExecuteSelf, then delete this.
    void Execute();
    virtual void ExecuteSelf();
};

class BASICUTILS_EXPORT CIdleProcesses {
  public:
    CIdleProcesses();
    // Deletes the processes that never ran, without running them.
    virtual ~CIdleProcesses();
    CIdleProcesses(const CIdleProcesses&) = delete;
    CIdleProcesses& operator=(const CIdleProcesses&) = delete;
    void AddProcess(CIdleProcess* process);
    void RemoveProcess(CIdleProcess* process);
    void ExecuteAll();
    int32_t GetCount() const { return static_cast<int32_t>(mProcesses.GetCount()); }

  protected:
    LList mProcesses;
};

BASICUTILS_EXPORT extern CIdleProcesses gIdleProcesses;

}  // namespace basicutils
