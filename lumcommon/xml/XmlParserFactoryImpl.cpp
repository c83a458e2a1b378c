#include <lumcommon/xml/XmlParserFactoryImpl.h>
#include <lumcommon/xml/XmlParserImpl.h>

namespace LumCommon {

LumPtr<LumXmlParser> makeXmlParser() { return LumPtr<LumXmlParser>(new XmlParserImpl); }

LumPtr<LumXmlParser> makeClosedXmlParser() {
    LumPtr<LumXmlParser> parser = makeXmlParser();
    parser->setFeature(LumXmlParser::FEATURE_SKIP_EXTERNAL_DTD, true);
    parser->setFeature(LumXmlParser::FEATURE_NO_EXTERNAL, true);
    return parser;
}

}  // namespace LumCommon
