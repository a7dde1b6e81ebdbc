// CString: the application framework's string, on 16-bit text.
//
// A value: copying copies the text. Positions are 0-based int, lengths count
// 16-bit units, and bad counts are clamped as the framework does (Left(-1)
// and Mid(99) of a short text give the empty text, Left(99) the whole text)
// rather than refused. The text is always zero-terminated; a null pointer
// given as text is the empty text. Comparison is unit by unit, unsigned.
//
// GetBuffer(n) hands out room for n units and the terminator to write into;
// ReleaseBuffer() then takes the length up to the first zero unit (or the
// given length). Nothing else may be called in between.
#pragma once

#include <basicutils/Export.h>

#include <string>

namespace basicutils {

class BASICUTILS_EXPORT CString {
  public:
    CString() = default;
    CString(const char16_t* text);  // NOLINT: converts as the framework's does
    CString(const char16_t* text, int length);
    CString(char16_t unit, int repeat = 1);
    CString(const CString&) = default;
    CString(CString&&) noexcept = default;
    CString& operator=(const CString&) = default;
    CString& operator=(CString&&) noexcept = default;
    CString& operator=(const char16_t* text);
    CString& operator=(char16_t unit);

    int GetLength() const { return static_cast<int>(mText.size()); }
    bool IsEmpty() const { return mText.empty(); }
    void Empty() { mText.clear(); }

    // The unit at `index`, which must lie within the text (asserted).
    char16_t GetAt(int index) const;
    char16_t operator[](int index) const { return GetAt(index); }
    void SetAt(int index, char16_t unit);

    operator const char16_t*() const { return mText.c_str(); }  // NOLINT
    const char16_t* GetString() const { return mText.c_str(); }

    // The position of the first unit or text at or after `start`, or -1.
    int Find(char16_t unit, int start = 0) const;
    int Find(const char16_t* text, int start = 0) const;
    // The position of the last `unit`, or -1.
    int ReverseFind(char16_t unit) const;

    CString Left(int count) const;
    CString Right(int count) const;
    CString Mid(int first) const;
    CString Mid(int first, int count) const;

    CString& operator+=(const CString& text);
    CString& operator+=(const char16_t* text);
    CString& operator+=(char16_t unit);

    // <0, 0, >0 as this text sorts before, with or after `text`.
    int Compare(const char16_t* text) const;

    char16_t* GetBuffer(int minLength);
    void ReleaseBuffer(int newLength = -1);

  private:
    std::u16string mText;
};

BASICUTILS_EXPORT CString operator+(const CString& a, const CString& b);
BASICUTILS_EXPORT CString operator+(const CString& a, const char16_t* b);
BASICUTILS_EXPORT CString operator+(const char16_t* a, const CString& b);
BASICUTILS_EXPORT CString operator+(const CString& a, char16_t b);

// Comparisons of two strings, or of a string and a text, either side.
#define BASICUTILS_CSTRING_COMPARE(op)                             \
    inline bool operator op(const CString& a, const CString& b) {  \
        return a.Compare(b) op 0;                                  \
    }                                                              \
    inline bool operator op(const CString& a, const char16_t* b) { \
        return a.Compare(b) op 0;                                  \
    }                                                              \
    inline bool operator op(const char16_t* a, const CString& b) { \
        return 0 op b.Compare(a);                                  \
    }
BASICUTILS_CSTRING_COMPARE(==)
BASICUTILS_CSTRING_COMPARE(!=)
BASICUTILS_CSTRING_COMPARE(<)
BASICUTILS_CSTRING_COMPARE(>)
BASICUTILS_CSTRING_COMPARE(<=)
BASICUTILS_CSTRING_COMPARE(>=)
#undef BASICUTILS_CSTRING_COMPARE

}  // namespace basicutils
