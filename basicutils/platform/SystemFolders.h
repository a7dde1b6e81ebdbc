// The folders the system gives a program: its own file, the system folder
// and the folder that stands for the system drive.
//
// Linux has no drive letters and no system folder a user may write to, so
// this layer names folders in the user's home instead (paths in the
// library's spelling, `\` between names):
//   GetSystemDirectoryW  the user's data folder: $XDG_DATA_HOME when it is set
//                        to an absolute path, else ~/.local/share
//   GetSystemDriveW      the home folder: $HOME when it is absolute, else the
//                        home folder of the user's account
// Neither answer ends in a separator. Both follow the Win32 sizing rule: when
// `size` units hold the text and its terminator, the text is copied and its
// length (without the terminator) is the result; otherwise nothing is copied
// and the result is the size needed, terminator included. 0 means failure,
// with the reason in GetLastError.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/platform/Handles.h>

#include <string>

namespace basicutils {

BASICUTILS_EXPORT UINT GetSystemDirectoryW(char16_t* buffer, UINT size);
BASICUTILS_EXPORT UINT GetSystemDriveW(char16_t* buffer, UINT size);

namespace detail {
// The same folders in the system's spelling (UTF-8, `/`), and the user's
// settings folder: $XDG_CONFIG_HOME when absolute, else ~/.config. Empty
// when no home folder can be found.
BASICUTILS_EXPORT std::string HomeFolder();
BASICUTILS_EXPORT std::string UserDataFolder();
BASICUTILS_EXPORT std::string UserConfigFolder();
// The running program's path in the system's spelling, from /proc/self/exe;
// empty (with errno set) when the system does not tell.
BASICUTILS_EXPORT std::string ProgramPath();
// The program's file name without its extension ("basicutils" for
// /usr/bin/basicutils, "tool" for /opt/tool.bin).
BASICUTILS_EXPORT std::string ProgramName();
// Creates `folder` and its missing parents with the given mode; true when
// the folder exists afterwards.
BASICUTILS_EXPORT bool MakeFolders(std::string folder, unsigned mode);
}  // namespace detail

}  // namespace basicutils
