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

// The operands of an action ("frames TC [--rate R]"), or null when there is
// no such action; and the usage error that shows them.
const char* ActionUsage(const std::string& action);
int ActionUsageError(const std::string& action);

// The library's reading of `text` (from the left, as CTimecode::SetTime
// reads it) at `rate`. Bad text is not refused: it gets the library's answer,
// and a note on stderr says what was read whenever that is not what was typed,
// and when its frame count passes the library's 32 bits.
basicutils::CTimecode ReadTimecode(const std::string& text, double rate);

// The library counts frames in 32 bits and labels a count through 16-bit
// minutes, so 1092:15:59 is the last time arithmetic can give; beyond either
// limit its answer wraps, which is its contract. WideCount is the 1-based
// count before it is kept to 32 bits; NoteIfWrapped prints a note on stderr
// when a result of `count` frames at `rate` passes a limit.
int64_t WideCount(const basicutils::CTimecode& tc);
void NoteIfWrapped(int64_t count, double rate);

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
