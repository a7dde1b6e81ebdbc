// The library's buffered stream: where it leaves the descriptor, text and
// 16-bit text on disk, and that what it was given is written or reported.
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/FileTesting_test.h>
#include <basicutils/platform/RuntimeStream.h>
#include <basicutils/platform/testing/FaultEnv.h>

#include <climits>

namespace basicutils {
namespace {

using testing::TempFolder;

// A stream over a file of `bytes`, opened with _wopen `flags`.
RuntimeStream* OpenStream(const TempFolder& folder, const std::string& bytes, int flags,
                          const char16_t* mode) {
    folder.Write("f", bytes);
    return _wfdopen(_wopen(folder.Wide("f").c_str(), flags), mode);
}

std::string Pattern(size_t size) {
    std::string bytes(size, 0);
    for (size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>('a' + i % 26);
    return bytes;
}

TEST(RuntimeStream, SeeksPutTheDescriptorWhereTheStreamStands) {
    TempFolder folder;
    struct Case {
        int32_t offset;
        int origin;
        int32_t target;
    } cases[] = {{100, SEEK_SET, 100}, {10, SEEK_CUR, 15}, {-5, SEEK_END, 9995}, {-5, SEEK_CUR, 0}};
    for (const Case& c : cases) {
        RuntimeStream* s = OpenStream(folder, Pattern(10000), _O_RDWR | _O_BINARY, u"r+b");
        const int fd = _fileno(s);
        char five[5];
        ASSERT_EQ(fread(five, 1, 5, s), 5u);
        EXPECT_EQ(_telli64(fd), 4096);  // one buffer read ahead
        ASSERT_EQ(fseek(s, c.offset, c.origin), 0);
        EXPECT_EQ(_telli64(fd), c.target);
        EXPECT_EQ(ftell(s), c.target);
        char next = 0;
        fread(&next, 1, 1, s);
        EXPECT_EQ(next, 'a' + c.target % 26);
        fclose(s);
    }
}

TEST(RuntimeStream, FlushLeavesTheDescriptorWhereReadsLeftIt) {
    // The pattern of a 64-bit seek over a stream: the stream gives up its
    // buffer, the descriptor moves once, the stream follows from the start.
    TempFolder folder;
    RuntimeStream* s = OpenStream(folder, Pattern(10000), _O_RDWR | _O_BINARY, u"r+b");
    const int fd = _fileno(s);
    char line[8];
    ASSERT_NE(fgets(line, 4, s), nullptr);
    ASSERT_EQ(fflush(s), 0);
    EXPECT_EQ(_telli64(fd), 4096);
    const int64_t at = _lseeki64(fd, 10, SEEK_CUR);
    ASSERT_EQ(fseek(s, static_cast<int32_t>(at), SEEK_SET), 0);
    EXPECT_EQ(_telli64(fd), 4106);  // moved once by 10, not twice
    EXPECT_EQ(fseek(s, INT32_MAX, SEEK_SET), 0);
    EXPECT_EQ(fseek(s, 1, SEEK_CUR), -1);  // beyond 31 bits: nothing moves
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(_telli64(fd), INT32_MAX);
    fclose(s);
}

TEST(RuntimeStream, TextLinesAndExactPositions) {
    TempFolder folder;
    RuntimeStream* s = OpenStream(folder, "l1\r\nl2\nabcdef\r", _O_RDONLY, u"r");
    char line[16];
    const char* expected[] = {"l1\n", "l2\n", "abc", "def", "\r"};
    const int32_t positions[] = {4, 7, 10, 13, 14};
    for (int i = 0; i < 5; ++i) {
        ASSERT_NE(fgets(line, i == 2 || i == 3 ? 4 : 16, s), nullptr);
        EXPECT_STREQ(line, expected[i]);
        EXPECT_EQ(ftell(s), positions[i]);
    }
    EXPECT_EQ(fgets(line, 16, s), nullptr);
    EXPECT_TRUE(feof(s));
    fclose(s);
}

TEST(RuntimeStream, WideTextOnDisk) {
    struct Case {
        const char16_t* mode;
        std::u16string written;
        std::string disk;
        std::u16string read;
    } cases[] = {
        {u"w+b", u"a\U0001F600\n", std::string("a\0=\xD8\0\xDE\n\0", 8), u"a\U0001F600\n"},
        {u"w+t", u"a\U0001F600\r\n", "a\xF0\x9F\x98\x80\r\n", u"a\U0001F600\n"},
        {u"w+t", u"\xD800x", "\xEF\xBF\xBDx", u"\xFFFDx"},
    };
    for (const Case& c : cases) {
        TempFolder folder;
        RuntimeStream* s = OpenStream(folder, "", _O_RDWR, c.mode);
        ASSERT_EQ(fputws(c.written.c_str(), s), 0);
        ASSERT_EQ(fseek(s, 0, SEEK_SET), 0);
        std::u16string back;
        char16_t piece[3];  // two units at a time: a pair is cut across calls
        while (fgetws(piece, 3, s)) back += piece;
        EXPECT_EQ(back, c.read);
        fclose(s);
        EXPECT_EQ(folder.Read("f"), c.disk);
    }
    TempFolder folder;
    RuntimeStream* s = OpenStream(folder, "x\xC3(", _O_RDONLY, u"r");
    char16_t text[8];
    ASSERT_NE(fgetws(text, 8, s), nullptr);
    EXPECT_EQ(std::u16string(text), u"x\xFFFD(");
    fclose(s);
}

TEST(RuntimeStream, WritesFinishOrReport) {
    using testing::SysCall;
    TempFolder folder;
    const std::string data = Pattern(10000);
    {
        testing::FaultEnv faults;
        faults.LimitToThisThread().ShortNth(SysCall::kWrite, 1).ShortNth(SysCall::kWrite, 2);
        testing::ScopedEnv use(faults);
        RuntimeStream* s = OpenStream(folder, "", _O_WRONLY | _O_BINARY, u"wb");
        EXPECT_EQ(fwrite(data.data(), 1000, 10, s), 10u);
        EXPECT_EQ(fclose(s), 0);
    }
    EXPECT_EQ(folder.Read("f"), data);
    {
        testing::FaultEnv faults;
        faults.LimitToThisThread().FailFrom(SysCall::kWrite, 1, ENOSPC);
        testing::ScopedEnv use(faults);
        RuntimeStream* s = OpenStream(folder, "", _O_WRONLY | _O_BINARY, u"w");
        EXPECT_EQ(fputs("kept in the buffer", s), 0);
        EXPECT_EQ(fclose(s), -1);
        EXPECT_EQ(errno, ENOSPC);
        EXPECT_EQ(GetLastError(), ERROR_DISK_FULL);
    }
    RuntimeStream* s = OpenStream(folder, "", _O_WRONLY, u"w");
    char c;
    EXPECT_EQ(fread(&c, 1, 1, s), 0u);
    EXPECT_TRUE(ferror(s));
    EXPECT_EQ(errno, EBADF);
    fclose(s);
}

TEST(RuntimeStream, UpdateWritesWhereTheStreamStands) {
    TempFolder folder;
    RuntimeStream* s = OpenStream(folder, "0123456789", _O_RDWR | _O_BINARY, u"r+");
    char three[3];
    fread(three, 1, 3, s);
    fputs("X", s);  // the descriptor read ahead to 10; the write lands at 3
    fclose(s);
    EXPECT_EQ(folder.Read("f"), "012X456789");
}

}  // namespace
}  // namespace basicutils
