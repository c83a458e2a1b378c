#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/uri/LumUri.h>
#include <lumcommon/xml/LumXmlParser.h>
#include <lumcommon/xml/detail/ExternalDtd.h>
#include <lumcommon/xml/detail/MathMLEntities.h>

#include <iterator>

namespace LumCommon {

namespace {

constexpr const char16_t* eventNames[] = {
    u"START_DOCUMENT",       u"END_DOCUMENT",           u"START_TAG", u"END_TAG", u"TEXT", u"CDSECT", u"ENTITY_REF",
    u"IGNORABLE_WHITESPACE", u"PROCESSING_INSTRUCTION", u"COMMENT",   u"DOCDECL"};

}  // namespace

bool LumXmlParser::isA(unsigned int typeId) const { return typeId == TYPE_ID || LumRCObject::isA(typeId); }

UnicodeString LumXmlParser::uriOfPath(std::string_view path) {
    return detail::copyOf(LumUri::fromLocalPath(path).toString());
}

void LumXmlParser::setLimits(const LumXmlLimits&) {}

std::vector<LumXmlDeclaredAttribute> LumXmlParser::getDeclaredAttributes(LumName, LumName) const { return {}; }

LumXmlLimits LumXmlParser::getLimits() const { return {}; }

UnicodeString LumXmlParser::getEventTypeStr(int eventType) {
    if (eventType < 0 || eventType >= static_cast<int>(std::size(eventNames))) return UnicodeString();
    return eventNames[eventType];
}

UnicodeString LumXmlParser::getMathMLEntity(const UnicodeString& name) {
    return detail::textOf(detail::findMathMLEntity(detail::viewOf(name)));
}

void LumXmlParser::setUntrusted() {
    setFeature(FEATURE_NO_EXTERNAL, true);
    setLimits(LumXmlLimits::untrusted());
}

void LumXmlParser::clearDefinitionCache() { detail::ExternalDtdCache::clear(); }

std::size_t LumXmlParser::getDefinitionCacheLimit() { return detail::ExternalDtdCache::limitBytes(); }

std::size_t LumXmlParser::setDefinitionCacheLimit(std::size_t bytes) {
    return detail::ExternalDtdCache::setLimitBytes(bytes);
}

std::size_t LumXmlParser::getDefinitionCacheSize() { return detail::ExternalDtdCache::sizeBytes(); }

}  // namespace LumCommon
