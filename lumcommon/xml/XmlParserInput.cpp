#include <lumcommon/core/LumError.h>
#include <lumcommon/core/LumStrings.h>
#include <lumcommon/names/LumNameTable.h>
#include <lumcommon/uri/LumUri.h>
#include <lumcommon/xml/XmlParserImpl.h>
#include <lumcommon/xml/detail/OpenInput.h>

#include <lumcommon/xml/detail/XmlChars.h>

#include <unicode/locid.h>

#include <cxxabi.h>

#include <algorithm>

// The input side of the parser: opening and closing inputs, encodings, the stack of frames.

namespace LumCommon {

using detail::XmlEncoding;
using detail::XmlInput;
namespace XmlError = detail::XmlError;

namespace {

constexpr int maxExternalInputs = 64;
constexpr std::uint64_t expansionThresholdUnits = 8u << 20;
constexpr std::uint64_t expansionFactor = 100;
constexpr std::uint32_t parameterKeyBit = 1u << 31;  // names have 24 bits

bool isIn(XmlEncoding encoding, XmlEncoding a, XmlEncoding b) { return encoding == a || encoding == b; }

/// What a built-in encoding name selects when the input is in `current`; nothing changes for names of UTF-16 and
/// UTF-32 without byte order once the order is known. False for any other name.
bool findEncoding(LumNameEnum name, XmlEncoding& current) {
    switch (name) {
        case NAME_ANSI_X3_4:
        case NAME_ANSI_X3_4_1968:
        case NAME_ANSI_X3_4_1986:
        case NAME_ASCII:
        case NAME_ISO646_US:
        case NAME_ISO_646_IRV:
        case NAME_ISO_646_IRV_1991:
        case NAME_US_ASCII:
            current = XmlEncoding::Ascii;
            return true;
        case NAME_ISO_10646_UCS_2:
        case NAME_UCS_2:
        case NAME_UNICODE:
        case NAME_UTF_16:
            if (!isIn(current, XmlEncoding::Utf16LE, XmlEncoding::Utf16BE)) current = XmlEncoding::Utf16Generic;
            return true;
        case NAME_ISO_10646_UCS_4:
        case NAME_UCS_4:
        case NAME_UTF_32:
            if (!isIn(current, XmlEncoding::Utf32LE, XmlEncoding::Utf32BE)) current = XmlEncoding::Utf32Generic;
            return true;
        case NAME_ISO_8859_1:
        case NAME_ISO_8859_1_2:
        case NAME_ISO_8859_1_1987:
        case NAME_LATIN1:
            current = XmlEncoding::Latin1;
            return true;
        case NAME_UTF_16BE:
            current = XmlEncoding::Utf16BE;
            return true;
        case NAME_UTF_16LE:
            current = XmlEncoding::Utf16LE;
            return true;
        case NAME_UTF_32BE:
            current = XmlEncoding::Utf32BE;
            return true;
        case NAME_UTF_32LE:
            current = XmlEncoding::Utf32LE;
            return true;
        case NAME_UTF_8:
            current = XmlEncoding::Utf8;
            return true;
        default:
            return false;
    }
}

}  // namespace

void XmlParserImpl::setInput(std::istream& in, const UnicodeString& encoding, const UnicodeString& baseUri) {
    startInput(prepareInput(encoding), &in, false, UnicodeString(), baseUri);
}

void XmlParserImpl::setInput(const UnicodeString& uri, const UnicodeString& encoding, const UnicodeString& baseUri) {
    std::unique_ptr<XmlInput> input = prepareInput(encoding);
    const LumUri resource(uri);
    std::unique_ptr<std::istream> in = detail::openInput(resource);
    if (!in) throwCommonError(LumErrorCodeIO::CannotOpen, LumCommonErrorSource::ParserSetInput, uri);
    const bool isBaseFromUri = baseUri.isEmpty() && resource.isAbsolute() && !resource.isDataScheme();
    const UnicodeString base = isBaseFromUri ? resource.getBaseString() : baseUri;
    startInput(std::move(input), in.release(), true, uri, base);
}

std::unique_ptr<XmlInput> XmlParserImpl::prepareInput(const UnicodeString& encoding) {
    auto input = std::make_unique<XmlInput>();
    closeStream();
    reset();
    setEncoding(*input, encoding);
    return input;
}

void XmlParserImpl::startInput(std::unique_ptr<XmlInput> input, std::istream* in, bool ownsStream,
                               const UnicodeString& systemId, const UnicodeString& baseUri) {
    input->setStream(in, ownsStream);
    systemId_ = systemId;
    baseUri_ = baseUri;
    input->systemId = systemId;
    input->baseUri = baseUri;
    checkStream(*in);
    pushFrame(Frame::Stream).input = std::move(input);
}

void XmlParserImpl::checkStream(std::istream& in) const {
    try {
        if (in.good()) in.peek();
    } catch (const abi::__forced_unwind&) {
        throw;  // the thread is being cancelled
    } catch (...) {
        // A stream that is set to throw tells by its state too what is wrong.
    }
    if (in.fail() && !in.eof()) {
        throwCommonError(LumErrorCodeIO::InputFailed, LumCommonErrorSource::ParserCheckStream);
    }
    if (in.eof()) throwCommonError(LumErrorCodeIO::UnexpectedEnd, LumCommonErrorSource::ParserCheckStream);
}

void XmlParserImpl::reset() {
    eventType_ = START_DOCUMENT;
    tokenState_ = TOKEN_UNKNOWN;
    encodingName_.remove();
    systemId_.remove();
    baseUri_.remove();
    line_ = column_ = -1;
    isStarted_ = false;
    text_.clear();
    textStart_ = 0;
    isTextCached_ = false;
    entityName_ = LumName();
    xmlDeclSeen_ = docTypeSeen_ = rootSeen_ = false;
    rootName_ = rootNamespace_ = LumName();
    openEntities_.clear();
    expandedUnits_ = allowedUnits_ = closedBytes_ = 0;
    loadPredefinedEntities();
    hasMathMLEntities_ = false;
    parameterEntities_.clear();
    generalExternals_.clear();
    parameterExternals_.clear();
    for (const auto& [name, text] : earlyDefinitions_) generalEntities_[name] = text;
    earlyDefinitions_.clear();
    attributes_.clear();
    viewCount_ = 0;
    openNames_.clear();
    while (namespaces_->popScope()) {
    }
    if (namespaces_->hasNamespace(NAME_xlink)) {  // by a document type declaration, outside of all elements
        namespaces_->removeNamespace(LumName(), LumName(UnicodeString(detail::svgNamespace)));
        namespaces_->removeNamespace(NAME_xlink, LumName(UnicodeString(detail::xlinkNamespace)));
    }
}

void XmlParserImpl::loadPredefinedEntities() {
    if (generalEntities_.size() == 5) return;
    generalEntities_.clear();
    isPredefinedIntact_ = earlyDefinitions_.empty();
    generalEntities_[NAME_lt] = u"&#60;";
    generalEntities_[NAME_gt] = u">";
    generalEntities_[NAME_amp] = u"&#38;";
    generalEntities_[NAME_apos] = u"'";
    generalEntities_[NAME_quot] = u"\"";
}

void XmlParserImpl::closeStream() {
    // What stays is the place in the document, like the rest of the state; entities that are open are left.
    while (frameCount_ > 1) popFrame();
    rememberPosition();
    closeFrames();
}

void XmlParserImpl::closeFrames() {
    while (frameCount_ > 0) popFrame();
}

void XmlParserImpl::rememberPosition() const {
    if (!isStarted_ || frameCount_ == 0) return;
    const detail::TextPosition position = positionOf(frameCount_ - 1);
    line_ = position.line;
    column_ = position.column;
}

detail::TextPosition XmlParserImpl::positionOf(std::size_t frameIndex) const {
    frameIndex = frames_[frameIndex]->source;
    const Frame& frame = *frames_[frameIndex];
    const detail::XmlCursor& cursor = frameIndex + 1 == frameCount_ ? cursor_ : frame.cursor;
    if (frame.kind == Frame::Stream) return frame.input->getPosition(cursor);
    // A literal is read a second time: counting goes on from behind it.
    detail::TextPosition position = positionOf(frameIndex - 1);
    position.advance(frame.start, cursor.high);
    return position;
}

XmlInput* XmlParserImpl::currentInput() const noexcept {
    for (std::size_t i = frameCount_; i > 0;) {
        i = frames_[i - 1]->source;
        if (frames_[i]->input) return frames_[i]->input.get();
    }
    return nullptr;
}

XmlParserImpl::Frame& XmlParserImpl::pushFrame(Frame::Kind kind) {
    if (frameCount_ > 0) frames_[frameCount_ - 1]->cursor = cursor_;
    if (frameCount_ == frames_.size()) frames_.push_back(std::make_unique<Frame>());
    Frame& frame = *frames_[frameCount_];
    frame.kind = kind;
    frame.source = kind == Frame::Replacement && frameCount_ > 0 ? frames_[frameCount_ - 1]->source : frameCount_;
    ++frameCount_;
    frame.isBarrier = false;
    cursor_ = {};
    if (kind == Frame::Stream) ++streamCount_;
    return frame;
}

void XmlParserImpl::popFrame() {
    Frame& frame = *frames_[--frameCount_];
    if (frame.kind == Frame::Stream) {
        --streamCount_;
        closedBytes_ += frame.input->getBytesRead();
        encodingName_ = frame.input->encodingName;
        frame.input.reset();
    } else if (frame.kind == Frame::Replacement) {
        for (const std::uint32_t key : frame.entityKeys) openEntities_.erase(key);
        frame.entityKeys.clear();
        frame.text.remove();
    }
    cursor_ = frameCount_ > 0 ? frames_[frameCount_ - 1]->cursor : detail::XmlCursor();
}

bool XmlParserImpl::pull() {
    while (frameCount_ > 0) {
        if (cursor_.cur != cursor_.end) return true;
        Frame& frame = *frames_[frameCount_ - 1];
        const bool isStream = frame.kind == Frame::Stream;
        if (isStream && frame.input->refill(cursor_)) return true;
        if (frame.isBarrier || (isStream && streamCount_ == 1)) return false;
        popFrame();
    }
    return false;
}

std::int32_t XmlParserImpl::readCharSlow() {
    if (cursor_.cur == cursor_.end && !pull()) return -1;
    std::int32_t c = *cursor_.cur++;
    if (U16_IS_LEAD(c) && cursor_.cur != cursor_.end && U16_IS_TRAIL(*cursor_.cur)) {
        c = U16_GET_SUPPLEMENTARY(c, *cursor_.cur);
        ++cursor_.cur;
    }
    cursor_.touch(cursor_.cur);
    return c;
}

bool XmlParserImpl::isWithinExpansionLimit(std::uint64_t moreUnits) {
    expandedUnits_ += moreUnits;
    if (expandedUnits_ <= std::max(expansionThresholdUnits, allowedUnits_)) return true;
    // Counted only when what was allowed is used up: there may be many frames, and nothing is read under them.
    std::uint64_t bytesRead = closedBytes_;
    for (std::size_t i = 0; i < frameCount_; ++i) {
        if (frames_[i]->input) bytesRead += frames_[i]->input->getBytesRead();
    }
    allowedUnits_ = expansionFactor * bytesRead;
    return expandedUnits_ <= allowedUnits_;
}

void XmlParserImpl::pushReplacement(LumName entity, const UnicodeString& text, bool isParameter) {
    const auto units = static_cast<std::uint64_t>(text.length());
    // An entity inside its own replacement text would go on for ever; there is no need to wait for the limit.
    const std::uint32_t key = entity.getEnum() | (isParameter ? parameterKeyBit : 0);
    if (openEntities_.contains(key) || !isWithinExpansionLimit(units)) {
        throwError(XmlError::ExpansionLimit);
        return;
    }
    // Frames that are used up go first: an entity that ends with a reference then adds no frame for each reference.
    // The new text still lies inside the texts of their entities, which stay open as long as it does.
    std::vector<std::uint32_t> keys;
    while (frameCount_ > 0 && cursor_.cur == cursor_.end && frames_[frameCount_ - 1]->kind == Frame::Replacement) {
        std::vector<std::uint32_t>& popped = frames_[frameCount_ - 1]->entityKeys;
        if (keys.size() < popped.size()) keys.swap(popped);
        keys.insert(keys.end(), popped.begin(), popped.end());
        popped.clear();
        popFrame();
    }
    keys.push_back(key);
    Frame& frame = pushFrame(Frame::Replacement);
    frame.text = text;
    frame.entityKeys = std::move(keys);
    openEntities_.insert(key);
    const char16_t* const start = frame.text.getBuffer();
    cursor_ = {start, start + units, start};
}

void XmlParserImpl::detectEncoding(XmlInput& input) {
    if (!input.detectEncoding(cursor_)) throwError(XmlError::InvalidChar);
}

void XmlParserImpl::setEncoding(XmlInput& input, const UnicodeString& name) {
    const UnicodeString knownName = input.encodingName;
    input.encodingName = name;
    if (name.isEmpty() || input.isConverted()) return;
    UnicodeString key(name);
    key.trim().toUpper(icu::Locale::getRoot());
    XmlEncoding encoding = input.getEncoding();
    if (findEncoding(LumNameTable::getBuiltinNameEnum(key), encoding)) {
        input.setEncoding(encoding);
        return;
    }
    const bool isBuiltinOnly = features_[FEATURE_BUILTIN_ENCODINGS_ONLY];
    // Bytes that have shown a form of Unicode, by a mark or by their order, are in no other charset; converting from
    // one would only spoil them.
    const bool isFormKnown = input.hasBom || (encoding >= XmlEncoding::Utf16LE && encoding <= XmlEncoding::Utf32BE &&
                                              encoding != XmlEncoding::Utf32Generic);
    if (!isBuiltinOnly && isFormKnown && XmlInput::isCharset(key)) {
        input.encodingName = knownName;
        return;
    }
    if (!isBuiltinOnly && input.convertFrom(key)) return;
    if (isBuiltinOnly || !features_[FEATURE_IGNORE_UNSUPPORTED_ENCODING]) throwError(XmlError::Encoding, name);
}

void XmlParserImpl::pushStream(const UnicodeString& systemId) {
    const LumUri resource(LumUri(getBaseUri()), systemId);
    if (streamCount_ > maxExternalInputs) {
        throwError(XmlError::NestingLimit);
        return;
    }
    std::unique_ptr<std::istream> in = opensExternalInputs_ ? detail::openInput(resource) : nullptr;
    if (!in) {
        if (resource.isFile()) {
            throwCommonError(LumErrorCodeIO::CannotOpen, LumCommonErrorSource::ParserPushStream, resource.toString());
        }
        return;
    }
    auto input = std::make_unique<XmlInput>();
    input->setStream(in.release(), true);
    input->systemId = resource.getLocalPath();
    input->baseUri = resource.isAbsolute() ? resource.getBaseString() : getBaseUri();
    XmlInput& opened = *input;
    pushFrame(Frame::Stream).input = std::move(input);
    tokenState_ = TOKEN_UNKNOWN;
    detectEncoding(opened);
    readTextDeclaration();
    opened.unleash();
}

void XmlParserImpl::readTextDeclaration() {
    // Whether it is one shows at the sixth character; all that was read goes back when it is none. Reading must not
    // leave this input, so that its end does not bring the outer one.
    Frame& frame = *frames_[frameCount_ - 1];
    frame.isBarrier = true;
    std::int32_t read[6];
    int count = 0;
    bool isDeclaration = false;
    while (count < 6) {
        const std::int32_t c = readChar();
        if (c < 0) break;
        read[count++] = c;
        if (detail::isXmlSpace(c)) {
            static constexpr std::int32_t start[] = {'<', '?', 'x', 'm', 'l'};
            isDeclaration = count == 6 && std::equal(start, start + 5, read);
            break;
        }
    }
    if (isDeclaration) {
        applyTextEncoding();
    } else {
        while (count > 0) unreadChar(read[--count]);
    }
    frame.isBarrier = false;
}

void XmlParserImpl::applyTextEncoding() {
    XmlInput& input = *currentInput();
    skipWhitespace();
    LumName name = readNCName();
    if (name == NAME_version) {
        expectXmlDeclEquals(u"<?xml version");
        readLiteral(LITERAL_PLAIN);
        skipWhitespace();
        name = readNCName();
    }
    if (name == NAME_encoding) {
        expectXmlDeclEquals(u"encoding");
        const UnicodeString declared = readLiteral(LITERAL_PLAIN);
        const XmlEncoding detectedEncoding = input.getEncoding();
        const UnicodeString detectedName = input.encodingName;
        setEncoding(input, declared);
        const bool isOrderKnown = isIn(detectedEncoding, XmlEncoding::Utf16LE, XmlEncoding::Utf16BE) ||
                                  isIn(detectedEncoding, XmlEncoding::Utf32LE, XmlEncoding::Utf32BE);
        if (!input.isConverted() && isOrderKnown && input.getEncoding() != detectedEncoding) {
            input.setEncoding(detectedEncoding);
            input.encodingName = detectedName;
        }
    }
    skipWhitespace();
    expectDeclEnd();
}

}  // namespace LumCommon
