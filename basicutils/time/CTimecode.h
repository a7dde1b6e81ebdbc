// CTimecode: a position or a length in video, as hours, minutes, seconds and
// frames at a frame rate.
//
// The four counters are 16-bit and the rate is a double in 24.0..1200.0; the
// frame type (24, 25 or 30 frames a second) is derived from the rate by exact
// comparison, and every other rate (29.97 included) reports kFrameType30.
// The hour is a count, not a clock: 23:59:59:29 plus a frame is 24:00:00:00.
//
// Setters never refuse a value: each passes it through its virtual validator
// (minutes and seconds at most 59, frames below the rate, the rate within
// 24..1200), and returns true only when the stored value changed. A change
// runs the field's TrickleDown hook and then notifies once with code
// kNotifyTimecodeChanged (7130), so responders registered with this object
// hear every change before the setter returns. operator= notifies once when
// anything differs; IncreaseFrame and DecreaseFrame write silently.
//
// Frame counts are 1-based: 00:00:00:00 is frame 1, and GetTotalFrame is
// truncated rate * seconds + frames, plus one, kept to 32 bits. Arithmetic
// builds a fresh timecode at the left operand's frame type and stops at
// 00:00:00:00 below; SetTotalFrame holds its minutes in 16 bits, so
// 1092:15:59 is the last time it can reach.
//
// Choices of this port where the legacy behaviour is undefined:
//   - a NaN rate is taken as 24.0, the lowest rate;
//   - operator=(double) saturates a packed value outside the 64-bit range
//     (NaN reads as 0), and keeps the low 32 bits of a frame count too large
//     for 32 bits, as GetTotalFrame does;
//   - value 2 of frame_type_t is named kFrameTypeUnused; like every value
//     without a case it selects 30.0.
// Counting, comparison and arithmetic go through the virtual getters: a
// subclass that answers GetHour differently is counted by its own answer.
// Equality, assignment and the frame steps use the stored fields.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/messaging/LNotifier.h>

#include <cstdint>

namespace basicutils {

class MString;

enum frame_type_t : int32_t {
    kFrameType24 = 0,
    kFrameType25 = 1,
    kFrameTypeUnused = 2,
    kFrameType30 = 3,
    kFrameTypeKeep = 4,  // in SetTotalFrame: leave the rate as it is
};

enum resolution_t : int32_t { kResolutionNTSC = 0, kResolutionPAL = 1 };

enum drop_nondrop_t : int32_t { kNonDrop = 0, kDrop = 1 };

class BASICUTILS_EXPORT CTimecode : public LNotifier {
  public:
    CTimecode();
    CTimecode(const CTimecode& other);
    CTimecode(double packed);  // NOLINT(google-explicit-constructor): legacy conversion
    CTimecode(uint16_t hour, uint16_t minute, uint16_t second, uint16_t frame, double rate);
    CTimecode(uint16_t hour, uint16_t minute, uint16_t second, uint16_t frame, frame_type_t type);
    virtual ~CTimecode();

    // Fields: validate, store if different, hook, notify; true if changed.
    virtual bool SetHour(uint16_t hour);
    virtual bool SetMinute(uint16_t minute);
    virtual bool SetSecond(uint16_t second);
    virtual bool SetFrame(uint16_t frame);
    virtual bool SetFrameRate(double rate);

    virtual uint16_t ValidateHour(uint16_t hour);
    virtual uint16_t ValidateMinute(uint16_t minute);
    virtual uint16_t ValidateSecond(uint16_t second);
    virtual uint16_t ValidateFrame(uint16_t frame);
    virtual double ValidateFrameRate(double rate);

    // Where a derived class passes a change on; empty here.
    virtual void TrickleDownHourChange() {}
    virtual void TrickleDownMinuteChange() {}
    virtual void TrickleDownSecondChange() {}
    virtual void TrickleDownFrameChange() {}
    virtual void TrickleDownFrameRateChange() {}

    virtual uint16_t GetHour() const { return mHour; }
    virtual uint16_t GetMinute() const { return mMinute; }
    virtual uint16_t GetSecond() const { return mSecond; }
    virtual uint16_t GetFrame() const { return mFrame; }
    virtual double GetFrameRate() const { return mFrameRate; }
    virtual void GetTime(uint16_t& hour, uint16_t& minute, uint16_t& second, uint16_t& frame) const;

