#include <lumcommon/lumcommon.h>

#include <gtest/gtest.h>

#include <optional>
#include <sstream>
#include <string>
#include <variant>
#include <vector>

#include "OleBytes.h"
#include "support/Recipe.h"
#include "support/Sweeps.h"
#include "support/Utf8.h"

using namespace LumCommon;
using LumTest::numberBytes;
using LumTest::splitAt;
using LumTest::utf8;

namespace {

/// Writes property sets in either byte order.
struct PropertyWriter {
    bool littleEndian = true;

    std::string number(std::uint64_t value, unsigned width = 4) const {
        return numberBytes(value, width, littleEndian);
    }
    std::string bytes(const std::string& recipe) const {
        return LumTest::recipeBytes(UnicodeString::fromUTF8(recipe), {}, littleEndian);
    }
    std::string classId(unsigned seed) const {
        return number(0xF29F85E0 + seed) + number(0x4FF9, 2) + number(0x1068, 2) + "8 bytes.";
    }
    /// "ID=BYTES", or "ID=block COUNT BYTES": the count need not be true.
    std::string value(const std::string& assignment) const {
        const std::string recipe = assignment.substr(assignment.find('=') + 1);
        if (!recipe.starts_with("block ")) return bytes(recipe);
        const std::size_t end = recipe.find(' ', 6);
        const std::string elements = bytes(recipe.substr(end));
        return number(65) + number(4 + elements.size()) + number(std::stoull(recipe.substr(6, end), nullptr, 0)) +
               elements;
    }
    /// The whole stream; the sections follow one another.
    std::string set(const std::string& sections) const {
        std::vector<std::string> made, changes;
        for (const std::string& section : splitAt('/', sections)) {
            std::vector<std::string> properties;
            for (const std::string& each : splitAt(';', section))
                (each[0] == '@' ? changes : properties).push_back(each);
            std::string rows, values;
            for (const std::string& each : properties) {
                rows += number(std::stoul(each)) + number(8 + 8 * properties.size() + values.size());
                values += value(each);
            }
            made.push_back(number(8 + rows.size() + values.size()) + number(properties.size()) + rows + values);
        }
        std::string result = number(0xFFFE, 2) + number(1, 2) + number(0x20006) + classId(1) + number(made.size());
        std::size_t at = result.size() + 20 * made.size();
        for (const std::string& section : made) {
            result += classId(2) + number(at);
            at += section.size();
        }
        for (const std::string& section : made) result += section;
        for (const std::string& change : changes) {
            const std::string field = bytes(change.substr(change.find('=') + 1));
            result.replace(std::stoul(change.substr(1)), field.size(), field);
        }
        return result;
    }
};

/// A compound file with one of the property sets.
struct Document {
    Document(const std::string& set, bool isSummary)
        : in(LumTest::OleImage({{isSummary ? u"\5SummaryInformation" : u"\5DocumentSummaryInformation", set}}).bytes),
          io(&in) {
        EXPECT_TRUE(file.OLEopen(&io));
        result =
            isSummary ? information.initSummaryInformation(&file) : information.initDocumentSummaryInformation(&file);
    }

