// CDuration: a stretch of video, held as a start time and a length; the end
// is derived and inclusive (the label of the last frame), so one frame has
// its end equal to its start, and an empty length ends one frame before the
// start (or at 00:00:00:00).
//
// The start and the length are plain frame counts. The ...UI operations give
// and take what a user reads and types: with kDrop the end and the length
// are drop-frame labels counted from the minute of the start; with kNonDrop
// each ...UI operation is its plain twin. The start has one form only.
//
// Each setter validates, stores only a different value, runs its
// TrickleDown hook and then notifies this object's responders:
// 7200 resolution, 7201 drop type, 7202 start, 7203 length (a new end
// arrives as 7203). A new resolution re-rates both timecodes from the hook
// (30.0 for NTSC, 25.0 otherwise) without touching their digits, so their
// own 7130s come before the 7200. SetEndTime first gives the start the frame
// type of the end, silently, and an end before the start gives one frame.
//
// Choices of this implementation:
//   - GetOverlapDuration stores the overlapping stretch in every case: when
//     the other stretch starts inside this one, its start to the earlier
//     end; when it only ends inside, this start to its end; when it encloses
//     this one, this stretch. With a null result it only answers whether the
//     two meet.
//   - The setters take const references and validate a copy, so a caller's
//     timecode is never changed by ValidateDuration.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/messaging/LNotifier.h>
#include <basicutils/time/CTimecode.h>

namespace basicutils {

class BASICUTILS_EXPORT CDuration : public LNotifier {
  public:
    CDuration();
    // A copy takes every field and, like every copy of a broadcaster, the
    // broadcasting switch (of the duration and of its two timecodes), but no
    // listener.
    CDuration(const CDuration& other) = default;
    virtual ~CDuration() = default;

    virtual bool SetResolution(resolution_t resolution);
    virtual bool SetDropType(drop_nondrop_t dropType);
    virtual bool SetStartTime(const CTimecode& start);
    virtual bool SetEndTime(const CTimecode& end);
    virtual bool SetDuration(const CTimecode& duration);
    virtual bool SetStartTimeUI(const CTimecode& start);
    virtual bool SetEndTimeUI(const CTimecode& end);
    virtual bool SetDurationUI(const CTimecode& duration);

    virtual resolution_t ValidateResolution(resolution_t resolution) { return resolution; }
    virtual drop_nondrop_t ValidateDropType(drop_nondrop_t dropType) { return dropType; }
    virtual CTimecode ValidateStartTime(CTimecode& start);
    // Lifts a count below 1 (a 32-bit overflow) to 00:00:00:00 in place.
    virtual CTimecode ValidateDuration(CTimecode& duration);

    virtual void TrickleDownResolutionChange();
    virtual void TrickleDownDropTypeChange() {}
    virtual void TrickleDownStartTimeChange() {}
    virtual void TrickleDownDurationChange() {}

    virtual resolution_t GetResolution() const { return mResolution; }
    virtual drop_nondrop_t GetDropType() const { return mDropType; }
    virtual CTimecode GetStartTime() const { return mStartTime; }
    virtual CTimecode GetEndTime() const;
    virtual CTimecode GetDuration() const { return mDuration; }
    virtual CTimecode GetStartTimeUI() const { return GetStartTime(); }
    virtual CTimecode GetEndTimeUI() const;
    virtual CTimecode GetDurationUI() const;

    // The number of frames in the stretch.
    int32_t GetTotalFrame() const { return mDuration.GetTotalFrame() - 1; }

    // Copies the standard and drop type, then assigns the two timecodes
    // (which notify by themselves); the duration itself sends nothing, and
    // its listeners and broadcasting switch stay its own.
    CDuration& operator=(const CDuration& other) = default;
    bool operator==(const CDuration& other) const;
    bool operator!=(const CDuration& other) const { return !(*this == other); }

    bool GetOverlapDuration(const CDuration& other, CDuration* result) const;
    // Both ends count as inside.
    bool IsInclude(const CTimecode& t) const;

    // kFrameType30 selects NTSC, kFrameType25 PAL; other types give false.
    bool SetFrameType(frame_type_t type);
    frame_type_t GetFrameType() const;
    // Start and length both 00:00:00:00, at any rate.
    bool IsNil() const;

  protected:
    resolution_t mResolution;
    drop_nondrop_t mDropType;
    CTimecode mStartTime;
    CTimecode mDuration;
};

}  // namespace basicutils
