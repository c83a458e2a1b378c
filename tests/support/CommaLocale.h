#pragma once

#include <clocale>
#include <cstdlib>
#include <string>

#include "support/TempFolder.h"

namespace LumTest {

/// Puts the process into a locale whose decimal point is a comma, for as long as the object lives. Where none is
/// installed, one is compiled with localedef; isActive() tells whether either worked.
class CommaLocale {
public:
    CommaLocale() : isActive_(enter()) {
        if (isActive_) return;
        const std::string path = folder_.getPath();
        if (std::system(("localedef -f UTF-8 -i de_DE '" + path + "de_DE.UTF-8' >/dev/null 2>&1").c_str()) < 0) return;
        ::setenv("LOCPATH", path.c_str(), 1);
        isActive_ = enter();
    }
    ~CommaLocale() {
        std::setlocale(LC_ALL, "C");
        ::unsetenv("LOCPATH");
    }
    bool isActive() const { return isActive_; }

private:
    static bool enter() {
        for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "de_DE.utf8"}) {
            if (std::setlocale(LC_ALL, name) && *std::localeconv()->decimal_point == ',') return true;
        }
        return false;
    }

    TempFolder folder_;
    bool isActive_;
};

}  // namespace LumTest
