#pragma once

#include <lumcommon/names/LumName.h>
#include <lumcommon/xml/detail/DefinitionTokens.h>
#include <lumcommon/xml/detail/EntityTable.h>
#include <lumcommon/xml/detail/XmlParserError.h>

#include <cstdint>
#include <string_view>

namespace LumCommon::detail {

class EntityExpander;
class ErrorReporter;
class InputStack;
class LiteralReader;
class NameReader;
class ParserEvent;
class ParserPolicy;

struct ExternalId {
    UnicodeString publicId;
    UnicodeString systemId;
};

/// Reads document type declarations: the external identifier, and the definitions of entities. Other declarations are
/// read over. What is read becomes the text of the event as it stands, parameter entities expanded.
class DefinitionReader {
public:
    DefinitionReader(ParserEvent& event, InputStack& inputs, NameReader& names, LiteralReader& literals,
                     EntityExpander& expander, EntityTable& entities, const ParserPolicy& policy, ErrorReporter& errors)
        : event_(event),
          inputs_(inputs),
          names_(names),
          literals_(literals),
          expander_(expander),
          entities_(entities),
          policy_(policy),
          errors_(errors) {}

    /// Reads a document type declaration after "<!DOCTYPE". The external definition is not read.
    ExternalId readDocType();
    /// Reads a declaration outside of a document type declaration, after its "<!".
    void readDeclaration();
    /// Reads what follows a "%" outside of a declaration; it is text unless it makes a reference to an entity.
    void readReferenceInText() { readReference(false); }

private:
    void readBody();
    void readToken(int& nesting);
    void copyCharacters();
    void copyLiteral(char16_t quote);
    void copyThrough(std::u16string_view end);
    void skipIgnoredSection();
    void readReference(bool isInDeclaration);
    void readEntityDecl();
    UnicodeString readEntityValue();
    ExternalId readExternalId(const UnicodeString& start);
    void readNotation(const UnicodeString& start, const UnicodeString& systemId);
    bool readSpace();
    void requireSpace(const UnicodeString& after);
    LumName readName();
    UnicodeString readLiteral(XmlError::Code missing, const UnicodeString& after);

    ParserEvent& event_;
    InputStack& inputs_;
    NameReader& names_;
    LiteralReader& literals_;
    EntityExpander& expander_;
    EntityTable& entities_;
    const ParserPolicy& policy_;
    ErrorReporter& errors_;
    DefinitionTokenizer tokens_;
};

}  // namespace LumCommon::detail
