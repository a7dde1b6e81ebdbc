// The linear history: filing, dropping undone operations, moving the position.
#include <basicutils/undo/COperation.h>
#include <gtest/gtest.h>

#include <cctype>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace basicutils {
namespace {

// Writes "+name" on Execute, "-name" on undo and "~name" when deleted to a
// journal; Execute and undo answer the given results.
class Op : public COperation {
  public:
    Op(std::string* j, char name, bool executes = true, bool undoes = true)
        : mJ(j), mName(name), mExecutes(executes), mUndoes(undoes) {}
    ~Op() override { *mJ += std::string("~") + mName; }
    bool ExecuteSelf() override { return *mJ += std::string("+") + mName, mExecutes; }
    bool UndoSelf() override { return *mJ += std::string("-") + mName, mUndoes; }

  private:
    std::string* mJ;
    char mName;
    bool mExecutes, mUndoes;
};

// Runs `script` on a fresh history (or none) and checks the journal,
// destruction of the history included. In a script, an upper-case letter is
// an operation that succeeds, a lower-case one an operation whose Execute
// fails, a `*` after a letter makes that operation's undo fail; `<` is Undo,
// `>` is Redo and `#` is removeOperationList.
TEST(COperationList, ScriptsOfOperationsLeaveTheirJournal) {
    // clang-format off
    struct { bool history; const char* script; bool canUndo, canRedo; const char* journal; } cases[] = {
        {false, "A b < >",        false, false, "+A~A+b~b"},  // run and deleted at once
        {true,  "A B C < x",      true,  true,  "+A+B+C-C+x~x~C~B~A"},  // a failed one changes nothing
        {true,  "A B C < D",      true,  false, "+A+B+C-C+D~C~D~B~A"},
        {true,  "A B < < < <",    false, true,  "+A+B-B-A~B~A"},  // undo at the start: nothing
        {true,  "A B < < C",      true,  false, "+A+B-B-A+C~B~A~C"},  // undone ones dropped newest first
        {true,  "E < > >",        true,  false, "+E-E+E~E"},  // Redo calls the operation, never Execute
        {true,  "A E #",          false, false, "+A+E~E~A"},
        {true,  "A F* < <",       false, true,  "+A+F-F-A~F~A"},  // a failing undo still moves
    };
    // clang-format on
    for (const auto& c : cases) {
        SCOPED_TRACE(c.script);
        std::string j;
        {
            std::optional<COperationList> history;
            if (c.history) history.emplace();
            EXPECT_EQ(COperationList::GetOperationList(), c.history ? &*history : nullptr);
            for (const char* s = c.script; *s; ++s) {
                if (*s == '<') COperationList::Undo();
                if (*s == '>') COperationList::Redo();
                if (*s == '#') history->removeOperationList();
                if (!std::isalpha(static_cast<unsigned char>(*s))) continue;
                const bool executes = std::isupper(static_cast<unsigned char>(*s));
                EXPECT_EQ((new Op(&j, *s, executes, s[1] != '*'))->Execute(), executes);
            }
            EXPECT_EQ(COperationList::CanUndo(), c.canUndo);
            EXPECT_EQ(COperationList::CanRedo(), c.canRedo);
        }
        EXPECT_EQ(j, c.journal);
        EXPECT_EQ(COperationList::GetOperationList(), nullptr);
    }
}

TEST(COperationList, ThreadsShareTheHistoryUnderItsLock) {
    struct Counter : COperation {
        bool ExecuteSelf() override { return true; }
        bool UndoSelf() override { return true; }
    };
    COperationList history;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([] {
            for (int i = 0; i < 300; ++i) {
                (new Counter)->Execute();
                if (i % 3 == 0) COperationList::Undo();
                if (i % 5 == 0) COperationList::Redo();
            }
        });
    for (auto& t : threads) t.join();
    int undone = 0, redone = 0;
    for (; COperationList::CanUndo(); ++undone) COperationList::Undo();
    for (; COperationList::CanRedo(); ++redone) COperationList::Redo();
    EXPECT_EQ(undone, redone);
    EXPECT_GT(undone, 0);
}

}  // namespace
}  // namespace basicutils
