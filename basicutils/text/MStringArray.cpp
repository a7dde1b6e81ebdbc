#include <basicutils/text/MStringArray.h>
#include <basicutils/text/MStringList.h>

namespace basicutils {

MStringArray::MStringArray() : mStrings(nullptr), mCount(0) {}

MStringArray::MStringArray(int n) : MStringArray() {
    SetSize(n);
}

MStringArray::MStringArray(const MStringArray& other) : MStringArray() {
    *this = other;
}

MStringArray::~MStringArray() {
    RemoveAll();
}

void MStringArray::RemoveAll() {
    delete[] mStrings;
    mStrings = nullptr;
    mCount = 0;
}

void MStringArray::SetSize(int n) {
    RemoveAll();
    if (n <= 0) return;
    mStrings = new MString[n];
    mCount = n;
}

void MStringArray::SetAt(int i, const MString& s) {
    if (InRange(i)) mStrings[i] = s;
}

void MStringArray::SetAt(int i, const char16_t* s) {
    if (InRange(i)) mStrings[i] = s;
}

MString* MStringArray::GetAt(int i) const {
    return InRange(i) ? &mStrings[i] : nullptr;
}

const char16_t* MStringArray::GetAtConst(int i) const {
    return InRange(i) ? static_cast<const char16_t*>(mStrings[i]) : nullptr;
}

MStringArray& MStringArray::operator=(const MStringArray& other) {
    if (this == &other) return *this;
    SetSize(other.mCount);
    for (int i = 0; i < mCount; ++i) SetAt(i, other.mStrings[i]);
    return *this;
}

MStringArray& MStringArray::operator=(MStringList& list) {
    SetSize(list.GetSize());
    int i = 0;
    for (MString* s = list.GetHead(); s; s = list.GetNext()) SetAt(i++, *s);
    return *this;
}

void MStringArray::Rebuild(int at, int delta, const char16_t* text) {
    int count = mCount + delta;
    MString* block = count > 0 ? new MString[count] : nullptr;
    int to = 0;
    for (int from = 0; from <= mCount; ++from) {
        if (from == at && delta > 0) block[to++] = text;
        if (from == mCount) break;
        if (from == at && delta < 0) continue;
        block[to++] = mStrings[from];
    }
    delete[] mStrings;
    mStrings = block;
    mCount = count;
}

void MStringArray::InsertBefore(int i, const char16_t* s) {
    if (i >= 0 && i <= mCount) Rebuild(i, 1, s);
}

void MStringArray::InsertAfter(int i, const char16_t* s) {
    if (InRange(i)) Rebuild(i + 1, 1, s);
}

void MStringArray::DeleteAt(int i) {
    if (InRange(i)) Rebuild(i, -1, nullptr);
}

void MStringArray::Swap(int i, int j) {
    if (!InRange(i) || !InRange(j)) return;
    MString a(mStrings[i]), b(mStrings[j]);
    mStrings[i] = b;
    mStrings[j] = a;
}

void MStringArray::Change(int to, int from) {
    if (!InRange(to) || !InRange(from)) return;
    MString moving(mStrings[from]);
    if (to > from) {
        for (int i = from; i < to; ++i) mStrings[i] = mStrings[i + 1];
    } else {
        for (int i = from; i > to; --i) mStrings[i] = mStrings[i - 1];
    }
    mStrings[to] = moving;
}

}  // namespace basicutils
