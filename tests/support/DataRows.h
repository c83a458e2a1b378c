#pragma once

#include <gtest/gtest.h>
#include <lumcommon/core/Text.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace LumTest {

/// The rows of a file below tests/data: fields between bars, without the spaces around them. Empty lines and those that
/// begin with "#" are no rows.
inline std::vector<std::vector<icu::UnicodeString>> readRows(const std::string& file) {
    std::ifstream in(LUM_TEST_DATA + ("/" + file));
    std::vector<std::vector<icu::UnicodeString>> rows;
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#') continue;
        rows.emplace_back();
        for (std::istringstream fields(line); std::getline(fields, line, '|');)
            rows.back().push_back(icu::UnicodeString::fromUTF8(line).trim());
    }
    EXPECT_FALSE(rows.empty()) << file << " has no rows";
    return rows;
}

}  // namespace LumTest
