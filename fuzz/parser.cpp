// Any bytes may claim to be an XML document. The first four choose features, interface and piece sizes.
// Laws: the pieces in which the bytes arrive change nothing, neither events nor positions nor the error; parsing ends;
// depth rises and falls by one with start and end tags; limits change nothing of that; parsing also ends if a callback
// continues after errors; after an error the parser may be asked again and given another document; nothing outside is
// opened where that is refused; bytes that cannot be read to their end are no whole document.

#include <lumcommon/lumcommon.h>

#include <sstream>
#include <stdexcept>
#include <streambuf>
#include <string>

#include "FuzzSupport.h"

using namespace LumCommon;
using LumFuzz::Choices;
using LumFuzz::Digest;
using LumFuzz::PieceBuffer;

namespace {

struct Setting {
    unsigned features = 0;
    bool useTokens = false;
    bool goOnAfterErrors = false;
    bool defineEntity = false;
    bool isLimited = false;
    bool touchOnlyTags = false;  // an accessor that fills a cache must not change what comes after

    bool refusesExternal() const { return (features >> LumXmlParser::FEATURE_NO_EXTERNAL & 1u) != 0; }
};

/// The code of the error for expanding entities beyond the limit.
constexpr unsigned expansionError = 0x1837;

struct Reports {
    int count = 0;
    bool isCostly = false;
    Digest digest;
};

/// Lets parsing continue, whatever is reported and how often.
void onError(const LumError& error, void* data) {
    auto& reports = *static_cast<Reports*>(data);
    reports.digest.add(error.code);
    reports.digest.add(error.message);
    reports.isCostly = reports.isCostly || error.code == expansionError;
    ++reports.count;
}

void addAttributes(const LumXmlParser& parser, Digest& digest) {
    const int count = parser.getAttributeCount();
    digest.add(static_cast<std::uint64_t>(count));
    for (int i = 0; i < count; ++i) {
        digest.add(parser.getAttributePrefix(i).getString());
        digest.add(parser.getAttributeName(i).getString());
        digest.add(parser.getAttributeNamespace(i).getString());
        const UnicodeString& value = parser.getAttributeValue(i);
        digest.add(value);
        // An attribute must be found by its name and the namespace of its prefix. The search is linear, so only the
        // first few are looked up.
        if (i < 64) {
            const LumName scope = parser.getNamespace(parser.getAttributePrefix(i));
            FUZZ_LAW(!parser.getAttributeValue(scope, parser.getAttributeName(i)).isBogus());
        }
    }
}

void addEvent(const LumXmlParser& parser, const Setting& setting, Digest& digest) {
    const int event = parser.getEventType();
    digest.add(static_cast<std::uint64_t>(event));
    digest.add(static_cast<std::uint64_t>(parser.getDepth()));
    digest.add(static_cast<std::uint64_t>(parser.getLineNumber()));
    digest.add(static_cast<std::uint64_t>(parser.getColumnNumber()));
    if (event == LumXmlParser::START_TAG || event == LumXmlParser::END_TAG) {
        digest.add(parser.getPrefix().getString());
        digest.add(parser.getName().getString());
        digest.add(parser.getNamespace().getString());
        FUZZ_LAW(parser.getDepth() > 0 || setting.goOnAfterErrors);
        digest.add(static_cast<std::uint64_t>(parser.getNamespaceCount(parser.getDepth())));
    }
    if (event == LumXmlParser::START_TAG) {
        digest.add(parser.isEmptyElementTag());
        addAttributes(parser, digest);
    } else if (!setting.touchOnlyTags) {
        digest.add(parser.getText());
    }
    if (event == LumXmlParser::TEXT || event == LumXmlParser::CDSECT) digest.add(parser.isWhitespace());
    if (event == LumXmlParser::ENTITY_REF) digest.add(parser.getName().getString());
}

/// Stands for everything outside the document, which must not reach the files of the fuzzing machine: an external
/// subset, and entities that include each other endlessly, each several times.
class Outside : public LumUriReferenceResolver {
public:
    int opened = 0;

