// CTimecodeParser: the written form of a timecode, held as four texts.
//
// Parse splits a written timecode into hours, minutes, seconds and frames
// starting at the right end, so short input means the low fields: "12"
// gives frame 12 only, "3:12" second 3 and frame 12. The frame separator is
// the last ';' if there is one, else the last ':'; whatever is left after
// the minutes, separators included, is the hour text. The pieces are kept
// exactly as written (one digit stays one digit) and are read as numbers
// only by the getters, the way _wtoi reads them: leading blanks and a sign,
// then digits up to the first other unit, kept to 16 bits; no number is 0.
//
// Unless told to keep it, Parse takes kFrameType25 when the text holds a
// ';' anywhere and kFrameType30 otherwise. GetString writes the texts back
// with ';' before the frames for kFrameType25 only. The setters write a
// number with at least two digits. GetTime makes a CTimecode, whose
// validators bring the numbers into range at the parser's frame type.
// A null text reads as empty.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/text/MString.h>
#include <basicutils/time/CTimecode.h>

namespace basicutils {

class BASICUTILS_EXPORT CTimecodeParser {
  public:
    CTimecodeParser();
    CTimecodeParser(const CTimecodeParser& other) = default;
    CTimecodeParser& operator=(const CTimecodeParser& other) = default;
    virtual ~CTimecodeParser();

    virtual void Parse(const char16_t* text, bool keepFrameType);

    virtual uint16_t GetHour() const;
    virtual uint16_t GetMinute() const;
    virtual uint16_t GetSecond() const;
    virtual uint16_t GetFrame() const;
    virtual frame_type_t GetFrameType() const { return mFrameType; }

    virtual void SetHour(uint16_t hour);
    virtual void SetMinute(uint16_t minute);
    virtual void SetSecond(uint16_t second);
    virtual void SetFrame(uint16_t frame);
    virtual void SetFrameType(frame_type_t type) { mFrameType = type; }
    // The four getters of the timecode, then its frame type.
    virtual void SetTime(const CTimecode& timecode);

    // HH:MM:SS:FF (or ;FF at kFrameType25) from the texts as they stand.
    virtual MString GetString() const;
    // The four texts with nothing between them.
    virtual MString GetRawString() const;
    virtual CTimecode GetTime() const;

  protected:
    MString mHourText;
    MString mMinuteText;
    MString mSecondText;
    MString mFrameText;
    frame_type_t mFrameType;
};

}  // namespace basicutils
