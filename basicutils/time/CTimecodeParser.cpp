#include <basicutils/text/WideString.h>
#include <basicutils/time/CTimecodeParser.h>

#include <algorithm>
#include <string>

namespace basicutils {

namespace {

uint16_t ReadNumber(const MString& text) {
    return static_cast<uint16_t>(_wtoi(text));
}

// "%d", with a '0' in front of a single digit.
MString TwoDigits(uint16_t value) {
    char16_t digits[8];
    int n = 0;
    do {
        digits[n++] = static_cast<char16_t>(u'0' + value % 10);
        value = static_cast<uint16_t>(value / 10);
    } while (value);
    if (n == 1) digits[n++] = u'0';
    char16_t text[8];
    for (int i = 0; i < n; ++i) text[i] = digits[n - 1 - i];
    text[n] = 0;
    return MString(text);
}

// Sets a field to the units [first, last) of a text. A piece no longer
// than the field's text is written into its block (an MString keeps its
// block when it gets shorter), so a parser reused on texts of one shape
// allocates nothing.
void SetPiece(MString& field, const char16_t* first, const char16_t* last) {
    char16_t* block = field;
    const char16_t* end = block;
    while (*end != 0 && end - block < last - first) ++end;
    if (end - block == last - first) {
        std::copy(first, last, block);
        block[last - first] = 0;
        return;
    }
    field = std::u16string(first, last).c_str();
}

// The last unit c in [first, last), or null.
const char16_t* FindLast(const char16_t* first, const char16_t* last, char16_t c) {
    while (last != first) {
        if (*--last == c) return last;
    }
    return nullptr;
}

}  // namespace

CTimecodeParser::CTimecodeParser() : mFrameType(kFrameType30) {}

CTimecodeParser::CTimecodeParser(const CTimecodeParser& other)
    : mHourText(other.mHourText),
      mMinuteText(other.mMinuteText),
      mSecondText(other.mSecondText),
      mFrameText(other.mFrameText),
      mFrameType(other.mFrameType) {}

CTimecodeParser& CTimecodeParser::operator=(const CTimecodeParser& other) {
    mHourText = other.mHourText;
    mMinuteText = other.mMinuteText;
    mSecondText = other.mSecondText;
    mFrameText = other.mFrameText;
    mFrameType = other.mFrameType;
    return *this;
}

CTimecodeParser::~CTimecodeParser() = default;

void CTimecodeParser::Parse(const char16_t* text, bool keepFrameType) {
    if (text == nullptr) text = u"";
    const char16_t* end = text;
    const char16_t* semicolon = nullptr;
    for (; *end != 0; ++end) {
        if (*end == u';') semicolon = end;
    }
    if (!keepFrameType) mFrameType = semicolon != nullptr ? kFrameType25 : kFrameType30;

    // From the right: frames behind the frame separator, then seconds and
    // minutes behind each last ':', the rest to the hours. Fields that the
    // text does not reach are emptied.
    MString* fields[] = {&mFrameText, &mSecondText, &mMinuteText, &mHourText};
    const char16_t* cut = semicolon != nullptr ? semicolon : FindLast(text, end, u':');
    int filled = 0;
    while (filled < 3 && cut != nullptr) {
        SetPiece(*fields[filled++], cut + 1, end);
        end = cut;
        cut = FindLast(text, end, u':');
    }
    SetPiece(*fields[filled++], text, end);
    while (filled < 4) SetPiece(*fields[filled++], end, end);
}

uint16_t CTimecodeParser::GetHour() const {
    return ReadNumber(mHourText);
}
uint16_t CTimecodeParser::GetMinute() const {
    return ReadNumber(mMinuteText);
}
uint16_t CTimecodeParser::GetSecond() const {
    return ReadNumber(mSecondText);
}
uint16_t CTimecodeParser::GetFrame() const {
    return ReadNumber(mFrameText);
}

void CTimecodeParser::SetHour(uint16_t hour) {
    mHourText = TwoDigits(hour);
}
void CTimecodeParser::SetMinute(uint16_t minute) {
    mMinuteText = TwoDigits(minute);
}
void CTimecodeParser::SetSecond(uint16_t second) {
    mSecondText = TwoDigits(second);
}
void CTimecodeParser::SetFrame(uint16_t frame) {
    mFrameText = TwoDigits(frame);
}

void CTimecodeParser::SetTime(const CTimecode& timecode) {
    SetHour(timecode.GetHour());
    SetMinute(timecode.GetMinute());
    SetSecond(timecode.GetSecond());
    SetFrame(timecode.GetFrame());
    SetFrameType(timecode.GetFrameType());
}

MString CTimecodeParser::GetString() const {
    MString out(mHourText);
    out += u":";
    out += mMinuteText;
    out += u":";
    out += mSecondText;
    out += GetFrameType() == kFrameType25 ? u";" : u":";
    out += mFrameText;
    return out;
}

MString CTimecodeParser::GetRawString() const {
    MString out(mHourText);
    out += mMinuteText;
    out += mSecondText;
    out += mFrameText;
    return out;
}

CTimecode CTimecodeParser::GetTime() const {
    return CTimecode(GetHour(), GetMinute(), GetSecond(), GetFrame(), mFrameType);
}

}  // namespace basicutils
