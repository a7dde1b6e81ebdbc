// MString: the library's string.
//
// One heap block of 16-bit units with a zero unit behind the text, owned by
// this object alone. Neither length nor capacity is stored: GetLength counts,
// and a block is exactly as long as its text plus the terminator, except
// where an operation is said to leave the block alone (shortening at the
// tail) or the caller asked for room (MString(unsigned int)). Anything that
// lengthens the text allocates a new block of the exact size. The block is
// never null; the empty string is one zero unit. A pointer obtained from a
// conversion or operator[] lives until the next operation that replaces the
// block.
//
// Choices this port makes where the legacy class left the caller a duty:
// - Format writes at most 8191 units and then stops reading the format, so
//   an over-long result is cut short instead of overrunning the working
//   buffer. A lone '%' at the end of the format produces nothing. A null
//   %s argument produces nothing.
// - Cut with a negative start or count leaves the empty string and answers
//   0, like a start past the end.
// - ImportASCII with a length below -1 gives the empty string.
// - ExportUnicode and ExportASCII with a size below 1 (below 0 for
//   ExportASCII, whose buffer holds size + 1 bytes) write nothing and
//   answer 0.
// - A null pointer given to the constructor from text, to operator+= or to
//   the comparisons reads as the empty text.
// - MString(unsigned int) is explicit, so that a number never turns into a
//   string by accident.
#pragma once

#include <basicutils/Export.h>

#include <cstdarg>
#include <cstddef>
#include <cstdint>

namespace basicutils {

// The 8-bit character set of MString::ExportASCII. Any value other than the
// two names selects the system code page, as kCharacterSetWindows does.
enum character_set_type : int32_t {
    kCharacterSetMacintosh = 1,  // code page 2, Mac Roman
    kCharacterSetWindows = 2,    // code page 0, the system code page (UTF-8)
};

class BASICUTILS_EXPORT MString {
  public:
    MString();
    // n == 0 copies all of s up to its terminator. Any other n makes a block
    // of n + 1 units that receives up to n units of s, zeros behind them.
    MString(const char16_t* s, int n = 0);
    MString(const MString& other);
    // An empty string in a block of n + 1 units, for the owner to fill
    // through operator char16_t*.
    explicit MString(unsigned int n);
    virtual ~MString();

    // Handing back this string's own buffer is a no-op, and null clears it.
    // A pointer into the middle of this string's block is not allowed.
    MString& operator=(const char16_t* s);
    MString& operator=(const MString& other);

    operator const char16_t*() const { return mBuffer; }
    operator char16_t*() { return mBuffer; }
    // Unit i, unchecked: the caller keeps i within the block.
    const char16_t& operator[](int i) const { return mBuffer[i]; }

    int GetLength() const;
    int getLength() const { return GetLength(); }
    void PrintToStdout() {}

    // 1 when the texts are equal without regard to case, else 0.
    int CaseCmp(const char16_t* s) const;
    int CaseCmp(const MString& s) const;

    // Appends; if no memory can be had the string stays as it was.
    MString& operator+=(const MString& s);
    MString& operator+=(const char16_t* s);
    friend BASICUTILS_EXPORT MString operator+(const MString& a, const MString& b);

    // Replaces the text. %d and %x take an int, %f a double, %s a
    // const char16_t*; a '%' before any other unit gives that unit. No flags,
    // widths or precisions.
    void Format(const char16_t* format, ...);
    void VFormat(const char16_t* format, va_list args);

    void StripNewline();
    // Keeps count units from start; answers how many were kept.
    int Cut(int start, int count);
    // left gets what stands before the first (fromStart) or last separator,
    // right what stands behind it. Without a separator the split point is
    // index 0. Answers 0. left and right may be this string.
    int32_t Split(char16_t separator, MString& left, MString& right, bool fromStart);
    bool RemoveTailChar(char16_t c);
    void RemoveTailSpace(bool all);
    void RemoveTailCR(bool all);  // line feeds (10); carriage returns stay
    void RemoveTailSpaceAndCR(bool all);
    bool RemoveHeadChar(char16_t c);
    void RemoveHeadSpace(bool all);
    void Change2Upper();
    void Change2Lower();
    void ChangeChar(char16_t from, char16_t to);

    // Replaces the text by the system-code-page text s; length -1 means s is
    // zero-terminated. A failed conversion leaves the empty string.
    void ImportASCII(const char* s, int32_t length);
    // Copies into size units: a text shorter than size - 1 is zero-filled up
    // to size and the answer is size; a longer one is cut to size - 1 units
    // without terminator and the answer is size - 1. The empty text writes
    // one zero unit and answers 0.
    int ExportUnicode(char16_t* destination, int size) const;
    // Converts the whole text into at most size bytes, or nothing when it
    // does not fit, and puts a zero byte behind: destination holds size + 1
    // bytes. Answers the number of bytes, 0 on failure.
    int ExportASCII(char* destination, int size,
                    character_set_type set = kCharacterSetWindows) const;
    // Remaps length bytes of text in place from the Windows 8-bit set toward
    // the Macintosh one. Bytes up to 128 stay.
    static void DoMapWindowsCharactersToASCII(char* text, int32_t length);

  protected:
    char16_t* mBuffer;

  private:
    // Takes over block, allocated with new[], without copying. The second
    // argument only selects this constructor; its own type keeps a caller's
    // non-const buffer from picking it instead of the copying one.
    enum TakeOver { kTakeOver };
    MString(char16_t* block, TakeOver);
    // Replaces the block by a new one of units + 1 units holding text.
    void Assign(const char16_t* text, size_t units);
};

// By code unit value, with case. Each answers 1 or 0.
BASICUTILS_EXPORT int operator==(const MString& a, const MString& b);
BASICUTILS_EXPORT int operator==(const char16_t* a, const MString& b);
BASICUTILS_EXPORT int operator==(const MString& a, const char16_t* b);
BASICUTILS_EXPORT int operator!=(const MString& a, const MString& b);
BASICUTILS_EXPORT int operator!=(const char16_t* a, const MString& b);
BASICUTILS_EXPORT int operator!=(const MString& a, const char16_t* b);
BASICUTILS_EXPORT int operator>(const MString& a, const MString& b);
BASICUTILS_EXPORT int operator>(const char16_t* a, const MString& b);
BASICUTILS_EXPORT int operator>(const MString& a, const char16_t* b);
BASICUTILS_EXPORT int operator<(const MString& a, const MString& b);
BASICUTILS_EXPORT int operator<(const char16_t* a, const MString& b);
BASICUTILS_EXPORT int operator<(const MString& a, const char16_t* b);

}  // namespace basicutils
