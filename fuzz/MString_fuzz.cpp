// Runs an MString through a script of edits and checks it after every step
// against a std::u16string model: cutting, splitting (into itself too),
// trimming at both ends, changing units, appending, comparing, and Format
// with one conversion between literal texts (the 8191-unit limit included).
//
// Input: a script of operations, an operation byte and then its arguments;
// texts are a length byte and that many unit bytes.
#include <basicutils/text/MString.h>
#include <basicutils/text/WideString.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "FuzzSupport.h"

namespace {

namespace bu = basicutils;

using fuzzsupport::Check;

class Script {
  public:
    Script(const uint8_t* data, size_t size) : mData(data), mSize(size) {}
    bool More() const { return mAt < mSize; }
    uint8_t Byte() { return mAt < mSize ? mData[mAt++] : 0; }
    int Small() { return static_cast<int>(Byte() % 72) - 4; }  // -4..67
    char16_t Unit() {
        static const char16_t kUnits[] = {u' ', u'\n',  u'\r',  u'/',   u'%',   u'a',  u'B',
                                          u'z', u'Z',   u'0',   u'7',   u'd',   u'x',  u's',
                                          u'f', 0x00E9, 0x00C9, 0x0130, 0x8000, 0xFFFF};
        return kUnits[Byte() % std::size(kUnits)];
    }
    std::u16string Text() {
        std::u16string t(Byte() % 12, u' ');
        for (auto& c : t) c = Unit();
        return t;
    }

