// Fuzzes the 8-bit/16-bit conversions against a small independent model.
//
// Properties checked for any input:
// - a size query (destination length 0) answers exactly what a conversion
//   then writes, and one unit or byte less fails with
//   ERROR_INSUFFICIENT_BUFFER;
// - strict decoding fails exactly when the model says the bytes are not
//   UTF-8, and on valid input UTF-8 -> UTF-16 -> UTF-8 is the identity;
// - decoded text never holds a lone surrogate, and re-decoding its encoding
//   gives it back;
// - the input read as UTF-16 encodes and decodes to itself with lone
//   surrogates replaced by U+FFFD;
// - Mac Roman bytes survive a round trip;
// - MString::ImportASCII / ExportASCII agree with the direct calls.
#include <basicutils/platform/CodePage.h>
#include <basicutils/platform/Errors.h>
#include <basicutils/text/MString.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "FuzzSupport.h"

using namespace basicutils;

namespace {

using fuzzsupport::Check;

// A textbook validator: length from the lead byte, then the value's range.
bool ModelIsUtf8(const uint8_t* s, size_t n) {
    size_t i = 0;
    while (i < n) {
        uint8_t b = s[i];
        size_t len;
        uint32_t cp, min;
        if (b < 0x80) {
            ++i;
            continue;
        } else if ((b >> 5) == 0x6) {
            len = 2, cp = b & 0x1F, min = 0x80;
        } else if ((b >> 4) == 0xE) {
            len = 3, cp = b & 0x0F, min = 0x800;
        } else if ((b >> 3) == 0x1E) {
            len = 4, cp = b & 0x07, min = 0x10000;
        } else {
            return false;
        }
        if (i + len > n) return false;
        for (size_t k = 1; k < len; ++k) {
            if ((s[i + k] & 0xC0) != 0x80) return false;
            cp = (cp << 6) | (s[i + k] & 0x3F);
        }
        if (cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return false;
        i += len;
    }
    return true;
}

bool HasLoneSurrogate(const std::u16string& t) {
    for (size_t i = 0; i < t.size(); ++i) {
        if (t[i] >= 0xD800 && t[i] <= 0xDBFF) {
            if (i + 1 < t.size() && t[i + 1] >= 0xDC00 && t[i + 1] <= 0xDFFF) {
                ++i;
                continue;
            }
            return true;
        }
        if (t[i] >= 0xDC00 && t[i] <= 0xDFFF) return true;
    }
    return false;
}

std::u16string Decode(uint32_t cp, const char* s, int n, uint32_t flags = 0) {
    int need = MultiByteToWideChar(cp, flags, s, n, nullptr, 0);
    if (need == 0) return std::u16string();
    std::u16string out(static_cast<size_t>(need), u'\0');
    Check(MultiByteToWideChar(cp, flags, s, n, out.data(), need) == need);
    if (need > 1) {
        SetLastError(0);
        Check(MultiByteToWideChar(cp, flags, s, n, out.data(), need - 1) == 0);
        Check(GetLastError() == ERROR_INSUFFICIENT_BUFFER);
        Check(MultiByteToWideChar(cp, flags, s, n, out.data(), need) == need);
    }
    return out;
}

std::string Encode(uint32_t cp, const char16_t* s, int n) {
    int need = WideCharToMultiByte(cp, 0, s, n, nullptr, 0, nullptr, nullptr);
    Check(need > 0);
    std::string out(static_cast<size_t>(need), '\0');
    Check(WideCharToMultiByte(cp, 0, s, n, out.data(), need, nullptr, nullptr) == need);
    if (need > 1) {  // a length of 0 would be a size query
        SetLastError(0);
        Check(WideCharToMultiByte(cp, 0, s, n, out.data(), need - 1, nullptr, nullptr) == 0);
        Check(GetLastError() == ERROR_INSUFFICIENT_BUFFER);
        Check(WideCharToMultiByte(cp, 0, s, n, out.data(), need, nullptr, nullptr) == need);
    }
    return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0 || size > (1u << 16)) return 0;
    const char* bytes = reinterpret_cast<const char*>(data);
    const int n = static_cast<int>(size);

    // UTF-8 in.
    const bool valid = ModelIsUtf8(data, size);
    std::u16string wide = Decode(CP_UTF8, bytes, n);
    Check(!wide.empty() && wide.size() <= size);
    Check(!HasLoneSurrogate(wide));
    char16_t probe[1];
    SetLastError(0);
    int strict = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, bytes, n, probe, 0);
    Check((strict != 0) == valid);
    if (!valid) Check(GetLastError() == ERROR_NO_UNICODE_TRANSLATION);
    std::string back = Encode(CP_UTF8, wide.data(), static_cast<int>(wide.size()));
    if (valid) Check(back == std::string(bytes, size));
    Check(ModelIsUtf8(reinterpret_cast<const uint8_t*>(back.data()), back.size()));
    Check(Decode(CP_UTF8, back.data(), static_cast<int>(back.size())) == wide);

    // UTF-16 in: lone surrogates become U+FFFD, all else comes back.
    if (size >= 2) {
        std::u16string units(size / 2, u'\0');
        for (size_t i = 0; i < units.size(); ++i)
            units[i] = static_cast<char16_t>(data[2 * i] | (data[2 * i + 1] << 8));
        std::u16string model = units;
        for (size_t i = 0; i < model.size(); ++i) {
            bool high = model[i] >= 0xD800 && model[i] <= 0xDBFF;
            bool low = model[i] >= 0xDC00 && model[i] <= 0xDFFF;
            if (high && i + 1 < model.size() && model[i + 1] >= 0xDC00 && model[i + 1] <= 0xDFFF) {
                ++i;
            } else if (high || low) {
                model[i] = 0xFFFD;
            }
        }
        std::string utf8 = Encode(CP_UTF8, units.data(), static_cast<int>(units.size()));
        Check(Decode(CP_UTF8, utf8.data(), static_cast<int>(utf8.size())) == model);
    }

    // Mac Roman: one unit per byte and back.
    std::u16string roman = Decode(CP_MACCP, bytes, n);
    Check(roman.size() == size);
    Check(Encode(CP_MACCP, roman.data(), n) == std::string(bytes, size));

    // MString agrees with the direct calls (its text ends at the first zero).
    MString s;
    s.ImportASCII(bytes, n);
    const std::u16string imported(static_cast<const char16_t*>(s));
    Check(imported == std::u16string(wide.c_str()));
    std::vector<char> out(back.size() + 1, '#');
    int written = s.ExportASCII(out.data(), static_cast<int>(back.size()));
    const std::string expected = std::string(back.c_str());
    Check(written == static_cast<int>(expected.size()));
    Check(std::string(out.data()) == expected);
    if (!expected.empty()) {
        // One byte short: the whole text or nothing.
        Check(s.ExportASCII(out.data(), static_cast<int>(expected.size()) - 1) == 0);
        Check(out[0] == 0);
    }
    return 0;
}
