// What the timecode actions of the tool share: their options, and reading
// and writing a timecode through the library's own text forms.
#pragma once

#include <basicutils/BasicUtils.h>

#include <string>

#include "Commands.h"

namespace basicutils_tool {

struct TimecodeOptions {
    double rate = 30.0;  // --rate / -r
    bool keep = false;   // --keep: parse keeps fields the text leaves out
    bool drop = false;   // --drop: stretches count drop-frame labels
    std::string start;   // --start TC: the start of a drop-frame conversion
    Args positional;     // the action and its operands
};

// Splits the options from the operands; on a bad option prints the error and
// sets `status`.
bool ParseTimecodeOptions(const Args& args, TimecodeOptions& options, int& status);

// The library's reading of `text` (from the left, as CTimecode::SetTime
// reads it) at `rate`. Bad text is not refused: it gets the library's answer,
// and a note on stderr says what was read whenever that is not what was typed.
basicutils::CTimecode ReadTimecode(const std::string& text, double rate);

// The written form (HH:MM:SS:FF, ;FF at 25 frames a second) and the rate,
// as "01:00:00:00 @30".
std::string Written(const basicutils::CTimecode& tc);

// Text to and from the library's UTF-16 (the tool's operands are ASCII).
std::u16string Widen(const std::string& text);
std::string Narrow(const char16_t* text);

// The actions that read and write text, convert drop-frame labels and work
// on stretches (TimecodeTextCommand.cpp); `status` is the exit status, and
// the result is false when `action` is not one of them.
bool RunTimecodeTextAction(const TimecodeOptions& options, int& status);

}  // namespace basicutils_tool
