// The library's load-time objects, defined in this one translation unit so
// that they are built in a fixed order, each depending only on those above
// it, and destroyed in the reverse order when the library is unloaded.
// Nothing else in the library defines an object with a dynamic initialiser
// that another load-time object relies on: the order of translation units
// is left to the linker and must not matter.
//
// The slots, in order. A later subsystem puts its definition in its slot.
//   1. the byte mask tables of CAppBits
//   2. gIdleProcesses
//   3. MFileDialog::sLastFile
//   4. LArray::sBytesComparator, then LArray::sLongComparator, then
//      LArray::sPointerComparator
//   5. CVelmorantProfile::sProfilePath
//   6. StGlobalLock::sSafe
//   7. CMessageAction::sMessageAction (sDefaultType 1)
//   8. CThreadStatus::sThreadStatus
//   9. CThreadAction::sThreadAction

#include <basicutils/BasicUtils.h>

namespace basicutils {

// 1. CAppBits byte mask tables
bool CAppBits::sByteMasksInitialized = CAppBits::InitializeByteMasks();

// 2. gIdleProcesses
CIdleProcesses gIdleProcesses;

// 3. MFileDialog::sLastFile
MFileSpecWin MFileDialog::sLastFile;

// 4. LArray comparators
LComparator LArray::sBytesComparator;
LLongComparator LArray::sLongComparator;
LPointerComparator LArray::sPointerComparator;

// 5. CVelmorantProfile::sProfilePath
CString CVelmorantProfile::sProfilePath;

// 6. StGlobalLock::sSafe
CCriticalSection StGlobalLock::sSafe;

// 7. CMessageAction::sMessageAction
std::atomic<message_action_t> CMessageAction::sDefaultType{kMessageWindow1};
CMessageAction CMessageAction::sMessageAction;

// 8. CThreadStatus::sThreadStatus
CThreadStatus CThreadStatus::sThreadStatus;

// 9. CThreadAction::sThreadAction
CThreadAction CThreadAction::sThreadAction;

}  // namespace basicutils
