#pragma once

#include <gtest/gtest.h>
#include <lumcommon/core/Text.h>

#include <charconv>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "support/Utf8.h"

namespace LumTest {

using Fields = std::vector<icu::UnicodeString>;

/// The rows of a file below tests/data: fields between bars, without the spaces around them. Empty lines and those that
/// begin with "#" are no rows, and what follows the last bar counts when it is not empty.
/// @param end  put after each line.
inline std::vector<Fields> readRows(const std::string& file, const char* end = "") {
    std::ifstream in(LUM_TEST_DATA + ("/" + file));
    std::vector<Fields> rows;
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#') continue;
        rows.emplace_back();
        for (std::istringstream fields(line + end); std::getline(fields, line, '|');)
            rows.back().push_back(icu::UnicodeString::fromUTF8(line).trim());
    }
    EXPECT_FALSE(rows.empty()) << file << " has no rows";
    return rows;
}

/// The same with escapes such as \n, \x20 and \u3042 resolved, and an empty field after a bar that ends the line.
inline std::vector<Fields> readTextRows(const std::string& file) {
    std::vector<Fields> rows = readRows(file, "|");
    for (Fields& row : rows)
        for (icu::UnicodeString& field : row) field = field.unescape();
    return rows;
}

/// What an operation makes of the fields that a row gives it, as text.
using Operations = std::map<std::string, std::function<std::string(const Fields&)>>;

/// Checks every row of a file: the fault that it catches | an operation | what is given to it ... | what it gives.
/// Every operation must have a row.
inline void checkRows(const std::string& file, const Operations& operations) {
    std::map<std::string, int> uses;
    for (const Fields& row : readTextRows(file)) {
        ASSERT_GE(row.size(), 3u) << utf8(row[0]);
        const std::string name = utf8(row[1]);
        SCOPED_TRACE(name + " of " + utf8(row[2]) + ": " + utf8(row[0]));
        ASSERT_TRUE(operations.contains(name));
        EXPECT_EQ(operations.at(name)(Fields(row.begin() + 2, row.end() - 1)), utf8(row.back()));
        ++uses[name];
    }
    EXPECT_EQ(uses.size(), operations.size()) << "an operation without rows";
}

/// A number of a row in any locale: also "a/b", "inf" and "nan".
inline double numberOf(const icu::UnicodeString& field) {
    const std::string text = utf8(field);
    const char* const end = text.data() + text.size();
    double number = 0, divisor = 1;
    const char* const bar = std::from_chars(text.data(), end, number).ptr;
    if (bar != end) std::from_chars(bar + 1, end, divisor);
    return number / divisor;
}

inline int integerOf(const icu::UnicodeString& field) { return static_cast<int>(numberOf(field)); }

/// With 15 digits, in any locale.
inline std::string printed(double number) {
    char text[32];
    return {text, std::to_chars(text, std::end(text), number, std::chars_format::general, 15).ptr};
}

}  // namespace LumTest
