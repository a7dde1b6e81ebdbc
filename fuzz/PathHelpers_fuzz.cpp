// Fuzzes the path helpers against a model written with std::u16string.
//
// The input's first byte picks a count and a flag, its second the character
// to trim; the rest becomes a path over a small alphabet in which the
// backslash is frequent. The model: the CString family cuts at the last
// backslash; the in-place family strips trailing backslashes first, the way
// the POSIX functions do; AddDirectorySeparator and DeleteTailCharacter trim
// and append.
#include <basicutils/files/MDirectory.h>
#include <basicutils/files/PathNames.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "FuzzSupport.h"

using namespace basicutils;

namespace {

using fuzzsupport::Check;

using Text = std::u16string;

Text StripTail(Text s, char16_t c) {
    while (!s.empty() && s.back() == c) s.pop_back();
    return s;
}

Text ModelDirname(const Text& path) {
    if (path.empty()) return u".";
    const Text t = StripTail(path, u'\\');
    if (t.empty()) return u"\\";
    const size_t last = t.rfind(u'\\');
    if (last == Text::npos) return u".";
    const Text d = StripTail(t.substr(0, last), u'\\');
    return d.empty() ? Text(u"\\") : d;
}

Text ModelBasename(const Text& path) {
    if (path.empty()) return u".";
    const Text t = StripTail(path, u'\\');
    if (t.empty()) return u"\\";
    const size_t last = t.rfind(u'\\');
    return last == Text::npos ? t : t.substr(last + 1);
}

Text ModelCut(const Text& path, bool dir) {
    if (path.empty()) return u".";
    const size_t last = path.rfind(u'\\');
    if (last == Text::npos) return path;
    return dir ? path.substr(0, last) : path.substr(last + 1);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2) return 0;
    static const char16_t kAlphabet[] = {u'\\', u'\\', u'\\', u'a', u'b', u'.', u'/', 0x00E9};
    const uint32_t count = data[0] & 3;
    const bool remove = data[0] & 4;
    const char16_t trim = kAlphabet[data[1] % 8];
    Text path;
    for (size_t i = 2; i < size; ++i) path.push_back(kAlphabet[data[i] % 8]);

    Text work = path;
    Check(Text(dirname(work.data())) == ModelDirname(path));
    work = path;
    const Text base = basename(work.data());
    Check(base == ModelBasename(path));
    // What basename left in its argument ends where the trimmed path ends.
    const Text trimmed = StripTail(path, u'\\');
    Check(path.empty() || Text(work.c_str()) == (trimmed.empty() ? Text(u"\\") : trimmed));

    std::string narrow;
    for (char16_t c : path) narrow.push_back(c == u'\\' ? '\\' : static_cast<char>('a' + c % 20));
    std::string narrowBase = basicutils::basename(narrow.data());
    Check(narrowBase.size() == ModelBasename(path).size());

    Check(Text(DirName(CString(path.c_str()))) == ModelCut(path, true));
    Check(Text(BaseName(CString(path.c_str()))) == ModelCut(path, false));

    const Text added =
        path.empty() ? Text() : (remove ? StripTail(path, u'\\') : path) + Text(count, u'\\');
    Check(Text(AddDirectorySeparator(path.c_str(), remove, count)) == added);
    Check(Text(DeleteTailCharacter(path.c_str(), trim)) == StripTail(path, trim));
    return 0;
}
