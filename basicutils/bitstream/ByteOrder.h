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
// The fixed-width swaps and the named-order reads and writes are inline, so
// that each compiles to a load or store and one byte-swap instruction.
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

#include <basicutils/Export.h>

#include <bit>
#include <cstdint>
#include <cstring>

namespace basicutils {

namespace detail::order {

template <typename T>
inline T LoadBytes(const void* p) {
    T v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

template <typename T>
inline void StoreBytes(void* p, T v) {
    std::memcpy(p, &v, sizeof v);
}

inline uint16_t Reverse16(uint16_t v) {
    return __builtin_bswap16(v);
}
inline uint32_t Reverse32(uint32_t v) {
    return __builtin_bswap32(v);
}
inline uint64_t Reverse64(uint64_t v) {
    return __builtin_bswap64(v);
}

// The named orders are defined on the bytes; the host's own order enters
// only here.
constexpr bool kHostIsBig = std::endian::native == std::endian::big;

inline uint32_t LoadMB32(const void* p) {
    uint32_t v = LoadBytes<uint32_t>(p);
    return kHostIsBig ? v : Reverse32(v);
}
inline uint16_t LoadMB16(const void* p) {
    uint16_t v = LoadBytes<uint16_t>(p);
    return kHostIsBig ? v : Reverse16(v);
}
inline uint32_t LoadLB32(const void* p) {
    uint32_t v = LoadBytes<uint32_t>(p);
    return kHostIsBig ? Reverse32(v) : v;
}
inline uint16_t LoadLB16(const void* p) {
    uint16_t v = LoadBytes<uint16_t>(p);
    return kHostIsBig ? Reverse16(v) : v;
}
inline void StoreMB32(void* p, uint32_t v) {
    StoreBytes(p, kHostIsBig ? v : Reverse32(v));
}
inline void StoreMB16(void* p, uint16_t v) {
    StoreBytes(p, kHostIsBig ? v : Reverse16(v));
}
inline void StoreLB32(void* p, uint32_t v) {
    StoreBytes(p, kHostIsBig ? Reverse32(v) : v);
}
inline void StoreLB16(void* p, uint16_t v) {
    StoreBytes(p, kHostIsBig ? Reverse16(v) : v);
}

}  // namespace detail::order

class BASICUTILS_EXPORT UByteSwapper {
  public:
    static void Swap(int16_t* value) {
        *value = static_cast<int16_t>(detail::order::Reverse16(static_cast<uint16_t>(*value)));
    }
    static void Swap(uint16_t* value) { *value = detail::order::Reverse16(*value); }
    static void Swap(int32_t* value) {
        *value = static_cast<int32_t>(detail::order::Reverse32(static_cast<uint32_t>(*value)));
    }
    static void Swap(uint32_t* value) { *value = detail::order::Reverse32(*value); }
    static void Swap(float* value) {
        static_assert(sizeof(float) == 4);
        detail::order::StoreBytes(
            value, detail::order::Reverse32(detail::order::LoadBytes<uint32_t>(value)));
    }
    static void Swap(int32_t& value) { Swap(&value); }
    static void Swap(uint32_t& value) { Swap(&value); }
    static void Swap(float& value) { Swap(&value); }
    static void Swap(double* value) {
        static_assert(sizeof(double) == 8);
        detail::order::StoreBytes(
            value, detail::order::Reverse64(detail::order::LoadBytes<uint64_t>(value)));
    }
    // The operand's significant bytes are reversed and nothing outside it
    // is touched. Where long double is the x87 80-bit extended type (x86
    // Linux: 16 bytes of storage, 10 of them significant) the 10 bytes of
    // the value are reversed, which turns it into the big-endian 80-bit
    // form stored by some file formats; the padding bytes are left alone.
    // Elsewhere the sizeof(long double) bytes are reversed.
    static void Swap(long double* value);

    static uint16_t SwapShort(uint16_t value) { return detail::order::Reverse16(value); }
    static uint32_t SwapLong(uint32_t value) { return detail::order::Reverse32(value); }
    static int64_t SwapLongLong(int64_t value) {
        return static_cast<int64_t>(detail::order::Reverse64(static_cast<uint64_t>(value)));
    }

