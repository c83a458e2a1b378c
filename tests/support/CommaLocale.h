#pragma once

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <string>

#include <unistd.h>

namespace LumTest {

/// Puts the process into a locale whose decimal point is a comma, for as long as the object lives. Where none is
/// installed, one is compiled with localedef; isActive() tells whether either worked.
class CommaLocale {
public:
    CommaLocale() {
        folder_ = std::filesystem::temp_directory_path() / ("comma-locale-" + std::to_string(::getpid()));
        isActive_ = enter();
        if (isActive_) return;
        std::filesystem::create_directories(folder_);
        const std::string command = "localedef -f UTF-8 -i de_DE '" + (folder_ / "de_DE.UTF-8").string() + "' 2>&1";
        if (std::system((command + " >/dev/null").c_str()) < 0) return;
        ::setenv("LOCPATH", folder_.c_str(), 1);
        isActive_ = enter();
    }
    ~CommaLocale() {
        std::setlocale(LC_ALL, "C");
        ::unsetenv("LOCPATH");
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;

    bool isActive() const { return isActive_; }

private:
    static bool enter() {
        for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "de_DE.utf8"}) {
            if (std::setlocale(LC_ALL, name) && *std::localeconv()->decimal_point == ',') return true;
        }
        return false;
    }

    std::filesystem::path folder_;
    bool isActive_ = false;
};

}  // namespace LumTest
