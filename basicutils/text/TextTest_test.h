// Small helpers shared by the text tests: every 16-bit result is compared as
// a std::u16string so that a failure prints the whole value.
#pragma once

#include <basicutils/text/MString.h>

#include <string>

namespace basicutils::texttest {

inline std::u16string Str(const char16_t* s) {
    return s ? std::u16string(s) : u"(null)";
}
inline std::u16string Str(const MString& s) {
    return Str(static_cast<const char16_t*>(s));
}
inline std::u16string Str(const char* s) {
    return std::u16string(s, s + std::char_traits<char>::length(s));
}
// An 8-bit rendering of ASCII text for failure messages.
inline std::string Narrow(std::u16string_view s) {
    return std::string(s.begin(), s.end());
}

}  // namespace basicutils::texttest