    // Several fields at once. Every setter runs (hour, minute, second, frame
    // order) and each change notifies by itself; true if any changed. The
    // forms with a rate or type set it first, so the frame is validated
    // against the new rate.
    virtual bool SetTime(uint16_t hour, uint16_t minute, uint16_t second, uint16_t frame,
                         frame_type_t type);
    virtual bool SetTime(uint16_t hour, uint16_t minute, uint16_t second, uint16_t frame,
                         double rate);
    virtual bool SetTime(uint16_t hour, uint16_t minute, uint16_t second, uint16_t frame);

    // 24.0, 25.0 or 30.0 (30.0 for every value without a case).
    bool SetFrameType(frame_type_t type);
    frame_type_t GetFrameType() const;

    // Counting. SetTotalFrame holds counts below 1 at 1.
    virtual void SetTotalFrame(int32_t total, frame_type_t type);
    virtual int32_t GetTotalFrame() const;
    virtual double GetTotalSecond() const;
    virtual double GetTotalMinute() const;

    // Milliseconds from zero: (count - 1) / rate * 1000, truncated.
    operator uint32_t() const;
    // The packed form: count * 10000 + rate * 100.
    operator double() const;
    CTimecode& operator=(double packed);

    bool IsZero() const;
    // Adds the low 16 bits of n to the frame and carries by equality with
    // the frame type's limit: a step that jumps over the limit carries
    // nothing. No validation, hook or notification.
    void IncreaseFrame(int32_t n);
    // One frame back with borrow; below 00:00:00:00 the hour wraps to 65535.
    void DecreaseFrame();

    // Drop-frame labels (CTimecodeDropFrame.cpp). This timecode, at 30.0, is
    // converted between the plain count and the NTSC drop-frame label, with
    // the left-out labels counted from the minute of `start` (00:00:00:00
    // gives the standard numbering). The result, at 30.0, is written once at
    // the end and so notifies at most once; forms without `result` convert
    // this timecode in place.
    void Nondrop2Drop(const CTimecode& start, CTimecode* result) const;
    void Nondrop2Drop(const CTimecode& start);
    void Drop2Nondrop(const CTimecode& start, CTimecode* result) const;
    void Drop2Nondrop(const CTimecode& start);

    // Text forms (CTimecodeText.cpp). GetTime writes HH:MM:SS:FF, with ';'
    // before the frames at 25 frames a second; each number has at least two
    // digits. A buffer needs 12 units up to hour 99. SetTime reads up to four
    // numbers separated by ':' or ';' from the left (1:2 is one hour and two
    // minutes; empty places count for nothing), each taken to 16 bits, and
    // sets them through the validating setters. Text beyond 31 units is
    // ignored and null reads as empty. SetTimeWithType takes the rate of a
    // 24, 25 or 30 type, and keeps the present rate for any other value.
    virtual void GetTime(MString* out) const;
    virtual void GetTime(char16_t* out) const;
    virtual bool SetTime(const char16_t* text);
    virtual bool SetTime(const char16_t* text, double rate);
    virtual bool SetTimeWithType(const char16_t* text, frame_type_t type);

    bool operator==(const CTimecode& other) const;
    bool operator!=(const CTimecode& other) const { return !(*this == other); }
    // Copies the five fields and notifies once if the two differ.
    CTimecode& operator=(const CTimecode& other);

  private:
    // Stores a counter of an object that is exactly a CTimecode (no hooks to
    // run) and notifies if it changed.
    bool StoreIfChanged(uint16_t& field, uint16_t value);
    // operator= from a timecode at 30.0 with these counters.
    void AssignAt30(uint16_t hour, uint16_t minute, uint16_t second, uint16_t frame);

  protected:
    double mFrameRate;
    uint16_t mHour;
    uint16_t mMinute;
    uint16_t mSecond;
    uint16_t mFrame;
};

// Compare frame counts; the rates play no other part.
BASICUTILS_EXPORT bool operator<(const CTimecode& a, const CTimecode& b);
BASICUTILS_EXPORT bool operator>(const CTimecode& a, const CTimecode& b);
BASICUTILS_EXPORT bool operator<=(const CTimecode& a, const CTimecode& b);
BASICUTILS_EXPORT bool operator>=(const CTimecode& a, const CTimecode& b);

// The label of the sum or difference of the 0-based counts, at the left
// operand's frame type.
BASICUTILS_EXPORT CTimecode operator+(const CTimecode& a, const CTimecode& b);
BASICUTILS_EXPORT CTimecode operator+(const CTimecode& a, int32_t frames);
BASICUTILS_EXPORT CTimecode operator-(const CTimecode& a, const CTimecode& b);
BASICUTILS_EXPORT CTimecode operator-(const CTimecode& a, int32_t frames);

}  // namespace basicutils
