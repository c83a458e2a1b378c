#include <lumcommon/xml/detail/DocTypeReader.h>
#include <lumcommon/xml/detail/DocumentType.h>
#include <lumcommon/xml/detail/ErrorReporter.h>
#include <lumcommon/xml/detail/ExternalDtdReader.h>
#include <lumcommon/xml/detail/InputStack.h>
#include <lumcommon/xml/detail/ParserPolicy.h>
#include <lumcommon/xml/detail/XmlDeclReader.h>

namespace LumCommon::detail {

ExternalId DocumentType::readDeclaration(bool isRootSeen) {
    if (isRootSeen) errors_.report(XmlError::DocTypePlace);
    if (isSeen_) errors_.report(XmlError::SecondDocType);
    if (policy_.forgivesDeclarations()) return definitions_.readDocType();
    entities_.setStandalone(declarations_.isStandalone());
    return docTypes_.readDocType();
}

void DocumentType::readDefinition(const UnicodeString& systemId) {
    if (!systemId.isEmpty() && policy_.readsExternalDtd()) addDefinition(systemId);
    isSeen_ = true;
}

void DocumentType::addDefinition(const UnicodeString& systemId) {
    const ExternalDtdSource source(systemId, inputs_.baseUri());
    if (source.isBuiltIn()) {
        entities_.addMathML();
    } else if (!policy_.forgivesDeclarations()) {
        docTypes_.readExternalSubset(systemId);
    } else if (policy_.opensExternals()) {
        source.declareIn(entities_, policy_.forgivesExternalDtdErrors(), meter_);
    } else if (!policy_.forgivesExternalDtdErrors()) {
        errors_.report(XmlError::ExternalRefused);
    }
}

}  // namespace LumCommon::detail
