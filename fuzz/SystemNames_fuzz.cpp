// Fuzzes the spelling of names between the library (16-bit, `\` between
// names) and the system (bytes, `/`).
//
// Properties checked for any input:
// - the input's bytes as one name on disk (no zero, no `/`) come back to the
//   same bytes: FromSystemName, then ToSystemPath;
// - the input's bytes as 16-bit units (no zero) are either refused with
//   ERROR_NO_UNICODE_TRANSLATION, which only a surrogate can cause, or
//   spelled so that FromSystemPath gives them back with every `/` as `\`.
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/internal/Paths.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "FuzzSupport.h"

using namespace basicutils;

using fuzzsupport::Check;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string name;
    for (size_t i = 0; i < size; ++i)
        if (data[i] != 0 && data[i] != '/') name.push_back(static_cast<char>(data[i]));
    std::string back;
    Check(detail::ToSystemPath(detail::FromSystemName(name).c_str(), back));
    Check(back == name);

    std::u16string units, expected;
    bool surrogate = false;
    for (size_t i = 0; i + 1 < size; i += 2) {
        const auto unit = static_cast<char16_t>(data[i] | data[i + 1] << 8);
        if (unit == 0) continue;
        units.push_back(unit);
        expected.push_back(unit == u'/' ? u'\\' : unit);
        surrogate = surrogate || (unit >= 0xD800 && unit <= 0xDFFF);
    }
    std::string spelled;
    if (!detail::ToSystemPath(units.c_str(), spelled)) {
        Check(surrogate && GetLastError() == ERROR_NO_UNICODE_TRANSLATION);
        return 0;
    }
    Check(detail::FromSystemPath(spelled) == expected);
    return 0;
}
