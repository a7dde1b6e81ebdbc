// Shared by the segmented file's tests: expected contents written short
// ("100a50b" is 100 'a' then 50 'b'), and the exact bytes of an info file.
#pragma once

#include <basicutils/files/MFiles.h>

#include <cctype>
#include <string>
#include <vector>

#include "FilesTest_test.h"

namespace basicutils::filestest {

// Runs of one byte: a count and the byte; the byte 'z' stands for zero.
inline std::string Expand(const std::string& runs) {
    std::string bytes;
    size_t count = 0;
    for (char c : runs) {
        if (std::isdigit(static_cast<unsigned char>(c))) {
            count = count * 10 + static_cast<size_t>(c - '0');
            continue;
        }
        bytes.append(count, c == 'z' ? '\0' : c);
        count = 0;
    }
    return bytes;
}

class MFilesTest : public TempDirTest {
  protected:
    // The info file listing P.cfx.0 ... P.cfx.(count - 1) by whole paths.
    std::string InfoText(int count, const std::string& header = "# Velmorant c_files ") const {
        std::string text = header + "\n";
        for (int i = 0; i < count; ++i)
            text += (mDir / "P").string() + ".cfx." + std::to_string(i) + "\n";
        return text;
    }
    // P holds `segments` (plain when there is one): byte for byte, the info
    // file included, and no other segment file lies beside it.
    void ExpectSegments(const std::vector<std::string>& segments) const {
        if (segments.size() == 1) {
            EXPECT_EQ(Read("P"), segments[0]);
            EXPECT_FALSE(fs::exists(mDir / "P.cfx.0"));
            return;
        }
        EXPECT_EQ(Read("P"), InfoText(static_cast<int>(segments.size())));
        for (size_t i = 0; i < segments.size(); ++i)
            EXPECT_EQ(Read("P.cfx." + std::to_string(i)), segments[i]) << "segment " << i;
        EXPECT_FALSE(fs::exists(mDir / ("P.cfx." + std::to_string(segments.size()))));
    }
    std::u16string P() const { return WPath("P"); }
};

}  // namespace basicutils::filestest
