// Conversion between plain (non-drop) counts and NTSC drop-frame labels.
//
// A drop-frame count leaves out the labels 00 and 01 at the head of every
// minute except each tenth one. Here the left-out labels are counted from the
// minute of a start timecode rather than from zero, so a stretch that starts
// at 01:05:30:00 drops its first labels at 01:06. Counts are the 1-based
// ones of GetTotalFrame, so within a minute of 1800 frames a remainder of 1
// or 2 is one of the two labels that a dropping minute leaves out.
//
// Nondrop2Drop makes a first estimate from the dropping minutes before the
// plain time, then measures through Drop2Nondrop how many frames that label
// really drops and applies exactly that; no further correction follows. With
// a start of 00:00:00:00 this agrees with the standard numbering up to
// 16:40:59:27 plain; beyond it, some frames just before a minute change land
// on a left-out label.
//
// Every step is a timecode at 30 frames a second: a difference of two
// timecodes, a count, a timecode set from a count. At that rate the counts
// are whole numbers, so the steps are done here on the four counters
// directly, with what the timecode operations would do kept exactly: counts
// of 32 bits, counts below 1 held at 1, the total minutes of a count held in
// 16 bits, minutes validated to 59. The source is read as the timecode
// operations read it (its fields, and its virtual GetTotalFrame and
// GetMinute), and the result is assigned once, as operator= does.
#include <basicutils/time/CTimecode.h>

#include <cstdint>

namespace basicutils {

namespace {

constexpr int32_t kFramesPerMinute = 1800;

// The four counters of a timecode at 30 frames a second.
struct Label {
    uint16_t hour, minute, second, frame;
};

// Counts keep 32 bits, as GetTotalFrame does.
int32_t Low32(int64_t value) {
    return static_cast<int32_t>(static_cast<uint32_t>(value));
}

// GetTotalFrame at 30.0.
int32_t CountOf(const Label& l) {
    const int64_t seconds = int64_t{l.hour} * 3600 + int64_t{l.minute} * 60 + l.second;
    return Low32(30 * seconds + l.frame + 1);
}

// SetTotalFrame(total, kFrameType30).
Label LabelOf(int32_t total) {
    if (total < 1) total = 1;
    const int32_t n = total - 1;
    const int32_t seconds = n / 30;
    const auto minutes = static_cast<uint16_t>(seconds / 60);
    return {static_cast<uint16_t>(minutes / 60), static_cast<uint16_t>(minutes % 60),
            static_cast<uint16_t>(seconds % 60), static_cast<uint16_t>(n % 30)};
}

// A timecode made with a minute through SetMinute.
uint16_t ValidMinute(int32_t minute) {
    const auto m = static_cast<uint16_t>(minute);
    return m < 60 ? m : 59;
}

// The dropping minutes between the minute of `start` and `x`: every whole
// minute passed since start's minute, minus the multiples of ten passed
// since start's ten-minute block began. Each stretch is x less a mark, at
// 30.0, stopping at 00:00:00:00.
int32_t DroppedMinutes(const Label& x, const Label& start) {
    const Label minuteMark{start.hour, ValidMinute(start.minute), 0, 0};
    const Label tenMark{start.hour, ValidMinute(start.minute / 10 * 10), 0, 0};
    const int64_t at = CountOf(x);
    const Label sinceMinute = LabelOf(Low32(1 - int64_t{CountOf(minuteMark)} + at));
    const Label sinceTen = LabelOf(Low32(1 - int64_t{CountOf(tenMark)} + at));
    return 6 * (10 * sinceMinute.hour - sinceTen.hour) - sinceTen.minute / 10 + sinceMinute.minute;
}

// Moves a left-out label (frame 00 or 01 of a dropping minute) to frame 02.
int64_t SkipLeftOutLabel(int64_t total, uint16_t minute) {
    if (minute % 10 == 0) return total;
    int64_t remainder = total % kFramesPerMinute;
    if (remainder == 1 || remainder == 2) total += 3 - remainder;
    return total;
}

// Drop2Nondrop of a plain timecode at 30.0.
Label PlainOf(const Label& label, const Label& start) {
    const int32_t dropped = DroppedMinutes(label, start);
    const int64_t total = SkipLeftOutLabel(CountOf(label), label.minute);
    return LabelOf(Low32(total - 2 * static_cast<int64_t>(dropped)));
}

}  // namespace

void CTimecode::AssignAt30(uint16_t hour, uint16_t minute, uint16_t second, uint16_t frame) {
    if (mHour == hour && mMinute == minute && mSecond == second && mFrame == frame &&
        mFrameRate == 30.0) {
        return;
    }
    mFrameRate = 30.0;
    mHour = hour;
    mMinute = minute;
    mSecond = second;
    mFrame = frame;
    if (mListeners != nullptr) Notify(kNotifyTimecodeChanged, 0, 0);  // else it reaches nobody
}

void CTimecode::Drop2Nondrop(const CTimecode& start, CTimecode* result) const {
    const Label self{mHour, mMinute, mSecond, mFrame};
    const Label from{start.mHour, start.mMinute, start.mSecond, start.mFrame};
    const int32_t dropped = DroppedMinutes(self, from);
    const int64_t total = SkipLeftOutLabel(GetTotalFrame(), GetMinute());
    const Label plain = LabelOf(Low32(total - 2 * static_cast<int64_t>(dropped)));
    if (result) result->AssignAt30(plain.hour, plain.minute, plain.second, plain.frame);
}

void CTimecode::Drop2Nondrop(const CTimecode& start) {
    Drop2Nondrop(start, this);
}

void CTimecode::Nondrop2Drop(const CTimecode& start, CTimecode* result) const {
    const Label self{mHour, mMinute, mSecond, mFrame};
    const Label from{start.mHour, start.mMinute, start.mSecond, start.mFrame};
    const int32_t dropped = DroppedMinutes(self, from);
    const int64_t own = GetTotalFrame();
    const int64_t total = own + 2 * static_cast<int64_t>(dropped);
    Label label = LabelOf(Low32(total));
    const int64_t moved = SkipLeftOutLabel(total, label.minute);
    if (moved != total) label = LabelOf(Low32(moved));
    const Label back = PlainOf(label, from);
    const int64_t taken = static_cast<int64_t>(CountOf(label)) - CountOf(back);
    label = LabelOf(Low32(own + taken));
    if (result) result->AssignAt30(label.hour, label.minute, label.second, label.frame);
}

void CTimecode::Nondrop2Drop(const CTimecode& start) {
    Nondrop2Drop(start, this);
}

}  // namespace basicutils
