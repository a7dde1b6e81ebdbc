// Fuzzes the drop-frame conversions against the conversion as it was first
// written, with timecode operations (kept here as the model).
//
// The input picks a timecode x and a start, each with any of five rates,
// counters past their rate and hours up to the 16-bit wrap, and a run of up
// to 1,023 frames. For x and every frame of the run after it, Nondrop2Drop
// and Drop2Nondrop from the start must give exactly what the model gives.
// The unit tests walk every frame from zero against the standard numbering;
// this covers the other starts, rates and odd counters.
//
// Input: rate of x, rate of the start, x's hour (2 bytes), minute, second,
// frame, an increase, the start's hour, minute, second, frame, and the run's
// length (2 bytes). Missing bytes read as zero.
#include <basicutils/time/CTimecode.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using basicutils::CTimecode;
using basicutils::kFrameType30;

namespace {

int32_t Low32(int64_t v) {
    return static_cast<int32_t>(static_cast<uint32_t>(v));
}

// Dropped pairs of labels between the start's ten minutes and x.
int32_t OldDropped(const CTimecode& x, const CTimecode& start) {
    CTimecode s(start), at(x);
    s.SetFrameType(kFrameType30);
    at.SetFrameType(kFrameType30);
    uint16_t h = s.GetHour(), m = s.GetMinute();
    CTimecode a = at - CTimecode(h, m, 0, 0, kFrameType30);
    CTimecode b = at - CTimecode(h, static_cast<uint16_t>(m / 10 * 10), 0, 0, kFrameType30);
    return 6 * (10 * a.GetHour() - b.GetHour()) - b.GetMinute() / 10 + a.GetMinute();
}

// A left-out label (frames 00 and 01 of a dropping minute) moves to frame 02.
int64_t OldSkip(int64_t t, uint16_t minute) {
    int64_t r = t % 1800;
    return minute % 10 != 0 && (r == 1 || r == 2) ? t + 3 - r : t;
}

CTimecode OldToPlain(const CTimecode& x, const CTimecode& start) {
    int32_t d = OldDropped(x, start);
    CTimecode r;
    r.SetTotalFrame(Low32(OldSkip(x.GetTotalFrame(), x.GetMinute()) - 2 * int64_t{d}),
                    kFrameType30);
    return r;
}

CTimecode OldToDrop(const CTimecode& x, const CTimecode& start) {
    int64_t own = x.GetTotalFrame(), t = own + 2 * int64_t{OldDropped(x, start)};
    CTimecode a;
    a.SetTotalFrame(Low32(t), kFrameType30);
    if (int64_t moved = OldSkip(t, a.GetMinute()); moved != t)
        a.SetTotalFrame(Low32(moved), kFrameType30);
    CTimecode i = OldToPlain(a, start);
    a.SetTotalFrame(Low32(own + a.GetTotalFrame() - i.GetTotalFrame()), kFrameType30);
    return a;
}

void CheckAsBefore(const CTimecode& x, const CTimecode& start) {
    CTimecode label, plain;
    x.Nondrop2Drop(start, &label);
    x.Drop2Nondrop(start, &plain);
    if (label != OldToDrop(x, start) || plain != OldToPlain(x, start)) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    auto byte = [&](size_t i) -> unsigned { return i < size ? data[i] : 0u; };
    static const double kRates[] = {30.0, 29.97, 24.0, 25.0, 60.0};
    const auto hour = static_cast<uint16_t>(byte(2) | byte(3) << 8);
    CTimecode x(hour, static_cast<uint16_t>(byte(4) % 64), static_cast<uint16_t>(byte(5) % 64),
                static_cast<uint16_t>(byte(6) % 64), kRates[byte(0) % 5]);
    x.IncreaseFrame(static_cast<int32_t>(byte(7) % 40));
    const CTimecode start(static_cast<uint16_t>(byte(8) % 32), static_cast<uint16_t>(byte(9) % 60),
                          static_cast<uint16_t>(byte(10) % 60),
                          static_cast<uint16_t>(byte(11) % 32), kRates[byte(1) % 5]);
    const unsigned run = (byte(12) | byte(13) << 8) % 1024;
    CheckAsBefore(x, start);
    for (unsigned i = 0; i < run; ++i) {
        x.IncreaseFrame(1);
        CheckAsBefore(x, start);
    }
    return 0;
}
