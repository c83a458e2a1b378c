#pragma once

#include <lumcommon/core/Text.h>

#include <fstream>
#include <string>
#include <vector>

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
        std::size_t column = 0;
        for (std::size_t i = 0; i < line.size(); ++i) {
            if (line[i] == '\t' && column < 3) {
                ++column;
            } else if (line[i] == '\\' && column < 2 && i + 1 < line.size()) {
                const char escaped = line[++i];
                columns[column] += escaped == 't' ? '\t' : escaped == 'n' ? '\n' : escaped;
            } else {
                columns[column] += line[i];
            }
        }
        rows.push_back({columns[0], columns[1], columns[2], columns[3]});
    }
    return rows;
}

}  // namespace LumTest
