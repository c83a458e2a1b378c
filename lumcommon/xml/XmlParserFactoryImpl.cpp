#include <lumcommon/xml/XmlParserFactoryImpl.h>
#include <lumcommon/xml/XmlParserImpl.h>

namespace LumCommon {

LumPtr<LumXmlParser> makeXmlParser() { return LumPtr<LumXmlParser>(new XmlParserImpl); }

LumPtr<LumXmlParser> makeClosedXmlParser() {
    LumPtr<XmlParserImpl> parser(new XmlParserImpl);
    parser->setFeature(LumXmlParser::FEATURE_SKIP_EXTERNAL_DTD, true);
    parser->refuseExternalInputs();
    return LumPtr<LumXmlParser>(parser.get());
}

}  // namespace LumCommon
