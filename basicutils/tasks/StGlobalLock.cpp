// Scoped locks over CSingleLock.
#include <basicutils/tasks/StGlobalLock.h>

namespace basicutils {

StGlobalLock::StGlobalLock() : mLock(new CSingleLock(&sSafe, 0)) {
    mLock->Lock(INFINITE);
}

StGlobalLock::~StGlobalLock() {
    mLock->Unlock();
    delete mLock;
}

StSingleLock::StSingleLock(CSyncObject* object) : mLock(new CSingleLock(object, 0)) {
    mLock->Lock(INFINITE);
}

StSingleLock::~StSingleLock() {
    mLock->Unlock();
    delete mLock;
}

}  // namespace basicutils
