// The machine's clock and local time zone, as the C runtime of the legacy
// platform offered them: _tzset, _time64 and _localtime64_s.
#pragma once

#include <basicutils/Export.h>

#include <cstdint>
#include <ctime>

namespace basicutils::platform {

// Seconds since 1970-01-01 00:00:00 UTC.
using time64_t = int64_t;

// Reads the local time-zone rules of the machine (TZ, /etc/localtime) anew.
BASICUTILS_EXPORT void _tzset();

// The current time; also stored in *out unless out is null.
BASICUTILS_EXPORT time64_t _time64(time64_t* out);

// Breaks a time into local calendar fields. 0 on success, EINVAL (22) for a
// null argument or a time the system cannot represent; *out is then cleared.
BASICUTILS_EXPORT int _localtime64_s(std::tm* out, const time64_t* time);

}  // namespace basicutils::platform
