// CAppBytes: the byte-sized companion of CAppBits. It walks a caller-owned
// buffer and reads big-endian numbers of 1 to 4 bytes.
//
// No bounds are checked; `IsEOB` reports when the position has reached the
// size. Reading or writing n bytes requires n bytes at the current position
// (asserted in debug builds). `FlushBytes` is plain arithmetic on the
// position: it can step beyond the size, and a negative count steps back.
//
// Results: 1 byte gives 0..255, 2 give 0..65535, 3 give 0..16777215 (never
// sign-extended); 4 give the raw 32-bit pattern, so a set top bit makes the
// int negative. GetBytes with a count other than 1..4 returns 0 without
// reading or moving.
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
