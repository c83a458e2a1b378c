#include <gtest/gtest.h>

#include <lumcommon/format/xls/XlsFormat.h>
#include <support/Utf8.h>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace LumCommon;
using LumTest::utf8;

struct Pair {
    std::string line, code, kind, value, system, suite, expected, color, reason;
};

std::vector<Pair> readPairs() {
    std::ifstream in(LUM_TEST_DATA "/xlsformat/pairs.tsv");
    std::vector<Pair> pairs;
    std::string line;
    std::getline(in, line);
    for (int number = 2; std::getline(in, line); ++number) {
        Pair pair;
        pair.line = std::to_string(number);
        std::istringstream fields(line);
        for (std::string* field : {&pair.code, &pair.kind, &pair.value, &pair.system, &pair.suite, &pair.expected,
                                   &pair.color, &pair.reason}) {
            std::getline(fields, *field, '\t');
        }
        pairs.push_back(pair);
    }
    return pairs;
}

std::string shown(const XlsFormat::Result& result, bool isText) {
    return result.section < 0 && result.text.isEmpty() && !isText ? "{refused}" : utf8(result.text);
}

TEST(XlsFormatPairs, agreeWithTheTable) {
    const std::vector<Pair> pairs = readPairs();
    ASSERT_GT(pairs.size(), 400u);
    std::size_t asSuite = 0;
    std::map<std::string, int> reasons;
    for (const Pair& pair : pairs) {
        SCOPED_TRACE("line " + pair.line + ": " + pair.code + " of " + pair.value);
        const bool isText = pair.kind == "text";
        const XlsFormat format(UnicodeString::fromUTF8(pair.code), pair.system == "1904");
        const XlsFormat::Result result = isText ? format.format(UnicodeString::fromUTF8(pair.value))
                                                : format.format(std::strtod(pair.value.c_str(), nullptr));
        EXPECT_EQ(shown(result, isText), pair.expected);
        const XlsFormat colored(UnicodeString::fromUTF8(pair.color.empty() ? "0" : "[" + pair.color + "]0"));
        EXPECT_EQ(result.color, colored.format(0.0).color);
        asSuite += pair.suite == pair.expected;
        // A difference without a reason is not understood.
        EXPECT_EQ(pair.suite == pair.expected, pair.reason.empty() || pair.reason == "unsure");
        std::istringstream words(pair.reason);
        for (std::string word; words >> word;) ++reasons[word];
    }
    std::cout << pairs.size() << " pairs, " << asSuite << " as the suite shows them";
    for (const auto& [reason, count] : reasons) std::cout << ", " << reason << " " << count;
    std::cout << '\n';
}

}  // namespace
