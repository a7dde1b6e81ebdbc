// The text operations of CTimecode: the written form out, and a reader that
// fills the fields from the left.
#include <basicutils/text/MString.h>
#include <basicutils/text/WideString.h>
#include <basicutils/time/CTimecode.h>
#include <basicutils/time/CTimecodeParser.h>

namespace basicutils {

namespace {

constexpr int kTextUnits = 32;  // working buffer, terminator included

struct Fields {
    uint16_t value[4] = {0, 0, 0, 0};
};

// Up to four numbers separated by runs of ':' or ';', read by _wtoi and
// kept to 16 bits; missing ones stay 0, extra ones are ignored.
Fields ReadFields(const char16_t* text) {
    char16_t work[kTextUnits] = {};
    if (text) {
        for (int i = 0; i < kTextUnits - 1 && text[i]; ++i) work[i] = text[i];
    }
    Fields fields;
    char16_t* context = nullptr;
    char16_t* token = wcstok_r(work, u":;", &context);
    for (int i = 0; i < 4 && token; ++i) {
        fields.value[i] = static_cast<uint16_t>(_wtoi(token));
        token = wcstok_r(nullptr, u":;", &context);
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
