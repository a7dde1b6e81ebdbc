// The fault seam: rules hit exactly the calls they name, and the real calls
// go through untouched otherwise.
#include <basicutils/platform/testing/FaultEnv.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <thread>

namespace basicutils::testing {
namespace {

std::string ScratchFile() {
    char name[] = "/tmp/basicutils-faultenv-XXXXXX";
    const int fd = ::mkstemp(name);
    ::close(fd);
    return name;
}

TEST(FaultEnv, RulesHitTheCountedCallsOnly) {
    const std::string path = ScratchFile();
    FaultEnv faults;
    ScopedEnv use(faults);
    Env& env = detail::CurrentEnv();
    faults.FailNth(SysCall::kWrite, 2, ENOSPC)
        .ShortNth(SysCall::kWrite, 3)
        .FailFrom(SysCall::kOpen, 2, EMFILE);

    const int fd = env.Open(path.c_str(), O_RDWR, 0);
    ASSERT_GE(fd, 0);
    const char data[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    EXPECT_EQ(env.Write(fd, data, 8), 8);
    errno = 0;
    EXPECT_EQ(env.Write(fd, data, 8), -1);
    EXPECT_EQ(errno, ENOSPC);
    EXPECT_EQ(env.Write(fd, data, 8), 4);  // short: half the count
    EXPECT_EQ(env.Write(fd, data, 8), 8);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(env.Open(path.c_str(), O_RDONLY, 0), -1);
    EXPECT_EQ(errno, EMFILE);
    EXPECT_EQ(env.Close(fd), 0);

    EXPECT_EQ(faults.Count(SysCall::kWrite), 4);
    EXPECT_EQ(faults.Count(SysCall::kOpen), 4);
    EXPECT_EQ(faults.Count(SysCall::kAny), 9);
    EXPECT_EQ(faults.Injected(), 5);
    struct stat status;
    ASSERT_EQ(::stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_size, 20);  // 8 + 4 + 8: the failed write wrote nothing
    ::unlink(path.c_str());
}

TEST(FaultEnv, ScopeRestoresThePreviousEnvAndThreadLimitFilters) {
    Env* before = &detail::CurrentEnv();
    {
        FaultEnv faults;
        faults.LimitToThisThread().FailFrom(SysCall::kStat, 1, EACCES);
        ScopedEnv use(faults);
        struct stat status;
        EXPECT_EQ(detail::CurrentEnv().Stat("/", &status), -1);
        int other = -2;
        std::thread([&] { other = detail::CurrentEnv().Stat("/", &status); }).join();
        EXPECT_EQ(other, 0);  // another thread's calls pass and are not counted
        EXPECT_EQ(faults.Count(SysCall::kStat), 1);
    }
    EXPECT_EQ(&detail::CurrentEnv(), before);
}

TEST(FaultEnv, KillStopsTheProcessBeforeTheCall) {
    const std::string path = ScratchFile();
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        FaultEnv faults;
        faults.KillAt(SysCall::kAny, 2);
        ScopedEnv use(faults);
        const int fd = detail::CurrentEnv().Open(path.c_str(), O_WRONLY, 0);
        detail::CurrentEnv().Write(fd, "x", 1);  // killed before this
        std::_Exit(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGKILL);
    struct stat info;
    ASSERT_EQ(::stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_size, 0);
    ::unlink(path.c_str());
}

}  // namespace
}  // namespace basicutils::testing
