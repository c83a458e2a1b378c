#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace LumTest {

/// A new folder of this test's own, removed with all that is in it.
class TempFolder {
public:
    TempFolder() {
        std::string path = (std::filesystem::temp_directory_path() / "lumXXXXXX").string();
        EXPECT_NE(mkdtemp(path.data()), nullptr);
        path_ = path + "/";
    }
    ~TempFolder() {
        std::error_code error;
        std::filesystem::remove_all(path_, error);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    /// With a "/" at its end.
    const std::string& getPath() const { return path_; }
    bool isEmpty() const { return std::filesystem::is_empty(path_); }

private:
    std::string path_;
};

inline void writeFile(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios_base::binary) << bytes;
}

inline std::string readFile(const std::string& path) {
    std::ostringstream bytes;
    bytes << std::ifstream(path, std::ios_base::binary).rdbuf();
    return bytes.str();
}

}  // namespace LumTest
