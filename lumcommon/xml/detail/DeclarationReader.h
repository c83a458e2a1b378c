#pragma once

#include <lumcommon/xml/LumXmlDeclaredAttribute.h>
#include <lumcommon/xml/detail/DefinitionReader.h>
#include <lumcommon/xml/detail/NameReader.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace LumCommon::detail {

class DeclaredAttributes;
class ReferenceReader;

/// Reads single declarations of a document type by the whole grammar of XML 1.0, and what they are made of, and keeps
/// what is declared of entities and attributes. In a declaration the text of a parameter entity counts as if it had
/// white space around it. What is wrong leaves the declaration when a listener accepts it.
class DeclarationReader {
public:
    DeclarationReader(ParserEvent& event, InputStack& inputs, NameReader& names, LiteralReader& literals,
                      ReferenceReader& references, EntityExpander& expander, EntityTable& entities,
                      DeclaredAttributes& attributes, ErrorReporter& errors)
        : event_(event),
          inputs_(inputs),
          names_(names),
          literals_(literals),
          references_(references),
          expander_(expander),
          entities_(entities),
          attributes_(attributes),
          errors_(errors) {}

    /// Thrown to leave a declaration: after an error that a listener has accepted, or because a parameter entity in it
    /// could not be read.
    struct Abandoned {
        bool isUnread = false;
    };
    [[noreturn]] void fail(XmlError::Code code, const UnicodeString& a = UnicodeString());
    /// With the next character.
    [[noreturn]] void failAtChar(XmlError::Code code = XmlError::UnexpectedChar);
    /// Passes over the rest of the declaration.
    /// @param heedsQuotes  there is nothing wrong with it so far: ">" in a literal does not end it, and it must end.
    void skip(bool heedsQuotes);

    /// The topmost input is where declarations begin from now on.
    /// @param isRecorded  what is read becomes the text of the event.
    void startSubset(bool isRecorded);
    /// A document type declaration begins, and nothing is left out so far.
    void startDocType() noexcept { isCutShort_ = isUnread_ = false; }
    /// There is an external definition.
    void expectDefinition() noexcept;
    /// A declaration begins here.
    void start();

    // After the keyword and white space, up to ">"
    void readElement();
    void readAttributeList();
    void readEntity();
    void readNotation();

    /// @param after             how messages name what stands before it.
    /// @param isSystemOptional  whether a public identifier is enough.
    ExternalId readExternalId(const UnicodeString& after, bool isSystemOptional);
    /// Reads a reference to a parameter entity after its "%", and makes the entity the next input.
    void readReference(bool isInDeclaration);
    QName readQName(XmlError::Code missing);
    /// Letters; none where there is something else.
    UnicodeString readKeyword();
    /// Passes over white space and the ends of parameter entities, and enters those that are referred to. Whether there
    /// was any.
    bool skipSpace();
    void requireSpace(const UnicodeString& after);
    /// Passes over the next character if it is this one.
    bool takes(char16_t unit);
    std::int32_t take();
    std::int32_t peek();
    /// Whether what is read lies outside of the document itself.
    bool isOutside() const;
    /// The same, or in a parameter entity.
    bool isInEntity() const;
    /// Makes it part of the event's text if that is recorded.
    void record(std::u16string_view text);
    bool isRecording() const noexcept { return isRecording_; }

private:
    void readContentModel();
    void readMixedContent();
    void readOccurrence();
    void readAttribute(const QName& element);
    void readAttributeType(LumXmlDeclaredAttribute& attribute);
    void readChoices(LumXmlDeclaredAttribute& attribute, bool areNames);
    void readAttributeDefault(LumXmlDeclaredAttribute& attribute);
    void readDefaultValue(LumXmlDeclaredAttribute& attribute);
    void finish();
    UnicodeString readQuoted(XmlError::Code missing, const UnicodeString& after);
    UnicodeString readEntityValue();
    UnicodeString expandEntityValue(const UnitBuffer& raw);
    void checkPredefined(LumName name, const UnicodeString& text);
    LumName readName(XmlError::Code missing, const UnicodeString& after = UnicodeString());
    UnicodeString readToken();
    bool declares() const;

    ParserEvent& event_;
    InputStack& inputs_;
    NameReader& names_;
    LiteralReader& literals_;
    ReferenceReader& references_;
    EntityExpander& expander_;
    EntityTable& entities_;
    DeclaredAttributes& attributes_;
    ErrorReporter& errors_;

    bool isRecording_ = false;
    bool isUnread_ = false;             // a parameter entity is declared, but could not be read
    bool isCutShort_ = false;           // a parameter entity could not be read: declarations after it do not count
    std::size_t subsetDepth_ = 0;       // of the inputs
    std::size_t declarationDepth_ = 0;  // where the declaration began
};

}  // namespace LumCommon::detail
