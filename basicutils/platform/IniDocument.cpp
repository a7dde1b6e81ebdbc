// Settings text: parsing, lookup and line-preserving edits.
#include <basicutils/platform/CodePage.h>
#include <basicutils/platform/internal/IniDocument.h>

namespace basicutils::detail {
namespace {

bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}
bool IsBlank16(char16_t c) {
    return c == u' ' || c == u'\t';
}

std::string_view Trim(std::string_view s) {
    while (!s.empty() && IsBlank(s.front())) s.remove_prefix(1);
    while (!s.empty() && IsBlank(s.back())) s.remove_suffix(1);
    return s;
}

std::u16string_view Trim16(std::u16string_view s) {
    while (!s.empty() && IsBlank16(s.front())) s.remove_prefix(1);
    while (!s.empty() && IsBlank16(s.back())) s.remove_suffix(1);
    return s;
}

std::u16string FromUtf8(std::string_view s) {
    if (s.empty()) return {};
    const int n = MultiByteToWideChar(CP_UTF8, 0, s.data(), static_cast<int>(s.size()), nullptr, 0);
    std::u16string out(static_cast<size_t>(n), u'\0');
    MultiByteToWideChar(CP_UTF8, 0, s.data(), static_cast<int>(s.size()), out.data(), n);
    return out;
}

std::string ToUtf8(std::u16string_view s) {
    if (s.empty()) return {};
    const int n = WideCharToMultiByte(CP_UTF8, 0, s.data(), static_cast<int>(s.size()), nullptr, 0,
                                      nullptr, nullptr);
    std::string out(static_cast<size_t>(n), '\0');
    WideCharToMultiByte(CP_UTF8, 0, s.data(), static_cast<int>(s.size()), out.data(), n, nullptr,
                        nullptr);
    return out;
}

char16_t FoldAscii(char16_t c) {
    return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 32) : c;
}

bool SameName(std::u16string_view a, std::u16string_view b) {
    a = Trim16(a);
    b = Trim16(b);
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i)
        if (FoldAscii(a[i]) != FoldAscii(b[i])) return false;
    return true;
}

bool HasLineBreak(std::u16string_view s) {
    return s.find_first_of(u"\r\n") != std::u16string_view::npos;
}

// A value whose blanks at the ends, or whose own outer quotes, would be
// lost on reading goes out between quotes.
std::string ValueText(std::u16string_view value) {
    const bool quote =
        !value.empty() && (IsBlank16(value.front()) || IsBlank16(value.back()) ||
                           (value.size() >= 2 && value.front() == u'"' && value.back() == u'"'));
    const std::string text = ToUtf8(value);
    return quote ? "\"" + text + "\"" : text;
}

}  // namespace

IniDocument::Line IniDocument::ParseLine(std::string raw) {
    Line line{std::move(raw), Kind::kOther, {}, {}};
    const std::string_view text = Trim(line.raw);
    if (text.empty() || text.front() == ';' || text.front() == '#') return line;
    if (text.front() == '[') {
        const size_t close = text.find(']');
        if (close == std::string_view::npos) return line;
        line.kind = Kind::kSection;
        line.name = FromUtf8(Trim(text.substr(1, close - 1)));
        return line;
    }
    const size_t equals = text.find('=');
    if (equals == std::string_view::npos || equals == 0) return line;
    std::string_view value = Trim(text.substr(equals + 1));
    if (value.size() >= 2 && value.front() == '"' && value.back() == '"')
        value = value.substr(1, value.size() - 2);
    line.kind = Kind::kKey;
    line.name = FromUtf8(Trim(text.substr(0, equals)));
    line.value = FromUtf8(value);
    return line;
}

void IniDocument::Parse(std::string_view text) {
    mLines.clear();
    if (text.substr(0, 3) == "\xEF\xBB\xBF") text.remove_prefix(3);
    while (!text.empty()) {
        const size_t end = text.find('\n');
        std::string_view raw = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        while (!raw.empty() && raw.back() == '\r') raw.remove_suffix(1);
        mLines.push_back(ParseLine(std::string(raw)));
    }
}

