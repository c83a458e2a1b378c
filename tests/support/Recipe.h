#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "support/DataRows.h"
#include "support/Utf8.h"

// Rows of data files whose fields hold bytes that cannot stand in a file as they are.

namespace LumTest {

/// A field whose escapes as in C ("\n", "\x20", "\u00E9") stand for characters that a field cannot hold.
inline std::string textOf(const icu::UnicodeString& field) { return utf8(field.unescape()); }

/// The rows of a file below tests/data with such fields, each filled up to `fields`.
inline std::vector<std::vector<std::string>> readTextRows(const std::string& file, std::size_t fields) {
    std::vector<std::vector<std::string>> rows;
    for (const auto& row : readRows(file)) {
        rows.emplace_back();
        for (const icu::UnicodeString& field : row) rows.back().push_back(textOf(field));
        rows.back().resize(std::max(fields, row.size()));
    }
    return rows;
}

/// The parts of a text between separators, without the blanks around them.
inline std::vector<std::string> splitAt(char separator, const std::string& text) {
    std::vector<std::string> parts;
    std::istringstream in(text);
    for (std::string part; std::getline(in, part, separator);) {
        const std::size_t first = std::min(part.find_first_not_of(' '), part.size());
        parts.push_back(part.substr(first, part.find_last_not_of(' ') + 1 - first));
    }
    return parts;
}

/// Checks questions with their answers, "QUESTION = ANSWER; QUESTION = ANSWER"; one without "=" is only asked.
/// @param answerOf  gives the answer to a question.
template <class AnswerOf>
void expectAnswers(const std::string& questions, AnswerOf answerOf) {
    for (const std::string& each : splitAt(';', questions)) {
        const std::size_t equals = each.find(" =");
        const std::string answer = answerOf(each.substr(0, equals));
        if (equals == std::string::npos) continue;
        EXPECT_EQ(answer, each.substr(std::min(equals + 3, each.size()))) << each;
    }
}

/// `text` with the value of each name in braces in its place.
inline std::string fillIn(std::string text, const std::map<std::string, std::string>& values) {
    for (const auto& [name, value] : values) {
        const std::string braced = "{" + name + "}";
        for (std::size_t at = 0; (at = text.find(braced, at)) != std::string::npos; at += value.size()) {
            text.replace(at, braced.size(), value);
        }
    }
    return text;
}

inline std::string numberBytes(std::uint64_t value, unsigned width, bool isLittleEndian = true) {
    std::string bytes;
    for (unsigned i = 0; i < width; ++i) bytes += static_cast<char>(value >> (8 * i) & 0xFF);
    if (!isLittleEndian) std::reverse(bytes.begin(), bytes.end());
    return bytes;
}

/// The bytes that a text describes, item for item, with blanks between them:
///     'text'    a byte for each character; "\xFF", "\n" and so on, "\x27" for the quotation mark itself
///     u'text'   units of UTF-16
///     4:0xFFFE  a number of so many bytes
///     NAME      bytes that the test gives this name
///     9*ITEM    an item 9 times
inline std::string recipeBytes(const icu::UnicodeString& recipe, const std::map<std::string, std::string>& names = {},
                               bool isLittleEndian = true) {
    const std::string items = utf8(recipe);
    std::string bytes;
    std::size_t at = 0;
    const auto upTo = [&items, &at](const char* ends) {
        const std::size_t begin = at;
        at = std::min(items.find_first_of(ends, at), items.size());
        return items.substr(begin, at - begin);
    };
    while ((at = items.find_first_not_of(' ', at)) != std::string::npos) {
        unsigned long times = 1;
        std::string word = upTo(" *'");
        if (items[at] == '*') {
            times = std::stoul(word);
            ++at;
            word = upTo(" '");
        }
        std::string one;
        if (items[at] == '\'') {
            ++at;
            const icu::UnicodeString text = icu::UnicodeString::fromUTF8(upTo("'")).unescape();
            ++at;
            for (int i = 0; i < text.length(); ++i) one += numberBytes(text[i], word == "u" ? 2 : 1, isLittleEndian);
        } else if (const std::size_t colon = word.find(':'); colon != std::string::npos) {
            const std::uint64_t value = std::stoull(word.substr(colon + 1), nullptr, 0);
            one = numberBytes(value, static_cast<unsigned>(std::stoul(word)), isLittleEndian);
        } else {
            one = names.at(word);
        }
        for (; times != 0; --times) bytes += one;
    }
    return bytes;
}

}  // namespace LumTest
