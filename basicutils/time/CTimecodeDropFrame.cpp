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
#include <basicutils/time/CTimecode.h>

#include <cstdint>

namespace basicutils {

namespace {

constexpr int32_t kFramesPerMinute = 1800;

// The dropping minutes between the minute of `start` and `x`: every whole
// minute passed since start's minute, minus the multiples of ten passed
// since start's ten-minute block began.
int32_t DroppedMinutes(const CTimecode& x, const CTimecode& start) {
    CTimecode s(start);
    s.SetFrameType(kFrameType30);
    uint16_t hour = s.GetHour();
    uint16_t minute = s.GetMinute();
    CTimecode minuteMark(hour, minute, 0, 0, kFrameType30);
    CTimecode tenMark(hour, static_cast<uint16_t>(minute / 10 * 10), 0, 0, kFrameType30);
    CTimecode at(x);
    at.SetFrameType(kFrameType30);
    CTimecode sinceMinute = at - minuteMark;
    CTimecode sinceTen = at - tenMark;
    int32_t hm = sinceMinute.GetHour(), mm = sinceMinute.GetMinute();
    int32_t ht = sinceTen.GetHour(), mt = sinceTen.GetMinute();
    return 6 * (10 * hm - ht) - mt / 10 + mm;
}

// Moves a left-out label (frame 00 or 01 of a dropping minute) to frame 02.
int64_t SkipLeftOutLabel(int64_t total, uint16_t minute) {
    if (minute % 10 == 0) return total;
    int64_t remainder = total % kFramesPerMinute;
    if (remainder == 1 || remainder == 2) total += 3 - remainder;
    return total;
}

// Counts keep 32 bits, as GetTotalFrame does.
int32_t Low32(int64_t value) {
    return static_cast<int32_t>(static_cast<uint32_t>(value));
}

}  // namespace

void CTimecode::Drop2Nondrop(const CTimecode& start, CTimecode* result) const {
    int32_t dropped = DroppedMinutes(*this, start);
    int64_t total = SkipLeftOutLabel(GetTotalFrame(), GetMinute());
    CTimecode plain;
    plain.SetTotalFrame(Low32(total - 2 * static_cast<int64_t>(dropped)), kFrameType30);
    if (result) *result = plain;
}

void CTimecode::Drop2Nondrop(const CTimecode& start) {
    Drop2Nondrop(start, this);
}

void CTimecode::Nondrop2Drop(const CTimecode& start, CTimecode* result) const {
    int32_t dropped = DroppedMinutes(*this, start);
    int64_t own = GetTotalFrame();
    int64_t total = own + 2 * static_cast<int64_t>(dropped);
    CTimecode label;
    label.SetTotalFrame(Low32(total), kFrameType30);
    int64_t moved = SkipLeftOutLabel(total, label.GetMinute());
    if (moved != total) label.SetTotalFrame(Low32(moved), kFrameType30);
    CTimecode back;
    label.Drop2Nondrop(start, &back);
    int64_t taken = static_cast<int64_t>(label.GetTotalFrame()) - back.GetTotalFrame();
    label.SetTotalFrame(Low32(own + taken), kFrameType30);
    if (result) *result = label;
}

void CTimecode::Nondrop2Drop(const CTimecode& start) {
    Nondrop2Drop(start, this);
}

}  // namespace basicutils
