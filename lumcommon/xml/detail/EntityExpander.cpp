#include <lumcommon/core/LumError.h>
#include <lumcommon/uri/LumUri.h>
#include <lumcommon/xml/detail/EntityExpander.h>
#include <lumcommon/xml/detail/ErrorReporter.h>
#include <lumcommon/xml/detail/InputStack.h>
#include <lumcommon/xml/detail/OpenInput.h>
#include <lumcommon/xml/detail/ParserEvent.h>
#include <lumcommon/xml/detail/ParserPolicy.h>
#include <lumcommon/xml/detail/ReferenceReader.h>
#include <lumcommon/xml/detail/XmlDeclReader.h>

namespace LumCommon::detail {

void EntityExpander::expandGeneral(LumName name) {
    if (const auto fault = entities_.findFault(name, false)) {
        errors_.report(*fault, name.getString());
        return;
    }
    const UnicodeString value = entities_.lookup(EntityKind::General, name);
    if (value.isBogus()) return;
    if (entities_.isExternal(EntityKind::General, name)) {
        openExternal(EntityKind::General, name, value, false);
    } else {
        references_.expand(EntityKind::General, name, value);
    }
}

void EntityExpander::expandParameter(LumName name, const UnicodeString& value) {
    if (!entities_.isExternal(EntityKind::Parameter, name)) {
        references_.expand(EntityKind::Parameter, name, value);
        return;
    }
    const bool isOptional = policy_.forgivesParameterEntityErrors();
    const ErrorReporter::DropScope drops(errors_, isOptional, 0);
    const std::size_t depth = inputs_.depth();
    try {
        openExternal(EntityKind::Parameter, name, value, isOptional);
    } catch (const ErrorReporter::Dropped&) {
        inputs_.popTo(depth);
    }
}

void EntityExpander::openExternal(EntityKind kind, LumName name, const UnicodeString& systemId, bool isOptional) {
    const EntityOrigin* const origin = entities_.findOrigin(kind, name);
    const LumUri resource(LumUri(origin ? origin->baseUri : inputs_.baseUri()), systemId);
    if (static_cast<std::uint64_t>(inputs_.streamCount()) > meter_.limits().openInputs) {
        errors_.report(XmlError::NestingLimit);
        return;
    }
    // Refused before it is opened, which may take longest.
    meter_.countExternalInput();
    if (!meter_.expandByInput()) {
        errors_.report(XmlError::ExpansionLimit);
        return;
    }
    std::unique_ptr<std::istream> in = openStream(resource, isOptional);
    if (!in) return;
    auto input = std::make_unique<XmlInput>();
    input->setStream(in.release(), true);
    input->systemId = resource.getLocalPath();
    input->baseUri = resource.isAbsolute() ? resource.getBaseString() : inputs_.baseUri();
    XmlInput* const opened = policy_.forgivesEntities()
                                 ? &inputs_.pushStream(std::move(input))
                                 : inputs_.pushStream(std::move(input), name, kind == EntityKind::Parameter);
    if (!opened) {
        errors_.report(XmlError::ExpansionLimit);
        return;
    }
    event_.next = TokenKind::Unknown;
    declarations_.detectEncoding(*opened);
    declarations_.readTextDecl();
    if (!policy_.forgivesEntities()) inputs_.setBarrier(true);
    opened->unleash();
}

std::unique_ptr<std::istream> EntityExpander::openStream(const LumUri& resource, bool isOptional) const {
    bool isRefused = !policy_.opensExternals();
    std::unique_ptr<std::istream> in = isRefused ? nullptr : openInput(resource, isRefused);
    if (isRefused) {
        errors_.report(XmlError::ExternalRefused);
        return nullptr;
    }
    if (!in && !isOptional && resource.isFile()) {
        throwCommonError(LumErrorCodeIO::CannotOpen, LumCommonErrorSource::ParserPushStream, resource.toString());
    }
    return in;
}

}  // namespace LumCommon::detail
