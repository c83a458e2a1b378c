#pragma once

#include <map>
#include <random>
#include <string>
#include <vector>

#include "support/EscapedRows.h"

namespace LumTest {

/// Parts, each with the choices of what it is written as. A part in a choice stands in braces.
using Grammar = std::map<std::string, std::vector<std::string>>;

/// Rows of a file below tests/data: part | its choices. A part of several rows has the choices of all of them.
inline Grammar readGrammar(const std::string& file) {
    Grammar grammar;
    for (const std::vector<icu::UnicodeString>& row : readRows(file))
        for (std::size_t i = 1; i < row.size(); ++i) grammar[utf8(row[0])].push_back(unescape(utf8(row[i])));
    return grammar;
}

/// One of the part's choices, with the parts in it written too. Far down the first choice is taken.
inline std::string write(const Grammar& grammar, const std::string& part, std::mt19937& random, int depth = 0) {
    const std::vector<std::string>& choices = grammar.at(part);
    const std::string& choice = choices[depth > 24 ? 0 : random() % choices.size()];
    std::string written;
    for (std::size_t at = 0, open; (open = choice.find('{', at)) != std::string::npos || at < choice.size();) {
        written += choice.substr(at, open - at);
        if (open == std::string::npos) break;
        at = choice.find('}', open) + 1;
        written += write(grammar, choice.substr(open + 1, at - open - 2), random, depth + 1);
    }
    return written;
}

}  // namespace LumTest
