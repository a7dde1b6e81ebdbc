// Names between the library and the system.
//
// The library spells names in UTF-16 with `\` as separator; the system in
// bytes with `/`. Going to the system, `\` becomes `/`, `/` stays, and the
// text becomes UTF-8, except for two escapes that bring back what the system
// gave: U+DC80..U+DCFF become the single bytes 0x80..0xFF, and U+DC5C becomes
// a backslash that belongs to a name. Coming from the system, each byte that
// is not part of valid UTF-8 becomes its escape, and a backslash inside a
// name becomes U+DC5C; in a whole path `/` becomes `\`.
//
// So every name on disk has exactly one spelling in the library and back.
// A name is refused (EILSEQ, ERROR_NO_UNICODE_TRANSLATION) when it holds a
// lone surrogate outside the escapes, or escapes that would spell valid UTF-8
// (U+DCC3 U+DCA9 would be the bytes of "é", a second spelling of that file).
#pragma once

#include <basicutils/Export.h>

#include <string>
#include <string_view>

namespace basicutils::detail {

// The system's spelling of a library path. On failure false, with errno and
// the thread's last error set (EINVAL for a null path).
BASICUTILS_EXPORT bool ToSystemPath(const char16_t* path, std::string& out);

// The library's spelling of one name listed by the system.
BASICUTILS_EXPORT std::u16string FromSystemName(std::string_view name);

// The library's spelling of a whole path given by the system.
BASICUTILS_EXPORT std::u16string FromSystemPath(std::string_view path);

// A library path converted once for the system calls of a function:
//   SystemPath name(path);
//   if (!name) return -1;   // errno and GetLastError already set
//   CurrentEnv().Unlink(name.c_str());
class SystemPath {
  public:
    explicit SystemPath(const char16_t* path) : mValid(ToSystemPath(path, mText)) {}
    explicit operator bool() const { return mValid; }
    const char* c_str() const { return mText.c_str(); }
    const std::string& str() const { return mText; }

  private:
    std::string mText;
    bool mValid;
};

}  // namespace basicutils::detail
