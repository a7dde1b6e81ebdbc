// The runtime's buffered stream over a descriptor: _wfdopen and the stream
// calls the file layer uses (fread, fwrite, fgets, fputs, fgetws, fputws,
// fseek, ftell, fflush, fclose, feof, ferror, clearerr).
//
// This is the library's own stream, not the C library's FILE: its reads,
// writes and seeks go through the library's seam like every other call, and
// it never moves the descriptor except where said below. The calls are
// overloads on RuntimeStream*, so they live beside the C library's calls of
// the same names (which take FILE*) without ambiguity.
//
// Buffer: 4,096 bytes, filled by one read of the descriptor and written out
// when full, on fflush, fseek and fclose. Writing out loops until every byte
// is written or the system reports a real error (a short write is continued,
// EINTR retried), so nothing a caller was told is written is lost silently.
//
// Position and the descriptor. The stream and its descriptor share one
// position only at these moments:
// - fseek writes out pending bytes, drops the read-ahead and moves the
//   descriptor once, to the stream's target (SEEK_CUR counts from the
//   stream's own position, not the descriptor's). Nothing is read ahead: after
//   fseek the descriptor stands exactly where the stream does.
// - fflush writes out pending bytes; read-ahead is dropped and the descriptor
//   stays where the stream's reads left it (ahead of the stream by what was
//   dropped), as with the legacy runtime.
// - Reading refills the buffer from where the descriptor stands; the next
//   fill starts where the last one ended.
// Offsets of fseek and ftell are 32-bit: a target beyond 0x7FFFFFFF fails
// with EINVAL and moves nothing, and ftell answers -1 there.
//
// Modes: "r", "w", "a", "r+", "w+", "a+", with an optional 'b' (binary) or 't'
// (text); without either the stream follows the descriptor's mode from
// _wopen. The mode only says what the stream may do: it neither creates nor
// truncates. "a" writes out at the end of the file each time. An update
// stream may switch from reading to writing at any moment: the descriptor is
// first put back to the stream's position; from writing to reading, pending
// bytes are written out first. Reading a write-only stream or writing a
// read-only one fails with EBADF and sets the error flag.
//
// Text: in text mode reading turns "\r\n" into "\n" (a lone "\r" stays);
// writing is never translated. fgets and fputs carry 8-bit text as it is.
// fgetws and fputws carry 16-bit text: on a binary stream as raw 16-bit units,
// least significant byte first, with no byte-order mark written or skipped;
// on a text stream as UTF-8 on disk, an ill-formed byte becoming U+FFFD and a
// lone surrogate written as U+FFFD.
//
// Failure sets errno and GetLastError as every call of the layer does, and
// the stream's error flag, which stays until clearerr. fseek and clearerr
// clear the end-of-file flag. A stream belongs to one thread at a time.
#pragma once

#include <basicutils/Export.h>
#include <basicutils/platform/RuntimeFiles.h>

#include <concepts>
#include <cstddef>
#include <cstdint>

namespace basicutils {

class RuntimeStream;

// A stream over an open descriptor, or null (EINVAL for a bad mode, EBADF
// for a descriptor that is not open). The stream owns the descriptor from
// then on: fclose closes both.
BASICUTILS_EXPORT RuntimeStream* _wfdopen(int fd, const char16_t* mode);

// Whole items transferred; fewer on the end of the file or a failure.
BASICUTILS_EXPORT size_t fread(void* buffer, size_t size, size_t count, RuntimeStream* stream);
BASICUTILS_EXPORT size_t fwrite(const void* buffer, size_t size, size_t count,
                                RuntimeStream* stream);

// Reads one line of at most n-1 bytes, with its "\n" when it fits, and
// terminates it. The buffer, or null when nothing came (end or failure).
BASICUTILS_EXPORT char* fgets(char* buffer, int n, RuntimeStream* stream);
// Writes the text without its terminator: 0, or -1 on failure.
BASICUTILS_EXPORT int fputs(const char* text, RuntimeStream* stream);
// The same on 16-bit text, n counting units. When a character needs two
// units and only one is left, its second unit opens the next call.
BASICUTILS_EXPORT char16_t* fgetws(char16_t* buffer, int n, RuntimeStream* stream);
BASICUTILS_EXPORT int fputws(const char16_t* text, RuntimeStream* stream);

// 0, or -1 with nothing moved.
BASICUTILS_EXPORT int fseek(RuntimeStream* stream, int32_t offset, int origin);
// The stream's position, or -1.
BASICUTILS_EXPORT int32_t ftell(RuntimeStream* stream);
// Writes out, closes the descriptor, frees the stream: 0, or -1 when any of
// it failed (the stream is gone either way).
BASICUTILS_EXPORT int fclose(RuntimeStream* stream);

// The descriptor under the stream.
BASICUTILS_EXPORT int _fileno(RuntimeStream* stream);

// Non-zero once a read met the end of the file / once a call failed.
BASICUTILS_EXPORT int feof(RuntimeStream* stream);
BASICUTILS_EXPORT int ferror(RuntimeStream* stream);
BASICUTILS_EXPORT void clearerr(RuntimeStream* stream);

namespace detail {
BASICUTILS_EXPORT int FlushStream(RuntimeStream* stream);
}  // namespace detail

// Writes out pending bytes (see the top): 0, or -1. A template so that the
// C idiom fflush(NULL) still reaches the C library's call unambiguously.
template <std::same_as<RuntimeStream> Stream>
int fflush(Stream* stream) {
    return detail::FlushStream(stream);
}

}  // namespace basicutils
