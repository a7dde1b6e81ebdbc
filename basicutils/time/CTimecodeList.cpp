#include <basicutils/time/CTimecodeList.h>

namespace basicutils {

namespace {

// Same digits, counted at 25.0: the rate first, so the frame is validated
// against it.
void RelabelPAL(CTimecode& t) {
    uint16_t h, m, s, f;
    t.GetTime(h, m, s, f);
    t.SetTime(h, m, s, f, 25.0);
}

}  // namespace

void CTimecodeList::Change2PAL() {
    for (CTimecode* t = GetHead(); t; t = GetNext()) RelabelPAL(*t);
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
