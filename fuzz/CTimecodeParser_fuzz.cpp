// CTimecodeParser::Parse on any text: the four texts, kept as written, and
// their numbers must follow a right-to-left model of the split, and writing
// them back and parsing again must give the same four texts and the same
// frame type. The parser has read the text's second half first, so that its
// fields grow, shrink and empty as a reused parser's do.
#include <basicutils/text/MString.h>
#include <basicutils/time/CTimecodeParser.h>

#include <cstdlib>
#include <string>

#include "TimecodeTextModel.h"

using basicutils::CTimecodeParser;

struct OpenParser : CTimecodeParser {
    std::u16string Text(int field) const {  // 0 frame, 1 second, 2 minute, 3 hour
        const basicutils::MString* texts[] = {&mFrameText, &mSecondText, &mMinuteText, &mHourText};
        return std::u16string(static_cast<const char16_t*>(*texts[field]));
    }
};

#define CHECK(c) \
    if (!(c)) std::abort()

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1) return 0;
    bool keep = data[0] & 1;
    std::u16string text = fuzzmodel::Units(data + 1, size - 1, 4096);

    OpenParser parser;
    parser.SetFrameType(basicutils::kFrameType24);
    parser.Parse(text.substr(text.size() / 2).c_str(), true);
    parser.Parse(text.c_str(), keep);

    // The model: frames behind the last ';' (else ':'), then seconds and
    // minutes behind each further ':', the rest the hours.
    bool semicolon = text.find(u';') != text.npos;
    CHECK(parser.GetFrameType() == (keep        ? basicutils::kFrameType24
                                    : semicolon ? basicutils::kFrameType25
                                                : basicutils::kFrameType30));
    std::u16string_view rest(text);
    size_t cut = semicolon ? rest.rfind(u';') : rest.rfind(u':');
    std::u16string_view expected[4];  // frame, second, minute, hour
    int field = 0;
    for (; field < 3; ++field) {
        if (cut == rest.npos) break;
        expected[field] = rest.substr(cut + 1);
        rest = rest.substr(0, cut);
        cut = rest.rfind(u':');
    }
    expected[field] = rest;
    for (int i = 0; i < 4; ++i) CHECK(parser.Text(i) == expected[i]);
    CHECK(parser.GetFrame() == fuzzmodel::Number(expected[0]));
    CHECK(parser.GetSecond() == fuzzmodel::Number(expected[1]));
    CHECK(parser.GetMinute() == fuzzmodel::Number(expected[2]));
    CHECK(parser.GetHour() == fuzzmodel::Number(expected[3]));

    // Written out and read back, a detected form comes back whole.
    if (!keep) {
        CTimecodeParser again;
        again.Parse(parser.GetString(), false);
        CHECK(again.GetFrameType() == parser.GetFrameType());
        CHECK(std::u16string(again.GetRawString()) == std::u16string(parser.GetRawString()));
        CHECK(again.GetHour() == parser.GetHour() && again.GetMinute() == parser.GetMinute());
        CHECK(again.GetSecond() == parser.GetSecond() && again.GetFrame() == parser.GetFrame());
    }
    // GetTime always gives an in-range timecode.
    basicutils::CTimecode t = parser.GetTime();
    CHECK(t.GetMinute() < 60 && t.GetSecond() < 60 && t.GetFrame() < t.GetFrameRate());
    return 0;
}