    // Reverses the run of length bytes end to end; below 2 nothing changes
    // and the middle byte of an odd run stays.
    static void Swap(char* buffer, int16_t length);
    // Treats the run as 16-bit words and swaps the two bytes of each; an odd
    // trailing byte is left where it is.
    static void SwapShort(unsigned char* buffer, int16_t length);

    // Read 4 or 2 bytes at the pointer, reversed; the buffer is unchanged.
    static uint32_t SwapUL(const char* buffer) {
        return detail::order::Reverse32(detail::order::LoadBytes<uint32_t>(buffer));
    }
    static int32_t SwapSL(const char* buffer) { return static_cast<int32_t>(SwapUL(buffer)); }
    static uint16_t SwapUS(const char* buffer) {
        return detail::order::Reverse16(detail::order::LoadBytes<uint16_t>(buffer));
    }
    static int16_t SwapSS(const char* buffer) { return static_cast<int16_t>(SwapUS(buffer)); }

    // Write the bytes of value to the pointer, reversed.
    static void SwapToBuf(uint32_t value, char* buffer) {
        detail::order::StoreBytes(buffer, detail::order::Reverse32(value));
    }
    static void SwapToBuf(int32_t value, char* buffer) {
        SwapToBuf(static_cast<uint32_t>(value), buffer);
    }
    static void SwapToBuf(uint16_t value, char* buffer) {
        detail::order::StoreBytes(buffer, detail::order::Reverse16(value));
    }
    static void SwapToBuf(int16_t value, char* buffer) {
        SwapToBuf(static_cast<uint16_t>(value), buffer);
    }

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
inline int32_t GetLong(const char* p) {
    return static_cast<int32_t>(detail::order::LoadMB32(p));
}
inline int32_t GetLong(const unsigned char* p) {
    return static_cast<int32_t>(detail::order::LoadMB32(p));
}
inline void SetLong(char* p, int32_t value) {
    detail::order::StoreMB32(p, static_cast<uint32_t>(value));
}

// Most significant byte first, signed 16 bits.
inline int16_t GetShort(const char* p) {
    return p ? static_cast<int16_t>(detail::order::LoadMB16(p)) : 0;
}
inline int16_t GetShort(const unsigned char* p) {
    return p ? static_cast<int16_t>(detail::order::LoadMB16(p)) : 0;
}
inline void SetShort(char* p, int16_t value) {
    if (p) detail::order::StoreMB16(p, static_cast<uint16_t>(value));
}
inline void SetShort(unsigned char* p, int16_t value) {
    if (p) detail::order::StoreMB16(p, static_cast<uint16_t>(value));
}

// 32 bits as an int: MB32 and Int32 are the same functions.
inline int GetInt32(const unsigned char* p) {
    return p ? static_cast<int>(detail::order::LoadMB32(p)) : 0;
}
inline int GetMB32(const unsigned char* p) {
    return GetInt32(p);
}
inline int GetLB32(const char* p) {
    return p ? static_cast<int>(detail::order::LoadLB32(p)) : 0;
}
inline void SetInt32(unsigned char* p, unsigned int value) {
    if (p) detail::order::StoreMB32(p, value);
}
inline void SetMB32(unsigned char* p, unsigned int value) {
    SetInt32(p, value);
}
inline void SetLB32(unsigned char* p, unsigned int value) {
    if (p) detail::order::StoreLB32(p, value);
}

// 16 bits as 0..65535 (no sign); setters write the low 16 bits of value.
inline int GetInt16(const unsigned char* p) {
    return p ? detail::order::LoadMB16(p) : 0;
}
inline int GetMB16(const unsigned char* p) {
    return GetInt16(p);
}
inline int GetLB16(const unsigned char* p) {
    return p ? detail::order::LoadLB16(p) : 0;
}
inline void SetInt16(unsigned char* p, unsigned int value) {
    if (p) detail::order::StoreMB16(p, static_cast<uint16_t>(value));
}
inline void SetMB16(unsigned char* p, unsigned int value) {
    SetInt16(p, value);
}
inline void SetLB16(unsigned char* p, unsigned int value) {
    if (p) detail::order::StoreLB16(p, static_cast<uint16_t>(value));
}

BASICUTILS_EXPORT int64_t ToCLongLong(const unsigned char* text);
BASICUTILS_EXPORT char* ToString10(int64_t& value);

}  // namespace basicutils
