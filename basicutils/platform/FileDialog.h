// The framework's file dialog, and the hook that decides how it is shown.
//
// CFileDialog::DoModal hands a SFileDialogRequest to the process's dialog
// runner, modal on the calling thread. The default runner is GTK 3's file
// chooser, loaded at run time (posix/GtkFileChooser.cpp): the library links
// no toolkit, and a process without a display never loads one. With neither
// DISPLAY nor WAYLAND_DISPLAY set, or without GTK 3 on the machine, or when
// GTK cannot open the display, the default runner answers "cancelled" at
// once. GTK is used from the thread of the first dialog that shows; show
// dialogs from that one thread, as any GTK program does.
//
// An application with a toolkit of its own installs its own runner with
// SetFileDialogRunner, before the first dialog: from then on every dialog
// of the library goes to it. The runner gets the filters whole (patterns may
// be far longer than any fixed field), the 1-based filter to start with, the
// start name, the owner window and the OFN_ flags, and answers true with the
// chosen path (library spelling) and the 1-based filter the user ended on,
// or false for a cancelled dialog.
//
// How the GTK runner shows a request:
//   - the start name is "folder\name" or "folder\pattern": the folder opens
//     when it exists (a relative one, or none, in the current folder); a
//     name (no `*` or `?`) is preselected in an open dialog and typed into
//     the name field of a save dialog;
//   - patterns match without regard to case, as on Windows, and "*.*" (or
//     "*") matches every file, with or without a dot;
//   - an open dialog accepts existing files only; a save dialog asks nothing
//     about replacing a file (OFN_OVERWRITEPROMPT is not honoured by it);
//   - the owner window is not used: GTK knows nothing of it.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/platform/CString.h>
#include <basicutils/platform/Handles.h>
#include <basicutils/platform/MessageQueue.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace basicutils {

inline constexpr DWORD OFN_READONLY = 0x00000001;
inline constexpr DWORD OFN_OVERWRITEPROMPT = 0x00000002;
inline constexpr DWORD OFN_HIDEREADONLY = 0x00000004;
inline constexpr DWORD OFN_PATHMUSTEXIST = 0x00000800;
inline constexpr DWORD OFN_FILEMUSTEXIST = 0x00001000;
inline constexpr DWORD OFN_EXPLORER = 0x00080000;

inline constexpr intptr_t IDOK = 1;
inline constexpr intptr_t IDCANCEL = 2;

struct SFileDialogRequest {
    bool open = true;  // an open dialog, or else a save dialog
    CWnd* parent = nullptr;
    DWORD flags = 0;
    std::u16string title;        // "Open" or "Save As"
    std::u16string initialName;  // library spelling
    // (description, patterns separated by ';'), in order.
    std::vector<std::pair<std::u16string, std::u16string>> filters;
    int filterIndex = 1;  // 1-based; the runner starts on this one when it exists
    // The answer, when the runner returns true.
    std::u16string path;
    int chosenFilter = 1;
};

using FileDialogRunner = bool (*)(SFileDialogRequest& request, void* context);

// Installs `runner` (with its context) for every file dialog of the process;
// null puts the GTK runner back.
BASICUTILS_EXPORT void SetFileDialogRunner(FileDialogRunner runner, void* context);

// The part of the framework's OPENFILENAME that callers read and set.
struct OPENFILENAMEW {
    DWORD Flags;
    DWORD nFilterIndex;  // 1-based; 0 means the first filter
};

class BASICUTILS_EXPORT CFileDialog {
  public:
    // `filter` is "description|patterns|description|patterns||"; a trailing
    // description without patterns is ignored. `defaultExtension` (without
    // the dot), when not null, is appended to a chosen name that has no
    // extension.
    CFileDialog(BOOL openFileDialog, const char16_t* defaultExtension = nullptr,
                const char16_t* fileName = nullptr,
                DWORD flags = OFN_HIDEREADONLY | OFN_OVERWRITEPROMPT,
                const char16_t* filter = nullptr, CWnd* parentWnd = nullptr);
    virtual ~CFileDialog();
    CFileDialog(const CFileDialog&) = delete;
    CFileDialog& operator=(const CFileDialog&) = delete;

    // IDOK when the user chose a file, IDCANCEL otherwise.
    virtual intptr_t DoModal();
    CString GetPathName() const;

    OPENFILENAMEW m_ofn;

  private:
    SFileDialogRequest mRequest;
    CString mDefaultExtension;
    bool mHasDefaultExtension;
    CString mPathName;
};

namespace detail {
// The GTK runner; answers false at once where no dialog can be shown.
BASICUTILS_EXPORT bool RunGtkFileChooser(SFileDialogRequest& request, void* context);
}  // namespace detail

}  // namespace basicutils
