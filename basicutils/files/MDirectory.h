// MDirectory and the tail and delete helpers of directory paths. The
// backslash is the only separator these operations add or look for.
//
// MDirectory is a value that holds a directory's path as given, unchecked.
// ExistsOnDisk answers whether _wchdir to the path succeeds, and so, when it
// does, makes that path the process's current directory: other threads see
// the change. CreateNew, GetFileList and GetDirectoryList do nothing
// (CreateNew answers false).
//
// GetDiskFreeSpaceW answers the free space of the path's drive in KiB (cut
// to a whole number; good up to 2 TiB less 1 KiB), 0 on a full drive and -1
// when the system cannot be asked. A path whose drive part begins like the
// current directory asks the current drive; any other asks its drive's root,
// and a path without a drive asks the root "\". Paths on this platform have
// no drive part, so the answer is that of the root file system.
//
// DeleteTailCharacter(path, c) is a copy of the path without the run of c at
// its end (null or empty: the empty text). DeleteTailDirectorySeparator is
// the same for the backslash. AddDirectorySeparator(path, removeExisting,
// count) appends count backslashes, after removing the trailing ones when
// removeExisting is true; a null or empty path stays empty.
//
// DeleteDirectory(path) deletes a directory and everything in it, one entry
// at a time, listing the directory anew after each deletion: 0 when done (a
// directory that does not exist counts as deleted), -1 for a null or empty
// path or a failure. (The empty path is refused because it would name the
// contents of the current directory.) It stops at the first failure, and what is deleted stays
// deleted. A file that cannot be deleted is reported through
// CMessageAction::Error as "%s could not be deleted" with its name; a
// directory that cannot be removed as "Directory %s could not be deleted"
// with its path, followed by CMessageAction::Inform "Check if it is open in
// an Explorer window". Read-only files are not made writable first, so they
// stop the deletion. Choices of this port: the entries "." and ".." are
// skipped by their names, not by their places in the listing; symbolic links
// are deleted as links and never followed; names have no length limit.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/containers/LList.h>
#include <basicutils/text/MString.h>

#include <cstdint>

namespace basicutils {

class BASICUTILS_EXPORT MDirectory {
  public:
    MDirectory() = default;
    MDirectory(const char16_t* path);  // NOLINT: a path names a directory
    MDirectory(const MDirectory& other) = default;
    MDirectory& operator=(const MDirectory& other) = default;
    virtual ~MDirectory();

    virtual void SetPath(const char16_t* path);
    virtual void SetPath(MString& path);
    const char16_t* GetPath() const { return mPath; }
    operator const char16_t*() const { return mPath; }  // NOLINT

    virtual bool ExistsOnDisk();
    static bool ExistsOnDisk(const char16_t* path);
    virtual bool CreateNew();
    virtual void GetFileList(LList* list);
    virtual void GetDirectoryList(LList* list);

    int32_t GetDiskFreeSpaceW();

  protected:
    MString mPath;
};

BASICUTILS_EXPORT int DeleteDirectory(const char16_t* path);
BASICUTILS_EXPORT MString AddDirectorySeparator(const char16_t* path, bool removeExisting,
                                                uint32_t count);
BASICUTILS_EXPORT MString DeleteTailDirectorySeparator(const char16_t* path);
BASICUTILS_EXPORT MString DeleteTailCharacter(const char16_t* path, char16_t character);

}  // namespace basicutils
