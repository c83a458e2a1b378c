#include <lumcommon/containers/office/detail/PackagePartReader.h>
#include <lumcommon/core/LumStrings.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/xml/XmlParserFactoryImpl.h>

namespace LumCommon::detail {

PackagePartReader::PackagePartReader(std::istream& in, const UnicodeString& namespaceUri, const UnicodeString& rootName)
    : parser_(makeClosedXmlParser()), namespaceUri_(namespaceUri), rootName_(rootName) {
    parser_->setInput(in, UnicodeString(), UnicodeString());
}

bool PackagePartReader::next() {
    for (;;) {
        const LumXmlParser::EventType event = parser_->next();
        if (event == LumXmlParser::END_DOCUMENT) return false;
        if (event != LumXmlParser::START_TAG || parser_->getDepth() > 2) continue;
        const bool isInNamespace = parser_->getNamespace() == namespaceUri_;
        if (parser_->getDepth() == 2 && isRootKnown_ && isInNamespace) return true;
        if (parser_->getDepth() == 1) isRootKnown_ = isInNamespace && parser_->getName() == rootName_;
    }
}

bool PackagePartReader::isAt(const UnicodeString& localName) const {
    return parser_->getName().getString() == localName;
}

UnicodeString PackagePartReader::getAttribute(const UnicodeString& localName) const {
    // Look it up by its local name: the parser's own lookup takes an attribute without a prefix for one in the default
    // namespace, which these parts declare.
    for (int i = 0; i < parser_->getAttributeCount(); ++i) {
        if (parser_->getAttributePrefix(i).isNull() && parser_->getAttributeName(i).getString() == localName) {
            return copyOf(parser_->getAttributeValue(i));
        }
    }
    return LumBogusString::BOGUS_VALUE;
}

}  // namespace LumCommon::detail
