#pragma once

#include <lumcommon/names/LumName.h>
#include <lumcommon/names/detail/UnitHash.h>
#include <lumcommon/xml/detail/ExternalDtd.h>
#include <lumcommon/xml/detail/XmlParserError.h>

#include <optional>
#include <unordered_map>

namespace LumCommon::detail {

class ParserPolicy;

enum class EntityKind : int { General = 0, Parameter = 1 };

/// What decides about references to an entity in a document that is read as the standard says.
struct EntityOrigin {
    UnicodeString baseUri;    // what its system identifier is resolved against
    bool isOutside = false;   // declared in the external definition or in a parameter entity
    bool isUnparsed = false;  // has a notation
};

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
    /// With an entity that is not defined yet.
    void setOrigin(EntityKind kind, LumName name, EntityOrigin origin);
    /// Null when it has none.
    const EntityOrigin* findOrigin(EntityKind kind, LumName name) const;
    void declare(const ExternalDtd& dtd);
    ExternalDtd getDeclared() const;
    /// Not all declarations of the document may be in it: a reference to what is not may be right.
    void setIncomplete() noexcept { isComplete_ = false; }
    /// While references are read that lie in the external definition or in a parameter entity: those of a standalone
    /// document need no declaration.
    class OutsideScope {
    public:
        OutsideScope(EntityTable& entities, bool isOutside) noexcept : slot_(entities.isOutside_) { slot_ = isOutside; }
        ~OutsideScope() { slot_ = false; }
        OutsideScope(const OutsideScope&) = delete;
        OutsideScope& operator=(const OutsideScope&) = delete;

    private:
        bool& slot_;
    };
    void setStandalone(bool isStandalone) noexcept { isStandalone_ = isStandalone; }
    bool isStandalone() const noexcept { return isStandalone_; }
    /// Adds the entities of MathML after all others.
    void addMathML() noexcept { hasMathML_ = true; }

    /// Replacement text or system identifier. Bogus for an undefined entity; empty where those are forgiven.
    UnicodeString lookup(EntityKind kind, LumName name) const;
    /// What is wrong with a reference to a general entity; nothing else stops it from being replaced, but lookup() may
    /// have no value for it, and it is replaced by nothing then.
    std::optional<XmlError::Code> findFault(LumName name, bool isInValue) const;
    bool isDefined(EntityKind kind, LumName name) const;
    /// Whether the entity has nothing but an external declaration.
    bool isExternal(EntityKind kind, LumName name) const;
    /// Whether the predefined entities mean what XML says.
    bool isPredefinedIntact() const noexcept { return isPredefinedIntact_; }

private:
    using Map = std::unordered_map<LumName, UnicodeString, KeyedHash>;
    struct Declarations {
        Map internal;  // to the replacement text
        Map external;  // to the system identifier
        std::unordered_map<LumName, EntityOrigin, KeyedHash> origins;
    };

    void loadPredefined();
    Declarations& of(EntityKind kind) noexcept { return kind == EntityKind::Parameter ? parameter_ : general_; }
    const Declarations& of(EntityKind kind) const noexcept {
        return kind == EntityKind::Parameter ? parameter_ : general_;
    }

    const ParserPolicy& policy_;
    Declarations general_;
    Declarations parameter_;
    Map forNext_;
    bool isPredefinedIntact_ = false;
    bool hasMathML_ = false;
    bool isComplete_ = true;
    bool isStandalone_ = false;
    bool isOutside_ = false;
};

}  // namespace LumCommon::detail
