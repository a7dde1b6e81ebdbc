#include <basicutils/files/PathNames.h>

namespace basicutils {

namespace {

// The constant answers; the in-place functions hand them out as writable
// pointers, as the POSIX functions do, and callers must not write to them.
char16_t kDot16[] = u".";
char16_t kSeparator16[] = u"\\";
char kDot8[] = ".";

template <typename Unit>
size_t Length(const Unit* text) {
    size_t n = 0;
    while (text[n] != 0) ++n;
    return n;
}

template <typename Unit>
Unit* BaseNameInPlace(Unit* path, Unit* dot) {
    if (!path || path[0] == 0) return dot;
    size_t end = Length(path);
    while (end > 0 && path[end - 1] == Unit('\\')) path[--end] = 0;
    if (end == 0) {
        path[0] = Unit('\\');
        return path;
    }
    size_t start = end;
    while (start > 0 && path[start - 1] != Unit('\\')) --start;
    return path + start;
}

}  // namespace

CString DirName(const CString& path) {
    if (path.IsEmpty()) return CString(u".");
    const int last = path.ReverseFind(u'\\');
    return last < 0 ? path : path.Left(last);
}

CString BaseName(const CString& path) {
    if (path.IsEmpty()) return CString(u".");
    const int last = path.ReverseFind(u'\\');
    return last < 0 ? path : path.Right(path.GetLength() - last - 1);
}

char16_t* dirname(char16_t* path) {
    if (!path || path[0] == 0) return kDot16;
    size_t end = Length(path);
    while (end > 0 && path[end - 1] == u'\\') --end;
    if (end == 0) return kSeparator16;
    while (end > 0 && path[end - 1] != u'\\') --end;
    if (end == 0) return kDot16;
    while (end > 0 && path[end - 1] == u'\\') --end;
    path[end == 0 ? 1 : end] = 0;
    return path;
}

char16_t* basename(char16_t* path) {
    return BaseNameInPlace(path, kDot16);
}

char* basename(char* path) {
    return BaseNameInPlace(path, kDot8);
}

}  // namespace basicutils
