// A fresh folder under the system's temporary folder for one test, removed
// with everything in it when the object goes.
#pragma once

#include <filesystem>
#include <fstream>
#include <random>
#include <string>

namespace basicutils::testing {

class TempFolder {
  public:
    TempFolder() {
        std::random_device random;
        mPath = std::filesystem::temp_directory_path() /
                ("basicutils-" + std::to_string(random()) + "-" + std::to_string(random()));
        std::filesystem::create_directories(mPath);
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(mPath, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& Path() const { return mPath; }
    // The path of `name` inside, in the system's spelling; also as 16-bit
    // text with `/` (ASCII names only).
    std::string operator/(const std::string& name) const { return (mPath / name).string(); }
    std::string Path(const std::string& name) const { return *this / name; }
    std::u16string Wide(const std::string& name = "") const {
        const std::string path = *this / name;
        return {path.begin(), path.end()};
    }
    // The same in the library's spelling, `\` between names.
    std::u16string Library(const std::string& name = "") const {
        std::u16string out = Wide(name);
        for (char16_t& c : out)
            if (c == u'/') c = u'\\';
        return out;
    }
    void Write(const std::string& name, const std::string& bytes) const {
        std::ofstream(mPath / name, std::ios::binary) << bytes;
    }
    std::string Read(const std::string& name) const {
        std::ifstream in(mPath / name, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }

  private:
    std::filesystem::path mPath;
};

}  // namespace basicutils::testing
