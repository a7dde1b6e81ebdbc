// Scoped locks. StGlobalLock enters the process-wide section sSafe for the
// length of a scope (for client code; the library itself never takes it);
// StSingleLock does the same for any CSyncObject. Both wait without limit
// and are recursive on one thread as the sections they enter are.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/platform/Sync.h>

namespace basicutils {

class BASICUTILS_EXPORT StGlobalLock {
  public:
    StGlobalLock();
    ~StGlobalLock();
    StGlobalLock(const StGlobalLock&) = delete;
    StGlobalLock& operator=(const StGlobalLock&) = delete;

    static CCriticalSection sSafe;

  protected:
    CSingleLock* mLock;
};

class BASICUTILS_EXPORT StSingleLock {
  public:
    explicit StSingleLock(CSyncObject* object);
    ~StSingleLock();
    StSingleLock(const StSingleLock&) = delete;
    StSingleLock& operator=(const StSingleLock&) = delete;

  protected:
    CSingleLock* mLock;
};

}  // namespace basicutils
