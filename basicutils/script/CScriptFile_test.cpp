// The script reader on real working files: skipping and comments, words,
// lists over several lines, the expected character, the token style, both
// ends of a file, the lifted limits, copies, writing, and the working file's
// deletion.
#include <basicutils/files/FilesTest_test.h>
#include <basicutils/platform/testing/FaultEnv.h>
#include <basicutils/platform/testing/TempFolder.h>
#include <basicutils/script/CScriptFile.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace basicutils {
namespace {

using filestest::Reports;

std::string Narrow(const char16_t* s) {
    std::string out;
    while (*s) out += static_cast<char>(*s++);
    return out;
}

// Runs a program of reading operations and answers what each gave, one
// entry each, space-separated:
//   s ( x   SkipWhiteSpaceAndChar of ' ', '(' or 'x': its result
//   c       GetOneChar: its result
//   w 2     GetString(',') or GetString2("=;"): "word/result" ("?" if untouched)
//   l       GetListMember: "[a,b]/result"
//   u       StopUntilChars("={"): "found/result" ("-" if untouched)
//   t       GetToken(" \t\r\n"): the token, or "<end>"
//   h n L   the cursor's character "@c" (space "_", line end "$", none "?"),
//           the line number "#n", the current line in quotes
class Parser : public CScriptFile {
  public:
    std::string Run(const std::string& program) {
        std::string out;
        for (char op : program) {
            MString text(u"?"), rest(u"x");
            MStringList list;
            char16_t found = u'-';
            const char16_t here = mCursor ? *mCursor : u'?';
            int r = 0;
            if (op == 's' || op == '(' || op == 'x')
                r = SkipWhiteSpaceAndChar(op == 's' ? u' ' : op);
            if (op == 'c') r = GetOneChar();
            if (op == 'w') r = GetString(&text, u',');
            if (op == '2') r = GetString2(&text, MString(u"=;"));
            if (op == 'u') r = StopUntilChars(MString(u"={"), &found);
            if (op == 'l') r = GetListMember(&list);
            if (op == 't') r = GetToken(&text, u" \t\r\n", &rest);
            EXPECT_TRUE(op != 't' || r != 1 || !*rest) << "the rest is emptied";
            std::string entry = std::to_string(r), members;
            for (MString* m = list.GetHead(); m; m = list.GetNext())
                members += (members.empty() ? "" : ",") + Narrow(*m);
            const char c = static_cast<char>(op == 'u' ? found : here);
            if (op == 'w' || op == '2') entry = Narrow(text) + "/" + entry;
            if (op == 'u') entry = std::string(1, c) + "/" + entry;
            if (op == 'l') entry = "[" + members + "]/" + entry;
            if (op == 't') entry = r == 1 ? Narrow(text) : "<end>";
            if (op == 'h') entry = std::string("@") + (c == ' ' ? '_' : c == '\n' ? '$' : c);
            if (op == 'n') entry = "#" + std::to_string(GetCurrentLineNum());
            if (op == 'L') entry = "'" + Narrow(GetCurrentLine()) + "'";
            out += (out.empty() ? "" : " ") + entry;
        }
        return out;
    }
};

class ScriptFile : public ::testing::Test {
  protected:
    std::unique_ptr<Parser> Open(const std::string& text) {
        const std::string name = "w" + std::to_string(mFiles++);
        mFolder.Write(name, text);
        auto parser = std::make_unique<Parser>();
        EXPECT_EQ(parser->OpenForParse(mFolder.Library(name).c_str()), 1);
        return parser;
    }
    testing::TempFolder mFolder;
    int mFiles = 0;
};

// Reports are appended as "!number text"; they go to window 2 whatever the default.
TEST_F(ScriptFile, ReadingOperations) {
    // clang-format off
    const std::tuple<const char*, const char*, std::string> cases[] = {
        {"  # note\n  // note\n  x y", "swhn", "1 x/1 @_ #3"},
        {"a//b,c\n",               "swhn", "1 a//b/1 @, #1"},  // no comment inside a word
        {"/x\n",                   "swhn", "1 /x/1 @$ #1"},    // one slash is no comment
        {"((( key\n",              "(whn", "1 key/1 @$ #1"},
        {"\n\n\tword\r\n",         "swhn", "1 word/1 @$ #3"},  // text mode reads CR LF as LF
        {"last",                   "swhn", "1 ?/-1 @t #1"},    // no line end: the word is lost
        {"",                       "swhn", "-1 ?/-1 @? #0"},
        {"x\n# only a comment",    "cxh",  "1 -1 @#"},         // the end leaves the cursor in place
        {"key=value;\n",           "2h",   "key/1 @="},
        {"(a, b c)\n",             "l",    "[a,b,c]/1"},
        {"()\n",                   "l",    "[]/1"},
        {"a b\n",                  "l",    "[a,b]/1"},
        {"# lead\n(one,\n  # between\n two // tail\n ,three) next\n", "l", "[one,two,three]/1"},
        {"(a, b",                  "l",    "[a]/0"},
        {"   {\n",                 "uh",   "{/1 @{"},
        {"   x\n",                 "u",    "-/0 !26010 syntax error: Syntax error near line 1\n              >>>     x\n"},
        {"# x\n",                  "u",    "-/0 !26010 syntax error: Syntax error near line 1\n              >>>  # x\n"},
        {"// c\n\nab cd\n",        "tttn", "ab cd <end> #3"},
        {"ab //c d\nnext\n",       "tttn", "ab next <end> #2"},
        {"/ /x\n",                 "tttn", "/ /x <end> #1"},
        {"no end",                 "tttn", "no end <end> #1"},
        {"ab cd\n",                "tL",   "ab 'ab cd'"},  // the line without its end
    };
    // clang-format on
    CMessageAction::SetDefault(kMessageWindow3);
    for (const auto& [text, program, expected] : cases) {
        auto parser = Open(text);
        Reports reports;
        std::string trace = parser->Run(program);
        for (const auto& [number, report] : reports.heard)
            trace += " !" + std::to_string(number) + " " + Narrow(report.c_str());
        EXPECT_EQ(trace, expected) << text;
    }
    CMessageAction::SetDefault(kMessageWindow1);
}

TEST_F(ScriptFile, CopiesAndOtherParsersNeverShareALine) {
    auto first = Open("a b c\n");
    EXPECT_EQ(first->Run("t"), "a");
    first.reset();  // its token line is freed
    auto second = Open("x y\n");
    EXPECT_EQ(second->Run("t"), "x");
    Parser copy(*second);
    EXPECT_EQ(copy.Run("t"), "<end>") << "a copy starts at the next line";
    EXPECT_EQ(second->Run("t"), "y");
    auto words = Open("alpha beta\n");
    words->Run("sw");
    auto wordCopy = std::make_unique<Parser>(*words);
    words.reset();
    EXPECT_EQ(wordCopy->Run("sw"), "1 beta/1") << "the copy's cursor is in its own line";
}

TEST_F(ScriptFile, LongWordsMembersAndLinesAreReadWhole) {
    const std::string word(5000, 'w'), member(12000, 'm'), line(70000, 'l');
    auto parser =
        Open(word + " (" + member + ")\n" + line + "\n" + std::string(200000, 'z') + "\nend\n");
    EXPECT_EQ(parser->Run("swlwn"), "1 " + word + "/1 [" + member + "]/1 " + line + "/1 #2");
    EXPECT_EQ(parser->Run("swn"), "1 " + std::string(200000, 'z') + "/1 #4")
        << "a word crosses the pieces of a long line, each counted as a line";
}

TEST_F(ScriptFile, WritingAndTheWorkingFilesEnd) {
    {
        Parser writer;
        ASSERT_EQ(writer.FOpen(mFolder.Library("out").c_str(), kOpenWriteText), 0);
        MString empty, text(u"één "), big(std::u16string(20000, u'é').c_str());
        MStringList list;
        list.Add(u"a");
        list.Add(u"bc\n");
        EXPECT_EQ(writer.WriteString2File(&empty) + writer.WriteString2File(&text), 2);
        EXPECT_EQ(writer.WriteStringList2File(&list), 1);
        EXPECT_EQ(writer.WriteString2File(&big), 1) << "no 10,000-byte limit";
        testing::FaultEnv faults;
        faults.FailFrom(testing::SysCall::kWrite, 1, ENOSPC);
        testing::ScopedEnv use(faults);
        ::testing::internal::CaptureStdout();
        EXPECT_EQ(writer.WriteString2File(&text), 0);
        const std::u16string path = mFolder.Library("out");  // ASCII
        EXPECT_EQ(::testing::internal::GetCapturedStdout(),
                  "Error: write failed(" + std::string(path.begin(), path.end()) +
                      ")\nCheck your free disk size\n");
    }
    const std::string written = mFolder.Read("out");
    EXPECT_EQ(written.substr(0, 10), "\xC3\xA9\xC3\xA9n abc\n");
    EXPECT_EQ(written.size(), 10u + 40000u);
    Open("x\n").reset();
    EXPECT_FALSE(std::filesystem::exists(mFolder / "w0"))
        << "the destructor deletes the working file";
    EXPECT_EQ(Parser().OpenForParse(mFolder.Library("missing").c_str()), 0);
}

}  // namespace
}  // namespace basicutils
