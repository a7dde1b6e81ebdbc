// CTimecode::SetTime with text of up to 31 units (the limit its callers
// keep): the result must equal the four numbers of a left-to-right model of
// the reading, set through the numeric setters, and the written form of the
// result must read back to the same timecode.
#include <basicutils/time/CTimecode.h>

#include <cstdlib>
#include <string>

#include "TimecodeTextModel.h"

using basicutils::CTimecode;

#define CHECK(c) \
    if (!(c)) std::abort()

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1) return 0;
    static const double kRates[] = {24.0, 25.0, 30.0, 29.97};
    double rate = kRates[data[0] % 4];
    std::u16string text = fuzzmodel::Units(data + 1, size - 1, 31);

    CTimecode read(0, 0, 0, 0, rate);
    read.SetTime(text.c_str());

    // The model: tokens between runs of ':' and ';', the first four count.
    uint16_t numbers[4] = {0, 0, 0, 0};
    int count = 0;
    size_t at = 0;
    while (count < 4) {
        at = text.find_first_not_of(u":;", at);
        if (at == text.npos) break;
        size_t end = text.find_first_of(u":;", at);
        numbers[count++] = fuzzmodel::Number(std::u16string_view(text).substr(at, end - at));
        at = end;
    }
    CTimecode expected(0, 0, 0, 0, rate);
    expected.SetTime(numbers[0], numbers[1], numbers[2], numbers[3]);
    CHECK(read == expected);

    // The written form reads back to the same timecode.
    char16_t written[32];
    read.GetTime(written);
    CTimecode back(0, 0, 0, 0, rate);
    back.SetTime(written);
    CHECK(back == read);
    return 0;
}
