// The limits that a caller sets, and documents that have no end without them.

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <limits>
#include <regex>
#include <thread>

#include "support/Deflated.h"
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

std::string repeat(std::string_view unit, std::size_t times) {
    std::string text;
    for (std::size_t i = 0; i < times; ++i) text += unit;
    return text;
}

std::string numbered(std::string_view before, std::size_t count, std::string_view after) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) text.append(before).append(std::to_string(i)).append(after);
    return text;
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

struct LimitCase {
    const char* counted;
    std::uint64_t LumXmlLimits::*limit;
    unsigned code;
    std::uint64_t value;
    std::function<std::string(std::size_t size, ResourceLibrary& library)> make;
    bool isForAnyPieces = true;
};

using Limits = LumXmlLimits;
using Library = ResourceLibrary;
const LimitCase limitCases[] = {
    {"elements", &Limits::depth, 0x183B, 3,
     [](std::size_t n, Library&) { return repeat("<a>", n) + repeat("</a>", n); }},
    {"attributes", &Limits::attributes, 0x183C, 3,
     [](std::size_t n, Library&) {
         return "<a>" + numbered("<b c", n, "='1'/>") + "<b" + numbered(" c", n, "='1'") + "/></a>";
     }},
    {"attributes", &Limits::attributes, 0x183C, 3,
     [](std::size_t n, Library&) { return "<a" + numbered("\nb", n, " = '&lt;'") + "/>"; }},
    {"a text", &Limits::textUnits, 0x183D, 20,
     [](std::size_t n, Library&) { return "<a>" + std::string(n, 'x') + "</a>"; }},
    {"joined texts", &Limits::textUnits, 0x183D, 20,
     [](std::size_t n, Library&) { return "<a>x&#65;<![CDATA[]]]>]&lt;" + std::string(n - 5, 'x') + "</a>"; }},
    {"a section", &Limits::textUnits, 0x183D, 20,
     [](std::size_t n, Library&) { return "<a><![CDATA[" + std::string(n, 'x') + "]]></a>"; }},
    {"a declaration", &Limits::textUnits, 0x183D, 20,
     [](std::size_t n, Library&) { return "<!DOCTYPE a [" + std::string(n - 5, ' ') + "]><a/>"; }},
    {"an element's name", &Limits::nameUnits, 0x183E, 5,
     [](std::size_t n, Library&) { return "<" + std::string(n, 'x') + "/>"; }},
    {"a prefix", &Limits::nameUnits, 0x183E, 5,
     [](std::size_t n, Library&) {
         const std::string prefix(n, 'p');
         return "<" + prefix + ":x xmlns:" + prefix + "='u'/>";
     }},
    {"an attribute's name", &Limits::nameUnits, 0x183E, 5,
     [](std::size_t n, Library&) { return "<a xmlns:p='u' p:" + std::string(n, 'x') + "='1'/>"; }},
    {"an entity's name", &Limits::nameUnits, 0x183E, 7,
     [](std::size_t n, Library&) { return dtd("<!ENTITY " + std::string(n, 'x') + " ''>", ""); }},
    {"a value", &Limits::valueUnits, 0x183F, 20,
     [](std::size_t n, Library&) { return "<a><b c='1'/><b c='" + std::string(n, 'x') + "'/></a>"; }},
    {"a value as written", &Limits::valueUnits, 0x183F, 20,
     [](std::size_t n, Library&) { return "<a b='" + std::string(n - 5, 'x') + "&#65;'/>"; }},
    {"a value as read", &Limits::valueUnits, 0x183F, 20,
     [](std::size_t n, Library&) {
         return "<!DOCTYPE a [<!ENTITY e '1234567890'>]><a b='&e;" + std::string(n - 10, 'x') + "'/>";
     }},
    {"an entity's value", &Limits::valueUnits, 0x183F, 20,
     [](std::size_t n, Library&) { return dtd("<!ENTITY e '" + std::string(n, 'x') + "'>", ""); }},
    {"replacement texts", &Limits::expansionThreshold, 0x1837, 20,
     [](std::size_t n, Library&) { return dtd("<!ENTITY e 'x'>", repeat("&e;", n)); }},
    {"external inputs as expansion", &Limits::expansionThreshold, 0x1837, 5000,
     [](std::size_t n, Library& library) { return naming(library, std::string(n, 'x')); }},
    {"a definition as expansion", &Limits::expansionThreshold, 0x1837, 5000,
     [](std::size_t n, Library& library) { return defining(library, std::string(n, ' ')); }},
    {"the bytes of the document", &Limits::expansionFactor, 0x1837, 3,
     [](std::size_t n, Library&) {  // 1980 units for 660 bytes, or one byte more or less
         const std::string document = dtd("<!ENTITY e '" + std::string(99, 'x') + "'>", repeat("&e;", 20));
         return std::string("<?") + std::string(658 - n - document.size(), 'p') + " ?>" + document;
     },
     false},
    {"inputs in inputs", &Limits::openInputs, 0x1838, 3,
     [](std::size_t n, Library& library) { return chained(library, n, 1, '&', "x"); }},
    {"references to external inputs", &Limits::externalInputs, 0x1840, 3,
     [](std::size_t n, Library& library) { return naming(library, "x", n); }},
    {"bytes of an entity", &Limits::externalBytes, 0x1841, 5,
     [](std::size_t n, Library& library) { return naming(library, std::string(n, 'x')); }},
    {"bytes of a definition", &Limits::externalBytes, 0x1841, 5,
     [](std::size_t n, Library& library) { return defining(library, std::string(n, ' ')); }},
    {"inflated bytes", &Limits::inflatedBytes, 0x1842, 100,
     [](std::size_t n, Library& library) { return naming(library, deflated(std::string(n, 'x'), Wrapper::GZIP)); }},
    {"inflated bytes of a byte", &Limits::inflationRatio, 0x1843, 128,
     [](std::size_t n, Library& library) { return naming(library, mebibyteIn(8192 + 128 - n)); }},
    {"bytes", &Limits::totalBytes, 0x1844, 64,
     [](std::size_t n, Library&) { return "<a>" + std::string(n - 7, 'x') + "</a>"; }},
    {"bytes before they are converted", &Limits::totalBytes, 0x1844, 64,
     [](std::size_t n, Library&) {
         return "<?xml version='1.0' encoding='koi8-r'?><a>" + std::string(n - 46, '\xC1') + "</a>";
     }},
    {"time", &Limits::timeMs, 0x1845, 60000, [](std::size_t, Library&) { return "<a/>"; }},
    {"names of elements", &Limits::names, 0x1846, 5,
     [](std::size_t n, Library&) { return "<a>" + numbered("<b", n - 1, "/>") + "</a>"; }},
    {"prefixes and local names", &Limits::names, 0x1846, 6,
     [](std::size_t n, Library&) { return "<a xmlns:p='u'>" + numbered("<p:b", n - 4, "/>") + "</a>"; }},
    {"namespaces", &Limits::names, 0x1846, 6,
     [](std::size_t n, Library&) { return "<a>" + numbered("<b xmlns='u", n - 3, "'/>") + "</a>"; }},
};

