#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/dom/XmlSerializerImpl.h>
#include <lumcommon/names/LumXmlUtil.h>
#include <lumcommon/xml/LumXmlParser.h>
#include <lumcommon/xml/XmlParserFactoryImpl.h>

#include <istream>

namespace LumCommon {
namespace {

/// A parser that tolerates what does not matter for a look at the root.
LumPtr<LumXmlParser> makeLenientParser() {
    LumPtr<LumXmlParser> parser = LumXmlUtil::createXmlParser();
    parser->setFeature(LumXmlParser::FEATURE_SKIP_EXTERNAL_DTD, true);
    parser->setFeature(LumXmlParser::FEATURE_IGNORE_UNDEFINED_ENTITIES, true);
    parser->setFeature(LumXmlParser::FEATURE_ALLOW_UNDECLARED_PREFIX, true);
    parser->setFeature(LumXmlParser::FEATURE_IGNORE_UNSUPPORTED_ENCODING, true);
    return parser;
}

bool advanceToRoot(LumXmlParser& parser) {
    for (;;) {
        const LumXmlParser::EventType event = parser.next();
        if (event == LumXmlParser::START_TAG) return true;
        if (event == LumXmlParser::END_DOCUMENT) return false;
    }
}

/// The root's names; `parser` is null when there is no root.
LumName readRootName(LumName& localName, const LumXmlParser* parser) {
    localName = parser ? parser->getName() : LumName();
    return parser ? parser->getNamespace() : LumName();
}

bool isFormattingRoot(LumName namespaceUri, LumName localName) {
    return namespaceUri == NAME_NS_FO && localName == NAME_root;
}

/// What an fo:root is: a simplified stylesheet when it has an xsl:version, else formatting objects.
LumName classifyFormattingRoot(const LumXmlParser* parser) {
    for (int i = parser ? parser->getAttributeCount() - 1 : -1; i >= 0; --i) {
        if (parser->getAttributeName(i) == NAME_version && parser->getAttributeNamespace(i) == NAME_NS_XSLT) {
            return NAME_NS_XSLT;
        }
    }
    return NAME_NS_FO;
}

}  // namespace

LumPtr<LumXmlParser> LumXmlUtil::createXmlParser() { return makeXmlParser(); }

LumPtr<LumXmlSerializer> LumXmlUtil::createXmlSerializer() { return LumPtr<LumXmlSerializer>(new XmlSerializerImpl); }

LumPtr<LumXmlParser> LumXmlUtil::getRootParser(std::istream& in, const UnicodeString& streamType1,
                                               const UnicodeString& streamType2) {
    LumPtr<LumXmlParser> parser = makeLenientParser();
    parser->setStreamType(streamType1, streamType2);
    parser->setInput(in, UnicodeString(), UnicodeString());
    return advanceToRoot(*parser) ? parser : nullptr;
}

LumPtr<LumXmlParser> LumXmlUtil::getRootParser(const UnicodeString& uri) {
    LumPtr<LumXmlParser> parser = makeLenientParser();
    parser->setInput(uri, UnicodeString(), UnicodeString());
    return advanceToRoot(*parser) ? parser : nullptr;
}

LumName LumXmlUtil::getRootName(LumName& localName, std::istream& in, const UnicodeString& streamType1,
                                const UnicodeString& streamType2) {
    localName = LumName();
    return readRootName(localName, getRootParser(in, streamType1, streamType2).get());
}

LumName LumXmlUtil::getRootName(LumName& localName, const UnicodeString& uri) {
    localName = LumName();
    return readRootName(localName, getRootParser(uri).get());
}

LumName LumXmlUtil::getXSLStylesheetNamespace(LumName& localName, std::istream& in, const UnicodeString& streamType1,
                                              const UnicodeString& streamType2) {
    const LumName namespaceUri = getRootName(localName, in, streamType1, streamType2);
    if (!isFormattingRoot(namespaceUri, localName)) return namespaceUri;
    in.clear();
    in.seekg(0);
    return classifyFormattingRoot(getRootParser(in, streamType1, streamType2).get());
}

LumName LumXmlUtil::getXSLStylesheetNamespace(LumName& localName, const UnicodeString& uri) {
    localName = LumName();
    // Reads the input once only: it may be remote, and unlike the caller's stream it need not be rewound.
    const LumPtr<LumXmlParser> parser = getRootParser(uri);
    const LumName namespaceUri = readRootName(localName, parser.get());
    return isFormattingRoot(namespaceUri, localName) ? classifyFormattingRoot(parser.get()) : namespaceUri;
}

UnicodeString LumXmlUtil::makeNSQNameStr(const UnicodeString& namespaceUri, const UnicodeString& localName) {
    UnicodeString name;
    if (namespaceUri == LumName(NAME_NS_XML).getString()) {
        detail::append(name, u"xml:");
    } else if (namespaceUri == LumName(NAME_NS_XMLNS).getString()) {
        if (localName != u"xmlns") detail::append(name, u"xmlns:");
    } else if (!namespaceUri.isEmpty()) {
        detail::append(name, u'{');
        detail::append(name, namespaceUri);
        detail::append(name, u"}:");
    }
    detail::append(name, localName);
    return name;
}

}  // namespace LumCommon