    std::istream* getStream(const UnicodeString& uri) override {
        ++opened;
        if (uri.endsWith(u"dtd")) {
            return new std::istringstream(
                "<?xml version='1.0' encoding='UTF-8'?><!ENTITY outer 'from <b>outside</b>'><!ENTITY % p "
                "'<!ATTLIST a d CDATA \"default\">'>%p;%p;<![INCLUDE[<!ENTITY again SYSTEM 'again.ent'>]]>");
        }
        return new std::istringstream("<?xml encoding='UTF-8'?><x>&e;&again;&e;&again;&again;</x>");
    }
};

/// After an error: the parser throws again or ends, and reads the next document as if there had been none before it.
void askOn(LumXmlParser& parser, Setting setting) {
    parser.setCallbackError(nullptr, nullptr);
    setting.goOnAfterErrors = true;  // depths are off by now
    for (int calls = 0, errors = 0; calls < 50 && errors < 10; ++calls) {
        try {
            setting.useTokens ? parser.nextToken() : parser.next();
            Digest digest;
            addEvent(parser, setting, digest);
        } catch (const LumError&) {
            ++errors;
        }
    }
    std::istringstream good("<a>x</a>");
    parser.setInput(good, UnicodeString(), UnicodeString());
    FUZZ_LAW(parser.getDepth() == 0);
    FUZZ_LAW(parser.next() == LumXmlParser::START_TAG && parser.getDepth() == 1 && parser.getColumnNumber() == 2);
    FUZZ_LAW(parser.next() == LumXmlParser::TEXT && parser.getText() == UnicodeString(u"x"));
}

/// Limits that small documents exceed.
LumXmlLimits smallLimits(const Setting& setting) {
    LumXmlLimits limits;
    limits.depth = limits.attributes = limits.openInputs = limits.externalInputs = 4;
    limits.textUnits = 60;
    limits.nameUnits = 12;
    limits.valueUnits = 40;
    limits.expansionFactor = 0;  // times the bytes that have been read, which depends on the pieces
    limits.expansionThreshold = 20000;
    limits.externalBytes = 700;
    // Where there are several inputs it depends on the pieces how far each has been read when their sum is too large.
    if (setting.refusesExternal()) limits.totalBytes = 900;
    limits.names = 20;
    return limits;
}

/// @param isCostly  set if the input expanded entities up to the limit: millions of characters from a few bytes.
Digest parse(const Choices& document, const Setting& setting, std::size_t firstPiece, std::size_t secondPiece,
             bool& isCostly) {
    PieceBuffer buffer(document.data(), document.size(), firstPiece, secondPiece);
    std::istream in(&buffer);
    LumPtr<LumXmlParser> parser = LumXmlUtil::createXmlParser();
    for (int feature = 0; feature < 8; ++feature) {
        parser->setFeature(static_cast<LumXmlParser::Feature>(feature), (setting.features >> feature & 1u) != 0);
    }
    if (setting.isLimited) {
        parser->setLimits(smallLimits(setting));
        parser->setFeature(LumXmlParser::FEATURE_SKIP_EXTERNAL_DTD, true);  // it counts only when it is first read
    }
    Reports reports;
    if (setting.goOnAfterErrors) parser->setCallbackError(onError, &reports);
    Digest digest;
    try {
        parser->setInput(in, UnicodeString(), UnicodeString());
        if (setting.defineEntity) {
            parser->defineEntityReplacementText(LumName(u"e"), u"<i a='&amp;'>&lt;</i>&f;&f;&f;");
            parser->defineEntityReplacementText(LumName(u"f"), u"text</b><b>");
        }
        int depth = 0;
        int event = 0;
        do {
            event = setting.useTokens ? parser->nextToken() : parser->next();
            FUZZ_LAW(event == parser->getEventType());
            if (event == LumXmlParser::START_TAG) ++depth;
            if (event == LumXmlParser::START_TAG || event == LumXmlParser::END_TAG) {
                FUZZ_LAW(setting.goOnAfterErrors || parser->getDepth() == depth);
            }
            if (event == LumXmlParser::END_TAG) --depth;
            addEvent(*parser, setting, digest);
        } while (event != LumXmlParser::END_DOCUMENT);
        FUZZ_LAW(setting.goOnAfterErrors || depth == 0);
    } catch (const LumError& error) {
        FUZZ_LAW(error.code >= 0x0800 && error.code < 0x2000 && !error.message.isEmpty());
        digest.add(error.code);
        digest.add(error.message);
        isCostly = isCostly || (error.code == expansionError && !setting.isLimited);
        if (!isCostly) askOn(*parser, setting);
    }
    isCostly = isCostly || (reports.isCostly && !setting.isLimited);
    digest.add(static_cast<std::uint64_t>(reports.count));
    return digest;
}

/// The bytes, and then a failure instead of an end.
class BreakingBuffer : public std::streambuf {
public:
    explicit BreakingBuffer(const Choices& document) : bytes_(document.data(), document.data() + document.size()) {
        setg(bytes_.data(), bytes_.data(), bytes_.data() + bytes_.size());
    }

private:
    int_type underflow() override { throw std::runtime_error("broken"); }

    std::string bytes_;
};

void breakOff(const Choices& document, bool useTokens) {
    BreakingBuffer buffer(document);
    std::istream in(&buffer);
    const LumPtr<LumXmlParser> parser = LumXmlUtil::createXmlParser();
    try {
        parser->setUntrusted();
        parser->setInput(in, UnicodeString(), UnicodeString());
        while ((useTokens ? parser->nextToken() : parser->next()) != LumXmlParser::END_DOCUMENT) {
        }
    } catch (const LumError&) {
        return;
    }
    FUZZ_LAW(false);  // it ends like a whole document
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Outside outside;
    LumUri::setUriReferenceResolver(&outside);
    Choices input(data, size);
    Setting setting;
    setting.features = input.byte();
    const unsigned how = input.byte();
    setting.useTokens = (how & 1u) != 0;
    setting.goOnAfterErrors = (how & 2u) != 0;
    setting.defineEntity = (how & 4u) != 0;
    setting.touchOnlyTags = (how & 8u) != 0;
    setting.isLimited = (how & 16u) != 0;
    const std::size_t firstPiece = input.byte();
    const std::size_t secondPiece = input.byte();
    bool isCostly = false;
    const int openedBefore = outside.opened;
    breakOff(input, setting.useTokens);
    const Digest whole = parse(input, setting, size + 1, size + 1, isCostly);
    FUZZ_LAW(!setting.refusesExternal() || outside.opened == openedBefore);
    if (isCostly) return 0;
    FUZZ_LAW(whole == parse(input, setting, firstPiece, secondPiece, isCostly));
    FUZZ_LAW(whole == parse(input, setting, 1, 1, isCostly));
    return 0;
}
