#pragma once

#include <lumcommon/uri/LumUri.h>

namespace LumCommon::detail {

class EntityTable;
class InputMeter;

/// An external document type definition that a document names.
class ExternalDtdSource {
public:
    /// @param baseUri  what `systemId` is resolved against, and references in the definition unless it is absolute.
    ExternalDtdSource(const UnicodeString& systemId, const UnicodeString& baseUri);

    const UnicodeString& uri() const noexcept { return resource_.toString(); }
    /// Whether its address is that of MathML, which nobody has to open.
    bool isBuiltIn() const;
    /// Declares its entities, from the cache of the process, which reads each definition once. They are read by a
    /// second set of parts, so that errors are thrown with the position in the definition.
    /// @param forgivesErrors  an error ends the definition, and what came before it is declared.
    /// @param meter           counts what is read for the document; its limits hold for the definition, errors forgiven
    ///                        or not.
    /// The caller holds the shared names, by a NamespaceManager say.
    void declareIn(EntityTable& entities, bool forgivesErrors, InputMeter& meter) const;

private:
    LumUri resource_;
    UnicodeString baseInside_;
};

}  // namespace LumCommon::detail
