// CAppBits: a bit cursor over a byte buffer that the caller owns.
//
// Fields of 0 to 32 bits are read and written at any bit position, most
// significant bit first; a value read comes back right-aligned. A 32-bit
// field whose top bit is set reads as a negative int; narrower fields never
// carry a sign.
//
// Bounds. The cursor compares its position with the end of the buffer only
// to choose how to read, and `IsEOB` says whether the byte position has
// reached the size. Staying inside the buffer is the caller's duty: a read
// or a write of n bits at bit offset o needs (o + n + 7) / 8 bytes at the
// current byte. Debug builds assert it.
//
// Reading. Three routes give the same result:
//   - where eight bytes remain at the cursor, one unaligned 64-bit load,
//     inline in this header so that a parsing loop keeps the cursor in
//     registers;
//   - otherwise, for up to 8 bits with two bytes left, the two mask tables
//     (`FastGetBits`, no loop);
//   - otherwise byte by byte, touching only the bytes the field covers.
//     A field that starts at offset o > 0 and is 32 bits wide spans five
//     bytes; the leftover bits of the first byte are put back on top.
// Near the end of the buffer only bytes inside it are loaded, and within
// the last byte a read that fits touches no further byte. A read of 0 bits
// returns 0 and, unless eight bytes remain, loads nothing.
//
// Writing. `PutBits` treats a byte it starts at bit 0 as fresh and clears
// it (including bits beyond the field), while into a byte already begun it
// ORs: earlier bits are never cleared there. The value is not masked to n
// bits, so a value too wide for its field spills its high bits into the
// bits just before the field. This includes a 32-bit field whose top bit is
// set: as an int it is negative, and written from mid-byte it also sets the
// bits before the field in its first byte. When a field finishes at the end
// of a byte, the following byte is left alone until a later write begins it.
//
// The mask tables are filled when the library loads, before any cursor
// exists (see LoadTimeObjects.cpp), and are read-only afterwards. A cursor
// holds no lock and belongs to one thread at a time; copies of a cursor
// walk the same buffer independently.
#pragma once

#include <basicutils/Export.h>

#include <cassert>
#include <cstdint>
#include <cstring>

namespace basicutils {

// Whether a read moves the cursor.
enum cbits_get_t {
    kCBitsShow = 0,     // read and stay
    kCBitsConsume = 1,  // read and move past the bits read
};

class BASICUTILS_EXPORT CAppBits {
  public:
    CAppBits();
    CAppBits(unsigned char* buffer, int size);
    CAppBits(const CAppBits& other) = default;
    CAppBits& operator=(const CAppBits& other) = default;
    ~CAppBits() = default;

    // Points the cursor at bit 0 of a new buffer.
    void SetBuf(unsigned char* buffer, int size);

    // 1 when the cursor sits on a byte boundary, else 0.
    int IsByteAlligned() const { return mBitOffset == 0 ? 1 : 0; }
    // 1 once the byte position has reached the size (signed), else 0.
    int IsEOB() const { return mBytePos >= mBufSize ? 1 : 0; }
    int GetBytePosition() const { return mBytePos; }

    // The next n bits (0..32); the cursor stays.
    int ShowBits(int n) { return GetBits(n, kCBitsShow); }
    // The next n bits; the cursor moves past them in kCBitsConsume mode.
    inline int GetBits(int n, cbits_get_t mode);
    // Moves the cursor forward n bits without reading.
    void FlushBits(int n);
    // Writes the low n bits of value at the cursor and moves past them.
    // Value first, count second. Returns 0.
    int PutBits(int value, int n);
    // Moves the cursor to bitPosition, reads n bits and stays after them.
    int GetBitsAt(int bitPosition, int n) {
        mBytePos = bitPosition >> 3;
        mBitOffset = bitPosition & 7;
        return GetBits(n, kCBitsConsume);
    }
    // Moves the cursor to bitPosition and writes as PutBits does. Returns 0.
    int PutBitsAt(int bitPosition, int value, int n);

  protected:
    // Reads through the two mask tables alone. Requires n <= 8 and two
    // bytes at the cursor; always loads exactly those two bytes.
    int FastGetBits(int n, cbits_get_t mode);

    // Fills the three tables; returns true. Run once at load.
    static bool InitializeByteMasks();

    // The reads near the end of the buffer (fewer than eight bytes at the
    // cursor): the mask tables or the byte loop. It takes the cursor by
    // value so that an inlined GetBits can keep the cursor in registers.
    static int PeekBitsNearEnd(const unsigned char* buffer, int size, int bytePos, int bitOffset,
                               int n);
    // Bits o..o+n-1 (n <= 8) of the two bytes at p, through the mask tables.
    static int MaskedPair(const unsigned char* p, int o, int n) {
        unsigned w = (static_cast<unsigned>(sFirstByteMasks[n][o] & p[0]) << 8) |
                     static_cast<unsigned>(sSecondByteMasks[n][o] & p[1]);
        return static_cast<int>(w >> (16 - o - n));
    }
    // Advances the bit position by n.
    void Advance(int n) {
        int bits = mBitOffset + n;
        mBytePos += bits >> 3;
        mBitOffset = bits & 7;
    }

    unsigned char* mBuffer;  // not owned
    int mBitOffset;          // 0..7, bits of the current byte already passed
    int mBytePos;            // index of the current byte
    int mBufSize;            // size of the buffer in bytes

    static bool sByteMasksInitialized;
    // Row n (0..8 bits), column o (0..7 offset): the top n bits of a
    // 16-bit word shifted right by o, split into its high and low byte.
    static unsigned char sFirstByteMasks[9][8];
    static unsigned char sSecondByteMasks[9][8];
    // Column o: the bits of the current byte not yet passed (0xFF >> o).
    static unsigned char sRemainingBitsMasks[8];
};

int CAppBits::GetBits(int n, cbits_get_t mode) {
    assert(n >= 0 && n <= 32);
    const int p = mBytePos;
    int result;
    // One unsigned comparison: a negative position fails it too.
    if (static_cast<int64_t>(static_cast<uint32_t>(p)) + 8 <= mBufSize) {
        // o + n <= 39 bits fit in one load; the split shift stays below 64
        // for every n, and n = 0 gives 0.
        uint64_t v;
        std::memcpy(&v, mBuffer + p, sizeof v);
        v = __builtin_bswap64(v) << mBitOffset;
        result = static_cast<int>(static_cast<uint32_t>((v >> (63 - n)) >> 1));
    } else {
        result = PeekBitsNearEnd(mBuffer, mBufSize, p, mBitOffset, n);
    }
    if (mode == kCBitsConsume) Advance(n);
    return result;
}

}  // namespace basicutils
