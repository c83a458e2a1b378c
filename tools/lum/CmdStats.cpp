#include <lumcommon/dom/LumElement.h>

#include <unistd.h>

#include "Command.h"
#include "Input.h"
#include "Output.h"
#include "Progress.h"
#include "Terminal.h"
#include "XmlSource.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <map>
#include <tuple>
#include <unordered_map>

namespace LumTool {
namespace {

using namespace LumCommon;

struct Arguments {
    bool isJson = false;
    int most = 20;
    XmlSource source;
};

void describe(Syntax& syntax, Arguments& arguments) {
    syntax.flag("--json", arguments.isJson, "Print one JSON object instead of a table");
    syntax.option("--top", arguments.most, "List so many names at most, the most frequent ones; 0 for all");
    arguments.source.describe(syntax);
    arguments.source.describeFile(syntax);
    syntax.footer(
        "Depth counts elements, lengths of texts are in UTF-16 units, and a namespace counts the elements and "
        "attributes in it. The memory of a node is measured by loading up to 200,000 nodes a second time as a tree; it "
        "is not known for a small document (below 1,000 nodes) or for standard input.");
}

struct LargestText {
    int units = 0, line = 0;
};

using NameCounts = std::unordered_map<std::uint64_t, std::uint64_t>;

struct Statistics {
    std::uint64_t elements = 0, attributes = 0, declarations = 0, texts = 0, textUnits = 0;
    int depth = 0;
    LargestText largest;
    NameCounts elementNames, attributeNames;  // by namespace and local name
    std::map<LumName, std::uint64_t> namespaces;
    double bytesPerNode = 0;  // 0: not known
};

void countName(NameCounts& names, Statistics& statistics, LumName namespaceUri, LumName name) {
    ++names[std::uint64_t{namespaceUri.getEnum()} << 32 | name.getEnum()];
    if (!namespaceUri.isNull()) ++statistics.namespaces[namespaceUri];
}

void countStart(Statistics& statistics, const LumXmlParser& parser) {
    ++statistics.elements;
    statistics.depth = std::max(statistics.depth, parser.getDepth());
    countName(statistics.elementNames, statistics, parser.getNamespace(), parser.getName());
    const int count = parser.getAttributeCount();
    for (int i = 0; i < count; ++i) {
        const LumName namespaceUri = parser.getAttributeNamespace(i);
        if (namespaceUri == NAME_NS_XMLNS) {
            ++statistics.declarations;
        } else {
            ++statistics.attributes;
            countName(statistics.attributeNames, statistics, namespaceUri, parser.getAttributeName(i));
        }
    }
}

Statistics count(const XmlSource& source) {
    Statistics statistics;
    const LumPtr<LumXmlParser> parser = source.open();
    LumXmlParser::EventType event;
    while ((event = parser->next()) != LumXmlParser::END_DOCUMENT) {
        if (event == LumXmlParser::START_TAG) {
            countStart(statistics, *parser);
        } else if (event == LumXmlParser::TEXT) {
            const int units = parser->getText().length();
            ++statistics.texts;
            statistics.textUnits += static_cast<std::uint64_t>(units);
            if (units > statistics.largest.units) statistics.largest = {units, parser->getLineNumber()};
        }
    }
    return statistics;
}

double residentBytes() {
    std::ifstream account("/proc/self/statm");
    double total = 0, resident = 0;
    account >> total >> resident;
    return resident * static_cast<double>(sysconf(_SC_PAGESIZE));
}

/// The memory that a node takes with its attributes and text, on average; 0 if there are too few to tell.
double measureNode(const XmlSource& source) {
    constexpr int least = 1000, most = 200'000;
    const double before = residentBytes();
    const LumPtr<LumDocument> document(new LumDocument);
    document->setDeferredLoad(true);
    source.load(*document);
    int nodes = 0;
    for (LumNode* node = document->getDocumentElement(); node && nodes < most; ++nodes) {
        LumNode* next = node->getFirstChild();
        for (; !next && node; node = node->getParentNode()) next = node->getNextSibling();
        node = next;
    }
    return nodes < least ? 0 : std::max(residentBytes() - before, 0.0) / nodes;
}

struct NameRow {
    std::uint64_t count;
    std::string name, namespaceUri;
};

std::vector<NameRow> sorted(const NameCounts& names, int most) {
    std::vector<NameRow> rows;
    for (const auto& [key, count] : names) {
        const auto nameOf = [](std::uint64_t id) { return toUtf8(LumName(static_cast<LumNameEnum>(id & 0xFFFFFFFF))); };
        rows.push_back({count, nameOf(key), nameOf(key >> 32)});
    }
    std::sort(rows.begin(), rows.end(), [](const NameRow& a, const NameRow& b) {
        return std::tie(b.count, a.name, a.namespaceUri) < std::tie(a.count, b.name, b.namespaceUri);
    });
    if (most > 0 && rows.size() > static_cast<std::size_t>(most)) rows.resize(static_cast<std::size_t>(most));
    return rows;
}

Json jsonOf(const std::vector<NameRow>& rows) {
    Json::Array array;
    for (const NameRow& row : rows) {
        array.push_back(Json{{"name", row.name}, {"namespace", row.namespaceUri}, {"count", row.count}});
    }
    return array;
}

void printAsJson(const Statistics& statistics, int most) {
    Json::Array namespaces;
    for (const auto& [uri, count] : statistics.namespaces) {
        namespaces.push_back(Json{{"namespace", toUtf8(uri)}, {"count", count}});
    }
    printJson({{"elements", statistics.elements},
               {"attributes", statistics.attributes},
               {"namespaceDeclarations", statistics.declarations},
               {"texts", statistics.texts},
               {"textUnits", statistics.textUnits},
               {"depth", statistics.depth},
               {"largestText", Json{{"units", statistics.largest.units}, {"line", statistics.largest.line}}},
               {"bytesPerNode", statistics.bytesPerNode > 0 ? Json(statistics.bytesPerNode) : Json()},
               {"namespaces", namespaces},
               {"elementNames", jsonOf(sorted(statistics.elementNames, most))},
               {"attributeNames", jsonOf(sorted(statistics.attributeNames, most))}});
}

void printRow(std::uint64_t number, const std::string& text) {
    char digits[24];
    std::snprintf(digits, sizeof digits, "%12llu", static_cast<unsigned long long>(number));
    printLine(std::string(digits) + "  " + harmless(text));
}

void printNames(const char* heading, const NameCounts& names, int most) {
    if (names.empty()) return;
    const std::vector<NameRow> rows = sorted(names, most);
    const std::string rest = rows.size() < names.size()
                                 ? " (" + std::to_string(rows.size()) + " of " + std::to_string(names.size()) + ")"
                                 : "";
    printLine(heading + rest);
    for (const NameRow& row : rows) {
        printRow(row.count, row.namespaceUri.empty() ? row.name : row.name + "  " + row.namespaceUri);
    }
}

void printAsTable(const Statistics& statistics, int most) {
    printRow(statistics.elements, "elements");
    printRow(statistics.attributes, "attributes");
    printRow(statistics.declarations, "namespace declarations");
    printRow(statistics.texts, "texts");
    printRow(statistics.textUnits, "UTF-16 units in texts");
    printRow(static_cast<std::uint64_t>(statistics.largest.units),
             "in the largest text, which ends in line " + std::to_string(statistics.largest.line));
    printRow(static_cast<std::uint64_t>(statistics.depth), "elements deep");
    if (statistics.bytesPerNode > 0) {
        printRow(static_cast<std::uint64_t>(statistics.bytesPerNode), "bytes of memory a node");
    }
    if (!statistics.namespaces.empty()) printLine("namespaces");
    for (const auto& [uri, count] : statistics.namespaces) printRow(count, toUtf8(uri));
    printNames("names of elements", statistics.elementNames, most);
    printNames("names of attributes", statistics.attributeNames, most);
}

void run(const Arguments& arguments) {
    if (arguments.most < 0) throw UsageError("--top: a number of names cannot be negative");
    withReasons(arguments.source.file, [&] {
        Statistics statistics;
        {
            const Progress progress(arguments.source.file, Progress::Output::File);
            statistics = count(arguments.source);
            if (arguments.source.file != "-") statistics.bytesPerNode = measureNode(arguments.source);
        }
        arguments.isJson ? printAsJson(statistics, arguments.most) : printAsTable(statistics, arguments.most);
    });
}

}  // namespace

Command makeStatsCommand() { return makeCommand("stats", "Count what is in an XML document", describe, run); }

}  // namespace LumTool
