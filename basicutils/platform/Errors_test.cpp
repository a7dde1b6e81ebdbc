#include <basicutils/platform/Errors.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <thread>

namespace basicutils {
namespace {

TEST(Errors, LastErrorIsPerThread) {
    SetLastError(ERROR_DISK_FULL);
    uint32_t seenByOther = 12345;
    std::thread([&] {
        seenByOther = GetLastError();
        SetLastError(ERROR_ACCESS_DENIED);
    }).join();
    EXPECT_EQ(seenByOther, ERROR_SUCCESS) << "a new thread starts clean";
    EXPECT_EQ(GetLastError(), ERROR_DISK_FULL) << "another thread's error is not ours";
}

TEST(Errors, ErrnoMapsToWin32Numbers) {
    // clang-format off
    struct Case { int errnum; uint32_t win32; } cases[] = {
        {0, 0}, {ENOENT, 2}, {ENOTDIR, 3}, {EMFILE, 4}, {EACCES, 5}, {EBADF, 6}, {ENOMEM, 8},
        {EEXIST, 80}, {EINVAL, 87}, {ENOSPC, 112}, {EIO, 1117}, {EPIPE, 109}, {EILSEQ, 1113},
        {ENAMETOOLONG, 206}, {ENOTEMPTY, 145}, {EDQUOT, 112}, {ECANCELED, 995}, {ETIMEDOUT, 1460},
        {99999, ERROR_GEN_FAILURE},
    };
    // clang-format on
    for (const Case& c : cases) EXPECT_EQ(ErrnoToWin32Error(c.errnum), c.win32) << c.errnum;
    EXPECT_EQ(SetLastErrorFromErrno(ENOENT), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
}

TEST(Errors, EveryMappedNumberHasAText) {
    for (int e = 0; e < 200; ++e) {
        uint32_t code = ErrnoToWin32Error(e);
        std::u16string text = FormatMessageText(code);
        ASSERT_GE(text.size(), 4u) << "no text for " << code << " (errno " << e << ")";
        EXPECT_EQ(text.substr(text.size() - 3), u".\r\n");
    }
    for (uint32_t code : {ERROR_HANDLE_EOF, ERROR_IO_PENDING, ERROR_OPERATION_ABORTED, 258u,
                          ERROR_INSUFFICIENT_BUFFER, ERROR_ALREADY_EXISTS})
        EXPECT_FALSE(FormatMessageText(code).empty()) << code;
    EXPECT_EQ(FormatMessageText(ERROR_FILE_NOT_FOUND),
              u"The system cannot find the file specified.\r\n");
    EXPECT_TRUE(FormatMessageText(424242).empty());
}

TEST(Errors, FormatMessageWithAndWithoutAllocation) {
    const uint32_t kSystem = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
    char16_t* block = nullptr;
    uint32_t n =
        FormatMessageW(kSystem | FORMAT_MESSAGE_ALLOCATE_BUFFER, nullptr, ERROR_ACCESS_DENIED,
                       0x400, reinterpret_cast<char16_t*>(&block), 0, nullptr);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(std::u16string(block), u"Access is denied.\r\n");
    EXPECT_EQ(n, 19u);
    EXPECT_EQ(LocalFree(block), nullptr);

    char16_t buffer[20];
    EXPECT_EQ(FormatMessageW(kSystem, nullptr, ERROR_ACCESS_DENIED, 0, buffer, 20, nullptr), 19u);
    EXPECT_EQ(FormatMessageW(kSystem, nullptr, ERROR_ACCESS_DENIED, 0, buffer, 19, nullptr), 0u);
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(FormatMessageW(kSystem, nullptr, 424242, 0, buffer, 20, nullptr), 0u);
    EXPECT_EQ(GetLastError(), ERROR_MR_MID_NOT_FOUND);
    EXPECT_EQ(FormatMessageW(FORMAT_MESSAGE_FROM_STRING, u"x", 1, 0, buffer, 20, nullptr), 0u);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
}

}  // namespace
}  // namespace basicutils
