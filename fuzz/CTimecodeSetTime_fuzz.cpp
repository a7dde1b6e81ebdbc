// CTimecode::SetTime with text of up to 31 units (the limit its callers
// keep): the result must equal the four numbers of a left-to-right model of
// the reading, set through the numeric setters of a class that overrides a
// validator (so that they take the virtual path, not the plain class's
// shortcut), with as many notifications; the written form of the result
// must read back to the same timecode. Both timecodes read the text's
// second half first, so that the second reading changes some fields only.
#include <basicutils/time/CTimecode.h>

#include <cstdlib>
#include <string>

#include "TimecodeTextModel.h"

using basicutils::CTimecode;

#define CHECK(c) \
    if (!(c)) std::abort()

namespace {

struct Counter : basicutils::LResponder {
    bool Respond(int32_t, basicutils::LNotifier*, int32_t, intptr_t) override {
        ++count;
        return true;
    }
    int count = 0;
};

struct Slow : CTimecode {
    explicit Slow(double rate) : CTimecode(0, 0, 0, 0, rate) {}
    uint16_t ValidateHour(uint16_t h) override { return CTimecode::ValidateHour(h); }
};

// The model: tokens between runs of ':' and ';', the first four count.
void SetByModel(CTimecode& t, std::u16string_view text) {
    uint16_t numbers[4] = {0, 0, 0, 0};
    int count = 0;
    size_t at = 0;
    while (count < 4) {
        at = text.find_first_not_of(u":;", at);
        if (at == text.npos) break;
        size_t end = text.find_first_of(u":;", at);
        numbers[count++] = fuzzmodel::Number(text.substr(at, end - at));
        at = end;
    }
    t.SetTime(numbers[0], numbers[1], numbers[2], numbers[3]);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1) return 0;
    static const double kRates[] = {24.0, 25.0, 30.0, 29.97};
    double rate = kRates[data[0] % 4];
    std::u16string text = fuzzmodel::Units(data + 1, size - 1, 31);

    CTimecode read(0, 0, 0, 0, rate);
    Slow expected(rate);
    Counter heardRead, heardExpected;
    read.AddResponder(&heardRead);
    expected.AddResponder(&heardExpected);
    for (const std::u16string& piece : {text.substr(text.size() / 2), text}) {
        read.SetTime(piece.c_str());
        SetByModel(expected, piece);
        CHECK(read == expected);
        CHECK(heardRead.count == heardExpected.count);
    }

    // The written form reads back to the same timecode.
    char16_t written[32];
    read.GetTime(written);
    CTimecode back(0, 0, 0, 0, rate);
    back.SetTime(written);
    CHECK(back == read);
    return 0;
}
