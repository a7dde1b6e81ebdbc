// The info file of a segmented file, shared by MFiles's parts: its header,
// its limits, and the one way its text reaches the disk.
#pragma once

#include <basicutils/files/MFile.h>
#include <basicutils/text/MString.h>
#include <basicutils/text/WideString.h>

namespace basicutils::detail {

inline constexpr char16_t kInfoHeader[] = u"# Velmorant c_files ";
// The units of the header that identify an info file: all but the blank.
inline constexpr int kInfoHeaderTest = 19;
inline constexpr int kMaxSegments = 2048;
// FGetts's half-limit for one line of the info file (up to 4,095 bytes).
inline constexpr int kInfoLineLimit = 2048;
inline constexpr char16_t kSegmentExtension[] = u".cfx";
// The name behind P of the info file that is about to replace P.
inline constexpr char16_t kSwitchExtension[] = u".cfx.new";

inline bool IsInfoHeader(const char16_t* line) {
    return wcsncmp(line, kInfoHeader, kInfoHeaderTest) == 0;
}

// `text` formatted once with `format` ("%s\n" and kin).
inline MString InfoLine(const char16_t* format, const char16_t* text) {
    MString line;
    line.Format(format, text);
    return line;
}

// Opens the info file at `path` in `mode` (kOpenWriteText empties it,
// kOpenAppendText appends), writes `text` narrowed to the system code page
// in one write, syncs it and closes it. 0, or the negative answer of the
// step that failed.
int WriteInfoText(const char16_t* path, file_open_t mode, const MString& text);

// Replaces the file at `path` by one holding `text`, written beside it as
// PATH.cfx.new, synced and renamed over `path`. 0 or -1; on failure `path`
// is untouched and the file beside it removed.
int ReplaceInfoFile(const char16_t* path, const MString& text);

}  // namespace basicutils::detail
