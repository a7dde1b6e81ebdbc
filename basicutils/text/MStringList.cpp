#include <basicutils/text/MStringList.h>

#include <cstdarg>

namespace basicutils {

MStringList::MStringList() : mList(new CVoidList) {}

MStringList::~MStringList() {
    DeleteAll();
    delete mList;
}

void MStringList::Add(const char16_t* s) {
    mList->AddList(new MString(s));
}

void MStringList::AddFormat(const char16_t* format, ...) {
    MString text;
    va_list args;
    va_start(args, format);
    text.VFormat(format, args);
    va_end(args);
    Add(text);
}

void MStringList::AddList(MStringList* other) {
    if (!other || other == this) return;
    for (MString* s = other->GetHead(); s; s = other->GetNext()) Add(*s);
}

void MStringList::AddArray(const MStringArray& array) {
    for (int i = 0; i < array.GetSize(); ++i) Add(array.GetAtConst(i));
}

void MStringList::DeleteAll() {
    while (MString* s = GetHead()) {
        mList->DeleteList();
        delete s;
    }
}

void MStringList::DeleteAt(int i) {
    if (i < 0 || i >= GetSize()) return;
    MString* s = GetAt(i);
    mList->DeleteList();
    delete s;
}

MString* MStringList::GetAt(int i) const {
    MString* s = GetHead();
    for (int k = 0; s && k != i; ++k) s = GetNext();
    return s;
}

MStringList& MStringList::operator=(MStringList& other) {
    if (this == &other) return *this;
    DeleteAll();
    AddList(&other);
    return *this;
}

MStringList& MStringList::operator=(const MStringArray& array) {
    DeleteAll();
    AddArray(array);
    return *this;
}

}  // namespace basicutils
