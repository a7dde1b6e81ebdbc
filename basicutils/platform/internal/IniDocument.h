// The text of a settings file: UTF-8 lines of sections and keys.
//
//   [Section]
//   Key=Value
//   ; a comment (so is a line that starts with #)
//
// Reading never fails. A line is a section header when it starts with `[`
// and holds a `]` (what follows the `]` is ignored), a key when it holds a
// `=` with a name in front of it, and anything else is kept and ignored:
// stray text, a `[` without `]`, keys in front of the first section. Blanks
// around names and values are dropped; a value written between double quotes
// loses that one pair of quotes, which is how a value keeps blanks at its
// ends. A UTF-8 byte order mark at the start is skipped, carriage returns at
// line ends are dropped, and bytes that are not UTF-8 read as U+FFFD.
//
// Names match without regard to ASCII case. When a section or a key appears
// twice, the first one counts, for reading and for writing alike.
//
// Changing a value rewrites only its own line: comments, unknown lines and
// the order of everything else survive a write. Text written out always
// ends lines with a line feed.
#pragma once

#include <basicutils/Export.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace basicutils::detail {

class BASICUTILS_EXPORT IniDocument {
  public:
    void Parse(std::string_view text);
    std::string Text() const;

    std::optional<std::u16string> Get(std::u16string_view section, std::u16string_view key) const;
    // Stores the value, adding the section and the key where missing. False,
    // with nothing changed, for what the format cannot hold: an empty name, a
    // line break in any text, a `]` in a section name, a `=` in a key, or a
    // key that would read as a comment or a section header.
    bool Set(std::u16string_view section, std::u16string_view key, std::u16string_view value);
    // Removes a key, or a section with everything in it; false when absent.
    bool Remove(std::u16string_view section, std::u16string_view key);
    bool RemoveSection(std::u16string_view section);

    static bool IsValidSection(std::u16string_view section);
    static bool IsValidKey(std::u16string_view key);
    static bool IsValidValue(std::u16string_view value);

  private:
    enum class Kind { kOther, kSection, kKey };
    struct Line {
        std::string raw;  // without its line end
        Kind kind;
        std::u16string name;   // of the section or the key
        std::u16string value;  // of a key, quotes removed
    };
    static Line ParseLine(std::string raw);
    // The index of the section's header, or -1; and the end of the section
    // (the next header, or the end of the document).
    int FindSection(std::u16string_view section) const;
    size_t SectionEnd(int header) const;
    int FindKey(int header, std::u16string_view key) const;

    std::vector<Line> mLines;
};

}  // namespace basicutils::detail