TEST(LumXmlParserLimits, holdExactlyWhereTheyAreSet) {
    ResourceLibrary library;
    for (const LimitCase& row : limitCases) {
        for (const int more : {-1, 0, 1}) {
            SCOPED_TRACE(std::string(row.counted) + " " + std::to_string(row.code) + ", " + std::to_string(more));
            LumXmlLimits limits;
            if (row.limit == &Limits::expansionThreshold) limits.expansionFactor = 0;
            if (row.limit == &Limits::expansionFactor) limits.expansionThreshold = 0;
            const bool isTime = row.limit == &Limits::timeMs;
            limits.*row.limit = isTime && more > 0 ? 0 : row.value;
            std::string told;
            for (const std::size_t pieceBytes : {wholeInput, std::size_t{1}, std::size_t{3}}) {
                if (pieceBytes != wholeInput && (!row.isForAnyPieces || isTime)) continue;
                for (const bool accepts : {false, true}) {
                    const std::string document =
                        row.make(static_cast<std::size_t>(row.value) + static_cast<std::size_t>(more), library);
                    PieceStream in(document, pieceBytes);
                    std::string now = readUnder(limits, in, library.getBase(), accepts);
                    now = std::regex_replace(now, std::regex("/f[0-9]+'"), "'");
                    if (pieceBytes == wholeInput && !accepts) told = now;
                    EXPECT_EQ(now, told) << "in pieces of " << pieceBytes << " or with a listener";
                }
            }
            const std::string place = more > 0 ? hexadecimal(row.code) + " .*Line \\d+, Col \\d+\\." : "";
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
