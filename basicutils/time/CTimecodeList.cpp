#include <basicutils/time/CTimecodeList.h>

namespace basicutils {

namespace {

template <class T>
void DeleteAllOf(CVoidList* list) {
    while (T* element = static_cast<T*>(list->GetHead())) {
        delete element;
        list->DeleteList();
    }
}

template <class T>
void CopyAllOf(CVoidList* from, CVoidList* to) {
    DeleteAllOf<T>(to);
    for (void* element = from->GetHead(); element; element = from->GetNext())
        to->AddList(new T(*static_cast<T*>(element)));
}

// Same digits, counted at 25.0: the rate first, so the frame is validated
// against it.
void RelabelPAL(CTimecode& t) {
    uint16_t h, m, s, f;
    t.GetTime(h, m, s, f);
    t.SetTime(h, m, s, f, 25.0);
}

}  // namespace

CTimecodeList::CTimecodeList() : mList(new CVoidList) {}

CTimecodeList::~CTimecodeList() {
    DeleteAll();
    delete mList;
}

CTimecodeList& CTimecodeList::operator=(CTimecodeList& other) {
    if (this != &other) CopyAllOf<CTimecode>(other.mList, mList);
    return *this;
}

void CTimecodeList::Add(const CTimecode& value) {
    mList->AddList(new CTimecode(value));
}

void CTimecodeList::DeleteAll() {
    DeleteAllOf<CTimecode>(mList);
}

void CTimecodeList::Change2PAL() {
    for (CTimecode* t = GetHead(); t; t = GetNext()) RelabelPAL(*t);
}

CDurationList::CDurationList() : mList(new CVoidList) {}

CDurationList::~CDurationList() {
    DeleteAll();
    delete mList;
}

CDurationList& CDurationList::operator=(CDurationList& other) {
    if (this != &other) CopyAllOf<CDuration>(other.mList, mList);
    return *this;
}

void CDurationList::Add(const CDuration& value) {
    mList->AddList(new CDuration(value));
}

void CDurationList::DeleteAll() {
    DeleteAllOf<CDuration>(mList);
}

void CDurationList::Change2PAL() {
    for (CDuration* d = GetHead(); d; d = GetNext()) {
        CTimecode start = d->GetStartTime();
        CTimecode length = d->GetDuration();
        RelabelPAL(start);
        RelabelPAL(length);
        d->SetFrameType(kFrameType25);
        d->SetStartTime(start);
        d->SetDuration(length);
    }
}

}  // namespace basicutils
