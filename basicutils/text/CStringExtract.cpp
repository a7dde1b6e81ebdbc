#include <basicutils/text/CStringExtract.h>

#include <cstring>

namespace basicutils {

namespace {

// Index of the first quote, or -1.
template <typename Char>
int FindQuote(const Char* text) {
    if (!text) return -1;
    for (int i = 0; text[i]; ++i)
        if (text[i] == Char('"')) return i;
    return -1;
}

template <typename Char>
int CopyBeforeQuote(const Char* text, Char* out) {
    int quote = FindQuote(text);
    if (!out) return quote + 1;
    if (quote < 0) {
        out[0] = 0;
        return 0;
    }
    std::memcpy(out, text, static_cast<size_t>(quote) * sizeof(Char));
    out[quote] = 0;
    return quote + 1;
}

}  // namespace

int CStringExtract::SeekLeftDoubleQuat(const char16_t* text) {
    return FindQuote(text) + 1;
}

int CStringExtract::GetString(const char16_t* text, char16_t* out) {
    return CopyBeforeQuote(text, out);
}

int CStringExtract::SeekLeftDoubleQuatChar(const char* text) {
    return FindQuote(text) + 1;
}

int CStringExtract::GetStringChar(const char* text, char* out) {
    return CopyBeforeQuote(text, out);
}

}  // namespace basicutils
