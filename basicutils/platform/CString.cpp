// CString: the framework's string on 16-bit text.
#include <basicutils/platform/CString.h>

#include <cassert>

namespace basicutils {

namespace {
// A count held between 0 and `limit`.
int Clamp(int value, int limit) {
    return value < 0 ? 0 : value > limit ? limit : value;
}
}  // namespace

CString::CString(const char16_t* text) {
    if (text) mText = text;
}

CString::CString(const char16_t* text, int length) {
    if (text && length > 0) mText.assign(text, static_cast<size_t>(length));
}

CString::CString(char16_t unit, int repeat) {
    if (repeat > 0) mText.assign(static_cast<size_t>(repeat), unit);
}

CString& CString::operator=(const char16_t* text) {
    if (text)
        mText = text;  // the standard assign copes with text inside mText
    else
        mText.clear();
    return *this;
}

CString& CString::operator=(char16_t unit) {
    mText.assign(1, unit);
    return *this;
}

char16_t CString::GetAt(int index) const {
    assert(index >= 0 && index < GetLength());
    return mText[static_cast<size_t>(index)];
}

void CString::SetAt(int index, char16_t unit) {
    assert(index >= 0 && index < GetLength());
    mText[static_cast<size_t>(index)] = unit;
}

int CString::Find(char16_t unit, int start) const {
    if (start < 0 || start >= GetLength()) return -1;
    const size_t at = mText.find(unit, static_cast<size_t>(start));
    return at == std::u16string::npos ? -1 : static_cast<int>(at);
}

int CString::Find(const char16_t* text, int start) const {
    if (!text || start < 0 || start > GetLength()) return -1;
    const size_t at = mText.find(text, static_cast<size_t>(start));
    return at == std::u16string::npos ? -1 : static_cast<int>(at);
}

int CString::ReverseFind(char16_t unit) const {
    const size_t at = mText.rfind(unit);
    return at == std::u16string::npos ? -1 : static_cast<int>(at);
}

CString CString::Left(int count) const {
    return CString(mText.c_str(), Clamp(count, GetLength()));
}

CString CString::Right(int count) const {
    const int n = Clamp(count, GetLength());
    return CString(mText.c_str() + (GetLength() - n), n);
}

CString CString::Mid(int first) const {
    return Mid(first, GetLength());
}

CString CString::Mid(int first, int count) const {
    const int start = Clamp(first, GetLength());
    return CString(mText.c_str() + start, Clamp(count, GetLength() - start));
}

CString& CString::operator+=(const CString& text) {
    mText += text.mText;
    return *this;
}

CString& CString::operator+=(const char16_t* text) {
    if (text) mText += text;
    return *this;
}

CString& CString::operator+=(char16_t unit) {
    mText.push_back(unit);
    return *this;
}

int CString::Compare(const char16_t* text) const {
    return mText.compare(text ? text : u"");
}

char16_t* CString::GetBuffer(int minLength) {
    if (minLength > GetLength()) mText.resize(static_cast<size_t>(minLength));
    return mText.data();
}

void CString::ReleaseBuffer(int newLength) {
    if (newLength < 0)
        newLength = static_cast<int>(std::char_traits<char16_t>::length(mText.c_str()));
    mText.resize(static_cast<size_t>(Clamp(newLength, GetLength())));
}

CString operator+(const CString& a, const CString& b) {
    CString result(a);
    return result += b;
}

CString operator+(const CString& a, const char16_t* b) {
    CString result(a);
    return result += b;
}

CString operator+(const char16_t* a, const CString& b) {
    CString result(a);
    return result += b;
}

CString operator+(const CString& a, char16_t b) {
    CString result(a);
    return result += b;
}

}  // namespace basicutils
