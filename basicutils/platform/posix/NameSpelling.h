// Paths between the library's spelling (UTF-16, `\` between names) and the
// system's (UTF-8 bytes, `/`), for the environment services.
#pragma once

#include <string>
#include <string_view>

namespace basicutils::detail {

// `\` becomes `/`; text that is not valid UTF-16 becomes U+FFFD.
std::string SystemSpelling(std::u16string_view path);
// `/` becomes `\`; bytes that are not UTF-8 become U+FFFD.
std::u16string LibrarySpelling(std::string_view path);

// Copies `text` into a caller's buffer by the Win32 sizing rule of
// GetSystemDirectoryW (see SystemFolders.h).
unsigned CopyWithSizeRule(const std::u16string& text, char16_t* buffer, unsigned size);

}  // namespace basicutils::detail
