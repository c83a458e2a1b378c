#include <lumcommon/xml/XmlParserImpl.h>

namespace LumCommon {

namespace XmlError = detail::XmlError;

void XmlParserImpl::parseDocDecl() { throwError(XmlError::MarkupDecl, u"DOCTYPE"); }
UnicodeString LumXmlParser::getMathMLEntity(const UnicodeString&) { return UnicodeString(); }
void XmlParserImpl::addMathMLEntityMap() {}

}  // namespace LumCommon
