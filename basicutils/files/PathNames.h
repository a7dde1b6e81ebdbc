// The name splitters of directory paths, in two families that answer the
// same input differently. Both take the backslash as the only separator.
//
// DirName and BaseName, on the platform's CString, cut at the last backslash
// and trim nothing first:
//
//   input              DirName                  BaseName
//   ""                 "."                      "."
//   no backslash       the whole text           the whole text
//   "a\b\"             "a\b"                    ""
//   "\a"               ""                       "a"
//
// dirname and basename follow the POSIX functions of those names: they may
// write zeros into their argument, which must be writable, and answer either
// a pointer into it or a pointer to a constant text ("." or "\") that must
// not be written to. dirname("a") is "." while DirName("a") is "a".
//
//   dirname:  "" or null "."; "a" "."; "a\" "."; "\" "\"; "\a" "\";
//             "a\b\\" "a"; "\\a" "\"
//   basename: "" or null "."; "a\b" "b"; "a\b\\" "b" (the argument becomes
//             "a\b"); "\\\" "\" (the argument becomes "\")
//
// The 8-bit basename. The C library has a basename(char*) of its own, which
// glibc's <string.h> declares in C++ (g++ and clang++ define _GNU_SOURCE), and
// it splits at '/'. So that the two can never be confused, an unqualified
// call on char* text under `using namespace basicutils;` does not compile
// (the call is ambiguous) instead of silently reaching the C library. Call
// it as basicutils::basename, or name it once with `using
// basicutils::basename;` inside a function or the caller's own namespace.
// <libgen.h>, which turns basename into a macro, does not mix with it. The
// 16-bit functions are not affected: their argument type is the library's.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/platform/CString.h>

namespace basicutils {

BASICUTILS_EXPORT CString DirName(const CString& path);
BASICUTILS_EXPORT CString BaseName(const CString& path);

BASICUTILS_EXPORT char16_t* dirname(char16_t* path);
BASICUTILS_EXPORT char16_t* basename(char16_t* path);
BASICUTILS_EXPORT char* basename(char* path);

}  // namespace basicutils
