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
    const ptrdiff_t n = last - first;
    ptrdiff_t have = 0;
    while (have < n && block[have] != 0) ++have;
    if (have < n) {
        field = std::u16string(first, last).c_str();
        return;
    }
    for (ptrdiff_t i = 0; i < n; ++i) block[i] = first[i];
    block[n] = 0;
}

}  // namespace

CTimecodeParser::CTimecodeParser() : mFrameType(kFrameType30) {}

CTimecodeParser::~CTimecodeParser() = default;

void CTimecodeParser::Parse(const char16_t* text, bool keepFrameType) {
    if (text == nullptr) text = u"";
    // One pass finds the end, the last ';' and the last three ':' before
    // each point that matters: the end, and the last ';'.
    const char16_t* colons[3] = {nullptr, nullptr, nullptr};  // latest first
    const char16_t* beforeSemicolon[3] = {nullptr, nullptr, nullptr};
    const char16_t* semicolon = nullptr;
    const char16_t* end = text;
    for (; *end != 0; ++end) {
        if (*end == u':') {
            colons[2] = colons[1];
            colons[1] = colons[0];
            colons[0] = end;
        } else if (*end == u';') {
            semicolon = end;
            std::copy(colons, colons + 3, beforeSemicolon);
        }
    }
    if (!keepFrameType) mFrameType = semicolon != nullptr ? kFrameType25 : kFrameType30;

    // From the right: frames behind the frame separator (the last ';', else
    // the last ':'), then seconds and minutes behind each last ':' before
    // it, the rest to the hours. Fields the text does not reach are emptied.
    const char16_t* cuts[3] = {semicolon, beforeSemicolon[0], beforeSemicolon[1]};
    if (semicolon == nullptr) std::copy(colons, colons + 3, cuts);
    MString* fields[] = {&mFrameText, &mSecondText, &mMinuteText, &mHourText};
    int filled = 0;
    for (; filled < 3 && cuts[filled] != nullptr; ++filled) {
        SetPiece(*fields[filled], cuts[filled] + 1, end);
        end = cuts[filled];
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
