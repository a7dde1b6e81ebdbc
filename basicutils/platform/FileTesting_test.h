// Shared by the file services' tests: a scratch folder on the real file
// system, removed with everything in it at the end of a test.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace basicutils::testing {

class TempFolder {
  public:
    TempFolder() {
        char name[] = "/tmp/basicutils-files-XXXXXX";
        EXPECT_NE(::mkdtemp(name), nullptr);
        mPath = name;
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(mPath, ignored);
    }

    // The system's name of an entry, and the library's (ASCII names only).
    std::string Path(const std::string& name = "") const { return mPath + "/" + name; }
    std::u16string Wide(const std::string& name = "") const {
        const std::string path = Path(name);
        return {path.begin(), path.end()};
    }
    void Write(const std::string& name, const std::string& bytes) const {
        std::ofstream(Path(name), std::ios::binary) << bytes;
    }
    std::string Read(const std::string& name) const {
        std::ifstream in(Path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }

  private:
    std::string mPath;
};

}  // namespace basicutils::testing