std::string IniDocument::Text() const {
    std::string out;
    for (const Line& line : mLines) {
        out += line.raw;
        out += '\n';
    }
    return out;
}

int IniDocument::FindSection(std::u16string_view section) const {
    for (size_t i = 0; i < mLines.size(); ++i)
        if (mLines[i].kind == Kind::kSection && SameName(mLines[i].name, section))
            return static_cast<int>(i);
    return -1;
}

size_t IniDocument::SectionEnd(int header) const {
    size_t i = static_cast<size_t>(header) + 1;
    while (i < mLines.size() && mLines[i].kind != Kind::kSection) ++i;
    return i;
}

int IniDocument::FindKey(int header, std::u16string_view key) const {
    const size_t end = SectionEnd(header);
    for (size_t i = static_cast<size_t>(header) + 1; i < end; ++i)
        if (mLines[i].kind == Kind::kKey && SameName(mLines[i].name, key))
            return static_cast<int>(i);
    return -1;
}

std::optional<std::u16string> IniDocument::Get(std::u16string_view section,
                                               std::u16string_view key) const {
    const int header = FindSection(section);
    if (header < 0) return std::nullopt;
    const int at = FindKey(header, key);
    if (at < 0) return std::nullopt;
    return mLines[static_cast<size_t>(at)].value;
}

bool IniDocument::IsValidSection(std::u16string_view section) {
    section = Trim16(section);
    return !section.empty() && !HasLineBreak(section) && section.find(u']') == section.npos;
}

bool IniDocument::IsValidKey(std::u16string_view key) {
    key = Trim16(key);
    return !key.empty() && !HasLineBreak(key) && key.find(u'=') == key.npos &&
           key.front() != u'[' && key.front() != u';' && key.front() != u'#';
}

bool IniDocument::IsValidValue(std::u16string_view value) {
    return !HasLineBreak(value);
}

bool IniDocument::Set(std::u16string_view section, std::u16string_view key,
                      std::u16string_view value) {
    if (!IsValidSection(section) || !IsValidKey(key) || !IsValidValue(value)) return false;
    section = Trim16(section);
    key = Trim16(key);
    Line line = ParseLine(ToUtf8(key) + "=" + ValueText(value));
    int header = FindSection(section);
    if (header < 0) {
        if (!mLines.empty() && !Trim(mLines.back().raw).empty()) mLines.push_back(ParseLine(""));
        mLines.push_back(ParseLine("[" + ToUtf8(section) + "]"));
        mLines.push_back(std::move(line));
        return true;
    }
    const int at = FindKey(header, key);
    if (at >= 0) {
        line.name = mLines[static_cast<size_t>(at)].name;  // the stored spelling stays
        line.raw = ToUtf8(line.name) + "=" + ValueText(value);
        mLines[static_cast<size_t>(at)] = std::move(line);
        return true;
    }
    // A new key goes behind the section's last line that isn't blank, so that
    // blank lines and comments in front of the next section stay with it.
    size_t insert = SectionEnd(header);
    while (insert > static_cast<size_t>(header) + 1 && mLines[insert - 1].kind == Kind::kOther)
        --insert;
    mLines.insert(mLines.begin() + static_cast<std::ptrdiff_t>(insert), std::move(line));
    return true;
}

bool IniDocument::Remove(std::u16string_view section, std::u16string_view key) {
    const int header = FindSection(section);
    const int at = header < 0 ? -1 : FindKey(header, key);
    if (at < 0) return false;
    mLines.erase(mLines.begin() + at);
    return true;
}

bool IniDocument::RemoveSection(std::u16string_view section) {
    const int header = FindSection(section);
    if (header < 0) return false;
    mLines.erase(mLines.begin() + header,
                 mLines.begin() + static_cast<std::ptrdiff_t>(SectionEnd(header)));
    return true;
}

}  // namespace basicutils::detail
