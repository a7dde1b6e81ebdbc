// ToCLongLong against a reference built another way (digits filtered out,
// then parsed 18 at a time with std::from_chars and combined modulo 2^64),
// and ToString10 round trips against std::to_chars.
#include <basicutils/bitstream/ByteOrder.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

#include "FuzzSupport.h"

namespace {

using fuzzsupport::Check;

uint64_t ReferenceDigits(const std::string& text) {
    std::string digits;
    for (char c : text)
        if (c >= '0' && c <= '9') digits += c;
    uint64_t value = 0;
    for (size_t i = 0; i < digits.size(); i += 18) {
        const size_t len = std::min<size_t>(18, digits.size() - i);
        uint64_t chunk = 0;
        std::from_chars(digits.data() + i, digits.data() + i + len, chunk);
        uint64_t scale = 1;
        for (size_t k = 0; k < len; ++k) scale *= 10;
        value = value * scale + chunk;  // unsigned arithmetic wraps modulo 2^64
    }
    return value;
}

void CheckToString10(int64_t value) {
    char* text = basicutils::ToString10(value);
    char want[24] = {};
    std::to_chars(want, want + 20, static_cast<uint64_t>(value));
    Check(std::strcmp(text, want) == 0);
    for (size_t i = std::strlen(text); i < 21; ++i) Check(text[i] == 0);
    Check(basicutils::ToCLongLong(reinterpret_cast<unsigned char*>(text)) == value);
    ::operator delete(text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // The text stops at the first NUL, as the reader's contract says.
    std::string text(reinterpret_cast<const char*>(data), size);
    text = text.c_str();
    const int64_t parsed =
        basicutils::ToCLongLong(reinterpret_cast<const unsigned char*>(text.c_str()));
    Check(static_cast<uint64_t>(parsed) == ReferenceDigits(text));
    CheckToString10(parsed);
    if (size >= 8) {
        int64_t raw;
        std::memcpy(&raw, data, 8);
        CheckToString10(raw);
    }
    return 0;
}
