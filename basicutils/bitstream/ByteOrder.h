// Byte-order tools for data that crosses between big- and little-endian
// layouts.
//
// UByteSwapper reverses the bytes of its operand unconditionally, whatever
// the host's own order; two calls give back the first value. The free
// functions read and write 16- and 32-bit numbers at any (unaligned) byte
// pointer in a named order: MB is most significant byte first, LB least
// significant first, and a name with neither (GetLong, SetInt16...) is MB.
//
// Null pointers. GetLong, SetLong and the UByteSwapper operations need a
// valid pointer. Every other getter below returns 0 for a null pointer and
// every other setter does nothing.
//
// Pointers that are only read are const; a caller's plain pointer converts.
// Widths are written out: the 32-bit "long" of the original interface is
// int32_t here, its "long long" int64_t.
//
// Decimal text. ToCLongLong collects the ASCII digits of a NUL-terminated
// 8-bit text into a 64-bit number, wrapping on overflow; every other byte,
// a sign included, is skipped (so "-42" reads as 42 and "1,234" as 1234).
// A null text reads as 0. ToString10 writes the 8 bytes of its argument as
// an unsigned 64-bit number in decimal (-1 gives 18446744073709551615) into
// a new 21-byte block from ::operator new, zero-filled after the digits;
// the caller frees it with ::operator delete.
#pragma once

#include <cstdint>

#include <basicutils/Export.h>

namespace basicutils {

class BASICUTILS_EXPORT UByteSwapper {
public:
    static void Swap(int16_t* value);
    static void Swap(uint16_t* value);
    static void Swap(int32_t* value);
    static void Swap(uint32_t* value);
    static void Swap(float* value);
    static void Swap(int32_t& value);
    static void Swap(uint32_t& value);
    static void Swap(float& value);
    static void Swap(double* value);
    // The operand's significant bytes are reversed and nothing outside it
    // is touched. Where long double is the x87 80-bit extended type (x86
    // Linux: 16 bytes of storage, 10 of them significant) the 10 bytes of
    // the value are reversed, which turns it into the big-endian 80-bit
    // form stored by some file formats; the padding bytes are left alone.
    // Elsewhere the sizeof(long double) bytes are reversed.
    static void Swap(long double* value);

    static uint16_t SwapShort(uint16_t value);
    static uint32_t SwapLong(uint32_t value);
    static int64_t SwapLongLong(int64_t value);

    // Reverses the run of length bytes end to end; below 2 nothing changes
    // and the middle byte of an odd run stays.
    static void Swap(char* buffer, int16_t length);
    // Reverses each pair of bytes from the start (a run of 16-bit words);
    // the last byte of an odd run stays.
    static void SwapShort(unsigned char* buffer, int16_t length);

    // Read 4 or 2 bytes at the pointer, reversed; the buffer is unchanged.
    static uint32_t SwapUL(const char* buffer);
    static int32_t SwapSL(const char* buffer);
    static uint16_t SwapUS(const char* buffer);
    static int16_t SwapSS(const char* buffer);

    // Write the bytes of value to the pointer, reversed.
    static void SwapToBuf(uint32_t value, char* buffer);
    static void SwapToBuf(int32_t value, char* buffer);
    static void SwapToBuf(uint16_t value, char* buffer);
    static void SwapToBuf(int16_t value, char* buffer);

protected:
    // Widths in bytes as the original 32-bit interface had them
    // (long double was 8 bytes there).
    static const short sizeOfShort = 2;
    static const short sizeOfUShort = 2;
    static const short sizeOfLong = 4;
    static const short sizeOfULong = 4;
    static const short sizeOfFloat = 4;
    static const short sizeOfDouble = 8;
    static const short sizeOfLongDouble = 8;
    static const short sizeOfLongLong = 8;
};

// Most significant byte first, signed. The pointer must be valid.
BASICUTILS_EXPORT int32_t GetLong(const char* p);
BASICUTILS_EXPORT int32_t GetLong(const unsigned char* p);
BASICUTILS_EXPORT void SetLong(char* p, int32_t value);

// Most significant byte first, signed 16 bits.
BASICUTILS_EXPORT int16_t GetShort(const char* p);
BASICUTILS_EXPORT int16_t GetShort(const unsigned char* p);
BASICUTILS_EXPORT void SetShort(char* p, int16_t value);
BASICUTILS_EXPORT void SetShort(unsigned char* p, int16_t value);

// 32 bits as an int: MB32 and Int32 are the same functions.
BASICUTILS_EXPORT int GetMB32(const unsigned char* p);
BASICUTILS_EXPORT int GetInt32(const unsigned char* p);
BASICUTILS_EXPORT int GetLB32(const char* p);
BASICUTILS_EXPORT void SetMB32(unsigned char* p, unsigned int value);
BASICUTILS_EXPORT void SetInt32(unsigned char* p, unsigned int value);
BASICUTILS_EXPORT void SetLB32(unsigned char* p, unsigned int value);

// 16 bits as 0..65535 (no sign); setters write the low 16 bits of value.
BASICUTILS_EXPORT int GetMB16(const unsigned char* p);
BASICUTILS_EXPORT int GetInt16(const unsigned char* p);
BASICUTILS_EXPORT int GetLB16(const unsigned char* p);
BASICUTILS_EXPORT void SetMB16(unsigned char* p, unsigned int value);
BASICUTILS_EXPORT void SetInt16(unsigned char* p, unsigned int value);
BASICUTILS_EXPORT void SetLB16(unsigned char* p, unsigned int value);

BASICUTILS_EXPORT int64_t ToCLongLong(const unsigned char* text);
BASICUTILS_EXPORT char* ToString10(int64_t& value);

}  // namespace basicutils
