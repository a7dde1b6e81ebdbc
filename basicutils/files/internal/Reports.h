// How the file layer words its reports: one format with one text argument,
// sent through CMessageAction with a null context and the default window.
#pragma once

#include <basicutils/messaging/CMessageAction.h>
#include <basicutils/text/MString.h>

#include <cerrno>
#include <cstring>

namespace basicutils::detail {

inline MString FormatReport(const char16_t* format, const char16_t* argument) {
    MString text;
    text.Format(format, argument);
    return text;
}

inline void ReportError(const char16_t* format, const char16_t* argument) {
    CMessageAction::Error(nullptr, FormatReport(format, argument));
}

// The system's text for an errno value, widened from the system code page.
inline MString ErrnoText(int error) {
    MString text;
    text.ImportASCII(std::strerror(error), -1);
    return text;
}

}  // namespace basicutils::detail
