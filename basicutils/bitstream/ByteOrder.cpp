#include <basicutils/bitstream/ByteOrder.h>

#include <cstring>
#include <limits>
#include <new>

namespace basicutils {

namespace {

template <typename T>
T Load(const void* p) {
    T v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

template <typename T>
void Store(void* p, T v) {
    std::memcpy(p, &v, sizeof v);
}

// Reverses a run of bytes end to end.
void ReverseRun(unsigned char* p, int length) {
    for (int i = 0, j = length - 1; i < j; ++i, --j) {
        unsigned char t = p[i];
        p[i] = p[j];
        p[j] = t;
    }
}

uint32_t LoadBE32(const void* p) { return __builtin_bswap32(Load<uint32_t>(p)); }
uint16_t LoadBE16(const void* p) { return __builtin_bswap16(Load<uint16_t>(p)); }
void StoreBE32(void* p, uint32_t v) { Store(p, __builtin_bswap32(v)); }
void StoreBE16(void* p, uint16_t v) { Store(p, __builtin_bswap16(v)); }

}  // namespace

// ---- UByteSwapper ----------------------------------------------------------

void UByteSwapper::Swap(int16_t* value) { *value = static_cast<int16_t>(SwapShort(static_cast<uint16_t>(*value))); }
void UByteSwapper::Swap(uint16_t* value) { *value = SwapShort(*value); }
void UByteSwapper::Swap(int32_t* value) { *value = static_cast<int32_t>(SwapLong(static_cast<uint32_t>(*value))); }
void UByteSwapper::Swap(uint32_t* value) { *value = SwapLong(*value); }
void UByteSwapper::Swap(int32_t& value) { Swap(&value); }
void UByteSwapper::Swap(uint32_t& value) { Swap(&value); }

void UByteSwapper::Swap(float* value) {
    static_assert(sizeof(float) == 4);
    Store(value, __builtin_bswap32(Load<uint32_t>(value)));
}

void UByteSwapper::Swap(float& value) { Swap(&value); }

void UByteSwapper::Swap(double* value) {
    static_assert(sizeof(double) == 8);
    Store(value, __builtin_bswap64(Load<uint64_t>(value)));
}

void UByteSwapper::Swap(long double* value) {
    // x87 extended: 64-bit significand, 10 significant bytes at the start.
    constexpr bool kX87 = std::numeric_limits<long double>::digits == 64;
    constexpr int kBytes = kX87 ? 10 : static_cast<int>(sizeof(long double));
    static_assert(kBytes <= static_cast<int>(sizeof(long double)));
    ReverseRun(reinterpret_cast<unsigned char*>(value), kBytes);
}

uint16_t UByteSwapper::SwapShort(uint16_t value) { return __builtin_bswap16(value); }
uint32_t UByteSwapper::SwapLong(uint32_t value) { return __builtin_bswap32(value); }

int64_t UByteSwapper::SwapLongLong(int64_t value) {
    return static_cast<int64_t>(__builtin_bswap64(static_cast<uint64_t>(value)));
}

void UByteSwapper::Swap(char* buffer, int16_t length) {
    ReverseRun(reinterpret_cast<unsigned char*>(buffer), length);
}

void UByteSwapper::SwapShort(unsigned char* buffer, int16_t length) {
    for (int i = 0; i + 1 < length; i += 2) {
        unsigned char t = buffer[i];
        buffer[i] = buffer[i + 1];
        buffer[i + 1] = t;
    }
}

uint32_t UByteSwapper::SwapUL(const char* buffer) { return __builtin_bswap32(Load<uint32_t>(buffer)); }
int32_t UByteSwapper::SwapSL(const char* buffer) { return static_cast<int32_t>(SwapUL(buffer)); }
uint16_t UByteSwapper::SwapUS(const char* buffer) { return __builtin_bswap16(Load<uint16_t>(buffer)); }
int16_t UByteSwapper::SwapSS(const char* buffer) { return static_cast<int16_t>(SwapUS(buffer)); }

void UByteSwapper::SwapToBuf(uint32_t value, char* buffer) { Store(buffer, __builtin_bswap32(value)); }
void UByteSwapper::SwapToBuf(int32_t value, char* buffer) { SwapToBuf(static_cast<uint32_t>(value), buffer); }
void UByteSwapper::SwapToBuf(uint16_t value, char* buffer) { Store(buffer, __builtin_bswap16(value)); }
void UByteSwapper::SwapToBuf(int16_t value, char* buffer) { SwapToBuf(static_cast<uint16_t>(value), buffer); }

// ---- Named-order reads and writes -------------------------------------------

int32_t GetLong(const char* p) { return static_cast<int32_t>(LoadBE32(p)); }
int32_t GetLong(const unsigned char* p) { return static_cast<int32_t>(LoadBE32(p)); }
void SetLong(char* p, int32_t value) { StoreBE32(p, static_cast<uint32_t>(value)); }

int16_t GetShort(const char* p) { return p ? static_cast<int16_t>(LoadBE16(p)) : 0; }
int16_t GetShort(const unsigned char* p) { return p ? static_cast<int16_t>(LoadBE16(p)) : 0; }

void SetShort(char* p, int16_t value) {
    if (p) StoreBE16(p, static_cast<uint16_t>(value));
}

void SetShort(unsigned char* p, int16_t value) {
    if (p) StoreBE16(p, static_cast<uint16_t>(value));
}

int GetInt32(const unsigned char* p) { return p ? static_cast<int>(LoadBE32(p)) : 0; }
int GetMB32(const unsigned char* p) { return GetInt32(p); }
int GetLB32(const char* p) { return p ? static_cast<int>(Load<uint32_t>(p)) : 0; }

void SetInt32(unsigned char* p, unsigned int value) {
    if (p) StoreBE32(p, value);
}

void SetMB32(unsigned char* p, unsigned int value) { SetInt32(p, value); }

void SetLB32(unsigned char* p, unsigned int value) {
    if (p) Store(p, static_cast<uint32_t>(value));
}

int GetInt16(const unsigned char* p) { return p ? LoadBE16(p) : 0; }
int GetMB16(const unsigned char* p) { return GetInt16(p); }
int GetLB16(const unsigned char* p) { return p ? Load<uint16_t>(p) : 0; }

void SetInt16(unsigned char* p, unsigned int value) {
    if (p) StoreBE16(p, static_cast<uint16_t>(value));
}

void SetMB16(unsigned char* p, unsigned int value) { SetInt16(p, value); }

void SetLB16(unsigned char* p, unsigned int value) {
    if (p) Store(p, static_cast<uint16_t>(value));
}

// ---- Decimal text ------------------------------------------------------------

int64_t ToCLongLong(const unsigned char* text) {
    uint64_t result = 0;  // unsigned so that overflow wraps with defined results
    if (!text) return 0;
    for (; *text; ++text) {
        unsigned digit = static_cast<unsigned>(*text) - '0';
        if (digit <= 9) result = result * 10 + digit;
    }
    return static_cast<int64_t>(result);
}

char* ToString10(int64_t& value) {
    constexpr size_t kSize = 21;  // 20 digits of 2^64 - 1 and the terminator
    char* text = static_cast<char*>(::operator new(kSize));
    std::memset(text, 0, kSize);
    char digits[20];
    int count = 0;
    uint64_t v = static_cast<uint64_t>(value);
    do {
        digits[count++] = static_cast<char>('0' + v % 10);
        v /= 10;
    } while (v != 0);
    for (int i = 0; i < count; ++i) text[i] = digits[count - 1 - i];
    return text;
}

}  // namespace basicutils
