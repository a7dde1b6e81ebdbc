// The linear history: filing, dropping undone operations, moving the position.
#include <basicutils/undo/COperation.h>
#include <gtest/gtest.h>

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

TEST(COperationList, WithoutHistoryOperationsRunAndAreDeleted) {
    ASSERT_EQ(COperationList::GetOperationList(), nullptr);
    std::string j;
    EXPECT_TRUE((new Op(&j, 'a'))->Execute()) << "true means done, not undoable";
    EXPECT_FALSE((new Op(&j, 'b', false))->Execute());
    EXPECT_EQ(j, "+a~a+b~b");
    EXPECT_FALSE(COperationList::CanUndo());
    COperationList::Undo();
    COperationList::Redo();
}

TEST(COperationList, NewOperationDropsTheUndoneOnesNewestFirst) {
    std::string j;
    {
        COperationList history;
        EXPECT_EQ(COperationList::GetOperationList(), &history);
        for (char c : {'A', 'B', 'C'}) (new Op(&j, c))->Execute();
        COperationList::Undo();
        (new Op(&j, 'x', false))->Execute();  // failed: nothing changes
        EXPECT_TRUE(COperationList::CanRedo());
        (new Op(&j, 'D'))->Execute();
        EXPECT_EQ(j, "+A+B+C-C+x~x+D~C");
        EXPECT_FALSE(COperationList::CanRedo());
        j.clear();
        for (int i = 0; i < 4; ++i) COperationList::Undo();  // the 4th does nothing
        EXPECT_EQ(j, "-D-B-A");
        EXPECT_FALSE(COperationList::CanUndo());
        (new Op(&j, 'E'))->Execute();
        EXPECT_EQ(j, "-D-B-A+E~D~B~A");
        j.clear();
        COperationList::Undo();
        COperationList::Redo();
        COperationList::Redo();  // at the end: nothing
        EXPECT_EQ(j, "-E+E") << "Redo calls the operation, never Execute";
        history.removeOperationList();
        EXPECT_EQ(j, "-E+E~E");
        EXPECT_FALSE(COperationList::CanUndo());
        EXPECT_FALSE(COperationList::CanRedo());
    }
    EXPECT_EQ(COperationList::GetOperationList(), nullptr);
}

TEST(COperationList, FailingUndoStillMovesAndDestructionDeletesAll) {
    std::string j;
    {
        COperationList history;
        (new Op(&j, 'A'))->Execute();
        (new Op(&j, 'F', true, false))->Execute();  // its undo fails
        COperationList::Undo();
        EXPECT_TRUE(COperationList::CanRedo());
        COperationList::Undo();
        EXPECT_FALSE(COperationList::CanUndo());
    }
    EXPECT_EQ(j, "+A+F-F-A~F~A") << "the newest goes first";
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
    int undone = 0;
    while (COperationList::CanUndo()) {
        COperationList::Undo();
        ++undone;
    }
    int redone = 0;
    while (COperationList::CanRedo()) {
        COperationList::Redo();
        ++redone;
    }
    EXPECT_EQ(undone, redone);
    EXPECT_GT(undone, 0);
}

}  // namespace
}  // namespace basicutils
