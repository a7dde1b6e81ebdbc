// The application object and its settings store.
//
// One CWinApp is current in a process: the latest one built, or else a
// default object that the library makes on first use. AfxGetModuleState()
// reaches it. Its three name fields are heap texts (malloc) that it owns and
// frees with free; code that replaces one frees the old text first.
//
// Settings live in a UTF-8 INI file (see internal/IniDocument.h):
//   - m_pszRegistryKey null and m_pszProfileName a path: that file. A name
//     without any separator lives in the user's settings folder
//     ($XDG_CONFIG_HOME, else ~/.config), as Windows keeps such files in its
//     own folder.
//   - m_pszRegistryKey null and no profile name: "<program>.ini" in the
//     user's settings folder, where <program> is the program's file name
//     without extension.
//   - m_pszRegistryKey set (SetRegistryKey): "<key>/<app name>.ini" in the
//     user's settings folder; it stands where Windows would use its registry.
// The store makes the user's settings folder and the folder of the registry
// key when they are missing; the folder of a file given by path must exist.
//
// Reads take no lock and see either the old or the new file whole. A write
// takes an exclusive lock on "<file>.lock" (flock), reads the file again,
// changes one line and replaces the file atomically: the new text goes to
// "<file>.tmp", is flushed to the disk, and is renamed over the file, whose
// folder is then flushed too. So a crash at any moment leaves the old file or
// the new one, never a mix or an empty file, and two processes or threads
// that write different keys at once both keep their keys. The new file keeps
// the old one's permissions; a symbolic link in the file's place is replaced
// by the file. A write that changes nothing leaves the file alone.
//
// Values:
//   - GetProfileIntW reads the number at the start of the value, as _wtoi
//     does (so "12px" is 12 and "x" is 0); a key that is missing or empty
//     gives the default. WriteProfileInt writes decimal, "-5" for -5.
//   - GetProfileStringW gives the default (the empty text for null) for a
//     missing key, and the value, perhaps empty, for a stored one.
//   - WriteProfileStringW with a null value removes the key, with a null key
//     the whole section. Texts the file format cannot hold (a line break
//     anywhere, a `]` in a section, a `=` in a key, empty names) are refused:
//     FALSE with ERROR_INVALID_PARAMETER, and the file is not touched.
// A failed write answers FALSE with the system's reason in GetLastError.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/platform/CString.h>
#include <basicutils/platform/Handles.h>

#include <string>

namespace basicutils {

class BASICUTILS_EXPORT CWinApp {
  public:
    // Becomes the current application object. A null name takes the
    // program's file name without extension.
    explicit CWinApp(const char16_t* appName = nullptr);
    // The default object is current again afterwards.
    virtual ~CWinApp();
    CWinApp(const CWinApp&) = delete;
    CWinApp& operator=(const CWinApp&) = delete;

    UINT GetProfileIntW(const char16_t* section, const char16_t* entry, int defaultValue);
    BOOL WriteProfileInt(const char16_t* section, const char16_t* entry, int value);
    CString GetProfileStringW(const char16_t* section, const char16_t* entry,
                              const char16_t* defaultValue = nullptr);
    BOOL WriteProfileStringW(const char16_t* section, const char16_t* entry, const char16_t* value);

    // Keeps the settings in the user's folder under `key` (see above).
    void SetRegistryKey(const char16_t* key);
    // The settings file in use now, in the library's spelling; empty when
    // no home folder is known for a file that needs one.
    std::u16string GetProfileFile() const;

    const char16_t* m_pszAppName;
    const char16_t* m_pszRegistryKey;
    const char16_t* m_pszProfileName;
};

struct AFX_MODULE_STATE {
    CWinApp* m_pCurrentWinApp;
};

// Never null, and its application object is never null.
BASICUTILS_EXPORT AFX_MODULE_STATE* AfxGetModuleState();

// A heap copy of a text, freed with free; null for null or no memory.
BASICUTILS_EXPORT char16_t* _wcsdup(const char16_t* text);

}  // namespace basicutils
