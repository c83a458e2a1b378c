#pragma once

#include <lumcommon/core/Text.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "support/Utf8.h"

namespace LumTest {

/// A text of a real document and what it must become; see tools/generate/propertyValues.py for the columns.
struct PropertyText {
    std::string text, value, color, tokens;
};

inline std::vector<PropertyText> readPropertyTexts(const std::string& file) {
    std::vector<PropertyText> rows;
    std::ifstream in(file, std::ios::binary);
    for (std::string line; std::getline(in, line);) {
        std::string columns[4];
        std::istringstream fields(line);
        for (std::string& column : columns) std::getline(fields, column, '\t');
        for (std::string* column : {&columns[0], &columns[1]})
            *column = utf8(icu::UnicodeString::fromUTF8(*column).unescape());
        rows.push_back({columns[0], columns[1], columns[2], columns[3]});
    }
    return rows;
}

}  // namespace LumTest
