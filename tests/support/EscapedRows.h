#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/DataRows.h"
#include "support/Utf8.h"

namespace LumTest {

/// Bytes written in a row of a data file: \n, \r, \t and \xNN are what they say; any other backslash is one.
inline std::string unescape(const std::string& written) {
    std::string bytes;
    for (std::size_t i = 0; i < written.size(); ++i) {
        const char kind = written[i] == '\\' && i + 1 < written.size() ? written[i + 1] : '\0';
        if (kind == 'n' || kind == 'r' || kind == 't') {
            bytes += kind == 'n' ? '\n' : kind == 'r' ? '\r' : '\t';
            ++i;
        } else if (kind == 'x') {
            bytes += static_cast<char>(std::stoi(written.substr(i + 2, 2), nullptr, 16));
            i += 3;
        } else {
            bytes += written[i];
        }
    }
    return bytes;
}

/// The rows of a file below tests/data as bytes; fields that are left out at the end of a row are empty.
inline std::vector<std::vector<std::string>> readEscapedRows(const std::string& file, std::size_t fieldCount) {
    std::vector<std::vector<std::string>> rows;
    for (const std::vector<icu::UnicodeString>& fields : readRows(file)) {
        rows.emplace_back();
        for (const icu::UnicodeString& field : fields) rows.back().push_back(unescape(utf8(field)));
        EXPECT_LE(fields.size(), fieldCount) << rows.back().front();
        rows.back().resize(fieldCount);
    }
    return rows;
}

}  // namespace LumTest
