// CStringExtract: cuts double-quoted pieces out of a line.
//
// Pieces are separated by the double quote (code 34). The usual walk:
// SeekLeftDoubleQuat finds where a quoted text starts, GetString from there
// copies the text up to the closing quote and says how far to move on.
//
//   int at = CStringExtract::SeekLeftDoubleQuat(line);      // behind the "
//   if (at) at += CStringExtract::GetString(line + at, out); // out = inside
//
// A result of 0 means "no quote", and only that: a quote at the very start
// gives 1. `out` must have room for what it receives; a null text reads as
// the empty text and a null `out` is left alone.
#pragma once

#include <basicutils/Export.h>

namespace basicutils {

class BASICUTILS_EXPORT CStringExtract {
  public:
    // Index of the first double quote plus 1, or 0 if there is none.
    static int SeekLeftDoubleQuat(const char16_t* text);
    // Copies what stands before the first double quote to out, terminated,
    // and answers the index behind that quote. Without a quote out becomes
    // empty and the answer is 0.
    static int GetString(const char16_t* text, char16_t* out);

    // The same on 8-bit text.
    static int SeekLeftDoubleQuatChar(const char* text);
    static int GetStringChar(const char* text, char* out);
};

}  // namespace basicutils
