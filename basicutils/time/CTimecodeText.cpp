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

bool IsSeparator(char16_t c) {
    return c == u':' || c == u';';
}

// _wtoi of the token [p, end): blanks, one sign, digits, clamped to the int
// range; kept to 16 bits.
uint16_t ReadNumber(const char16_t* p, const char16_t* end) {
    while (p < end && (*p == u' ' || (*p >= 9 && *p <= 13))) ++p;
    bool negative = false;
    if (p < end && (*p == u'-' || *p == u'+')) negative = *p++ == u'-';
    int64_t value = 0;  // accumulated negative, whose range holds INT32_MIN
    for (; p < end && *p >= u'0' && *p <= u'9'; ++p) {
        value = value * 10 - (*p - u'0');
        if (value < int64_t{INT32_MIN}) {
            return static_cast<uint16_t>(negative ? INT32_MIN : INT32_MAX);
        }
    }
    if (!negative) value = value < -int64_t{INT32_MAX} ? INT32_MAX : -value;
    return static_cast<uint16_t>(value);
}

// The first four tokens of the first 31 units of text, separated by runs of
// ':' or ';' (what wcstok gives), each read as _wtoi reads it and kept to
// 16 bits; missing ones stay 0. One pass, no copy: a token of up to nine
// plain digits is read on the way, any other by ReadNumber.
Fields ReadFields(const char16_t* text) {
    Fields fields;
    if (!text) return fields;
    const char16_t* end = text;
    while (end - text < kTextUnits && *end != 0) ++end;
    const char16_t* p = text;
    for (int field = 0; field < 4; ++field) {
        while (p < end && IsSeparator(*p)) ++p;
        if (p == end) break;
        const char16_t* start = p;
        uint32_t value = 0;
        for (; p < end && p - start < 9 && static_cast<char16_t>(*p - u'0') <= 9; ++p) {
            value = value * 10 + (*p - u'0');
        }
        if (p == start || (p < end && !IsSeparator(*p))) {
            while (p < end && !IsSeparator(*p)) ++p;
            value = ReadNumber(start, p);
        }
        fields.value[field] = static_cast<uint16_t>(value);
    }
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
