// The limits that a caller sets, and documents that have no end without them.

#include <gtest/gtest.h>

#include <lumcommon/xml/LumXmlErrorCode.h>

#include <chrono>
#include <cstdio>
#include <limits>
#include <map>
#include <regex>
#include <thread>

#include "support/Deflated.h"
#include "support/Repeat.h"
#include "support/ResourceLibrary.h"
#include "support/XmlEvents.h"

namespace {

using namespace LumTest;
using LumCommon::LumXmlLimits;

/// Reads to the end. Every error is the code, the event and the place; the listener, where there is one, accepts all.
std::string readUnder(const LumXmlLimits& limits, std::istream& in, const std::string& base, bool accepts) {
    struct Heard {
        LumXmlParser* parser;
        std::string errors;
        int count = 0;
        void add(const LumError& error) {
            if (++count < 100) errors += hexadecimal(error.code) + " " + utf8(parser->getPositionDescription());
        }
    };
    const LumPtr<LumXmlParser> parser = LumXmlUtil::createXmlParser();
    Heard heard{parser.get(), {}};
    parser->setLimits(limits);
    if (accepts) {
        parser->setCallbackError([](const LumError& e, void* data) { static_cast<Heard*>(data)->add(e); }, &heard);
    }
    parser->setInput(in, {}, fromUtf8(base));
    for (LumXmlParser::EventType type = LumXmlParser::START_DOCUMENT; type != LumXmlParser::END_DOCUMENT;) {
        try {
            type = parser->next();
        } catch (const LumError& error) {
            const std::string message = utf8(error.message);
            heard.errors += hexadecimal(error.code) + " " + message.substr(message.find('\n') + 1);
        }
    }
    return heard.errors;
}

std::string dtd(const std::string& declarations, const std::string& content) {
    return "<!DOCTYPE a [" + declarations + "]><a>" + content + "</a>";
}

/// Numbers that no earlier document has used for its resources.
std::string unusedName() {
    static int used = 0;
    return "f" + std::to_string(++used);
}

/// A document that refers to an entity in a resource of these bytes.
std::string naming(ResourceLibrary& library, const std::string& bytes, std::size_t times = 1) {
    const std::string name = unusedName();
    library.add(name, bytes);
    return dtd("<!ENTITY e SYSTEM '" + name + "'>", repeat("&e;", times));
}

std::string defining(ResourceLibrary& library, const std::string& bytes) {
    const std::string name = unusedName();
    library.add(name, bytes);
    return "<!DOCTYPE a SYSTEM '" + name + "'><a/>";
}

/// Entities of which each names the one before `times` times.
std::string chained(ResourceLibrary& library, std::size_t length, std::size_t times, char mark, const char* last) {
    std::string declarations;
    for (std::size_t i = 0; i < length; ++i) {
        const std::string name = unusedName(), number = std::to_string(i),
                          reference = mark + ("e" + std::to_string(i - 1)) + ";";
        library.add(name, i == 0 ? last : repeat(reference, times));
        declarations += std::string("<!ENTITY ") + (mark == '%' ? "% " : "") + "e" + number + " SYSTEM '" + name + "'>";
    }
    const std::string reference = mark + ("e" + std::to_string(length - 1)) + ";";
    return mark == '%' ? dtd(declarations + reference, "") : dtd(declarations, reference);
}

/// A mebibyte that takes so many bytes with gzip.
std::string mebibyteIn(std::size_t bytes) {
    const std::string text(1 << 20, 'x');
    gz_header header{};
    std::string name(bytes - deflated(text, Wrapper::GZIP).size() - 1, 'n');
    header.name = zlibBytes(name);
    return deflated(text, Wrapper::GZIP, &header);
}

/// The pattern with what its braces tell: {2,-5:text} is a text 2 * n - 5 times.
std::string grown(const std::string& pattern, long n) {
    std::string grown;
    std::size_t at = 0;
    for (std::size_t open; (open = pattern.find('{', at)) != std::string::npos; at = pattern.find('}', open) + 1) {
        long factor = 0, more = 0;
        EXPECT_EQ(std::sscanf(pattern.c_str() + open, "{%ld,%ld", &factor, &more), 2);
        const std::size_t unit = pattern.find(':', open) + 1;
        grown += pattern.substr(at, open - at) + repeat(pattern.substr(unit, pattern.find('}', open) - unit),
                                                        static_cast<std::size_t>(factor * n + more));
    }
    return grown + pattern.substr(at);
}

/// A document that reads these bytes, or is them.
std::string inputOf(ResourceLibrary& library, const std::string& kind, const std::string& bytes) {
    if (kind == "entity") return naming(library, bytes);
    if (kind == "definition") return defining(library, bytes);
    if (kind == "gzip") return naming(library, deflated(bytes, Wrapper::GZIP));
    if (kind == "mebibyte") return naming(library, mebibyteIn(bytes.size()));
    if (kind == "chain") return chained(library, bytes.size(), 1, '&', "x");
    EXPECT_TRUE(kind == "document" || kind == "whole") << kind;
    return bytes;
}

using Limits = LumXmlLimits;
const std::map<std::string, std::uint64_t Limits::*> limitsByName = {
    {"depth", &Limits::depth},
    {"attributes", &Limits::attributes},
    {"textUnits", &Limits::textUnits},
    {"nameUnits", &Limits::nameUnits},
    {"valueUnits", &Limits::valueUnits},
    {"expansionFactor", &Limits::expansionFactor},
    {"expansionThreshold", &Limits::expansionThreshold},
    {"openInputs", &Limits::openInputs},
    {"externalInputs", &Limits::externalInputs},
    {"externalBytes", &Limits::externalBytes},
    {"inflatedBytes", &Limits::inflatedBytes},
    {"inflationRatio", &Limits::inflationRatio},
    {"totalBytes", &Limits::totalBytes},
    {"timeMs", &Limits::timeMs},
    {"names", &Limits::names}};

TEST(LumXmlParserLimits, holdExactlyWhereTheyAreSet) {
    ResourceLibrary library;
    library.add("x", "x");
    for (const std::vector<std::string>& row : readEscapedRows("xml/limits.txt", 6)) {
        const std::string &name = row[1], &code = row[2], &kind = row[4];
        const int value = std::stoi(row[3]);
        for (const int more : {-1, 0, 1}) {
            SCOPED_TRACE(row[0] + " " + name + ", " + std::to_string(more));
            LumXmlLimits limits;
            if (name == "expansionThreshold") limits.expansionFactor = 0;
            if (name == "expansionFactor") limits.expansionThreshold = 0;
            limits.*limitsByName.at(name) = name == "timeMs" && more > 0 ? 0 : static_cast<std::uint64_t>(value);
            std::string told;
            for (const std::size_t pieceBytes : {wholeInput, std::size_t{1}, std::size_t{3}}) {
                if (pieceBytes != wholeInput && kind == "whole") continue;
                for (const bool accepts : {false, true}) {
                    const std::string document = inputOf(library, kind, grown(row[5], value + more));
                    PieceStream in(document, pieceBytes);
                    std::string now = readUnder(limits, in, library.getBase(), accepts);
                    now = std::regex_replace(now, std::regex("/f[0-9]+'"), "'");
                    if (pieceBytes == wholeInput && !accepts) told = now;
                    EXPECT_EQ(now, told) << "in pieces of " << pieceBytes << " or with a listener";
                }
            }
            const std::string place = more > 0 ? code + " .*Line \\d+, Col \\d+\\." : "";
            EXPECT_TRUE(std::regex_match(told, std::regex(place))) << told;
        }
    }
}

// Each would go on for ever, or for longer than anybody waits.
TEST(LumXmlParserLimits, everyDocumentEnds) {
    ResourceLibrary library;
    const std::string twice = "&e;&e;";
    const struct {
        const char* fault;
        unsigned code;
        std::string document;
    } rows[] = {
        {"entities that each name another twice", 0x1837, chained(library, 40, 2, '&', "x")},
        {"the same while nothing is in them", 0x1837, chained(library, 40, 2, '&', "")},
        {"parameter entities that each name another twice", 0x1837, chained(library, 40, 2, '%', " ")},
        {"one file named ten thousand times", 0x1837, naming(library, std::string(50000, 'x'), 10000)},
        {"a small file named ten thousand times", 0x1837, naming(library, "x", 10000)},
        {"a file that names itself twice", 0x1838, naming(library, twice)},
        {"an entity that contains itself twice", 0x1837, dtd("<!ENTITY e '" + twice + "'>", twice)},
        {"a file without end", 0x1837, dtd("<!ENTITY e SYSTEM 'file:///dev/zero'>", "&e;")},
        {"a definition without end", 0x1837, "<!DOCTYPE a SYSTEM 'file:///dev/zero'><a/>"},
    };
    for (const auto& row : rows) {
        for (const bool accepts : {false, true}) {
            SCOPED_TRACE(std::string(row.fault) + (accepts ? ", accepted" : ""));
            const int opened = library.countOpened();
            PieceStream in(row.document);
            const std::string told = readUnder({}, in, library.getBase(), accepts);
            EXPECT_EQ(told.substr(0, 4), hexadecimal(row.code)) << told.substr(0, 200);
            EXPECT_LE(library.countOpened(), opened + 3000);
        }
    }
}

/// Has one more byte whenever it is asked, a little later.
class Trickle : public std::streambuf {
    int_type underflow() override {
        std::this_thread::sleep_for(std::chrono::microseconds(100));
        byte_ = given_++ < 3 ? "<a>"[given_ - 1] : 'x';
        setg(&byte_, &byte_, &byte_ + 1);
        return traits_type::to_int_type(byte_);
    }
    std::size_t given_ = 0;
    char byte_ = 0;
};

TEST(LumXmlParserLimits, aTrickleEndsByItsTimeOrItsBytes) {
    for (const bool byTime : {true, false}) {
        Trickle trickle;
        std::istream in(&trickle);
        LumXmlLimits limits;
        (byTime ? limits.timeMs : limits.totalBytes) = 50;
        EXPECT_EQ(readUnder(limits, in, "", false).substr(0, 4), byTime ? "1845" : "1844");
    }
}

/// "<a", then blanks without end, a block at a time.
class Blanks : public std::streambuf {
    int_type underflow() override {
        setg(block_.data(), block_.data(), block_.data() + block_.size());
        if (given_++ > 0) block_.assign(block_.size(), ' ');
        return given_ > blocks ? traits_type::eof() : traits_type::to_int_type(block_[0]);
    }
    static constexpr int blocks = 2049;
    std::string block_ = "<a" + std::string((1 << 20) - 2, ' ');
    int given_ = 0;
};

TEST(LumXmlParserLimits, columnsCountOnWhereAnIntDoesNotHoldThem) {
    Blanks blanks;
    std::istream in(&blanks);
    const LumPtr<LumXmlParser> parser = LumXmlUtil::createXmlParser();
    parser->setInput(in, {}, {});
    expectParserError(0x1809, "Invalid attribute name: ", "START_TAG, Line 1, Col 2148532223.",
                      [&] { parser->next(); });
    EXPECT_EQ(parser->getColumnNumber(), std::numeric_limits<int>::max());
}

}  // namespace

TEST(LumXmlErrorCode, hasANameAndACause) {
    namespace Code = LumCommon::LumXmlErrorCode;
    const struct {
        const char* fault;
        unsigned code;
        const char *name, *cause;
    } rows[] = {
        {"the first", Code::MissingEndTag, "MissingEndTag", "the input ends while elements are open"},
        {"a quote is lost", 0x1828, "CDataSyntax", "\"[\" is missing after \"<![CDATA\""},
        {"what a callback hears", 0x1E1E, "UndefinedEntity", "an entity that is not declared; a callback hears 0x1E1E"},
        {"the last", 0x1856, "AttributeDefault", "the declaration of an attribute has no proper default"},
        {"after the last", 0x1857, nullptr, nullptr},
        {"another family", 0x1003, nullptr, nullptr},
        {"heard, but of no such code", 0x1E01, nullptr, nullptr},
    };
    for (const auto& row : rows) {
        EXPECT_STREQ(Code::getName(row.code), row.name) << row.fault;
        EXPECT_STREQ(Code::getCause(row.code), row.cause) << row.fault;
    }
}
