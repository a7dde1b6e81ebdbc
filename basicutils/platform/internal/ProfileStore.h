// The settings file behind CWinApp's profile functions: reading one value,
// and changing one value under the file's lock with an atomic replace. The
// rules are written at the top of WinApp.h. Paths are in the system's
// spelling.
#pragma once

#include <basicutils/Export.h>

#include <optional>
#include <string>

namespace basicutils::detail {

// The stored value, or nothing when the file or the key is missing.
BASICUTILS_EXPORT std::optional<std::u16string> ReadProfileValue(const std::string& file,
                                                                 const char16_t* section,
                                                                 const char16_t* key);

// Sets `value`; a null value removes the key, a null key the section.
// `makeFolder` creates the file's folder (and its parents) when missing.
// False with GetLastError set on failure.
BASICUTILS_EXPORT bool WriteProfileValue(const std::string& file, const char16_t* section,
                                         const char16_t* key, const char16_t* value,
                                         bool makeFolder);

}  // namespace basicutils::detail
