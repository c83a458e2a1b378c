#pragma once

#include <lumcommon/xml/detail/DefinitionReader.h>

namespace LumCommon::detail {

class DocTypeReader;
class InputMeter;
class XmlDeclReader;

/// The document type of a document: its declaration, and the definition that it names, read as the policy says.
class DocumentType {
public:
    DocumentType(const InputStack& inputs, const XmlDeclReader& declarations, DefinitionReader& definitions,
                 DocTypeReader& docTypes, EntityTable& entities, InputMeter& meter, const ParserPolicy& policy,
                 ErrorReporter& errors)
        : inputs_(inputs),
          declarations_(declarations),
          definitions_(definitions),
          docTypes_(docTypes),
          entities_(entities),
          meter_(meter),
          policy_(policy),
          errors_(errors) {}

    void reset() noexcept { isSeen_ = false; }
    /// Reads the declaration after "<!DOCTYPE".
    ExternalId readDeclaration(bool isRootSeen);
    /// Then the definition, if one is named.
    void readDefinition(const UnicodeString& systemId);

private:
    void addDefinition(const UnicodeString& systemId);

    const InputStack& inputs_;
    const XmlDeclReader& declarations_;
    DefinitionReader& definitions_;
    DocTypeReader& docTypes_;
    EntityTable& entities_;
    InputMeter& meter_;
    const ParserPolicy& policy_;
    ErrorReporter& errors_;
    bool isSeen_ = false;
};

}  // namespace LumCommon::detail
