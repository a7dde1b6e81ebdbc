// The text operations of CTimecode: the written form out, and a reader that
// fills the fields from the left.
#include <basicutils/text/MString.h>
#include <basicutils/text/WideString.h>
#include <basicutils/time/CTimecode.h>
#include <basicutils/time/CTimecodeParser.h>

#include <cstdint>

namespace basicutils {

namespace {

constexpr int kTextUnits = 31;  // units read, as by a working copy of 32 with its terminator

struct Fields {
    uint16_t value[4] = {0, 0, 0, 0};
};

// The first four tokens of the first 31 units of text, separated by runs of
// ':' or ';' (what wcstok gives), each read as _wtoi reads it (blanks, one
// sign, digits, clamped to the int range) and kept to 16 bits; missing ones
// stay 0. One pass over the text, no copy.
Fields ReadFields(const char16_t* text) {
    Fields fields;
    if (!text) return fields;
    enum Phase { kBetween, kBlanks, kDigits, kIgnored } phase = kBetween;
    int field = 0;
    bool negative = false;
    int64_t value = 0;  // accumulated negative, whose range holds INT32_MIN
    auto finish = [&] {
        if (!negative) value = value < -int64_t{INT32_MAX} ? INT32_MAX : -value;
        fields.value[field++] = static_cast<uint16_t>(value);
    };
    for (int i = 0; i < kTextUnits && text[i] != 0 && field < 4; ++i) {
        const char16_t c = text[i];
        if (c == u':' || c == u';') {
            if (phase != kBetween) finish();
            phase = kBetween;
            continue;
        }
        if (phase == kBetween) {
            phase = kBlanks;
            negative = false;
            value = 0;
        }
        if (phase == kBlanks) {
            if (c == u' ' || (c >= 9 && c <= 13)) continue;
            phase = kDigits;
            if (c == u'-' || c == u'+') {
                negative = c == u'-';
                continue;
            }
        }
        if (phase != kDigits) continue;
        if (c < u'0' || c > u'9') {
            phase = kIgnored;
        } else if ((value = value * 10 - (c - u'0')) < int64_t{INT32_MIN}) {
            value = negative ? INT32_MIN : -int64_t{INT32_MAX};  // clamped, as _wtoi
            phase = kIgnored;
        }
    }
    if (phase != kBetween && field < 4) finish();
    return fields;
}

}  // namespace

void CTimecode::GetTime(MString* out) const {
    if (!out) return;
    CTimecodeParser parser;
    parser.SetFrameType(GetFrameType());
    parser.SetHour(GetHour());
    parser.SetMinute(GetMinute());
    parser.SetSecond(GetSecond());
    parser.SetFrame(GetFrame());
    *out = parser.GetString();
}

void CTimecode::GetTime(char16_t* out) const {
    if (!out) return;
    MString text;
    GetTime(&text);
    wcscpy(out, text);
}

bool CTimecode::SetTime(const char16_t* text) {
    Fields f = ReadFields(text);
    return SetTime(f.value[0], f.value[1], f.value[2], f.value[3]);
}

bool CTimecode::SetTime(const char16_t* text, double rate) {
    Fields f = ReadFields(text);
    return SetTime(f.value[0], f.value[1], f.value[2], f.value[3], rate);
}

bool CTimecode::SetTimeWithType(const char16_t* text, frame_type_t type) {
    double rate;
    switch (type) {
        case kFrameType24:
            rate = 24.0;
            break;
        case kFrameType25:
            rate = 25.0;
            break;
        case kFrameType30:
            rate = 30.0;
            break;
        default:
            rate = GetFrameRate();
            break;
    }
    Fields f = ReadFields(text);
    return SetTime(f.value[0], f.value[1], f.value[2], f.value[3], rate);
}

}  // namespace basicutils
