#pragma once

#include <lumcommon/xml/detail/UnitBuffer.h>
#include <lumcommon/xml/detail/XmlParserError.h>

#include <cstddef>
#include <cstdint>

namespace LumCommon::detail {

class EntityTable;
class ErrorReporter;
class InputStack;
class ReferenceReader;

/// What is done with the text between the quotes. White space becomes blanks in every literal.
enum class LiteralType : int {
    Plain = 0,      ///< XML declaration, system and public identifiers
    Attribute = 1,  ///< references are expanded
    Entity = 2,     ///< character references are expanded
    Offending = 4,  ///< for messages: quotes may be missing, and are part of the result
};

/// Reads text in quotes.
class LiteralReader {
public:
    LiteralReader(InputStack& inputs, ReferenceReader& references, const EntityTable& entities, ErrorReporter& errors)
        : inputs_(inputs), references_(references), entities_(entities), errors_(errors) {}

    /// Of a literal as it is written. What is made of it is shorter, but for attribute values, which have another
    /// buffer.
    void setLimit(std::uint64_t units) noexcept { raw_.setLimit(units); }
    UnicodeString read(LiteralType type);
    /// The same, appended to `out`.
    void read(LiteralType type, UnitBuffer& out);
    /// Reads the text as it stands up to `delimiter`, which is passed over. False at the end of input.
    bool readRaw(char16_t delimiter);
    /// What readRaw() has read last.
    const UnitBuffer& raw() const noexcept { return raw_; }
    /// That as the replacement text of an entity.
    UnicodeString makeEntityText();

private:
    void process(LiteralType type, UnitBuffer& out);
    void expand(LiteralType type, std::size_t from, UnitBuffer& out);
    void expandReference(LiteralType type, UnitBuffer& out);

    InputStack& inputs_;
    ReferenceReader& references_;
    const EntityTable& entities_;
    ErrorReporter& errors_;
    UnitBuffer raw_{XmlError::ValueLimit};
    UnitBuffer result_{XmlError::ValueLimit};
};

}  // namespace LumCommon::detail
