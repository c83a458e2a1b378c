#include <gtest/gtest.h>

#include <lumcommon/format/XlsFormat.h>
#include <lumcommon/format/XlsFormatString.h>
#include <support/Utf8.h>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace LumCommon;
using LumTest::utf8;

struct Pair {
    std::string line, code, kind, value, system, suite, expected, color, reason;
};

std::vector<std::string> fieldsOf(const std::string& line) {
    std::vector<std::string> fields(1);
    for (const char c : line) {
        if (c == '\t') {
            fields.emplace_back();
        } else {
            fields.back().push_back(c);
        }
    }
    return fields;
}

std::vector<Pair> readPairs() {
    std::ifstream in(LUM_TEST_DATA "/xlsformat/pairs.tsv");
    std::vector<Pair> pairs;
    std::string line;
    std::getline(in, line);
    for (int number = 2; std::getline(in, line); ++number) {
        std::vector<std::string> fields = fieldsOf(line);
        fields.resize(8);
        pairs.push_back({std::to_string(number), fields[0], fields[1], fields[2], fields[3], fields[4], fields[5],
                         fields[6], fields[7]});
    }
    return pairs;
}

/// The number in the palette of a colour of the table; 0 for none.
int paletteNumber(const std::string& name) {
    constexpr std::string_view names[] = {"", "Black", "White", "Red", "Green", "Blue", "Yellow", "Magenta", "Cyan"};
    for (int i = 0; i <= 8; ++i) {
        if (name == names[i]) return i;
    }
    return std::atoi(name.c_str() + std::string_view("Color").size());
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
        const FMT2& code = format.getSections();
        const int color = result.section < 0 ? 0 : code.sections[static_cast<std::size_t>(result.section)].color;
        EXPECT_EQ(color, paletteNumber(pair.color));
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
