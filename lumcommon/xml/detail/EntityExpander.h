#pragma once

#include <lumcommon/names/LumName.h>
#include <lumcommon/xml/detail/EntityTable.h>

#include <istream>
#include <memory>

namespace LumCommon {
class LumUri;
}

namespace LumCommon::detail {

class ErrorReporter;
class InputMeter;
class InputStack;
class ParserEvent;
class ParserPolicy;
class ReferenceReader;
class XmlDeclReader;

/// Makes what an entity stands for the next input: its replacement text, or the external input that it names.
class EntityExpander {
public:
    EntityExpander(ParserEvent& event, InputStack& inputs, ReferenceReader& references, XmlDeclReader& declarations,
                   const EntityTable& entities, const ParserPolicy& policy, InputMeter& meter, ErrorReporter& errors)
        : event_(event),
          inputs_(inputs),
          references_(references),
          declarations_(declarations),
          entities_(entities),
          policy_(policy),
          meter_(meter),
          errors_(errors) {}

    /// For a reference in content.
    void expandGeneral(LumName name);
    /// For a definition that the document names.
    void expandDefinition(const UnicodeString& systemId, bool isOptional) {
        openExternal(EntityKind::Parameter, LumName(), systemId, isOptional);
    }
    /// For a reference to a parameter entity whose look-up gave `value`.
    void expandParameter(LumName name, const UnicodeString& value);

private:
    /// @param isOptional  a resource that cannot be opened is empty.
    void openExternal(EntityKind kind, LumName name, const UnicodeString& systemId, bool isOptional);
    std::unique_ptr<std::istream> openStream(const LumUri& resource, bool isOptional) const;

    ParserEvent& event_;
    InputStack& inputs_;
    ReferenceReader& references_;
    XmlDeclReader& declarations_;
    const EntityTable& entities_;
    const ParserPolicy& policy_;
    InputMeter& meter_;
    ErrorReporter& errors_;
};

}  // namespace LumCommon::detail
