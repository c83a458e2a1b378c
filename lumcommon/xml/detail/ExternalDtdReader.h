#pragma once

#include <lumcommon/core/Text.h>

namespace LumCommon::detail {

class EntityTable;
class InputMeter;

/// Declares the entities of an external document type definition: those of MathML by its address, others from the cache
/// of the process, which reads each definition once. They are read by a second set of parts, so that errors are thrown
/// with the position in the definition.
/// @param baseUri         what `systemId` is resolved against, and references in the definition unless it is absolute.
/// @param forgivesErrors  an error ends the definition, and what came before it is declared.
/// @param meter           counts what is read for the document; its limits hold for the definition, errors forgiven or
///                        not.
/// The caller holds the shared names, by a NamespaceManager say.
void addExternalDtd(EntityTable& entities, const UnicodeString& systemId, const UnicodeString& baseUri,
                    bool forgivesErrors, InputMeter& meter);

}  // namespace LumCommon::detail
