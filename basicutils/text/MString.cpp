#include <basicutils/platform/CodePage.h>
#include <basicutils/text/MString.h>
#include <basicutils/text/WideString.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <new>

namespace basicutils {

namespace {

// The working buffer of Format, terminator included.
constexpr size_t kFormatBufferUnits = 8192;

char16_t* NewEmptyBlock(size_t units) {
    auto* block = new char16_t[units + 1];
    block[0] = 0;
    return block;
}

const char16_t* OrEmpty(const char16_t* s) {
    return s ? s : u"";
}

}  // namespace

MString::MString() : mBuffer(NewEmptyBlock(0)) {}

MString::MString(const char16_t* s, int n) {
    s = OrEmpty(s);
    if (n == 0) {
        size_t len = wcslen(s);
        mBuffer = new char16_t[len + 1];
        std::memcpy(mBuffer, s, (len + 1) * sizeof(char16_t));
        return;
    }
    size_t units = n > 0 ? static_cast<size_t>(n) : 0;
    mBuffer = new char16_t[units + 1];
    wcsncpy(mBuffer, s, units);
    mBuffer[units] = 0;
}

MString::MString(const MString& other) : MString(other.mBuffer, 0) {}

MString::MString(unsigned int n) : mBuffer(NewEmptyBlock(n)) {}

MString::MString(char16_t* block, TakeOver) : mBuffer(block) {}

MString::~MString() {
    delete[] mBuffer;
}

void MString::Assign(const char16_t* text, size_t units) {
    auto* block = new char16_t[units + 1];
    std::memcpy(block, text, units * sizeof(char16_t));
    block[units] = 0;
    delete[] mBuffer;
    mBuffer = block;
}

MString& MString::operator=(const char16_t* s) {
    if (s == mBuffer) return *this;
    s = OrEmpty(s);
    Assign(s, wcslen(s));
    return *this;
}

MString& MString::operator=(const MString& other) {
    if (&other == this) return *this;
    return *this = other.mBuffer;
}

int MString::GetLength() const {
    return static_cast<int>(wcslen(mBuffer));
}

int MString::CaseCmp(const char16_t* s) const {
    return _wcsicmp(mBuffer, OrEmpty(s)) == 0;
}

int MString::CaseCmp(const MString& s) const {
    return CaseCmp(s.mBuffer);
}

MString& MString::operator+=(const MString& s) {
    return *this += s.mBuffer;
}

MString& MString::operator+=(const char16_t* s) {
    s = OrEmpty(s);
    size_t own = wcslen(mBuffer), add = wcslen(s);
    auto* block = new (std::nothrow) char16_t[own + add + 1];
    if (!block) return *this;
    std::memcpy(block, mBuffer, own * sizeof(char16_t));
    std::memcpy(block + own, s, add * sizeof(char16_t));
    block[own + add] = 0;
    delete[] mBuffer;
    mBuffer = block;
    return *this;
}

MString operator+(const MString& a, const MString& b) {
    size_t la = wcslen(a.mBuffer), lb = wcslen(b.mBuffer);
    auto* block = new char16_t[la + lb + 1];
    std::memcpy(block, a.mBuffer, la * sizeof(char16_t));
    std::memcpy(block + la, b.mBuffer, (lb + 1) * sizeof(char16_t));
    return MString(block, MString::kTakeOver);
}

void MString::Format(const char16_t* format, ...) {
    va_list args;
    va_start(args, format);
    VFormat(format, args);
    va_end(args);
}

void MString::VFormat(const char16_t* format, va_list args) {
    char16_t out[kFormatBufferUnits];
    size_t n = 0;
    const size_t limit = kFormatBufferUnits - 1;
    auto put = [&](char16_t c) {
        if (n < limit) out[n++] = c;
    };
    auto putNarrow = [&](const char* begin, const char* end) {
        for (; begin < end; ++begin) put(static_cast<unsigned char>(*begin));
    };
    for (const char16_t* p = OrEmpty(format); *p && n < limit; ++p) {
        if (*p != u'%') {
            put(*p);
            continue;
        }
        char16_t conversion = *++p;
        if (!conversion) break;  // a lone '%' at the end
        char digits[400];        // room for the widest "%f" of a double
        switch (conversion) {
            case u'd': {
                auto r = std::to_chars(digits, digits + sizeof digits, va_arg(args, int));
                putNarrow(digits, r.ptr);
                break;
            }
            case u'x': {
                unsigned value = static_cast<unsigned>(va_arg(args, int));
                auto r = std::to_chars(digits, digits + sizeof digits, value, 16);
                putNarrow(digits, r.ptr);
                break;
            }
            case u'f': {
                double value = va_arg(args, double);
                auto r = std::to_chars(digits, digits + sizeof digits, value,
                                       std::chars_format::fixed, 6);
                putNarrow(digits, r.ptr);
                break;
            }
            case u's': {
                const char16_t* text = va_arg(args, const char16_t*);
                for (text = OrEmpty(text); *text && n < limit; ++text) put(*text);
                break;
            }
            default:
                put(conversion);
                break;
        }
    }
    Assign(out, n);
}

void MString::StripNewline() {
    RemoveTailChar(u'\n');
}

int MString::Cut(int start, int count) {
    if (start < 0 || count < 0) count = 0;
    size_t len = wcslen(mBuffer);
    size_t from = std::min(static_cast<size_t>(std::max(start, 0)), len);
    size_t kept = std::min(static_cast<size_t>(count), len - from);
    Assign(mBuffer + from, kept);
    return static_cast<int>(kept);
}

int32_t MString::Split(char16_t separator, MString& left, MString& right, bool fromStart) {
    const MString whole(*this);  // left or right may be this very string
    const char16_t* found =
        fromStart ? wcschr(whole.mBuffer, separator) : wcsrchr(whole.mBuffer, separator);
    const int point = found ? static_cast<int>(found - whole.mBuffer) : 0;
    const int length = whole.GetLength();
    left = whole;
    right = whole;
    left.Cut(0, point);
    right.Cut(point + 1, length - point - 1);
    return 0;
}

bool MString::RemoveTailChar(char16_t c) {
    size_t len = wcslen(mBuffer);
    if (len == 0 || mBuffer[len - 1] != c) return false;
    mBuffer[len - 1] = 0;
    return true;
}

namespace {

// Zeroes trailing units equal to c, one or all of them.
void TrimTail(char16_t* buffer, char16_t c, bool all) {
    size_t len = wcslen(buffer);
    while (len > 0 && buffer[len - 1] == c) {
        buffer[--len] = 0;
        if (!all) break;
    }
}

}  // namespace

void MString::RemoveTailSpace(bool all) {
    TrimTail(mBuffer, u' ', all);
}

void MString::RemoveTailCR(bool all) {
    TrimTail(mBuffer, u'\n', all);
}

void MString::RemoveTailSpaceAndCR(bool all) {
    RemoveTailCR(all);
    RemoveTailSpace(all);
}

bool MString::RemoveHeadChar(char16_t c) {
    if (mBuffer[0] == 0 || mBuffer[0] != c) return false;
    Cut(1, GetLength() - 1);
    return true;
}

void MString::RemoveHeadSpace(bool all) {
    int skip = 0;
    while (mBuffer[skip] == u' ') {
        ++skip;
        if (!all) break;
    }
    if (skip > 0) Cut(skip, GetLength() - skip);
}

void MString::Change2Upper() {
    for (char16_t* p = mBuffer; *p; ++p)
        if (iswlower(*p)) *p = towupper(*p);
}

void MString::Change2Lower() {
    for (char16_t* p = mBuffer; *p; ++p)
        if (iswupper(*p)) *p = towlower(*p);
}

void MString::ChangeChar(char16_t from, char16_t to) {
    for (char16_t* p = mBuffer; *p; ++p)
        if (*p == from) *p = to;
}

void MString::ImportASCII(const char* s, int32_t length) {
    if (s && length == -1) length = static_cast<int32_t>(std::strlen(s));
    if (!s || length <= 0) {
        Assign(u"", 0);
        return;
    }
    // A byte never gives more than one unit, so length units always suffice.
    auto* block = new char16_t[static_cast<size_t>(length) + 1];
    int units = MultiByteToWideChar(CP_ACP, MB_PRECOMPOSED, s, length, block, length);
    block[units] = 0;
    delete[] mBuffer;
    mBuffer = block;
}

int MString::ExportUnicode(char16_t* destination, int size) const {
    if (size < 1) return 0;
    size_t len = wcslen(mBuffer);
    if (len == 0) {
        destination[0] = 0;
        return 0;
    }
    if (len < static_cast<size_t>(size) - 1) {
        wcsncpy(destination, mBuffer, static_cast<size_t>(size));
        return size;
    }
    wcsncpy(destination, mBuffer, static_cast<size_t>(size) - 1);
    return size - 1;
}

int MString::ExportASCII(char* destination, int size, character_set_type set) const {
    if (size < 0) return 0;
    size_t len = wcslen(mBuffer);
    if (len == 0) {
        destination[0] = 0;
        return 0;
    }
    std::memset(destination, 0, static_cast<size_t>(size));
    const uint32_t codePage = set == kCharacterSetMacintosh ? CP_MACCP : CP_ACP;
    // Size 0 would turn the conversion into a size query; it is a failure here.
    int converted = size == 0 ? 0
                              : WideCharToMultiByte(codePage, 0, mBuffer, static_cast<int>(len),
                                                    destination, size, nullptr, nullptr);
    int result = std::min(size, converted);
    destination[result] = 0;
    return result;
}

void MString::DoMapWindowsCharactersToASCII(char* text, int32_t length) {
    // Rows 0x80..0xFF of the Windows set; entry 0x80 is never used because
    // byte 128 itself stays.
    static constexpr unsigned char kMap[128] = {
        0x20, 0x20, 0x20, 0x20, 0x20, 0x20, 0x20, 0x20, 0x20, 0x20, 0x20, 0x20, 0x20, 0x20, 0x20,
        0x20, 0x20, 0x20, 0x20, 0x20, 0x20, 0x20, 0x20, 0x20, 0x20, 0x20, 0x20, 0x20, 0x20, 0x20,
        0x20, 0x20, 0x20, 0xC1, 0xA2, 0xA3, 0xDB, 0xB4, 0x7C, 0xA4, 0xAC, 0xA9, 0x5F, 0xC7, 0xC2,
        0xD1, 0xA8, 0xD1, 0xBC, 0xB1, 0x5F, 0x5F, 0xAB, 0xB5, 0xB8, 0xA5, 0x5F, 0x5F, 0x5F, 0xC8,
        0x5F, 0x5F, 0x5F, 0xC0, 0xCB, 0xE7, 0x89, 0x8B, 0x80, 0x81, 0xAE, 0x82, 0xE9, 0x83, 0xE6,
        0xE8, 0xED, 0xEA, 0xEB, 0xEC, 0x5F, 0x84, 0xF1, 0xEE, 0xEF, 0xCD, 0x85, 0x5F, 0xAF, 0xF4,
        0xF2, 0xF3, 0x86, 0x5F, 0x5F, 0xA7, 0x88, 0x87, 0x89, 0x8B, 0x8A, 0x8C, 0xBE, 0x8D, 0x8F,
        0x8E, 0x90, 0x91, 0x93, 0x92, 0x94, 0x95, 0x5F, 0x96, 0x98, 0x97, 0x99, 0x9B, 0x9A, 0xD6,
        0xBF, 0x9D, 0x9C, 0x9E, 0x9F, 0x5F, 0x5F, 0xD8,
    };
    if (!text) return;
    for (int32_t i = 0; i < length; ++i) {
        auto b = static_cast<unsigned char>(text[i]);
        if (b > 128) text[i] = static_cast<char>(kMap[b - 0x80]);
    }
}

namespace {
const char16_t* Text(const MString& s) {
    return s;
}
}  // namespace

int operator==(const MString& a, const MString& b) {
    return wcscmp(Text(a), Text(b)) == 0;
}
int operator==(const char16_t* a, const MString& b) {
    return wcscmp(OrEmpty(a), Text(b)) == 0;
}
int operator==(const MString& a, const char16_t* b) {
    return wcscmp(Text(a), OrEmpty(b)) == 0;
}
int operator!=(const MString& a, const MString& b) {
    return wcscmp(Text(a), Text(b)) != 0;
}
int operator!=(const char16_t* a, const MString& b) {
    return wcscmp(OrEmpty(a), Text(b)) != 0;
}
int operator!=(const MString& a, const char16_t* b) {
    return wcscmp(Text(a), OrEmpty(b)) != 0;
}
int operator>(const MString& a, const MString& b) {
    return wcscmp(Text(a), Text(b)) > 0;
}
int operator>(const char16_t* a, const MString& b) {
    return wcscmp(OrEmpty(a), Text(b)) > 0;
}
int operator>(const MString& a, const char16_t* b) {
    return wcscmp(Text(a), OrEmpty(b)) > 0;
}
int operator<(const MString& a, const MString& b) {
    return wcscmp(Text(a), Text(b)) < 0;
}
int operator<(const char16_t* a, const MString& b) {
    return wcscmp(OrEmpty(a), Text(b)) < 0;
}
int operator<(const MString& a, const char16_t* b) {
    return wcscmp(Text(a), OrEmpty(b)) < 0;
}

}  // namespace basicutils
