// CAppBytes: a byte cursor over a buffer that the caller owns, reading
// numbers of 1 to 4 bytes, most significant byte first.
//
// Like CAppBits it never compares the cursor with the end of the buffer:
// `IsEOB` tells the caller, and a read or write of n bytes needs n bytes at
// the cursor (debug builds assert it). `FlushBytes` may move the cursor past
// the end, or backward with a negative count.
//
// GetBytes with a count outside 1..4 reads nothing, leaves the cursor and
// returns 0. One byte reads as 0..255, two as 0..65535, three as
// 0..16777215; four give the whole 32-bit pattern, negative when the top
// bit is set.
//
// PutBytes is the mirror of GetBytes: it writes the low n bytes of value
// (n of 1 to 4), most significant first, and moves the cursor past them,
// so that a value written can be read back with GetBytes(n, kCBytesConsume).
// Any other count writes nothing and leaves the cursor. It returns 0.
#pragma once

#include <basicutils/Export.h>

namespace basicutils {

// Whether a read moves the cursor. Any value other than 0 consumes.
enum cbytes_get_t {
    kCBytesShow = 0,
    kCBytesConsume = 1,
};

class BASICUTILS_EXPORT CAppBytes {
public:
    CAppBytes();
    CAppBytes(unsigned char* buffer, int size);
    CAppBytes(const CAppBytes& other) = default;
    CAppBytes& operator=(const CAppBytes& other) = default;
    ~CAppBytes() = default;

    // Points the cursor at byte 0 of a new buffer.
    void SetBuf(unsigned char* buffer, int size);

    // 1 once the byte position has reached the size (signed), else 0.
    int IsEOB() const { return mBytePos >= mBufSize ? 1 : 0; }

    // The next n bytes (1..4) as a number; moves past them unless mode is 0.
    int GetBytes(int n, cbytes_get_t mode);
    // GetBytes(n, kCBytesShow).
    int ShowBytes(int n);
    // Adds n to the byte position; reads nothing.
    void FlushBytes(int n);
    // Writes the low n bytes (1..4) of value at the cursor and moves past
    // them. Returns 0.
    int PutBytes(int value, int n);

protected:
    unsigned char* mBuffer;  // not owned
    int mBytePos;            // index of the current byte
    int mBufSize;            // size of the buffer in bytes
};

}  // namespace basicutils
