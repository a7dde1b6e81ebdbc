#include <basicutils/platform/LocalTime.h>
#include <time.h>

#include <cstring>

namespace basicutils::platform {

namespace {
constexpr int kEINVAL = 22;  // the runtime's number, kept whatever errno.h says
}

void _tzset() {
    ::tzset();
}

time64_t _time64(time64_t* out) {
    time64_t now = static_cast<time64_t>(::time(nullptr));
    if (out) *out = now;
    return now;
}

int _localtime64_s(std::tm* out, const time64_t* time) {
    if (!out) return kEINVAL;
    std::memset(out, 0, sizeof(*out));
    if (!time) return kEINVAL;
    time_t t = static_cast<time_t>(*time);
    if (static_cast<time64_t>(t) != *time) return kEINVAL;
    struct tm fields;
    if (!::localtime_r(&t, &fields)) return kEINVAL;
    *out = fields;
    return 0;
}

}  // namespace basicutils::platform
