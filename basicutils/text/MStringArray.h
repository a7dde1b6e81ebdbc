// MStringArray: an indexed array of MString, counted from 0, for short lists
// of names. The block always holds exactly GetSize() strings; every change
// of size builds a new block and copies each string into it.
//
// An index outside 0..size-1 (0..size for InsertBefore, where size appends)
// does nothing, and GetAt/GetAtConst answer null there. SetSize drops the
// old content, also when growing. SortByName does nothing.
//
// Choice of this implementation: SetSize or the constructor with a negative
// count gives an empty array.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/text/MString.h>

namespace basicutils {

class MStringList;

class BASICUTILS_EXPORT MStringArray {
  public:
    MStringArray();
    explicit MStringArray(int n);
    MStringArray(const MStringArray& other);
    ~MStringArray();

    int GetSize() const { return mCount; }
    void SetSize(int n);
    void RemoveAll();

    void SetAt(int i, const MString& s);
    void SetAt(int i, const char16_t* s);
    MString* GetAt(int i) const;
    const char16_t* GetAtConst(int i) const;

    MStringArray& operator=(const MStringArray& other);
    // Reads the list from its head, which moves the list's cursor.
    MStringArray& operator=(MStringList& list);

    void InsertBefore(int i, const char16_t* s);
    void InsertAfter(int i, const char16_t* s);
    void Swap(int i, int j);
    // Moves the string at index `from` to index `to`, shifting the strings
    // in between by one toward `from`.
    void Change(int to, int from);
    void DeleteAt(int i);
    void SortByName() {}

  protected:
    MString* mStrings;  // new[]; null while the array has no block
    int mCount;

  private:
    bool InRange(int i) const { return i >= 0 && i < mCount; }
    // A new block of mCount + delta strings: the old ones in order, with
    // `text` inserted at `at` (delta 1) or the string at `at` left out
    // (delta -1).
    void Rebuild(int at, int delta, const char16_t* text);
};

}  // namespace basicutils
