#include <basicutils/time/CTimecode.h>
#include <basicutils/time/internal/StoreIfChanged.h>

#include <cmath>
#include <limits>
#include <typeinfo>

namespace basicutils {

namespace {

constexpr double kOneSixtieth = 1.0 / 60.0;

// Double to 32 bits the way the counts keep them: truncate toward zero, keep
// the low 32 bits. Values beyond the 64-bit range (never reached by any
// timecode) saturate first so the conversion is defined.
int32_t TruncateLow32(double value) {
    if (!(value == value)) return 0;
    constexpr double kLimit = 9.2e18;
    if (value > kLimit) value = kLimit;
    if (value < -kLimit) value = -kLimit;
    return static_cast<int32_t>(static_cast<uint32_t>(static_cast<int64_t>(value)));
}

// 32-bit wrapping arithmetic without signed overflow.
int32_t Wrap(int64_t value) {
    return static_cast<int32_t>(static_cast<uint32_t>(value));
}

uint16_t FrameLimit(frame_type_t type) {
    switch (type) {
        case kFrameType24:
            return 24;
        case kFrameType25:
            return 25;
        default:
            return 30;
    }
}

uint16_t ValidMinuteOrSecond(uint16_t value) {
    return value < 60 ? value : 59;
}

uint16_t ValidFrame(uint16_t frame, double rate) {
    if (frame < rate) return frame;
    return static_cast<uint16_t>(static_cast<int32_t>(rate - 1.0));
}

// A fresh result at the left operand's rate and frame type, set from a count.
CTimecode FromCount(const CTimecode& left, int32_t count) {
    CTimecode result;
    result.SetFrameRate(left.GetFrameRate());
    frame_type_t type = left.GetFrameType();
    result.SetTotalFrame(count, type);
    return result;
}

}  // namespace

CTimecode::CTimecode() : mFrameRate(30.0), mHour(0), mMinute(0), mSecond(0), mFrame(0) {}

CTimecode::CTimecode(const CTimecode& other)
    : LBroadcaster(other),
      LNotifier(other),
      mFrameRate(30.0),
      mHour(0),
      mMinute(0),
      mSecond(0),
      mFrame(0) {
    *this = other;
}

CTimecode::CTimecode(double packed) : CTimecode() {
    *this = packed;
}

CTimecode::CTimecode(uint16_t hour, uint16_t minute, uint16_t second, uint16_t frame, double rate)
    : CTimecode() {
    SetTime(hour, minute, second, frame, rate);
}

CTimecode::CTimecode(uint16_t hour, uint16_t minute, uint16_t second, uint16_t frame,
                     frame_type_t type)
    : CTimecode() {
    SetFrameType(type);
    SetHour(hour);
    SetMinute(minute);
    SetSecond(second);
    SetFrame(frame);
}

CTimecode::~CTimecode() = default;

bool CTimecode::StoreIfChanged(uint16_t& field, uint16_t value) {
    if (field == value) return false;
    field = value;
    if (mListeners != nullptr) Notify(kNotifyTimecodeChanged, 0, 0);  // else it reaches nobody
    return true;
}

bool CTimecode::SetHour(uint16_t hour) {
    uint16_t value = ValidateHour(hour);
    return detail::StoreIfChanged(*this, mHour, value, GetHour(), &CTimecode::TrickleDownHourChange,
                                  kNotifyTimecodeChanged);
}

bool CTimecode::SetMinute(uint16_t minute) {
    uint16_t value = ValidateMinute(minute);
    return detail::StoreIfChanged(*this, mMinute, value, GetMinute(),
                                  &CTimecode::TrickleDownMinuteChange, kNotifyTimecodeChanged);
}

bool CTimecode::SetSecond(uint16_t second) {
    uint16_t value = ValidateSecond(second);
    return detail::StoreIfChanged(*this, mSecond, value, GetSecond(),
                                  &CTimecode::TrickleDownSecondChange, kNotifyTimecodeChanged);
}

bool CTimecode::SetFrame(uint16_t frame) {
    uint16_t value = ValidateFrame(frame);
    return detail::StoreIfChanged(*this, mFrame, value, GetFrame(),
                                  &CTimecode::TrickleDownFrameChange, kNotifyTimecodeChanged);
}

bool CTimecode::SetFrameRate(double rate) {
    double value = ValidateFrameRate(rate);
    return detail::StoreIfChanged(*this, mFrameRate, value, GetFrameRate(),
                                  &CTimecode::TrickleDownFrameRateChange, kNotifyTimecodeChanged);
}

uint16_t CTimecode::ValidateHour(uint16_t hour) {
    return hour;
}

uint16_t CTimecode::ValidateMinute(uint16_t minute) {
    return ValidMinuteOrSecond(minute);
}

uint16_t CTimecode::ValidateSecond(uint16_t second) {
    return ValidMinuteOrSecond(second);
}

uint16_t CTimecode::ValidateFrame(uint16_t frame) {
    return ValidFrame(frame, GetFrameRate());
}

double CTimecode::ValidateFrameRate(double rate) {
    if (std::isnan(rate) || rate < 24.0) return 24.0;
    if (rate > 1200.0) return 1200.0;
    return rate;
}

void CTimecode::GetTime(uint16_t& hour, uint16_t& minute, uint16_t& second, uint16_t& frame) const {
    hour = GetHour();
    minute = GetMinute();
    second = GetSecond();
    frame = GetFrame();
}

bool CTimecode::SetTime(uint16_t hour, uint16_t minute, uint16_t second, uint16_t frame) {
    if (typeid(*this) == typeid(CTimecode)) {
        // Nothing is overridden: the four setters' protocol without the
        // virtual calls (the validators here, the hooks empty).
        bool changed = StoreIfChanged(mHour, hour);
        changed = StoreIfChanged(mMinute, ValidMinuteOrSecond(minute)) || changed;
        changed = StoreIfChanged(mSecond, ValidMinuteOrSecond(second)) || changed;
        return StoreIfChanged(mFrame, ValidFrame(frame, mFrameRate)) || changed;
    }
    bool changed = SetHour(hour);
    changed = SetMinute(minute) || changed;
    changed = SetSecond(second) || changed;
    changed = SetFrame(frame) || changed;
    return changed;
}

bool CTimecode::SetTime(uint16_t hour, uint16_t minute, uint16_t second, uint16_t frame,
                        double rate) {
    bool changed = SetFrameRate(rate);
    return SetTime(hour, minute, second, frame) || changed;
}

bool CTimecode::SetTime(uint16_t hour, uint16_t minute, uint16_t second, uint16_t frame,
                        frame_type_t type) {
    bool changed = SetFrameType(type);
    return SetTime(hour, minute, second, frame) || changed;
}

bool CTimecode::SetFrameType(frame_type_t type) {
    switch (type) {
        case kFrameType24:
            return SetFrameRate(24.0);
        case kFrameType25:
            return SetFrameRate(25.0);
        default:
            return SetFrameRate(30.0);
    }
}

frame_type_t CTimecode::GetFrameType() const {
    double rate = GetFrameRate();
    if (rate == 24.0) return kFrameType24;
    if (rate == 25.0) return kFrameType25;
    return kFrameType30;
}

void CTimecode::SetTotalFrame(int32_t total, frame_type_t type) {
    if (total < 1) total = 1;
    int32_t count = total - 1;
    if (type != kFrameTypeKeep) SetFrameType(type);
    double rate = GetFrameRate();
    auto seconds = static_cast<int32_t>(count / rate);
    auto frame = static_cast<int32_t>(count - rate * seconds);
    auto totalMinutes = static_cast<uint16_t>(seconds / 60);
    auto second = static_cast<uint16_t>(seconds % 60);
    SetTime(static_cast<uint16_t>(totalMinutes / 60), static_cast<uint16_t>(totalMinutes % 60),
            second, static_cast<uint16_t>(frame));
}

int32_t CTimecode::GetTotalFrame() const {
    int64_t seconds = int64_t{GetHour()} * 3600 + int64_t{GetMinute()} * 60 + GetSecond();
    double frames = GetFrameRate() * static_cast<double>(seconds) + GetFrame();
    return Wrap(int64_t{TruncateLow32(frames)} + 1);
}

double CTimecode::GetTotalSecond() const {
    return GetTotalFrame() / GetFrameRate();
}

double CTimecode::GetTotalMinute() const {
    return GetTotalSecond() * kOneSixtieth;
}

CTimecode::operator uint32_t() const {
    double ms = (GetTotalFrame() - 1.0) / mFrameRate * 1000.0;
    return static_cast<uint32_t>(TruncateLow32(ms));
}

CTimecode::operator double() const {
    return GetTotalFrame() * 10000.0 + GetFrameRate() * 100.0;
}

CTimecode& CTimecode::operator=(double packed) {
    int64_t t = 0;
    if (packed >= 9.2e18) {
        t = std::numeric_limits<int64_t>::max();
    } else if (packed <= -9.2e18) {
        t = std::numeric_limits<int64_t>::min();
    } else if (!std::isnan(packed)) {
        t = static_cast<int64_t>(packed);
    }
    SetFrameRate(static_cast<double>(t % 10000) * 0.01);
    SetTotalFrame(Wrap(t / 10000), GetFrameType());
    return *this;
}

bool CTimecode::IsZero() const {
    return mHour == 0 && mMinute == 0 && mSecond == 0 && mFrame == 0;
}

void CTimecode::IncreaseFrame(int32_t n) {
    mFrame = static_cast<uint16_t>(mFrame + static_cast<uint16_t>(n));
    if (mFrame == FrameLimit(GetFrameType())) {
        ++mSecond;
        mFrame = 0;
    }
    if (mSecond == 60) {
        ++mMinute;
        mSecond = 0;
    }
    if (mMinute == 60) {
        ++mHour;
        mMinute = 0;
    }
}

void CTimecode::DecreaseFrame() {
    if (mFrame != 0) {
        --mFrame;
        return;
    }
    if (mSecond != 0) {
        --mSecond;
    } else {
        mSecond = 59;
        if (mMinute != 0) {
            --mMinute;
        } else {
            --mHour;
            mMinute = 59;
        }
    }
    mFrame = static_cast<uint16_t>(FrameLimit(GetFrameType()) - 1);
}

bool CTimecode::operator==(const CTimecode& other) const {
    return mHour == other.mHour && mMinute == other.mMinute && mSecond == other.mSecond &&
           mFrame == other.mFrame && mFrameRate == other.mFrameRate;
}

CTimecode& CTimecode::operator=(const CTimecode& other) {
    if (*this != other) {
        mFrameRate = other.mFrameRate;
        mHour = other.mHour;
        mMinute = other.mMinute;
        mSecond = other.mSecond;
        mFrame = other.mFrame;
        Notify(kNotifyTimecodeChanged, 0, 0);
    }
    return *this;
}

bool operator<(const CTimecode& a, const CTimecode& b) {
    return a.GetTotalFrame() < b.GetTotalFrame();
}
bool operator>(const CTimecode& a, const CTimecode& b) {
    return a.GetTotalFrame() > b.GetTotalFrame();
}
bool operator<=(const CTimecode& a, const CTimecode& b) {
    return a.GetTotalFrame() <= b.GetTotalFrame();
}
bool operator>=(const CTimecode& a, const CTimecode& b) {
    return a.GetTotalFrame() >= b.GetTotalFrame();
}

CTimecode operator+(const CTimecode& a, const CTimecode& b) {
    return FromCount(a, Wrap(int64_t{a.GetTotalFrame()} + b.GetTotalFrame() - 1));
}

CTimecode operator+(const CTimecode& a, int32_t frames) {
    return FromCount(a, Wrap(int64_t{a.GetTotalFrame()} + frames));
}

CTimecode operator-(const CTimecode& a, const CTimecode& b) {
    return FromCount(a, Wrap(1 - int64_t{b.GetTotalFrame()} + a.GetTotalFrame()));
}

CTimecode operator-(const CTimecode& a, int32_t frames) {
    return FromCount(a, Wrap(int64_t{a.GetTotalFrame()} - frames));
}

}  // namespace basicutils
