// File dialogs: choosing a file to open or to save, with the filters of the
// media formats the tool handles.
//
// MFileDialog holds up to 32 filters, the file (where the dialog starts, and
// what it chose) and the 1-based index of the filter chosen, and remembers
// in sLastFile the last file chosen through any dialog of the process: a
// dialog with no file of its own starts in that file's folder.
// MFileDialogWin asks for a file to open, MFileSaveDialogWin for a name to
// save under (a name typed without extension gets the chosen filter's).
// How the platform shows them, and how an application puts its own dialog in
// their place, is told in platform/FileDialog.h; where no dialog can be
// shown (no display, no GTK), Execute answers false at once.
//
// Long texts. SFileFilter's fields hold 127 units and a terminator. A longer
// description is cut there. A longer pattern (the full "All Data Files" list
// has 199 units, "All Image Files" 137) is kept whole beside the record and
// reaches the dialog and AppendFilterExtension whole; the record's mPattern
// holds the leading patterns that fit, cut at a `;`.
//
// The dialog starts on the filter mSelectedFilter (the first, unless an
// earlier run of the same object ended on another).
//
// AppendFilterExtension takes the path as a caller's text and leaves that
// text as it is: the longer name goes only to the file spec, so no caller's
// buffer can be overrun.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/files/MFileSpec.h>
#include <basicutils/platform/MessageQueue.h>
#include <basicutils/text/MString.h>

#include <cstdint>

namespace basicutils {

struct SFileFilter {
    char16_t mDescription[128];
    char16_t mPattern[128];
};

class BASICUTILS_EXPORT MFileDialog {
  public:
    static constexpr int32_t kMaxFilters = 32;

    MFileDialog();
    MFileDialog(const MFileDialog& other);
    MFileDialog& operator=(const MFileDialog& other);
    virtual ~MFileDialog();

    // Runs the dialog; true when a file was chosen, which then is also
    // sLastFile.
    virtual bool Execute();
    virtual bool ExecuteSelf() = 0;
    // Appends a filter; false, with nothing changed, when all 32 are in use.
    virtual bool AddFilter(const char16_t* description, const char16_t* pattern);
    virtual MFileSpecWin& GetFileSpec();
    virtual int GetSelectedFilter();
    virtual MFileSpecWin GetDirectory(MFileSpecWin& spec) = 0;

    // Appends the standard filters of the chosen groups, always "All files
    // (*.*)" and "All Data Files" first; true.
    bool AddFilters(bool audio, bool image, bool video);
    // The last filter in use with exactly this description, or null.
    SFileFilter* FindFileFilterByDescription(const char16_t* description);
    void SetFileSpec(MFileSpecWin& spec);

    static MFileSpecWin sLastFile;

  protected:
    // The whole pattern of a filter, which may be longer than its record's.
    const char16_t* FullPattern(const SFileFilter* filter) const;

    SFileFilter mFilters[kMaxFilters];
    int32_t mFilterCount;
    MFileSpecWin mFileSpec;
    int mSelectedFilter;
    MString mFullPatterns[kMaxFilters];
};

class BASICUTILS_EXPORT MFileDialogWin : public MFileDialog {
  public:
    explicit MFileDialogWin(CWnd* parent = nullptr);

    bool ExecuteSelf() override;
    // The path cut behind its last `\`, or a copy when it has none.
    MFileSpecWin GetDirectory(MFileSpecWin& spec) override;
    virtual void SetParent(CWnd* parent);

  protected:
    // Shows the open (true) or save dialog; true when the user confirmed,
    // and then mFileSpec and mSelectedFilter hold the answer.
    virtual bool runFileDialog(bool open);

    CWnd* mParent;
};

class BASICUTILS_EXPORT MFileSaveDialogWin : public MFileDialogWin {
  public:
    MFileSaveDialogWin();

    // The save dialog; a chosen name without extension gets the first
    // extension of the chosen filter. That step runs after a cancelled
    // dialog too, and may then change the file.
    bool ExecuteSelf() override;
    // Makes `path` followed by the first extension of `filter` the file:
    // the text from the first `.` to the first `;` (or the end), or without
    // a `.` the text before the `;` (or the whole pattern). A `.` behind the
    // first `;` doesn't count. Nothing happens when either argument is null.
    void AppendFilterExtension(const char16_t* path, SFileFilter* filter);
};

}  // namespace basicutils
