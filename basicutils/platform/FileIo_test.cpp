// Transfers on real files: overlapped with events and with completion
// routines, the end of the file, direct I/O with its buffered fallback,
// synchronous handles, cancellation and injected failures.
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/FileApi.h>
#include <basicutils/platform/FileIo.h>
#include <basicutils/platform/FileTesting_test.h>
#include <basicutils/platform/Sync.h>
#include <basicutils/platform/Threads.h>
#include <basicutils/platform/VirtualMemory.h>
#include <basicutils/platform/internal/AsyncIo.h>
#include <basicutils/platform/testing/FaultEnv.h>
#include <basicutils/platform/testing/TestBackend.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

namespace basicutils {
namespace {

using testing::FaultEnv;
using testing::ScopedEnv;
using testing::SysCall;
using testing::TempFolder;

constexpr DWORD kOverlappedDirect = FILE_FLAG_OVERLAPPED | FILE_FLAG_NO_BUFFERING;

std::string Pattern(size_t size, int seed = 1) {
    std::string bytes(size, '\0');
    for (size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>((i * 131 + seed) % 251);
    return bytes;
}

// An overlapped transfer with its own event, waited for with a deadline.
struct Pending {
    OVERLAPPED overlapped{};
    Pending(int64_t offset) {
        overlapped.Offset = static_cast<DWORD>(offset);
        overlapped.OffsetHigh = static_cast<DWORD>(offset >> 32);
        overlapped.hEvent = CreateEventW(nullptr, 1, 0, nullptr);
    }
    ~Pending() { CloseHandle(overlapped.hEvent); }
    // The error code of the end, after checking the event came.
    DWORD End() {
        EXPECT_EQ(WaitForSingleObject(overlapped.hEvent, 10000), WAIT_OBJECT_0);
        return static_cast<DWORD>(overlapped.Internal);
    }
};

// Page-aligned memory with room around the request, for direct I/O.
struct Block {
    char* base = static_cast<char*>(VirtualAlloc(nullptr, 1 << 20, MEM_COMMIT, PAGE_READWRITE));
    ~Block() { VirtualFree(base, 0, MEM_RELEASE); }
};

TEST(FileIo, RunsOnTheEngineTheTestRunAskedFor) {
    if (testing::TestAsyncBackend() == detail::AsyncBackendKind::kThreadPool)
        EXPECT_STREQ(detail::TheAsyncBackend().Name(), "thread pool");
    else
        SUCCEED() << detail::TheAsyncBackend().Name();
}

TEST(FileIo, OverlappedReadsAnywhereAndReportTheEnd) {
    TempFolder folder;
    const std::string data = Pattern(10000);
    folder.Write("f", data);
    struct Case {
        int64_t offset;
        DWORD count;
        bool aligned;  // buffer, offset and count on 512 bytes: direct
        DWORD error, bytes;
    } cases[] = {
        {0, 4096, true, ERROR_SUCCESS, 4096},   {8192, 2048, true, ERROR_SUCCESS, 1808},
        {9216, 512, true, ERROR_SUCCESS, 512},  {10240, 512, true, ERROR_HANDLE_EOF, 0},
        {5, 100, false, ERROR_SUCCESS, 100},    {9999, 7, false, ERROR_SUCCESS, 1},
        {10000, 3, false, ERROR_HANDLE_EOF, 0}, {0, 0, true, ERROR_SUCCESS, 0},
    };
    HANDLE file = CreateFileW(folder.Wide("f").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                              kOverlappedDirect, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    Block block;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.offset);
        char* at = block.base + (c.aligned ? 4096 : 4099);
        Pending p(c.offset);
        DWORD ignored = 7;
        EXPECT_FALSE(ReadFile(file, at, c.count, &ignored, &p.overlapped));
        EXPECT_EQ(GetLastError(), ERROR_IO_PENDING);
        EXPECT_EQ(p.End(), c.error);
        EXPECT_EQ(p.overlapped.InternalHigh, c.bytes);
        EXPECT_EQ(std::string(at, c.bytes),
                  data.substr(std::min<size_t>(c.offset, 10000), c.bytes));
        DWORD bytes = 0;
        EXPECT_EQ(GetOverlappedResult(file, &p.overlapped, &bytes, 0), c.error == 0);
        EXPECT_EQ(bytes, c.bytes);
    }
    CloseHandle(file);
}

TEST(FileIo, DirectWritesOfAnyShapeLandWhereAsked) {
    for (bool refused : {false, true}) {  // refused: the file system will not go direct
        TempFolder folder;
        FaultEnv faults;
        if (refused) faults.FailNth(SysCall::kFcntl, 2, EINVAL);  // the F_SETFL
        HANDLE file;
        {
            ScopedEnv use(faults);
            file = CreateFileW(folder.Wide("f").c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                               CREATE_ALWAYS, kOverlappedDirect, nullptr);
        }
        ASSERT_NE(file, INVALID_HANDLE_VALUE);
        Block block;
        const std::string data = Pattern(6000, 7);
        std::copy(data.begin(), data.end(), block.base);
        std::copy(data.begin(), data.end(), block.base + 8193);
        std::string expected(12000, '\0');
        struct Piece {
            size_t from;  // in block
            int64_t offset;
            DWORD count;
        } pieces[] = {{0, 0, 4096}, {8193, 4096, 1000}, {0, 6000, 2048}, {8193, 9000, 3000}};
        for (const Piece& piece : pieces) {
            Pending p(piece.offset);
            WriteFile(file, block.base + piece.from, piece.count, nullptr, &p.overlapped);
            EXPECT_EQ(p.End(), ERROR_SUCCESS);
            EXPECT_EQ(p.overlapped.InternalHigh, piece.count);
            expected.replace(static_cast<size_t>(piece.offset), piece.count,
                             block.base + piece.from, piece.count);
        }
        EXPECT_TRUE(FlushFileBuffers(file));
        CloseHandle(file);
        EXPECT_EQ(folder.Read("f"), expected) << refused;
    }
}

TEST(FileIo, RoutinesRunOnTheIssuingThreadOnlyInAnAlertableWait) {
    TempFolder folder;
    folder.Write("f", Pattern(3000));
    HANDLE file = CreateFileW(folder.Wide("f").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                              FILE_FLAG_OVERLAPPED, nullptr);
    static DWORD sThread, sError, sBytes, sLastError;
    static int sRuns;
    sRuns = 0;
    auto routine = [](DWORD error, DWORD bytes, OVERLAPPED*) {
        sThread = GetCurrentThreadId();
        sError = error;
        sBytes = bytes;
        sLastError = GetLastError();
        ++sRuns;
    };
    char buffer[4096];
    struct Case {
        int64_t offset;
        DWORD error, bytes;
    } cases[] = {
        {0, ERROR_SUCCESS, 3000}, {2000, ERROR_SUCCESS, 1000}, {3000, ERROR_HANDLE_EOF, 0}};
    HANDLE never = CreateEventW(nullptr, 1, 0, nullptr);
    for (const Case& c : cases) {
        OVERLAPPED overlapped{};
        overlapped.Offset = static_cast<DWORD>(c.offset);
        sRuns = 0;
        ASSERT_TRUE(ReadFileEx(file, buffer, sizeof buffer, &overlapped, routine));
        EXPECT_EQ(WaitForSingleObject(never, 100), WAIT_TIMEOUT);  // not alertable
        EXPECT_EQ(sRuns, 0);
        DWORD answer;
        do answer = WaitForSingleObjectEx(never, 10000, 1);
        while (answer == WAIT_IO_COMPLETION && sRuns == 0);
        EXPECT_EQ(answer, WAIT_IO_COMPLETION);
        EXPECT_EQ(sRuns, 1);
        EXPECT_EQ(sThread, GetCurrentThreadId());
        EXPECT_EQ(sError, c.error);
        EXPECT_EQ(sLastError, c.error);
        EXPECT_EQ(sBytes, c.bytes);
        EXPECT_EQ(overlapped.InternalHigh, c.bytes);
    }
    CloseHandle(never);
    CloseHandle(file);
}

TEST(FileIo, SynchronousHandlesMoveThePosition) {
    TempFolder folder;
    folder.Write("f", "0123456789");
    HANDLE file = CreateFileW(folder.Wide("f").c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                              OPEN_EXISTING, 0, nullptr);
    char buffer[16] = {};
    DWORD bytes = 0;
    EXPECT_TRUE(ReadFile(file, buffer, 4, &bytes, nullptr));
    EXPECT_EQ(std::string(buffer, bytes), "0123");
    EXPECT_TRUE(WriteFile(file, "ab", 2, &bytes, nullptr));
    EXPECT_TRUE(ReadFile(file, buffer, 16, &bytes, nullptr));
    EXPECT_EQ(std::string(buffer, bytes), "6789");
    EXPECT_TRUE(ReadFile(file, buffer, 16, &bytes, nullptr));  // the end: TRUE with nothing
    EXPECT_EQ(bytes, 0u);
    Pending at(8);
    EXPECT_TRUE(ReadFile(file, buffer, 16, &bytes, &at.overlapped));
    EXPECT_EQ(std::string(buffer, bytes), "89");
    EXPECT_EQ(at.End(), ERROR_SUCCESS);
    Pending past(10);
    EXPECT_FALSE(ReadFile(file, buffer, 16, &bytes, &past.overlapped));
    EXPECT_EQ(GetLastError(), ERROR_HANDLE_EOF);
    CloseHandle(file);
    EXPECT_EQ(folder.Read("f"), "0123ab6789");
}

TEST(FileIo, RefusalsAndInjectedEndsReachTheCaller) {
    TempFolder folder;
    folder.Write("f", Pattern(8192));
    auto open = [&](DWORD access, DWORD flags) {
        return CreateFileW(folder.Wide("f").c_str(), access, 0, nullptr, OPEN_EXISTING, flags,
                           nullptr);
    };
    HANDLE reader = open(GENERIC_READ, FILE_FLAG_OVERLAPPED);
    HANDLE writer = open(GENERIC_WRITE, FILE_FLAG_OVERLAPPED);
    HANDLE plain = open(GENERIC_READ, 0);
    char buffer[8192];
    auto routine = [](DWORD, DWORD, OVERLAPPED*) {};
    struct Case {
        const char* name;
        std::function<BOOL(OVERLAPPED*)> call;
        SysCall fault;  // kAny: none
        bool shortened;
        DWORD started;  // GetLastError after the call
        DWORD ended;    // Internal at the end; ~0u: never started
        DWORD bytes;
    } cases[] = {
        {"bad handle", [&](OVERLAPPED* o) { return ReadFile(nullptr, buffer, 10, nullptr, o); },
         SysCall::kAny, false, ERROR_INVALID_HANDLE, ~0u, 0},
        {"no block", [&](OVERLAPPED*) { return ReadFile(reader, buffer, 10, nullptr, nullptr); },
         SysCall::kAny, false, ERROR_INVALID_PARAMETER, ~0u, 0},
        {"ex on plain", [&](OVERLAPPED* o) { return ReadFileEx(plain, buffer, 10, o, routine); },
         SysCall::kAny, false, ERROR_INVALID_PARAMETER, ~0u, 0},
        {"read a writer", [&](OVERLAPPED* o) { return ReadFile(writer, buffer, 10, nullptr, o); },
         SysCall::kAny, false, ERROR_ACCESS_DENIED, ~0u, 0},
        {"write a reader", [&](OVERLAPPED* o) { return WriteFile(reader, buffer, 10, nullptr, o); },
         SysCall::kAny, false, ERROR_ACCESS_DENIED, ~0u, 0},
        {"refused", [&](OVERLAPPED* o) { return ReadFile(reader, buffer, 8192, nullptr, o); },
         SysCall::kAsyncSubmit, false, ERROR_IO_DEVICE, ~0u, 0},
        {"failed", [&](OVERLAPPED* o) { return ReadFile(reader, buffer, 8192, nullptr, o); },
         SysCall::kAsyncComplete, false, ERROR_IO_PENDING, ERROR_IO_DEVICE, 0},
        {"short", [&](OVERLAPPED* o) { return ReadFile(reader, buffer, 8192, nullptr, o); },
         SysCall::kAsyncComplete, true, ERROR_IO_PENDING, ERROR_SUCCESS, 4096},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Pending p(0);
        FaultEnv faults;
        if (c.shortened)
            faults.ShortNth(c.fault, 1);
        else if (c.fault != SysCall::kAny)
            faults.FailNth(c.fault, 1, EIO);
        ScopedEnv use(faults);
        EXPECT_FALSE(c.call(&p.overlapped));
        EXPECT_EQ(GetLastError(), c.started);
        if (c.ended == ~0u) {
            EXPECT_EQ(WaitForSingleObject(p.overlapped.hEvent, 0), WAIT_TIMEOUT);
            continue;
        }
        EXPECT_EQ(p.End(), c.ended);
        EXPECT_EQ(p.overlapped.InternalHigh, c.bytes);
    }
    for (HANDLE h : {reader, writer, plain}) CloseHandle(h);
}

TEST(FileIo, CancelledTransfersStillEndOnceEach) {
    TempFolder folder;
    folder.Write("f", Pattern(1 << 20));
    HANDLE file = CreateFileW(folder.Wide("f").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                              FILE_FLAG_OVERLAPPED, nullptr);
    FaultEnv faults;
    faults.HoldNth(SysCall::kAsyncComplete, 1);
    ScopedEnv use(faults);
    std::vector<char> buffer(1 << 20);
    std::vector<std::unique_ptr<Pending>> reads;
    for (int i = 0; i < 16; ++i) {
        reads.push_back(std::make_unique<Pending>(i * 65536));
        ReadFile(file, buffer.data() + i * 65536, 65536, nullptr, &reads.back()->overlapped);
    }
    ASSERT_TRUE(faults.WaitUntilHeld(10));
    // The held one has not ended yet.
    auto held = std::find_if(reads.begin(), reads.end(),
                             [](auto& r) { return !HasOverlappedIoCompleted(&r->overlapped); });
    ASSERT_NE(held, reads.end());
    DWORD bytes = 0;
    EXPECT_FALSE(GetOverlappedResult(file, &(*held)->overlapped, &bytes, 0));
    EXPECT_EQ(GetLastError(), ERROR_IO_INCOMPLETE);
    EXPECT_TRUE(CancelIo(file));
    faults.Release();
    for (auto& r : reads) {
        const DWORD end = r->End();
        EXPECT_TRUE(end == ERROR_SUCCESS || end == ERROR_OPERATION_ABORTED) << end;
        EXPECT_EQ(r->overlapped.InternalHigh, end == ERROR_SUCCESS ? 65536u : 0u);
    }
    CloseHandle(file);
}

}  // namespace
}  // namespace basicutils
