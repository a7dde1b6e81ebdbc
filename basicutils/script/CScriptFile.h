// CScriptFile: the lexical layer under the parsers of script files.
//
// A subclass opens a working file with OpenForParse and reads it in one of
// two styles. The cursor style walks a current line that crosses line ends
// by itself: SkipWhiteSpaceAndChar skips blanks (space, tab, line feed,
// carriage return), comments (`#` or `//` to the end of the line, where the
// reader is skipping) and a chosen character; GetString and GetString2 read
// a word up to white space or stop characters; GetListMember reads
// "(a, b c)"; StopUntilChars expects one of a set of characters. The token
// style (GetToken) cuts lines at the caller's delimiters with wcstok and
// drops a token that starts with `//` together with the rest of its line.
// Both count lines in mLineNumber; a subclass uses one style for a file.
// Reading answers 1, 0 for a syntax error and -1 at the end of the file.
// The working file is deleted from the disk when the parser dies, whether it
// could be opened or not. There are no quotes and no escapes at this level.
//
// Limits, where a fixed buffer once stood:
//   - Words and list members have no length limit: a word of 2,048 units or
//     more, a member of 10,000 or more, is read whole.
//   - Lines come from FGetts with the count 65,535, which hands out up to
//     131,069 bytes of a line; the buffer holds that much, so such lines are
//     read whole. A longer line arrives in pieces of that size, each counted
//     as a line; a word that crosses a piece's end reads on into the next
//     piece, and no text is lost. Text behind a zero byte in a line is
//     dropped (FGetts's rule), line end included.
//   - WriteString2File writes a text of any length.
//
// Token style and wcstok: the position of wcstok is kept per thread, as the
// runtime's is, so two parsers on one thread must not interleave GetToken.
// GetToken goes on from that position only when this parser made it on this
// thread and its token line is still the same; otherwise it reads the next
// line. So a parser never continues in the freed line of another, and a copy
// starts its tokens at the next line.
//
// GetToken replaces the current line, so it leaves no cursor behind: a
// cursor operation after it starts on the next line.
//
// Copies take the base, the fields, and a cursor at the same place of their
// own copy of the current line.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/files/MFileUniv.h>
#include <basicutils/text/MString.h>
#include <basicutils/text/MStringList.h>

namespace basicutils {

class BASICUTILS_EXPORT CScriptFile : public MFileUniv {
  public:
    CScriptFile();
    CScriptFile(const CScriptFile& other);
    CScriptFile& operator=(const CScriptFile& other);
    // Deletes the working file (its name is kept even when opening failed).
    ~CScriptFile() override;

    // Opens the working file for reading text: 1, or 0 with "Error: cannot
    // open working file %s to read mode.\n" handed to PrintToStdout.
    int OpenForParse(const char16_t* path);
    // Skips white space, comments and any number of `c`; the cursor stands
    // on the first other character.
    int SkipWhiteSpaceAndChar(char16_t c);
    // Reports "syntax error: TEXT near line N" and the current line through
    // CMessageAction::Error to window 2 (message 26010).
    void PrintSyntaxError(const char16_t* text);
    int GetCurrentLineNum() const { return mLineNumber; }
    const char16_t* GetCurrentLine() const { return mCurrentLine; }
    // Writes the text in 8 bits (system code page), no line end added: 1, or
    // 0 with a message on standard output.
    int WriteString2File(MString* s);
    // Writes every string in turn; 0 at the first failure.
    int WriteStringList2File(MStringList* list);

  protected:
    // Moves the cursor one character on, reading the next line at the end of
    // the current one.
    int GetOneChar();
    // Reads the next line and puts the cursor at its start.
    int SkipOneLine();
    // A word up to white space or `stop`, which stays under the cursor. At
    // the end of the file -1, and `out` is not touched.
    int GetString(MString* out, char16_t stop);
    int GetString2(MString* out, const MString& stops);
    // The next character, after white space only, must be in `set`: 1 with
    // it in *found and the cursor on it, else "Syntax error" and 0.
    int StopUntilChars(const MString& set, char16_t* found);
    // A parenthesised list of members separated by commas or white space;
    // neither parenthesis is required. 0 at the end of the file inside a
    // member (the members before stay in `list`).
    int GetListMember(MStringList* list);
    // The next token; `rest` becomes empty.
    int GetToken(MString* token, const char16_t* delimiters, MString* rest);

    MString mWorkingFile;
    const char16_t* mCursor;
    MString mCurrentLine;
    MString mTokenLine;
    int mLineNumber;

  private:
    // The next line from FGetts; false at the end of the file.
    bool ReadLine(MString& line);
    // The cursor ready on a line (the first one read when there is none yet).
    bool HasCursor();
    void CopyFields(const CScriptFile& other);
};

}  // namespace basicutils
