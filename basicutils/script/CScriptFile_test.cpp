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

std::u16string U16(const std::string& s) {
    return std::u16string(s.begin(), s.end());
}

// Opens the protected reading operations to the tests; `last` is the
// answer of the last one.
class Parser : public CScriptFile {
  public:
    using CScriptFile::GetOneChar;
    using CScriptFile::GetString2;
    using CScriptFile::StopUntilChars;
    char16_t Here() const { return mCursor ? *mCursor : u'?'; }
    std::u16string Word() {
        MString word(u"untouched");
        last = GetString(&word, u',');
        return static_cast<const char16_t*>(word);
    }
    std::vector<std::u16string> List() {
        MStringList list;
        last = GetListMember(&list);
        std::vector<std::u16string> out;
        for (MString* s = list.GetHead(); s; s = list.GetNext()) out.emplace_back(*s);
        return out;
    }
    std::u16string Token() {
        MString token, rest(u"x");
        last = GetToken(&token, u" \t\r\n", &rest);
        EXPECT_EQ(last == 1 ? std::u16string(rest) : u"", u"");
        return last == 1 ? static_cast<const char16_t*>(token) : u"<end>";
    }
    int last = 0;
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

TEST_F(ScriptFile, SkippingWordsAndTheirEnds) {
    struct Case {
        const char* text;
        char16_t skip;
        int skipped;
        std::u16string word;
        int result;
        char16_t after;  // under the cursor afterwards
        int line;
    };
    const Case cases[] = {
        {"  # note\n  // note\n  x y", u' ', 1, u"x", 1, u' ', 3},
        {"a//b,c\n", u' ', 1, u"a//b", 1, u',', 1},  // no comment inside a word
        {"/x\n", u' ', 1, u"/x", 1, u'\n', 1},       // one slash is no comment
        {"((( key\n", u'(', 1, u"key", 1, u'\n', 1},
        {"\n\n\tword\r\n", u' ', 1, u"word", 1, u'\n', 3},  // text mode reads CR LF as LF
        {"last", u' ', 1, u"untouched", -1, u't', 1},       // no line end: the word is lost
        {"", u' ', -1, u"untouched", -1, u'?', 0},
    };
    for (const Case& c : cases) {
        auto parser = Open(c.text);
        EXPECT_EQ(parser->SkipWhiteSpaceAndChar(c.skip), c.skipped) << c.text;
        EXPECT_EQ(parser->Word(), c.word) << c.text;
        EXPECT_EQ(parser->last, c.result) << c.text;
        EXPECT_EQ(parser->Here(), c.after) << c.text;
        EXPECT_EQ(parser->GetCurrentLineNum(), c.line) << c.text;
    }
    auto comment = Open("x\n# only a comment");
    comment->GetOneChar();
    EXPECT_EQ(comment->SkipWhiteSpaceAndChar(u'x'), -1);
    EXPECT_EQ(comment->Here(), u'#') << "the end of the file leaves the cursor where it was";
    auto pair = Open("key=value;\n");
    MString word;
    EXPECT_EQ(pair->GetString2(&word, MString(u"=;")), 1);
    EXPECT_EQ(word, u"key");
}

TEST_F(ScriptFile, ListsAndTheExpectedCharacter) {
    const std::tuple<const char*, std::vector<std::u16string>, int> lists[] = {
        {"(a, b c)\n", {u"a", u"b", u"c"}, 1},
        {"()\n", {}, 1},
        {"a b\n", {u"a", u"b"}, 1},
        {"# lead\n(one,\n  # between\n two // tail\n ,three) next\n",
         {u"one", u"two", u"three"},
         1},
        {"(a, b", {u"a"}, 0},
    };
    for (const auto& [text, members, result] : lists) {
        auto parser = Open(text);
        EXPECT_EQ(parser->List(), members) << text;
        EXPECT_EQ(parser->last, result) << text;
    }
    CMessageAction::SetDefault(kMessageWindow3);
    const std::tuple<const char*, int, char16_t, std::u16string> expected[] = {
        {"   {\n", 1, u'{', u""},
        {"   x\n", 0, u'-', u"syntax error: Syntax error near line 1\n              >>>     x\n"},
        {"# x\n", 0, u'-', u"syntax error: Syntax error near line 1\n              >>>  # x\n"},
    };
    for (const auto& [text, result, found, report] : expected) {
        auto parser = Open(text);
        Reports reports;
        char16_t got = u'-';
        EXPECT_EQ(parser->StopUntilChars(MString(u"={"), &got), result) << text;
        EXPECT_EQ(got, found) << text;
        if (report.empty()) continue;
        ASSERT_EQ(reports.heard.size(), 1u);
        EXPECT_EQ(reports.heard[0].first, 26010) << "window 2, whatever the default";
        EXPECT_EQ(reports.heard[0].second, report);
    }
    CMessageAction::SetDefault(kMessageWindow1);
}

TEST_F(ScriptFile, TokenStyle) {
    const std::tuple<const char*, std::vector<std::u16string>, int> cases[] = {
        {"// c\n\nab cd\n", {u"ab", u"cd"}, 3},
        {"ab //c d\nnext\n", {u"ab", u"next"}, 2},
        {"/ /x\n", {u"/", u"/x"}, 1},
        {"no end", {u"no", u"end"}, 1},
    };
    for (const auto& [text, tokens, lines] : cases) {
        auto parser = Open(text);
        for (const std::u16string& token : tokens) EXPECT_EQ(parser->Token(), token) << text;
        EXPECT_EQ(parser->Token(), u"<end>") << text;
        EXPECT_EQ(parser->GetCurrentLineNum(), lines) << text;
    }
    auto parser = Open("ab cd\n");
    parser->Token();
    EXPECT_EQ(std::u16string(parser->GetCurrentLine()), u"ab cd") << "without its line end";
}

TEST_F(ScriptFile, CopiesAndOtherParsersNeverShareALine) {
    auto first = Open("a b c\n");
    EXPECT_EQ(first->Token(), u"a");
    first.reset();  // its token line is freed
    auto second = Open("x y\n");
    EXPECT_EQ(second->Token(), u"x");
    Parser copy(*second);
    EXPECT_EQ(copy.Token(), u"<end>") << "a copy starts at the next line";
    EXPECT_EQ(second->Token(), u"y");
    auto words = Open("alpha beta\n");
    words->SkipWhiteSpaceAndChar(u' ');
    words->Word();
    auto wordCopy = std::make_unique<Parser>(*words);
    words.reset();
    wordCopy->SkipWhiteSpaceAndChar(u' ');
    EXPECT_EQ(wordCopy->Word(), u"beta") << "the copy's cursor is in its own line";
}

TEST_F(ScriptFile, LongWordsMembersAndLinesAreReadWhole) {
    const std::string word(5000, 'w'), member(12000, 'm'), line(70000, 'l');
    auto parser =
        Open(word + " (" + member + ")\n" + line + "\n" + std::string(200000, 'z') + "\nend\n");
    parser->SkipWhiteSpaceAndChar(u' ');
    EXPECT_EQ(parser->Word(), U16(word));
    EXPECT_EQ(parser->List(), std::vector<std::u16string>{U16(member)});
    EXPECT_EQ(parser->Word(), U16(line));
    EXPECT_EQ(parser->GetCurrentLineNum(), 2);
    parser->SkipWhiteSpaceAndChar(u' ');
    EXPECT_EQ(parser->Word().size(), 200000u) << "a word crosses the pieces of a long line";
    EXPECT_EQ(parser->GetCurrentLineNum(), 4) << "two pieces, counted as two lines";
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
