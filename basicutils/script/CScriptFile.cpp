#include <basicutils/messaging/CMessageAction.h>
#include <basicutils/platform/RuntimeFiles.h>
#include <basicutils/script/CScriptFile.h>
#include <basicutils/text/WideString.h>

#include <cstdio>
#include <memory>
#include <new>
#include <string>
#include <vector>

namespace basicutils {
namespace {

// FGetts's count for one line, and the units it may hand out for it.
constexpr int kLineCount = 65535;
constexpr size_t kLineUnits = 2 * static_cast<size_t>(kLineCount) + 1;

// Who made this thread's wcstok position, and in which token line.
thread_local const CScriptFile* tTokenParser = nullptr;
thread_local const char16_t* tTokenLine = nullptr;

bool IsWhite(char16_t c) {
    return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r';
}

}  // namespace

CScriptFile::CScriptFile() : mCursor(nullptr), mLineNumber(0) {}

CScriptFile::CScriptFile(const CScriptFile& other)
    : MFileUniv(other), mCursor(nullptr), mLineNumber(0) {
    CopyFields(other);
}

CScriptFile& CScriptFile::operator=(const CScriptFile& other) {
    if (this == &other) return *this;
    MFileUniv::operator=(other);
    CopyFields(other);
    return *this;
}

void CScriptFile::CopyFields(const CScriptFile& other) {
    mWorkingFile = other.mWorkingFile;
    mCurrentLine = other.mCurrentLine;
    mTokenLine = other.mTokenLine;
    mLineNumber = other.mLineNumber;
    mCursor = nullptr;
    const char16_t* line = other.mCurrentLine;
    if (other.mCursor && other.mCursor >= line && other.mCursor <= line + wcslen(line))
        mCursor = static_cast<const char16_t*>(mCurrentLine) + (other.mCursor - line);
}

CScriptFile::~CScriptFile() {
    if (tTokenParser == this) tTokenParser = nullptr;
    if (mWorkingFile.GetLength() > 0) _wunlink(mWorkingFile);
}

int CScriptFile::OpenForParse(const char16_t* path) {
    mWorkingFile = path ? path : u"";
    MFileSpecWin spec(mWorkingFile);
    if (FOpen(spec, kOpenReadText) >= 0) return 1;
    MString message;
    message.Format(u"Error: cannot open working file %s to read mode.\n",
                   static_cast<const char16_t*>(mWorkingFile));
    message.PrintToStdout();
    return 0;
}

bool CScriptFile::ReadLine(MString& line) {
    thread_local std::vector<char16_t> buffer;
    if (buffer.size() < kLineUnits) buffer.assign(kLineUnits, u'\0');
    if (FGetts(buffer.data(), kLineCount) < 0) return false;
    line = buffer.data();
    return true;
}

int CScriptFile::SkipOneLine() {
    MString line;
    if (!ReadLine(line)) return -1;
    ++mLineNumber;
    mCurrentLine = line;
    mCursor = mCurrentLine;
    return 1;
}

int CScriptFile::GetOneChar() {
    // A line that is empty (its text ended at a zero byte) has no character
    // to move on to.
    if (mCursor && mCursor[0] != u'\0' && mCursor[1] != u'\0') {
        ++mCursor;
        return 1;
    }
    return SkipOneLine();
}

bool CScriptFile::HasCursor() {
    while (!mCursor || *mCursor == u'\0')
        if (GetOneChar() < 0) return false;
    return true;
}

int CScriptFile::SkipWhiteSpaceAndChar(char16_t c) {
    if (!HasCursor()) return -1;
    for (;;) {
        while (IsWhite(*mCursor) || *mCursor == c || *mCursor == u'\0')
            if (GetOneChar() < 0) return -1;
        if (*mCursor != u'#' && !(mCursor[0] == u'/' && mCursor[1] == u'/')) return 1;
        if (SkipOneLine() < 0) return -1;
    }
}

int CScriptFile::GetString(MString* out, char16_t stop) {
    const char16_t stops[] = {stop, u'\0'};
    return GetString2(out, MString(stops));
}

int CScriptFile::GetString2(MString* out, const MString& stops) {
    if (!HasCursor()) return -1;
    std::u16string word;
    while (!IsWhite(*mCursor) && *mCursor != u'\0' && !wcschr(stops, *mCursor)) {
        word += *mCursor;
        if (GetOneChar() < 0) return -1;
    }
    *out = word.c_str();
    return 1;
}

int CScriptFile::StopUntilChars(const MString& set, char16_t* found) {
    if (!HasCursor()) return -1;
    auto inSet = [&] { return *mCursor != u'\0' && wcschr(set, *mCursor) != nullptr; };
    if (!inSet()) {
        while (IsWhite(*mCursor))
            if (GetOneChar() < 0) return -1;
    }
    if (inSet()) {
        *found = *mCursor;
        return 1;
    }
    PrintSyntaxError(u"Syntax error");
    return 0;
}

int CScriptFile::GetListMember(MStringList* list) {
    list->DeleteAll();
    if (SkipWhiteSpaceAndChar(u'(') != 1) return 0;
    for (;;) {
        SkipWhiteSpaceAndChar(u',');
        std::u16string member;
        while (!IsWhite(*mCursor) && *mCursor != u'\0' && *mCursor != u',' && *mCursor != u')') {
            member += *mCursor;
            if (GetOneChar() < 0) return 0;
        }
        if (member.empty()) break;
        list->Add(member.c_str());
        if (*mCursor == u')') break;
    }
    SkipWhiteSpaceAndChar(u')');
    return 1;
}

int CScriptFile::GetToken(MString* token, const char16_t* delimiters, MString* rest) {
    const bool mine =
        tTokenParser == this && tTokenLine == static_cast<const char16_t*>(mTokenLine);
    char16_t* found = mine ? wcstok(nullptr, delimiters) : nullptr;
    while (!found || (found[0] == u'/' && found[1] == u'/')) {
        MString line;
        if (!ReadLine(line)) return -1;
        mCurrentLine = line;
        mCurrentLine.Cut(0, line.GetLength() > 0 ? line.GetLength() - 1 : 0);  // the line end
        mTokenLine = line;
        ++mLineNumber;
        mCursor = nullptr;  // the cursor pointed into the line just replaced
        tTokenParser = this;
        tTokenLine = mTokenLine;
        found = wcstok(mTokenLine, delimiters);
    }
    *token = found;
    *rest = u"";
    return 1;
}

void CScriptFile::PrintSyntaxError(const char16_t* text) {
    MString message;
    message.Format(u"syntax error: %s near line %d\n              >>>  %s", text, mLineNumber,
                   static_cast<const char16_t*>(mCurrentLine));
    CMessageAction::Error(nullptr, message, kMessageWindow2);
}

int CScriptFile::WriteString2File(MString* s) {
    const int units = s ? s->GetLength() : 0;
    // Three bytes hold any unit in the system code page (UTF-8).
    std::unique_ptr<char[]> bytes(new (std::nothrow) char[3 * static_cast<size_t>(units) + 1]);
    int count = 0;
    if (bytes && units > 0) count = s->ExportASCII(bytes.get(), 3 * units, kCharacterSetWindows);
    if (bytes && FWrite(bytes.get(), count) == count) return 1;
    MString message;
    const MString path = GetFilePath();
    message.Format(u"Error: write failed(%s)\nCheck your free disk size\n",
                   static_cast<const char16_t*>(path));
    std::string text(3 * static_cast<size_t>(message.GetLength()) + 1, '\0');
    text.resize(static_cast<size_t>(
        message.ExportASCII(text.data(), static_cast<int>(text.size()) - 1, kCharacterSetWindows)));
    std::fputs(text.c_str(), stdout);
    std::fflush(stdout);
    return 0;
}

int CScriptFile::WriteStringList2File(MStringList* list) {
    for (MString* s = list->GetHead(); s; s = list->GetNext())
        if (!WriteString2File(s)) return 0;
    return 1;
}

}  // namespace basicutils
