// Idle processes run once in arrival order and empty the list; the task base
// shares its flags.
#include <basicutils/tasks/CIdleProcess.h>
#include <gtest/gtest.h>

#include <string>

namespace basicutils {
namespace {

std::string gRan;

class Step : public CIdleProcess {
  public:
    Step(char name, int spawn = 0) : mName(name), mSpawn(spawn) {}
    void ExecuteSelf() override {
        gRan += mName;
        if (mSpawn) new Step(static_cast<char>(mName + 1), mSpawn - 1);
    }
    ~Step() override { gRan += '~'; }

  private:
    char mName;
    int mSpawn;
};

// One deleted before its turn never runs; those made while running run last;
// a list that is destroyed deletes its processes without running them.
TEST(CIdleProcesses, RunOnceInOrderIncludingThoseMadeWhileRunning) {
    gRan.clear();
    new Step('a');
    auto* dropped = new Step('q');
    new Step('b', 2);  // makes c, which makes d
    new Step('x');
    delete dropped;
    EXPECT_EQ(gIdleProcesses.GetCount(), 3);
    gIdleProcesses.ExecuteAll();
    gIdleProcesses.ExecuteAll();
    EXPECT_EQ(gRan, "~a~b~x~c~d~");
    EXPECT_EQ(gIdleProcesses.GetCount(), 0);
    {
        CIdleProcesses local;
        auto* p = new Step('z');
        gIdleProcesses.RemoveProcess(p);
        local.AddProcess(p);
        // The process's destructor removes it from gIdleProcesses, where it
        // no longer is; the local list empties itself by iteration.
    }
    EXPECT_EQ(gRan, "~a~b~x~c~d~~");
}

}  // namespace
}  // namespace basicutils
