#pragma once

#include <lumcommon/names/LumName.h>
#include <lumcommon/names/detail/UnitHash.h>
#include <lumcommon/xml/detail/ExternalDtd.h>

#include <unordered_map>

namespace LumCommon::detail {

class ParserPolicy;

enum class EntityKind : int { General = 0, Parameter = 1 };

/// The entities that a document may refer to: the predefined ones, those that were declared, those that the user has
/// defined, and those of MathML where they were asked for.
class EntityTable {
public:
    explicit EntityTable(const ParserPolicy& policy) : policy_(policy) {}

    /// Forgets the document before, and takes over what was defined for the next.
    void reset();
    /// Defines a general entity, in place of an earlier definition: for the document being read, or for the next.
    void define(LumName name, const UnicodeString& text, bool isForNext);
    /// Declares an entity, internal with its replacement text or external with its system identifier. The first
    /// declaration of a name holds.
    void declareInternal(EntityKind kind, LumName name, const UnicodeString& text);
    void declareExternal(EntityKind kind, LumName name, const UnicodeString& systemId);
    void declare(const ExternalDtd& dtd);
    ExternalDtd getDeclared() const;
    /// Adds the entities of MathML after all others.
    void addMathML() noexcept { hasMathML_ = true; }

    /// Replacement text or system identifier. Bogus for an undefined entity; empty where those are forgiven.
    UnicodeString lookup(EntityKind kind, LumName name) const;
    /// Whether the entity has nothing but an external declaration.
    bool isExternal(EntityKind kind, LumName name) const;
    /// Whether the predefined entities mean what XML says.
    bool isPredefinedIntact() const noexcept { return isPredefinedIntact_; }

private:
    using Map = std::unordered_map<LumName, UnicodeString, KeyedHash>;
    struct Declarations {
        Map internal;  // to the replacement text
        Map external;  // to the system identifier
    };

    void loadPredefined();
    Declarations& of(EntityKind kind) noexcept { return kind == EntityKind::Parameter ? parameter_ : general_; }
    const Declarations& of(EntityKind kind) const noexcept {
        return kind == EntityKind::Parameter ? parameter_ : general_;
    }
    bool isDefined(EntityKind kind, LumName name) const;

    const ParserPolicy& policy_;
    Declarations general_;
    Declarations parameter_;
    Map forNext_;
    bool isPredefinedIntact_ = false;
    bool hasMathML_ = false;
};

}  // namespace LumCommon::detail
