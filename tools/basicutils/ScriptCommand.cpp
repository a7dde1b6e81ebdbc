// `basicutils script FILE`: reads a script of assignments through a small
// CScriptFile subclass and prints what it read, line by line.
//
//   # a comment          (so is // to the end of a line)
//   name = word
//   name = (member, member member)     a list may run over several lines
//
// Each assignment prints as "LINE: name = word" or "LINE: name = (a, b)".
// A missing `=` is a syntax error: the library's message goes to stderr and
// the exit status is 1. The parser deletes its working file when it ends, so
// the tool parses a copy of FILE in the temporary folder, never FILE itself.
#include <basicutils/BasicUtils.h>

#include <cstdio>
#include <filesystem>
#include <random>
#include <string>

#include "Commands.h"

namespace basicutils_tool {
namespace {

using namespace basicutils;
namespace fs = std::filesystem;

std::string Utf8(const char16_t* text) {
    const MString s(text);
    std::string out(3 * static_cast<size_t>(s.GetLength()) + 1, '\0');
    out.resize(static_cast<size_t>(s.ExportASCII(out.data(), static_cast<int>(out.size()) - 1)));
    return out;
}

// Prints the library's error reports on stderr while it lives.
class ErrorPrinter : public LListener {
  public:
    ErrorPrinter() { CMessageAction::GetMessageAction()->AddListener(this); }
    ~ErrorPrinter() override { CMessageAction::GetMessageAction()->RemoveListener(this); }
    bool ListenToMessage(int32_t message, void* param) override {
        const int32_t kind = (message - kMsgMessageActionFirst) % 10;
        if (kind != 0) return false;  // errors only
        std::fprintf(stderr, "%s\n", Utf8(static_cast<SInteractionInfo*>(param)->mText).c_str());
        ++errors;
        return true;
    }
    int errors = 0;
};

class AssignmentReader : public CScriptFile {
  public:
    // Reads every assignment; false at the first syntax error.
    bool ReadAll() {
        while (SkipWhiteSpaceAndChar(u' ') == 1) {
            const int line = GetCurrentLineNum();
            MString name;
            if (GetString(&name, u'=') != 1) return Fail(u"name without value at the end");
            char16_t found = 0;
            if (StopUntilChars(MString(u"="), &found) != 1) return false;
            GetOneChar();
            if (SkipWhiteSpaceAndChar(u' ') != 1) return Fail(u"value missing at the end");
            std::string value;
            if (*mCursor == u'(') {
                MStringList members;
                if (GetListMember(&members) != 1) return Fail(u"list not closed");
                for (MString* m = members.GetHead(); m; m = members.GetNext())
                    value += (value.empty() ? "" : ", ") + Utf8(*m);
                value = "(" + value + ")";
            } else {
                MString word;
                if (GetString(&word, u'#') != 1) return Fail(u"value without line end");
                value = Utf8(word);
            }
            std::printf("%d: %s = %s\n", line, Utf8(name).c_str(), value.c_str());
        }
        return true;
    }

  private:
    bool Fail(const char16_t* text) {
        PrintSyntaxError(text);
        return false;
    }
};

int RunScript(const Args& args) {
    if (args.size() != 1) return UsageError("script takes one FILE");
    std::error_code ec;
    if (!fs::is_regular_file(args[0], ec)) return Failure("'" + args[0] + "' is not a file");
    const fs::path copy =
        fs::temp_directory_path() / ("basicutils-script-" + std::to_string(std::random_device{}()));
    if (!fs::copy_file(args[0], copy, ec)) return Failure("cannot copy '" + args[0] + "'");
    MString path;
    path.ImportASCII(copy.string().c_str(), -1);
    ErrorPrinter printer;
    AssignmentReader reader;
    if (!reader.OpenForParse(path)) return Failure("cannot open the working copy");
    const bool read = reader.ReadAll();
    reader.FClose();
    return read && printer.errors == 0 ? 0 : 1;
}

}  // namespace

const Command kScriptCommand = {
    "script", nullptr, "read a script of assignments with the script reader",
    "usage: basicutils script FILE\n"
    "  FILE holds lines `name = word` or `name = (a, b c)`; # and // start comments,\n"
    "  and a list may run over several lines. Prints `LINE: name = value` for each\n"
    "  assignment; a syntax error prints the library's message and exits with 1.\n"
    "  FILE is left alone: the reader works on a copy, which it deletes.",
    RunScript};

}  // namespace basicutils_tool