  private:
    const uint8_t* mData;
    size_t mSize;
    size_t mAt = 0;
};

std::u16string Of(const bu::MString& s) {
    return std::u16string(static_cast<const char16_t*>(s));
}

std::u16string Ascii(const char* s) {
    return std::u16string(s, s + std::char_traits<char>::length(s));
}

// The literal form of a format piece: "%c" gives c, a lone '%' at the end nothing.
std::u16string Literal(const std::u16string& piece) {
    std::u16string out;
    for (size_t i = 0; i < piece.size(); ++i) {
        if (piece[i] == u'%') ++i;
        if (i < piece.size()) out += piece[i];
    }
    return out;
}

void Trim(std::u16string& m, char16_t c, bool all) {
    while (!m.empty() && m.back() == c) {
        m.pop_back();
        if (!all) break;
    }
}

void CheckFormat(Script& in) {
    // prefix without '%', one conversion, then a piece whose '%'s are literal.
    std::u16string prefix = in.Text(), suffix = in.Text();
    for (auto& c : prefix)
        if (c == u'%') c = u'#';
    for (size_t i = 0; i + 1 < suffix.size(); ++i)
        if (suffix[i] == u'%' &&
            std::u16string_view(u"dxfs").find(suffix[++i]) != std::u16string_view::npos)
            suffix[i] = u'q';
    const int kind = in.Byte() % 5;
    const int number = static_cast<int>(in.Byte() * 0x01010101u * (in.Byte() | 1u));
    const std::u16string text = in.Text();
    const int repeat = in.Byte() % 2 ? 1 : 1000;  // long texts reach the limit
    std::u16string longText;
    for (int i = 0; i < repeat; ++i) longText += text;
    const char16_t spec[] = {u'%', u"dxfsq"[kind], 0};
    const std::u16string format = prefix + spec + suffix;
    bu::MString s(u"old");
    char narrow[400];
    std::u16string middle;
    switch (kind) {
        case 0:
            s.Format(format.c_str(), number);
            middle = Ascii(std::to_string(number).c_str());
            break;
        case 1:
            s.Format(format.c_str(), number);
            std::snprintf(narrow, sizeof narrow, "%x", static_cast<unsigned>(number));
            middle = Ascii(narrow);
            break;
        case 2: {
            const double value = number / 64.0 * (kind & 1 ? 1e-9 : 1.0);
            s.Format(format.c_str(), value);
            std::snprintf(narrow, sizeof narrow, "%f", value);
            middle = Ascii(narrow);
            break;
        }
        case 3:
            s.Format(format.c_str(), number % 3 ? longText.c_str() : nullptr);
            middle = number % 3 ? longText : u"";
            break;
        default:
            s.Format(format.c_str());
            middle = u"q";
            break;
    }
    const std::u16string want = prefix + middle + Literal(suffix);
    Check(Of(s) == want.substr(0, 8191));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Script in(data, size);
    std::u16string model = in.Text();
    bu::MString s(model.c_str());
    while (in.More()) {
        switch (in.Byte() % 13) {
            case 0: {
                const int start = in.Small(), count = in.Small();
                const size_t from = std::min(static_cast<size_t>(std::max(start, 0)), model.size());
                const size_t kept = start < 0 || count < 0
                                        ? 0
                                        : std::min(static_cast<size_t>(count), model.size() - from);
                Check(s.Cut(start, count) == static_cast<int>(kept));
                model = model.substr(from, kept);
                break;
            }
            case 1: {  // Split, with the left or the right part in the string itself
                const char16_t separator = in.Unit();
                const uint8_t how = in.Byte();
                const size_t found = how & 1 ? model.find(separator) : model.rfind(separator);
                const size_t point = found == model.npos ? 0 : found;
                const std::u16string left = model.substr(0, point);
                const std::u16string right = point < model.size() ? model.substr(point + 1) : u"";
                bu::MString l(u"junk"), r(u"junk");
                bu::MString& intoLeft = how & 2 ? s : l;
                bu::MString& intoRight = how & 4 && !(how & 2) ? s : r;
                Check(s.Split(separator, intoLeft, intoRight, how & 1) == 0);
                Check(Of(intoLeft) == left && Of(intoRight) == right);
                if (how & 6) model = how & 2 ? left : right;
                break;
            }
            case 2: {
                const char16_t c = in.Unit();
                const bool hit = !model.empty() && model.back() == c;
                Check(s.RemoveTailChar(c) == hit);
                if (hit) model.pop_back();
                break;
            }
            case 3: {
                const char16_t c = in.Unit();
                const bool hit = !model.empty() && model.front() == c;
                Check(s.RemoveHeadChar(c) == hit);
                if (hit) model.erase(0, 1);
                break;
            }
            case 4: {
                const uint8_t how = in.Byte();
                const bool all = how & 1;
                switch (how / 2 % 5) {
                    case 0:
                        s.RemoveTailSpace(all), Trim(model, u' ', all);
                        break;
                    case 1:
                        s.RemoveTailCR(all), Trim(model, u'\n', all);
                        break;
                    case 2:
                        s.RemoveTailSpaceAndCR(all), Trim(model, u'\n', all),
                            Trim(model, u' ', all);
                        break;
                    case 3:
                        s.StripNewline(), Trim(model, u'\n', false);
                        break;
                    default: {
                        s.RemoveHeadSpace(all);
                        size_t skip = 0;
                        while (skip < model.size() && model[skip] == u' ' && (all || skip == 0))
                            ++skip;
                        model.erase(0, skip);
                        break;
                    }
                }
                break;
            }
            case 5: {
                const char16_t from = in.Unit(), to = in.Unit();
                s.ChangeChar(from, to);
                for (auto& c : model)
                    if (c == from) c = to;
                break;
            }
            case 6:
                s.Change2Upper();
                for (auto& c : model)
                    if (bu::iswlower(c)) c = bu::towupper(c);
                break;
            case 7:
                s.Change2Lower();
                for (auto& c : model)
                    if (bu::iswupper(c)) c = bu::towlower(c);
                break;
            case 8: {
                const std::u16string more = in.Text();
                s += more.c_str();
                model += more;
                break;
            }
            case 9:
                if (model.size() < 20000) {
                    s += s;
                    model += model;
                }
                break;
            case 10: {
                const std::u16string other = in.Text();
                const int order = model.compare(other);
                Check((s == other.c_str()) == (order == 0) && (s != other.c_str()) == (order != 0));
                Check((s < other.c_str()) == (order < 0) && (s > other.c_str()) == (order > 0));
                Check(Of(s + bu::MString(other.c_str())) == model + other);
                break;
            }
            case 11:
                s = model.empty() ? nullptr : model.c_str();  // assignment from text, null clears
                break;
            default:
                CheckFormat(in);
                break;
        }
        Check(Of(s) == model);
        Check(s.GetLength() == static_cast<int>(model.size()));
    }
    return 0;
}
