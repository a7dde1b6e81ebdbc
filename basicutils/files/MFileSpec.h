// File specs: the value that names a file everywhere in the library.
//
// MFileSpec is the abstract interface; MFileSpecWin holds the path text and
// is the one concrete spec. Every file object holds one and every file dialog
// hands one back. The path is kept exactly as given: never normalised, made
// absolute or checked. The empty path is the null spec. Specs are copied by
// value, and two specs are equal only when their paths are equal unit by
// unit (case counts: "A" and "a" name different specs). Code in the library
// reaches the path through the virtual GetFilePath, so a subclass may stand
// another path in.
//
// The static services work on path text and open nothing:
//
// IsDriveReadOnly(root, freeSpaceOnly): unless freeSpaceOnly, a root whose
// drive type is DRIVE_NO_ROOT_DIR or DRIVE_CDROM is read-only at once (an
// optical or read-only mount counts as DRIVE_CDROM here). Otherwise the drive
// is read-only when the free space available to the caller is 0, or when that
// cannot be asked.
//
// IsFileOnReadOnlyDrive(path): a path with a drive part asks its drive with
// the drive type. A path without one (every path on this platform) asks the
// free space of its folder alone: the path up to its last separator. Choices
// of this port: `/` separates as well as `\`; a separator at the head stays,
// so "/movie.mpv" asks the root folder; a bare name with no separator asks
// the current folder (the whole name would only answer for a file that
// already exists).
//
// CreateUniqueFileSpec(source, extension, result): the first free name of
// the series NAME + extension, NAME_1 + extension, NAME_2 + extension, ...,
// where NAME is the source path without its extension (the part from the last
// dot behind the last separator). The extension is used as given, dot
// included; the empty extension gives a name without any. "Free" means that
// nothing exists at the name; nothing is created, so two callers may receive
// the same name. On a read-only drive it reports "%s is on a read-only drive.
// This is not supported. please copy it to a writable disk." (filled with the
// source path) through CMessageAction::Error and answers false, leaving
// result alone. This port splits the path itself by the rules of _wsplitpath,
// so that a path longer than _wsplitpath's part limits keeps its folder.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/text/MString.h>

namespace basicutils {

class BASICUTILS_EXPORT MFileSpec {
  public:
    // The arguments are ignored: the interface holds no data.
    MFileSpec() = default;
    explicit MFileSpec(const MString&) {}
    explicit MFileSpec(const char16_t*) {}
    virtual ~MFileSpec();

    // Copies the path with its terminator; the buffer must be large enough.
    virtual void GetFilePathName(char16_t* destination) = 0;
    virtual bool FileExist() = 0;
    virtual bool IsNull() = 0;

  protected:
    MFileSpec(const MFileSpec&) = default;
    MFileSpec& operator=(const MFileSpec&) = default;
};

class BASICUTILS_EXPORT MFileSpecWin : public MFileSpec {
  public:
    MFileSpecWin() = default;
    MFileSpecWin(const MString& path);   // NOLINT: a path names a spec
    MFileSpecWin(const char16_t* path);  // NOLINT
    MFileSpecWin(const MFileSpecWin& other);
    MFileSpecWin& operator=(const MFileSpecWin& other);
    ~MFileSpecWin() override;

    void GetFilePathName(char16_t* destination) override;
    // True when CFile::GetStatus finds something at the path.
    bool FileExist() override;
    bool IsNull() override;
    virtual void SetFilePathName(const char16_t* path);
    // The member itself; the caller may change it.
    virtual MString& GetFilePath();
    virtual void SetFilePath(const char16_t* path);
    virtual void SetFilePath(MString& path);

    bool IsOnReadOnlyDrive();

    bool operator==(const MFileSpecWin& other) const;
    bool operator!=(const MFileSpecWin& other) const { return !(*this == other); }

    static bool IsDriveReadOnly(const char16_t* root, bool freeSpaceOnly);
    static bool IsFileOnReadOnlyDrive(const char16_t* path);
    static bool CreateUniqueFileSpec(MFileSpecWin& source, const char16_t* extension,
                                     MFileSpecWin* result);

  protected:
    MString mFilePath;
};

}  // namespace basicutils
