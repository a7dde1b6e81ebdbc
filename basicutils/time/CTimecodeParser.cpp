#include <basicutils/text/WideString.h>
#include <basicutils/time/CTimecodeParser.h>

#include <string>
#include <string_view>

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

MString Piece(std::u16string_view text) {
    return MString(std::u16string(text).c_str());
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
    mHourText = u"";
    mMinuteText = u"";
    mSecondText = u"";
    mFrameText = u"";
    std::u16string_view rest = text ? std::u16string_view(text) : std::u16string_view();
    size_t semicolon = rest.rfind(u';');
    if (!keepFrameType) mFrameType = semicolon != rest.npos ? kFrameType25 : kFrameType30;

    size_t cut = semicolon != rest.npos ? semicolon : rest.rfind(u':');
    MString* fields[] = {&mFrameText, &mSecondText, &mMinuteText};
    for (MString* field : fields) {
        if (cut == rest.npos) {
            *field = Piece(rest);
            return;
        }
        *field = Piece(rest.substr(cut + 1));
        rest = rest.substr(0, cut);
        cut = rest.rfind(u':');
    }
    mHourText = Piece(rest);
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
