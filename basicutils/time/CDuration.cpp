#include <basicutils/time/CDuration.h>
#include <basicutils/time/internal/StoreIfChanged.h>

namespace basicutils {

namespace {
// 00:00:00:01: adding it to a label adds one frame, subtracting takes one.
CTimecode OneFrame(frame_type_t type) {
    return CTimecode(0, 0, 0, 1, type);
}
}  // namespace

CDuration::CDuration() : mResolution(kResolutionNTSC), mDropType(kNonDrop) {}

bool CDuration::SetResolution(resolution_t resolution) {
    return detail::StoreIfChanged(*this, mResolution, ValidateResolution(resolution), mResolution,
                                  &CDuration::TrickleDownResolutionChange,
                                  kNotifyResolutionChanged);
}

bool CDuration::SetDropType(drop_nondrop_t dropType) {
    return detail::StoreIfChanged(*this, mDropType, ValidateDropType(dropType), mDropType,
                                  &CDuration::TrickleDownDropTypeChange, kNotifyDropTypeChanged);
}

bool CDuration::SetStartTime(const CTimecode& start) {
    CTimecode argument(start);
    return detail::StoreIfChanged(*this, mStartTime, ValidateStartTime(argument), mStartTime,
                                  &CDuration::TrickleDownStartTimeChange, kNotifyStartTimeChanged);
}

bool CDuration::SetDuration(const CTimecode& duration) {
    CTimecode argument(duration);
    return detail::StoreIfChanged(*this, mDuration, ValidateDuration(argument), mDuration,
                                  &CDuration::TrickleDownDurationChange, kNotifyDurationChanged);
}

bool CDuration::SetEndTime(const CTimecode& end) {
    frame_type_t type = end.GetFrameType();
    mStartTime.SetFrameType(type);
    return SetDuration(end - mStartTime + OneFrame(type));
}

bool CDuration::SetStartTimeUI(const CTimecode& start) {
    return SetStartTime(start);
}

bool CDuration::SetEndTimeUI(const CTimecode& end) {
    if (mDropType != kDrop) return SetEndTime(end);
    CTimecode plain(end);
    plain.Drop2Nondrop(mStartTime);
    return SetEndTime(plain);
}

bool CDuration::SetDurationUI(const CTimecode& duration) {
    if (mDropType != kDrop) return SetDuration(duration);
    return SetEndTimeUI(GetStartTimeUI() + duration - OneFrame(mStartTime.GetFrameType()));
}

CTimecode CDuration::ValidateStartTime(CTimecode& start) {
    return start;
}

CTimecode CDuration::ValidateDuration(CTimecode& duration) {
    if (duration.GetTotalFrame() < 1) duration.SetTotalFrame(1, kFrameTypeKeep);
    return duration;
}

void CDuration::TrickleDownResolutionChange() {
    frame_type_t type = mResolution == kResolutionNTSC ? kFrameType30 : kFrameType25;
    mStartTime.SetFrameType(type);
    mDuration.SetFrameType(type);
}

CTimecode CDuration::GetEndTime() const {
    return mStartTime + mDuration - OneFrame(mStartTime.GetFrameType());
}

CTimecode CDuration::GetEndTimeUI() const {
    if (mDropType != kDrop) return GetEndTime();
    CTimecode label;
    GetEndTime().Nondrop2Drop(mStartTime, &label);
    return label;
}

CTimecode CDuration::GetDurationUI() const {
    if (mDropType != kDrop) return GetDuration();
    return GetEndTimeUI() + OneFrame(mStartTime.GetFrameType()) - GetStartTimeUI();
}

bool CDuration::operator==(const CDuration& other) const {
    return mResolution == other.mResolution && mDropType == other.mDropType &&
           mStartTime == other.mStartTime && mDuration == other.mDuration;
}

bool CDuration::GetOverlapDuration(const CDuration& other, CDuration* result) const {
    CTimecode a = GetStartTime(), b = GetEndTime();
    CTimecode c = other.GetStartTime(), d = other.GetEndTime();
    const CTimecode* from;
    const CTimecode* to;
    if (a <= c && c <= b) {  // the other starts inside this stretch
        from = &c;
        to = d < b ? &d : &b;
    } else if (a <= d && d <= b) {  // it ends inside
        from = &a;
        to = &d;
    } else if (c <= a && b <= d) {  // it encloses this stretch
        from = &a;
        to = &b;
    } else {
        return false;
    }
    if (result) {
        result->SetStartTime(*from);
        result->SetEndTime(*to);
    }
    return true;
}

bool CDuration::IsInclude(const CTimecode& t) const {
    if (GetStartTime() > t) return false;
    if (GetEndTime() < t) return false;
    return true;
}

bool CDuration::SetFrameType(frame_type_t type) {
    if (type == kFrameType30) return SetResolution(kResolutionNTSC);
    if (type == kFrameType25) return SetResolution(kResolutionPAL);
    return false;
}

frame_type_t CDuration::GetFrameType() const {
    return mResolution == kResolutionNTSC ? kFrameType30 : kFrameType25;
}

bool CDuration::IsNil() const {
    return mStartTime.GetTotalFrame() == 1 && mDuration.GetTotalFrame() == 1;
}

}  // namespace basicutils
