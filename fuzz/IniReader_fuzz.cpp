// Fuzzes the settings reader: any bytes as a settings file.
//
// Properties checked for any input:
// - reading never fails, and writing the text out and reading it again
//   gives the same values (a read, a write without change, a read agree);
// - a value set with valid names reads back exactly, also after the text is
//   written out and read again, and every other value stays as it was;
// - a removed key reads as missing afterwards.
// The first bytes choose the names and the value, the rest is the file.
#include <basicutils/platform/internal/IniDocument.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "FuzzSupport.h"

using basicutils::detail::IniDocument;

namespace {

using fuzzsupport::Check;

// A short 16-bit text from the input: `length` units, each from one byte, so
// that line breaks, brackets, `=` and blanks all occur.
std::u16string Take(std::string_view& data, size_t length) {
    std::u16string out;
    while (length-- > 0 && !data.empty()) {
        const auto byte = static_cast<unsigned char>(data.front());
        out += byte < 0x80 ? static_cast<char16_t>(byte) : static_cast<char16_t>(0x100 + byte);
        data.remove_prefix(1);
    }
    return out;
}

// Whether two names are one for the reader: blanks at the ends and ASCII
// case don't count.
bool SameName(std::u16string a, std::u16string b) {
    for (std::u16string* s : {&a, &b}) {
        while (!s->empty() && (s->front() == u' ' || s->front() == u'\t')) s->erase(0, 1);
        while (!s->empty() && (s->back() == u' ' || s->back() == u'\t')) s->pop_back();
        for (char16_t& c : *s)
            if (c >= u'A' && c <= u'Z') c = static_cast<char16_t>(c + 32);
    }
    return a == b;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    std::string_view data(reinterpret_cast<const char*>(bytes), size);
    const size_t lengths = data.empty() ? 0 : static_cast<unsigned char>(data.front());
    if (!data.empty()) data.remove_prefix(1);
    const std::u16string section = Take(data, 1 + lengths % 4);
    const std::u16string key = Take(data, 1 + (lengths / 4) % 4);
    const std::u16string value = Take(data, (lengths / 16) % 8);
    const std::u16string other = Take(data, 2);

    IniDocument document;
    document.Parse(data);
    const auto before = document.Get(section, other);
    IniDocument again;
    again.Parse(document.Text());
    Check(again.Get(section, key) == document.Get(section, key));
    Check(again.Text() == document.Text());

    const bool valid = IniDocument::IsValidSection(section) && IniDocument::IsValidKey(key) &&
                       IniDocument::IsValidValue(value);
    const std::string unchanged = document.Text();
    const bool stored = document.Set(section, key, value);
    Check(stored == valid);
    if (!stored) {
        Check(document.Text() == unchanged);
        return 0;
    }
    again.Parse(document.Text());
    Check(document.Get(section, key) == value);
    Check(again.Get(section, key) == value);
    if (!SameName(other, key)) Check(again.Get(section, other) == before);
    Check(again.Remove(section, key));
    while (again.Remove(section, key)) {
    }
    Check(!again.Get(section, key));
    return 0;
}