    std::istringstream in;
    JZStreamIOobj io;
    OleCompFile file;
    OleSummaryInformation information;
    int result;
};

/// "none", "damaged", or a letter for what it holds and the content.
std::string shown(const std::optional<OlePropertyValue>& value) {
    struct Shower {
        std::string operator()(std::monostate) const { return "-"; }
        std::string operator()(std::int64_t number) const { return "i" + std::to_string(number); }
        std::string operator()(std::uint64_t number) const { return "u" + std::to_string(number); }
        std::string operator()(double number) const { return "d" + utf8(LumUtil::toString(number)); }
        std::string operator()(bool flag) const { return flag ? "true" : "false"; }
        std::string operator()(const UnicodeString& text) const { return "s" + LumTest::utf8(text); }
        std::string operator()(const OLE_CLSID& id) const {
            return "c" + std::to_string(id.data1 & 0xF) + static_cast<char>(id.data4[7]);
        }
        std::string operator()(const OlePropertyBytes& bytes) const {
            return "b" + std::string(bytes.begin(), bytes.end());
        }
        std::string operator()(const OlePropertyElements& elements) const {
            std::string text = "[";
            for (const auto& dimension : elements.dimensions) {
                text += std::to_string(dimension.size) + "@" + std::to_string(dimension.lowestIndex) + " ";
            }
            for (const OlePropertyValue& value : elements.values) text += shown(value) + ",";
            return text + "]";
        }
    };
    if (!value) return "none";
    return value->isDamaged ? "damaged" : std::visit(Shower(), value->content);
}

/// What getProperty gives: "none", or the kind and the text.
std::string property(OleSummaryInformation& information, unsigned id) {
    LumValue value(7);
    if (information.getProperty(id, value) != 1) {
        EXPECT_TRUE(value == LumValue(7)) << "changed by a failure";
        return "none";
    }
    return (value.getKind() == KIND_INTEGER ? "integer " : "string ") + utf8(value.toString());
}

std::string linksOf(OleSummaryInformation& information) {
    std::vector<UnicodeString> links{u"before"};
    std::string all = std::to_string(information.getHyperLinks(links));
    EXPECT_EQ(links.at(0), u"before");
    for (std::size_t i = 1; i < links.size(); ++i) all += " " + utf8(links[i]);
    return all;
}

std::string allOf(const OleSummaryInformation& information) {
    std::string all;
    for (const OleProperty& each : information.readProperties()) {
        EXPECT_TRUE(each.isNamed || each.name.isEmpty());
        if (!all.empty()) all += ", ";
        all += std::to_string(each.id) + (each.isNamed ? "=" : ":") + utf8(each.name) + " " + shown(each.value);
    }
    return all;
}

std::string answerOf(Document& document, const std::string& question) {
    OleSummaryInformation& information = document.information;
    const auto& sections = information.getSections();
    const std::string key = question.substr(0, question.find(' '));
    const std::string argument = key == question ? "" : question.substr(key.size() + 1);
    const unsigned number = std::isdigit(argument[0]) ? static_cast<unsigned>(std::stoul(argument)) : 0;
    if (key == "result") return std::to_string(document.result);
    if (key == "sections") return std::to_string(sections.size());
    if (key == "first") {
        return std::to_string(sections.at(0).properties.size()) + " " + std::to_string(sections[0].dictionary.size());
    }
    if (key == "charset") return utf8(information.getCharset());
    if (key == "get") return property(information, number);
    if (key == "value") return shown(information.readProperty(number));
    if (key == "named")
        return shown(information.readProperty(argument == "\"\"" ? u"" : UnicodeString::fromUTF8(argument)));
    if (key == "damaged") return information.readProperties().at(number).value.isDamaged ? "yes" : "no";
    if (key == "links") return linksOf(information);
    if (key == "all") return allOf(information);
    OlePropertySet properties;
    EXPECT_EQ(properties.init(&document.file), 1);
    return utf8(key == "title"     ? properties.getTitle()
                : key == "subject" ? properties.getSubject()
                                   : properties.getAuthor());
}

TEST(OleSummaryInformation, answersAsTheRowsSay) {
    const auto rows = LumTest::readRows("containers/propertysets.txt");
    EXPECT_GT(rows.size(), 80u);
    for (const auto& row : rows) {
        for (const bool littleEndian : {true, false}) {
            SCOPED_TRACE(utf8(row.at(0)) + (littleEndian ? "" : ", big-endian"));
            const bool isSummary = row[1] == u"summary";
            Document document(PropertyWriter{littleEndian}.set(utf8(row[2])), isSummary);
            const auto answer = [&](const std::string& question) { return answerOf(document, question); };
            LumTest::expectAnswers(LumTest::textOf(row[3]), answer);
        }
    }
}

TEST(OleSummaryInformation, givesTheHeaderAndSurvivesEveryCut) {
    const std::string sections = "1=4:2 4:1252 ; 2=4:30 4:6 'title\\x00' ; 0=4:2 4:2 4:2 'ab' 4:3 4:2 'cd'";
    for (const bool littleEndian : {true, false}) {
        const std::string whole = PropertyWriter{littleEndian}.set(sections);
        Document document(whole, true);
        OleSummaryInformation& information = document.information;
        EXPECT_EQ(document.result, 1);
        EXPECT_EQ(information.isSwapped(), !littleEndian);
        EXPECT_EQ(information.getVersion(), 1);
        EXPECT_EQ(information.getSystemId(), 0x20006u);
        EXPECT_EQ(information.getClassId().data1, 0xF29F85E1u);
        EXPECT_EQ(information.getClassId().data4[0], '8');
        EXPECT_EQ(information.getSections().at(0).propertyCount, 3u);
        EXPECT_EQ(information.readProperties().at(0).formatId, information.getSections().at(0).formatId);
        LumTest::forEachPrefix(whole, [](const std::string& cut) { EXPECT_EQ(Document(cut, true).result, -1); });
    }
    OlePropertySet properties;
    Document titled(PropertyWriter().set("2=4:30 4:6 'title\\x00'"), true), none(PropertyWriter().set(sections), false);
    EXPECT_EQ(properties.init(&titled.file), 1);
    EXPECT_EQ(properties.init(&none.file), -1);
    EXPECT_EQ(properties.getTitle(), UnicodeString(u"title")) << "left as it was";
    EXPECT_EQ(OlePropertySet().init(nullptr), -1);
}

TEST(OleSummaryInformation, readsPrimitiveFieldsAtThePosition) {
    for (const bool littleEndian : {true, false}) {
        const PropertyWriter w{littleEndian};
        // No property is in the table, so the position stays before these bytes: they are the section.
        const std::string section = w.bytes("4:0 4:0 2:0x2041 2:0x20AC 'abc'");
        Document document(w.set("2=").substr(0, 48) + section, false);
        OleSummaryInformation& information = document.information;
        unsigned short word = 9;
        EXPECT_FALSE(OleSummaryInformation().getWORD(&word)) << "nothing is open";
        EXPECT_EQ(document.result, 1);
        unsigned int size = 7;
        wchar_t units[2] = {};
        unsigned char reversed[4] = {};
        EXPECT_TRUE(information.getDWORD(&size) && information.getDWORD(&size) && information.getWSTR(units, 2));
        EXPECT_EQ(size, 0u);
        EXPECT_EQ(std::wstring(units, 2), L"\u2041\u20AC");
        EXPECT_TRUE(information.getReverse(reversed, 3));
        EXPECT_EQ(std::string(reversed, reversed + 3), "cba");
        EXPECT_FALSE(information.getWORD(&word) || information.getReverse(reversed, 1) ||
                     information.getWSTR(units, 1));
        EXPECT_FALSE(information.getDWORD(nullptr) || information.getReverse(reversed, -1));
        EXPECT_EQ(word, 9) << "changed by a failure";
    }
}

}  // namespace
