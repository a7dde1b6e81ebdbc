// The linear history: filing, dropping undone operations, moving the position.
#include <basicutils/undo/COperation.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace basicutils {
namespace {

struct Journal {
    std::string text;
};

class Op : public COperation {
  public:
    Op(Journal* j, char name, bool succeeds = true) : mJ(j), mName(name), mSucceeds(succeeds) {}
    ~Op() override { mJ->text += std::string("~") + mName; }
    bool ExecuteSelf() override {
        mJ->text += std::string("+") + mName;
        return mSucceeds;
    }
    bool UndoSelf() override {
        mJ->text += std::string("-") + mName;
        return mSucceeds;
    }

  private:
    Journal* mJ;
    char mName;
    bool mSucceeds;
};

TEST(COperationList, WithoutHistoryOperationsRunAndAreDeleted) {
    ASSERT_EQ(COperationList::GetOperationList(), nullptr);
    Journal j;
    EXPECT_TRUE((new Op(&j, 'a'))->Execute()) << "true means done, not undoable";
    EXPECT_FALSE((new Op(&j, 'b', false))->Execute());
    EXPECT_EQ(j.text, "+a~a+b~b");
    EXPECT_FALSE(COperationList::CanUndo());
    COperationList::Undo();
    COperationList::Redo();
}

TEST(COperationList, NewOperationDropsTheUndoneOnesNewestFirst) {
    Journal j;
    {
        COperationList history;
        EXPECT_EQ(COperationList::GetOperationList(), &history);
        for (char c : {'A', 'B', 'C'}) (new Op(&j, c))->Execute();
        COperationList::Undo();
        (new Op(&j, 'x', false))->Execute();  // failed: nothing changes
        EXPECT_TRUE(COperationList::CanRedo());
        (new Op(&j, 'D'))->Execute();
        EXPECT_EQ(j.text, "+A+B+C-C+x~x+D~C");
        EXPECT_FALSE(COperationList::CanRedo());
        j.text.clear();
        for (int i = 0; i < 4; ++i) COperationList::Undo();  // the 4th does nothing
        EXPECT_EQ(j.text, "-D-B-A");
        EXPECT_FALSE(COperationList::CanUndo());
        (new Op(&j, 'E'))->Execute();
        EXPECT_EQ(j.text, "-D-B-A+E~D~B~A");
        j.text.clear();
        COperationList::Undo();
        COperationList::Redo();
        COperationList::Redo();  // at the end: nothing
        EXPECT_EQ(j.text, "-E+E") << "Redo calls the operation, never Execute";
        history.removeOperationList();
        EXPECT_EQ(j.text, "-E+E~E");
        EXPECT_FALSE(COperationList::CanUndo());
        EXPECT_FALSE(COperationList::CanRedo());
    }
    EXPECT_EQ(COperationList::GetOperationList(), nullptr);
}

TEST(COperationList, FailingUndoStillMovesAndDestructionDeletesAll) {
    Journal j;
    {
        COperationList history;
        (new Op(&j, 'A'))->Execute();
        // An operation whose undo fails: fake by a success flag that flips.
        class Flaky : public Op {
          public:
            using Op::Op;
            bool ExecuteSelf() override { return true; }
            bool UndoSelf() override { return false; }
        };
        (new Flaky(&j, 'F'))->Execute();
        COperationList::Undo();
        EXPECT_TRUE(COperationList::CanRedo());
        COperationList::Undo();
        EXPECT_FALSE(COperationList::CanUndo());
    }
    EXPECT_EQ(j.text, "+A-A~F~A") << "the newest goes first";
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
