#pragma once

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <string>

#include "support/TempFolder.h"

namespace LumTest {

/// Puts the process into a locale whose decimal point is a comma, for as long as the object lives. Where none is
/// installed, one is compiled with localedef; where that fails too, a warning tells it.
class CommaLocale {
public:
    CommaLocale() {
        if (enter()) return;
        const std::string path = folder_.getPath();
        const int status =
            std::system(("localedef -f UTF-8 -i de_DE '" + path + "de_DE.UTF-8' >/dev/null 2>&1").c_str());
        ::setenv("LOCPATH", path.c_str(), 1);
        if (status < 0 || !enter()) GTEST_LOG_(WARNING) << "no locale with a decimal comma, and none could be compiled";
    }
    ~CommaLocale() {
        std::setlocale(LC_ALL, "C");
        ::unsetenv("LOCPATH");
    }

private:
    static bool enter() {
        for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "de_DE.utf8"}) {
            if (std::setlocale(LC_ALL, name) && *std::localeconv()->decimal_point == ',') return true;
        }
        return false;
    }

    TempFolder folder_;
};

}  // namespace LumTest
