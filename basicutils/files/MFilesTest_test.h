// Shared by the segmented file's tests: contents written short ("100a50b"
// is 100 'a' then 50 'b'; 'z' is a zero byte, '~' a newline), and the exact
// bytes on disk.
#pragma once

#include <basicutils/files/MFiles.h>

#include <cctype>
#include <sstream>
#include <string>
#include <vector>

#include "FilesTest_test.h"

namespace basicutils::filestest {

inline std::string Expand(const std::string& runs) {
    std::string bytes;
    size_t count = 0;
    for (char c : runs) {
        if (std::isdigit(static_cast<unsigned char>(c))) {
            count = count * 10 + static_cast<size_t>(c - '0');
        } else {
            bytes.append(count, c == 'z' ? '\0' : c == '~' ? '\n' : c);
            count = 0;
        }
    }
    return bytes;
}

// The parts of `text` between the separators.
inline std::vector<std::string> Split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::istringstream in(text);
    for (std::string part; std::getline(in, part, separator);) parts.push_back(part);
    return parts;
}

class MFilesTest : public TempDirTest {
  protected:
    std::u16string P() const { return WPath("P"); }
    // The header, then P.cfx.0 ... P.cfx.(count - 1) by whole paths.
    std::string InfoText(int count) const {
        std::string text = "# Velmorant c_files \n";
        for (int i = 0; i < count; ++i)
            text += (mDir / "P").string() + ".cfx." + std::to_string(i) + "\n";
        return text;
    }
    // P holds these segments (as runs, '|' between them; one: a plain P),
    // the info file included, and no more.
    void ExpectSegments(const std::string& segments) const {
        const std::vector<std::string> runs = Split(segments, '|');
        const auto count = static_cast<int>(runs.size());
        EXPECT_EQ(Read("P"), count == 1 ? Expand(runs[0]) : InfoText(count));
        for (int i = 0; count > 1 && i < count; ++i)
            EXPECT_EQ(Read("P.cfx." + std::to_string(i)), Expand(runs[static_cast<size_t>(i)]))
                << i;
        EXPECT_FALSE(fs::exists(mDir / ("P.cfx." + std::to_string(count == 1 ? 0 : count))));
    }
};

}  // namespace basicutils::filestest
