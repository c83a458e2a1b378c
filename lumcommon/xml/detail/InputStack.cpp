#include <lumcommon/core/LumError.h>
#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/uri/LumUri.h>
#include <lumcommon/xml/detail/InputStack.h>
#include <lumcommon/xml/detail/OpenInput.h>
#include <lumcommon/xml/detail/XmlChars.h>

#include <algorithm>

namespace LumCommon::detail {

namespace {

constexpr std::uint32_t parameterKeyBit = 1u << 31;  // names have 24 bits

}  // namespace

void InputStack::reset() {
    isStarted_ = false;
    openEntities_.clear();
    position_ = {-1, -1};
    encodingName_.remove();
    systemId_.remove();
    baseUri_.remove();
}

void InputStack::open(std::unique_ptr<XmlInput> input, std::istream& in, const UnicodeString& baseUri) {
    input->setStream(&in, false);
    openDocument(std::move(input), in, UnicodeString(), baseUri);
}

InputStack::Opening InputStack::open(std::unique_ptr<XmlInput> input, const UnicodeString& uri,
                                     const UnicodeString& baseUri) {
    const LumUri resource(uri);
    bool isRefused = false;
    std::unique_ptr<std::istream> in = openInput(resource, isRefused);
    if (!in) return isRefused ? Opening::Refused : Opening::Impossible;
    std::istream& stream = *in;
    input->setStream(in.release(), true);
    const bool isBaseFromUri = baseUri.isEmpty() && resource.isAbsolute() && !resource.isDataScheme();
    openDocument(std::move(input), stream, uri, isBaseFromUri ? resource.getBaseString() : copyOf(baseUri));
    return Opening::Done;
}

void InputStack::openDocument(std::unique_ptr<XmlInput> input, std::istream& in, const UnicodeString& systemId,
                              const UnicodeString& baseUri) {
    assign(systemId_, systemId);
    assign(baseUri_, baseUri);
    assign(input->systemId, systemId);
    assign(input->baseUri, baseUri);
    checkInput(in);
    pushStream(std::move(input));
}

void InputStack::close() {
    if (isOpen()) popTo(1);
    position_ = position();
    closeFrames();
}

bool InputStack::pull() {
    while (frameCount_ > 0) {
        if (cursor_.cur != cursor_.end) return true;
        Frame& frame = *frames_[frameCount_ - 1];
        const bool isStream = frame.kind == Frame::Stream;
        if (isStream) {
            endLoans();
            const bool hasMore = frame.input->refill(cursor_);
            meter_.check();
            if (hasMore) return true;
            if (frame.input->hasFailed()) watcher_->inputFailed();
            if (frame.input->isAtInvalid()) {
                frame.input->passInvalid(cursor_);
                watcher_->invalidCharacter();
                continue;
            }
        }
        if (frame.isBarrier || (isStream && streamCount_ == 1)) return false;
        popFrame();
    }
    return false;
}

std::int32_t InputStack::readCharSlow() {
    if (cursor_.cur == cursor_.end && !pull()) return endOfInput;
    std::int32_t c = *cursor_.cur++;
    if (U16_IS_LEAD(c) && cursor_.cur != cursor_.end && U16_IS_TRAIL(*cursor_.cur)) {
        c = U16_GET_SUPPLEMENTARY(c, *cursor_.cur);
        ++cursor_.cur;
    }
    cursor_.touch(cursor_.cur);
    return c;
}

bool InputStack::skipWhitespace() {
    bool hasSkipped = false;
    for (;;) {
        const char16_t* p = cursor_.cur;
        while (p != cursor_.end && isXmlSpace(*p)) ++p;
        hasSkipped |= p != cursor_.cur;
        cursor_.cur = p;
        if (p != cursor_.end) {
            // The character that ends the white space has been looked at.
            cursor_.touch(p + 1);
            if (U16_IS_LEAD(*p)) peekChar();
            return hasSkipped;
        }
        cursor_.touch(p);
        if (!pull()) return hasSkipped;
    }
}

InputStack::Frame& InputStack::pushFrame(Frame::Kind kind) {
    if (frameCount_ > 0) frames_[frameCount_ - 1]->cursor = cursor_;
    if (frameCount_ == frames_.size()) frames_.push_back(std::make_unique<Frame>());
    Frame& frame = *frames_[frameCount_];
    frame.kind = kind;
    frame.source = kind == Frame::Replacement && frameCount_ > 0 ? frames_[frameCount_ - 1]->source : frameCount_;
    ++frameCount_;
    frame.isBarrier = false;
    cursor_ = {};
    topStream_ = nullptr;
    if (kind == Frame::Stream) ++streamCount_;
    return frame;
}

void InputStack::popFrame() {
    if (frames_[frameCount_ - 1]->kind == Frame::Stream) endLoans();
    Frame& frame = *frames_[--frameCount_];
    if (frame.kind == Frame::Stream) {
        --streamCount_;
        encodingName_ = frame.input->encodingName;
        frame.input.reset();
    } else if (frame.kind == Frame::Replacement) {
        frame.text.remove();
    }
    for (const std::uint32_t key : frame.entityKeys) openEntities_.erase(key);
    frame.entityKeys.clear();
    cursor_ = frameCount_ > 0 ? frames_[frameCount_ - 1]->cursor : XmlCursor();
    topStream_ = frameCount_ > 0 ? frames_[frameCount_ - 1]->input.get() : nullptr;
}

void InputStack::popTo(std::size_t depth) {
    while (frameCount_ > depth) popFrame();
}

void InputStack::popToStreams(int count) {
    while (streamCount_ > count) popFrame();
}

XmlInput& InputStack::pushStream(std::unique_ptr<XmlInput> input) {
    Frame& frame = pushFrame(Frame::Stream);
    frame.input = std::move(input);
    topStream_ = frame.input.get();
    topStream_->meterBy(meter_, isExternal_ || streamCount_ > 1);
    return *topStream_;
}

std::uint32_t InputStack::keyOf(LumName entity, bool isParameter) noexcept {
    return entity.getEnum() | (isParameter ? parameterKeyBit : 0);
}

XmlInput* InputStack::pushStream(std::unique_ptr<XmlInput> input, LumName entity, bool isParameter) {
    const std::uint32_t key = keyOf(entity, isParameter);
    if (!openEntities_.insert(key).second) return nullptr;
    XmlInput& pushed = pushStream(std::move(input));
    frames_[frameCount_ - 1]->entityKeys.push_back(key);
    return &pushed;
}

bool InputStack::leaveEntity() {
    if (!isInEntity()) return false;
    popFrame();
    return true;
}

bool InputStack::pushReplacement(LumName entity, const UnicodeString& text, bool isParameter) {
    const auto units = static_cast<std::uint64_t>(text.length());
    // An entity inside its own replacement text would never end; there is no need to wait for the limit.
    const std::uint32_t key = keyOf(entity, isParameter);
    if (openEntities_.contains(key) || !meter_.expand(units)) return false;
    // Frames that are used up go first: an entity that ends with a reference then adds no frame for each reference.
    // The new text still lies inside the texts of their entities, which stay open as long as it does.
    std::vector<std::uint32_t> keys;
    const auto isUsedUp = [this] {
        const Frame& top = *frames_[frameCount_ - 1];
        return cursor_.cur == cursor_.end && top.kind == Frame::Replacement && !top.isBarrier;
    };
    while (frameCount_ > 0 && isUsedUp()) {
        std::vector<std::uint32_t>& popped = frames_[frameCount_ - 1]->entityKeys;
        if (keys.size() < popped.size()) keys.swap(popped);
        keys.insert(keys.end(), popped.begin(), popped.end());
        popped.clear();
        popFrame();
    }
    keys.push_back(key);
    Frame& frame = pushFrame(Frame::Replacement);
    assign(frame.text, text);
    frame.entityKeys = std::move(keys);
    openEntities_.insert(key);
    const char16_t* const start = frame.text.getBuffer();
    cursor_ = {start, start + units, start};
    return true;
}

InputStack::LiteralScope::LiteralScope(InputStack& inputs, const UnitBuffer& raw, std::size_t from)
    : inputs_(inputs), depth_(inputs.depth()) {
    Frame& frame = inputs.pushFrame(Frame::Literal);
    frame.isBarrier = true;
    frame.start = raw.data();
    inputs.cursor_ = {frame.start + from, frame.start + raw.size(), frame.start + from};
}

XmlInput* InputStack::current() const noexcept {
    for (std::size_t i = frameCount_; i > 0;) {
        i = frames_[i - 1]->source;
        if (frames_[i]->input) return frames_[i]->input.get();
    }
    return nullptr;
}

const UnicodeString& InputStack::encodingName() const noexcept {
    const XmlInput* const input = current();
    return input ? input->encodingName : encodingName_;
}

const UnicodeString& InputStack::systemId() const noexcept {
    const XmlInput* const input = current();
    return input ? input->systemId : systemId_;
}

const UnicodeString& InputStack::baseUri() const noexcept {
    const XmlInput* const input = current();
    return input ? input->baseUri : baseUri_;
}

TextPosition InputStack::findPosition() const {
    if (isStarted_ && frameCount_ > 0) position_ = positionOf(frameCount_ - 1);
    return position_;
}

TextPosition InputStack::positionOf(std::size_t frameIndex) const {
    frameIndex = frames_[frameIndex]->source;
    const Frame& frame = *frames_[frameIndex];
    const XmlCursor& cursor = frameIndex + 1 == frameCount_ ? cursor_ : frame.cursor;
    if (frame.kind == Frame::Stream) return frame.input->getPosition(cursor);
    // A literal is read a second time: counting continues from its end.
    TextPosition position = positionOf(frameIndex - 1);
    position.advance(frame.start, cursor.high, true);
    return position;
}

}  // namespace LumCommon::detail
