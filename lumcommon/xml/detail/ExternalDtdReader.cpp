#include <lumcommon/core/LumError.h>
#include <lumcommon/uri/LumUri.h>
#include <lumcommon/xml/detail/ExternalDtdReader.h>
#include <lumcommon/xml/detail/ReaderParts.h>

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
    if (!parts.inputs.open(std::make_unique<XmlInput>(), uri, baseUri)) {
        // A resource of another kind than a file that cannot be had contributes nothing.
        if (!resource.isFile()) return false;
        throwCommonError(LumErrorCodeIO::CannotOpen, LumCommonErrorSource::ParserSetInput, uri);
    }
    readDeclarations(parts);
    return true;
}

std::shared_ptr<const ExternalDtd> readExternalDtd(const LumUri& resource, const UnicodeString& baseUri,
                                                   bool forgivesErrors, InputMeter& meter) {
    meter.countExternalInput();
    if (!meter.expandByInput()) throw LimitExceeded{XmlError::ExpansionLimit};
    ReaderParts parts(meter);
    bool isWhole = false;
    try {
        isWhole = read(parts, resource, baseUri);
    } catch (const LimitExceeded& limit) {
        meter.note(limit.code);
        parts.errors.report(limit.code);
    } catch (const LumError&) {
        if (!forgivesErrors) throw;
    }
    auto dtd = std::make_shared<const ExternalDtd>(parts.entities.getDeclared());
    // What an error cut short is for this document alone: the next one may want to hear of the error.
    if (!isWhole) return dtd;
    return ExternalDtdCache::add(resource.toString(), std::move(dtd));
}

}  // namespace

void addExternalDtd(EntityTable& entities, const UnicodeString& systemId, const UnicodeString& baseUri,
                    bool forgivesErrors, InputMeter& meter) {
    const LumUri resource(LumUri(baseUri), systemId);
    const UnicodeString uri = resource.toString();
    if (uri.startsWith(mathMLAddress)) {
        entities.addMathML();
        return;
    }
    std::shared_ptr<const ExternalDtd> dtd = ExternalDtdCache::find(uri);
    if (!dtd) {
        dtd =
            readExternalDtd(resource, LumUri(systemId).isAbsolute() ? UnicodeString() : baseUri, forgivesErrors, meter);
    }
    entities.declare(*dtd);
}

}  // namespace LumCommon::detail
