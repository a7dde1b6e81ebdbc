// The library's buffered stream: where it leaves the descriptor, text and
// 16-bit text on disk, and where a write after a read lands.
#include <basicutils/platform/Errors.h>
#include <basicutils/platform/FileTesting_test.h>
#include <basicutils/platform/RuntimeStream.h>

#include <climits>

namespace basicutils {
namespace {

using testing::TempFolder;

// A stream over a new file of `bytes` (or of the alphabet, repeated).
RuntimeStream* OpenStream(const TempFolder& folder, const std::string& bytes, int flags,
                          const char16_t* mode) {
    std::string pattern(10000, 0);
    for (size_t i = 0; i < pattern.size(); ++i) pattern[i] = static_cast<char>('a' + i % 26);
    folder.Write("f", bytes == "abc..." ? pattern : bytes);
    return _wfdopen(_wopen(folder.Wide("f").c_str(), flags), mode);
}

TEST(RuntimeStream, SeeksPutTheDescriptorWhereTheStreamStands) {
    TempFolder folder;
    const int32_t cases[][3] = {{100, SEEK_SET, 100}, {10, SEEK_CUR, 15}, {-5, SEEK_END, 9995}};
    for (const auto& [offset, origin, target] : cases) {
        RuntimeStream* s = OpenStream(folder, "abc...", _O_RDWR | _O_BINARY, u"r+b");
        char five[5], next = 0;
        ASSERT_EQ(fread(five, 1, 5, s), 5u);
        EXPECT_EQ(_telli64(_fileno(s)), 4096);  // one buffer read ahead
        ASSERT_EQ(fseek(s, offset, origin), 0);
        EXPECT_EQ(_telli64(_fileno(s)), target);  // nothing read ahead after a seek
        EXPECT_EQ(ftell(s), target);
        fread(&next, 1, 1, s);
        EXPECT_EQ(next, 'a' + target % 26);
        fclose(s);
    }
}

TEST(RuntimeStream, FlushLeavesTheDescriptorWhereReadsLeftIt) {
    // A 64-bit seek over a stream: the stream gives up its buffer, the
    // descriptor moves once, the stream follows from the start.
    TempFolder folder;
    RuntimeStream* s = OpenStream(folder, "abc...", _O_RDWR | _O_BINARY, u"r+b");
    const int fd = _fileno(s);
    char line[8];
    ASSERT_NE(fgets(line, 4, s), nullptr);
    ASSERT_EQ(fflush(s), 0);
    EXPECT_EQ(_telli64(fd), 4096);
    ASSERT_EQ(fseek(s, static_cast<int32_t>(_lseeki64(fd, 10, SEEK_CUR)), SEEK_SET), 0);
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
    const std::pair<const char*, int32_t> lines[] = {
        {"l1\n", 4}, {"l2\n", 7}, {"abc", 10}, {"def", 13}, {"\r", 14}};
    char line[16];
    for (const auto& [text, position] : lines) {
        ASSERT_NE(fgets(line, position == 10 || position == 13 ? 4 : 16, s), nullptr);
        EXPECT_STREQ(line, text);
        EXPECT_EQ(ftell(s), position);
    }
    EXPECT_EQ(fgets(line, 16, s), nullptr);
    EXPECT_TRUE(feof(s));
    fclose(s);
}

TEST(RuntimeStream, WideTextOnDisk) {
    // clang-format off
    struct Case { const char16_t* mode; std::u16string written; std::string disk; std::u16string read; } cases[] = {
        {u"w+b", u"a\U0001F600\n", std::string("a\0=\xD8\0\xDE\n\0", 8), u"a\U0001F600\n"},
        {u"w+t", u"a\U0001F600\r\n", "a\xF0\x9F\x98\x80\r\n", u"a\U0001F600\n"},
    };
    // clang-format on
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
}

TEST(RuntimeStream, WritesLandWhereTheStreamStands) {
    TempFolder folder;
    RuntimeStream* s = OpenStream(folder, "0123456789", _O_RDWR | _O_BINARY, u"r+");
    char three[3];
    fread(three, 1, 3, s);
    fputs("X", s);  // the descriptor read ahead to 10; the write lands at 3
    fclose(s);
    EXPECT_EQ(folder.Read("f"), "012X456789");
    s = OpenStream(folder, "", _O_WRONLY, u"w");
    EXPECT_EQ(fread(three, 1, 1, s), 0u);
    EXPECT_TRUE(ferror(s));
    fclose(s);
}

}  // namespace
}  // namespace basicutils
