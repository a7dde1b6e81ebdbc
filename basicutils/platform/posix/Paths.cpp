// Names between the library (UTF-16, `\`) and the system (bytes, `/`).
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/internal/Paths.h>
#include <basicutils/platform/internal/Utf8.h>

#include <cerrno>
#include <cstdint>

namespace basicutils::detail {
namespace {

constexpr char16_t kBackslashEscape = 0xDC5C;  // a backslash inside a name
constexpr char16_t kByteEscapeFirst = 0xDC80;  // bytes 0x80..0xFF
constexpr char16_t kByteEscapeLast = 0xDCFF;

bool IsHighSurrogate(char32_t c) {
    return c >= 0xD800 && c <= 0xDBFF;
}
bool IsLowSurrogate(char32_t c) {
    return c >= 0xDC00 && c <= 0xDFFF;
}
std::u16string Decode(std::string_view bytes, bool wholePath) {
    std::u16string out;
    out.reserve(bytes.size());
    for (size_t i = 0; i < bytes.size();) {
        const auto b = static_cast<unsigned char>(bytes[i]);
        if (b < 0x80) {
            if (b == '\\')
                out.push_back(kBackslashEscape);
            else if (b == '/' && wholePath)
                out.push_back(u'\\');
            else
                out.push_back(b);
            ++i;
            continue;
        }
        char32_t c = 0;
        bool valid = false;
        const size_t length = DecodeUtf8(bytes.substr(i), c, valid);
        if (!valid) {
            for (size_t k = 0; k < length; ++k)
                out.push_back(
                    static_cast<char16_t>(0xDC00 + static_cast<unsigned char>(bytes[i + k])));
            i += length;
        } else if (c >= 0x10000) {
            out.push_back(static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10)));
            out.push_back(static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF)));
            i += length;
        } else {
            out.push_back(static_cast<char16_t>(c));
            i += length;
        }
    }
    return out;
}

bool Refuse(int error) {
    errno = error;
    SetLastErrorFromErrno(error);
    return false;
}

}  // namespace

bool ToSystemPath(const char16_t* path, std::string& out) {
    out.clear();
    if (!path) return Refuse(EINVAL);
    bool escaped = false;
    for (const char16_t* p = path; *p; ++p) {
        const char16_t c = *p;
        if (c == u'\\') {
            out.push_back('/');
        } else if (IsHighSurrogate(c) && IsLowSurrogate(p[1])) {
            AppendUtf8(out, 0x10000 + ((char32_t(c) - 0xD800) << 10) + (char32_t(p[1]) - 0xDC00));
            ++p;
        } else if (c >= kByteEscapeFirst && c <= kByteEscapeLast) {
            out.push_back(static_cast<char>(c - 0xDC00));
            escaped = true;
        } else if (c == kBackslashEscape) {
            out.push_back('\\');
            escaped = true;
        } else if (IsHighSurrogate(c) || IsLowSurrogate(c)) {
            return Refuse(EILSEQ);
        } else {
            AppendUtf8(out, c);
        }
    }
    if (!escaped) return true;
    // Escapes must come back as themselves: bytes that would read as valid
    // UTF-8 name another file, the one spelled with those characters.
    std::u16string expected(path);
    for (char16_t& c : expected)
        if (c == u'\\') c = u'/';
    if (Decode(out, false) != expected) return Refuse(EILSEQ);
    return true;
}

std::u16string FromSystemName(std::string_view name) {
    return Decode(name, false);
}

std::u16string FromSystemPath(std::string_view path) {
    return Decode(path, true);
}

}  // namespace basicutils::detail
