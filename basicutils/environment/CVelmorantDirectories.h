// CVelmorantDirectories: where the application's folders and well-known
// files are.
//
// Static functions without state: each works its answer out anew from the
// running program's path, the user's folders or a setting. The functions
// marked "creates" make the folder they name (one level, with _wmkdir: an
// existing folder is fine, and a failure, a missing parent say, is silent).
// Folders come back with a trailing `\`, paths in the library's spelling.
//
// On Linux the "system drive" is the user's home folder and the "system
// folder" is the user's data folder (see platform/SystemFolders.h), so the
// default scenario folder is ~/My Scenarios/ and the drivers folder
// ~/.local/share/drivers/. The program's folders (GetAppDirectory and the
// ones below it) are beside the running program, as found in /proc.
//
// GetAppProfile: Linux programs have no extension. The program's path gets
// ".ini" in place of the extension of its file name, or behind the name
// when it has none, so /opt/vel/bin/author gives /opt/vel/bin/author.ini and
// /opt/vel/bin/author.bin gives /opt/vel/bin/author.ini; a dot in a folder
// name or at the start of the file name doesn't count. "Error" when the
// program's path is unknown, as for GetAppDirectory.
//
// Long names: the per-project folders split the project path with
// _wsplitpath, which keeps at most 255 units of the folder and of the file
// name; longer parts are cut there, never overrun.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/text/MString.h>
#include <basicutils/time/CTimecode.h>

namespace basicutils {

class BASICUTILS_EXPORT CVelmorantDirectories {
  public:
    // The machine and the installation.
    static MString GetSystemDrive();
    static MString GetSystemDirectoryW();
    static MString GetSystemDriverDirectory();
    static MString GetAppDirectory();
    static MString GetAppProfile();
    static MString GetProjectTemplateDirectory();  // creates
    static MString GetDocumentationDirectory();
    static MString GetSupportDataDirectory();  // creates
    // Creates; the name has a doubled `\` behind the program's folder.
    static MString GetTemplateDirectory();

    // The user's folders, from the settings "Scenario Directory" and
    // "Script Directory" of section "VELMORANT". A stored setting comes back
    // as stored, without a `\` added. The scenario folder defaults to the
    // system drive's "\My Scenarios\", and a stored empty setting gives that
    // default without creating it; otherwise it creates. The script folder
    // defaults to "\My Scenarios\Script\" there, creates, and gives a
    // stored empty setting back empty.
    static MString GetScenarioDirectory();
    static MString GetScriptDirectory();
    static void SetScenarioDirectory(const char16_t* path);
    static void SetScriptDirectory(const char16_t* path);

    // The per-project cache beside a project file: "<name> Cache\" and the
    // folders below it; each creates the whole chain. The name keeps every
    // dot but the extension's: "a.b.ext" gives "a.b Cache\".
    static MString GetTempDataDirectory(const char16_t* projectPath);
    static MString GetSubtitleTextDirectory(const char16_t* projectPath);
    static MString GetEncodedDataDirectory(const char16_t* projectPath);
    static MString GetEncodedJacketDataDirectory(const char16_t* projectPath);

    // Well-known files in the support data folder; any resolution other
    // than 0 (NTSC) is PAL.
    static MString GetDefaultSubPicBackgroundNTSCVideo();
    static MString GetDefaultSubPicBackgroundPALVideo();
    static MString GetDefaultBackgroundImageFile(resolution_t resolution);
    static MString GetPlaceHolderWarningMpegFile(resolution_t resolution);
    static MString GetMissingVobWarningMpegFile(resolution_t resolution);
    static MString GetPlaceHolderWarningVobFile(resolution_t resolution);
    static MString GetMissingVobWarningVobFile(resolution_t resolution);

    // Drive and folder of a path; and the path without its extension.
    static MString GetDirectory(const char16_t* path);
    static MString GetBody(const char16_t* path);
};

}  // namespace basicutils
