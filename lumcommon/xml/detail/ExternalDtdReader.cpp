#include <lumcommon/core/LumError.h>
#include <lumcommon/core/detail/CaseMapping.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/core/detail/PlatformText.h>
#include <lumcommon/xml/detail/ExternalDtdReader.h>
#include <lumcommon/xml/detail/ReaderParts.h>

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace LumCommon::detail {

namespace {

constexpr char16_t mathMLAddress[] = u"http://www.w3.org/Math/DTD/mathml2/";

void readDeclarations(ReaderParts& parts) {
    parts.start();
    for (;;) {
        parts.event.text.clear();
        const TokenKind next = parts.markup.lookAhead();
        parts.event.next = TokenKind::Unknown;
        switch (next) {
            case TokenKind::Text:
                if (parts.inputs.readChar() == '%') parts.definitions.readReferenceInText();
                break;
            case TokenKind::Instruction:
                parts.markup.readInstruction();
                break;
            case TokenKind::Declaration:
                parts.definitions.readDeclaration();
                break;
            default:
                return;
        }
    }
}

/// False when the definition cannot be had.
bool read(ReaderParts& parts, const LumUri& resource, const UnicodeString& baseUri) {
    const UnicodeString uri = resource.toString();
    switch (parts.inputs.open(std::make_unique<XmlInput>(), uri, baseUri)) {
        case InputStack::Opening::Done:
            readDeclarations(parts);
            return true;
        case InputStack::Opening::Refused:
            parts.errors.raiseRefused();
        default:
            // A resource of another kind than a file that cannot be had contributes nothing.
            if (!resource.isFile()) return false;
            throwCommonError(LumErrorCodeIO::CannotOpen, LumCommonErrorSource::ParserSetInput, uri);
    }
}

std::shared_ptr<const ExternalDtd> readExternalDtd(const UnicodeString& key, const LumUri& resource,
                                                   const UnicodeString& baseUri, bool forgivesErrors,
                                                   InputMeter& meter) {
    meter.countExternalInput();
    if (!meter.expandByInput()) throw LimitExceeded{XmlError::ExpansionLimit};
    ReaderParts parts(meter);
    bool isWhole = false;
    try {
        isWhole = read(parts, resource, baseUri);
    } catch (const LimitExceeded& limit) {
        meter.note(limit.code);
        parts.errors.report(limit.code);
    } catch (const LumError& error) {
        if (!forgivesErrors || isOutOfMemory(error)) throw;
    }
    auto dtd = std::make_shared<const ExternalDtd>(parts.entities.getDeclared());
    // What an error cut short is for this document alone: the next one may want to hear of the error.
    if (!isWhole) return dtd;
    return ExternalDtdCache::add(key, std::move(dtd));
}

/// The path of a file without links and relative parts; links are resolved, as "link/.." is not where the link stands.
UnicodeString fileKey(const LumUri& resource) {
    const auto path = toPlatformPath(resource.findLocalPath());
    if (!path || path->empty()) return resource.toString();
    std::error_code error;
    std::filesystem::path place = std::filesystem::absolute(*path, error);
    if (!error) place = std::filesystem::weakly_canonical(place, error);
    return error ? resource.toString() : LumUri::fromLocalPath(place.native()).toString();
}

/// What a definition is kept under: one resource has one key however it is written, and a relative name has another in
/// another working directory.
UnicodeString cacheKey(const LumUri& resource) {
    if (resource.isFile()) return fileKey(resource);
    const std::u16string_view uri = viewOf(resource.toString());
    const std::size_t schemeEnd = uri.find(u':');
    if (!uri.substr(schemeEnd).starts_with(u"://")) return resource.toString();
    // The letters of scheme and host have no case, and port 80 goes without saying.
    const std::size_t hostEnd = std::min(uri.find(u'/', schemeEnd + 3), uri.size());
    UnicodeString key = toLowerCase(textOf(uri.substr(0, hostEnd)));
    if (key.startsWith(u"http:") && key.endsWith(u":80")) key.truncate(key.length() - 3);
    return append(key, hostEnd < uri.size() ? uri.substr(hostEnd) : std::u16string_view(u"/"));
}

}  // namespace

ExternalDtdSource::ExternalDtdSource(const UnicodeString& systemId, const UnicodeString& baseUri)
    : resource_(LumUri(baseUri), systemId), baseInside_(LumUri(systemId).isAbsolute() ? UnicodeString() : baseUri) {}

bool ExternalDtdSource::isBuiltIn() const { return uri().startsWith(mathMLAddress); }

void ExternalDtdSource::declareIn(EntityTable& entities, bool forgivesErrors, InputMeter& meter) const {
    const UnicodeString key = cacheKey(resource_);
    std::shared_ptr<const ExternalDtd> dtd = ExternalDtdCache::find(key);
    if (!dtd) dtd = readExternalDtd(key, resource_, baseInside_, forgivesErrors, meter);
    entities.declare(*dtd);
}

}  // namespace LumCommon::detail
