// Durable steps on names, for the file layer's crash-safe updates.
//
// A file that must never be missing under its name is replaced, not
// rewritten: its new contents go to a file beside it, which is synced and
// then renamed over the old name in one step. A file that must keep its
// contents under a new name gets that name as a second link before its old
// name is reused. These calls give those steps; the runtime's _wrename
// (which never replaces) and _wremove stay as they are.
//
// Every call goes through the operating-system seam. Paths follow the rules
// of RuntimeFiles.h. Results are 0, or -1 with errno and GetLastError set.
//
// Internal: not installed.
#pragma once

#include <basicutils/Export.h>

namespace basicutils::detail {

// Gives the file `existing` the second name `newName` (a hard link). Fails
// when `newName` exists.
BASICUTILS_EXPORT int LinkName(const char16_t* existing, const char16_t* newName);

// Renames `from` to `to` in one step, replacing what `to` named, then syncs
// the folder of `to` so that the new name survives a power cut. 0 once the
// rename is done: a failed sync of the folder changes nothing that a caller
// could undo, and is not an answer.
BASICUTILS_EXPORT int ReplaceName(const char16_t* from, const char16_t* to);

// Syncs the folder that holds `path` (the current folder for a bare name),
// so that a file created or linked there keeps its name after a power cut.
BASICUTILS_EXPORT int SyncFolderOf(const char16_t* path);

// Writes what the system holds of a runtime descriptor's data to the disk.
BASICUTILS_EXPORT int SyncDescriptor(int fd);

}  // namespace basicutils::detail
