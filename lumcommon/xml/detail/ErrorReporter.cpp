#include <lumcommon/core/LumError.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/core/detail/DecimalText.h>
#include <lumcommon/xml/detail/ErrorReporter.h>
#include <lumcommon/xml/detail/ParserEvent.h>

#include <utility>

namespace LumCommon::detail {

namespace {

constexpr char16_t errorSource[] = u"LumCommon::XmlParserImpl";

}  // namespace

void ErrorReporter::report(XmlError::Code code, const UnicodeString& a, const UnicodeString& b) {
    UnicodeString message = makeXmlErrorMessage(code, a, b);
    if (listener_) {
        tellListener(LumError(heardCode(code), message, errorSource, -1, -1, UnicodeString()));
        return;
    }
    if (isDropped()) throw Dropped();
    raise(code, std::move(message));
}

void ErrorReporter::raise(XmlError::Code code, UnicodeString message) const {
    append(append(message, u'\n'), describePosition());
    throw LumError(code, message, errorSource, -1, -1, UnicodeString());
}

void ErrorReporter::raiseRefused() const {
    raise(XmlError::ExternalRefused, makeXmlErrorMessage(XmlError::ExternalRefused, UnicodeString(), UnicodeString()));
}

void ErrorReporter::inputFailed() {
    if (isDropped()) throw Dropped();
    try {
        throwCommonError(LumErrorCodeIO::InputFailed, LumCommonErrorSource::ParserCheckStream);
    } catch (LumError& error) {
        append(append(error.message, u'\n'), describePosition());
        throw;
    }
}

bool ErrorReporter::isDropped() const noexcept { return inputs_.streamCount() > droppedAbove_; }

bool isOutOfMemory(const LumError& error) noexcept {
    return error.code == static_cast<std::uint16_t>(LumErrorCodeLumLIB::OutOfMemory);
}

void ErrorReporter::tellListener(const LumError& error) {
    struct Restore {
        TokenKind& slot;
        TokenKind kind;
        ~Restore() { slot = kind; }
    } const restore{event_.next, event_.next};
    event_.next = TokenKind::InCallback;
    try {
        listener_(error, data_);
    } catch (const LumError& thrown) {
        if (isDropped() && !isOutOfMemory(thrown)) throw Dropped();
        throw;
    }
}

UnicodeString ErrorReporter::describePosition() const {
    UnicodeString description = LumXmlParser::getEventTypeStr(event_.type);
    const UnicodeString& systemId = inputs_.systemId();
    const UnicodeString& place = systemId.isEmpty() ? inputs_.baseUri() : systemId;
    if (!place.isEmpty()) append(append(append(description, u", '"), place), u'\'');
    const TextPosition position = inputs_.position();
    if (position.line != -1) {
        append(description, u", Line ");
        appendDecimal(description, position.line);
    }
    if (position.column != -1) {
        append(description, u", Col ");
        appendDecimal(description, position.column);
    }
    append(description, u'.');
    return description;
}

}  // namespace LumCommon::detail
