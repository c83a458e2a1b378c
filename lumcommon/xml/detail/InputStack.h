#pragma once

#include <lumcommon/names/LumName.h>
#include <lumcommon/names/detail/UnitHash.h>
#include <lumcommon/xml/detail/InputMeter.h>
#include <lumcommon/xml/detail/TextPosition.h>
#include <lumcommon/xml/detail/UnitBuffer.h>
#include <lumcommon/xml/detail/UnitScan.h>
#include <lumcommon/xml/detail/XmlInput.h>

#include <unicode/utf16.h>

#include <cstddef>
#include <cstdint>
#include <istream>
#include <memory>
#include <unordered_set>
#include <vector>

namespace LumCommon {
class LumUri;
}

namespace LumCommon::detail {

/// Who keeps hold of units in a window of the input.
class WindowBorrower {
public:
    WindowBorrower() = default;
    WindowBorrower(const WindowBorrower&) = delete;
    WindowBorrower& operator=(const WindowBorrower&) = delete;
    virtual ~WindowBorrower() = default;

    /// Before the units of a window go away: what is held must be copied.
    virtual void windowMoves() = 0;
};

/// Who says that an input has failed: it has ended, but not where its text ends.
class InputWatcher {
public:
    InputWatcher() = default;
    InputWatcher(const InputWatcher&) = delete;
    InputWatcher& operator=(const InputWatcher&) = delete;
    virtual ~InputWatcher() = default;

    /// Called while the input is the one being read. Does not return: it throws.
    [[noreturn]] virtual void inputFailed() = 0;
    /// Called after a character that is none of XML has been passed over.
    virtual void invalidCharacter() = 0;
};

/// What is being read: open inputs, replacement texts of entities, and the raw text of a literal that is being looked
/// through. The scanners read the window of the topmost frame; frames that are used up are popped when the next
/// character is asked for, so that markup may begin in a replacement text and end after it.
///
/// It knows where the parser is, and reports no errors itself: whoever asks is told, and the watcher where an input
/// fails. A limit that is exceeded while an input is read is thrown by pull() as LimitExceeded.
class InputStack {
public:
    /// @param isExternal  whether the first input counts as one that a document names.
    InputStack(InputMeter& meter, bool isExternal) : meter_(meter), isExternal_(isExternal) {}
    ~InputStack() {
        borrowers_.clear();  // they need not be there any more
        closeFrames();
    }
    InputStack(const InputStack&) = delete;
    InputStack& operator=(const InputStack&) = delete;

    /// Forgets the document before; its inputs are closed by now.
    void reset();
    /// Opens the document. Position, base and encoding are those of this input until it is closed.
    /// @param in  must outlive the reading.
    /// Errors: those of checkInput(), after which nothing is open.
    void open(std::unique_ptr<XmlInput> input, std::istream& in, const UnicodeString& baseUri);
    enum class Opening { Done, Impossible, Refused };
    /// The same for a resource, whose own base holds where `baseUri` is empty.
    [[nodiscard]] Opening open(std::unique_ptr<XmlInput> input, const UnicodeString& uri, const UnicodeString& baseUri);
    /// Closes every input. What stays is the place in the document; entities that are open are left.
    void close();
    bool isOpen() const noexcept { return frameCount_ > 0; }

    /// Marks the document as begun: from now on there is a position.
    void start() noexcept { isStarted_ = true; }
    bool isStarted() const noexcept { return isStarted_; }

    // Reading

    /// Where the topmost frame is read.
    XmlCursor& cursor() noexcept { return cursor_; }
    /// The next character as a code point, -1 at the end of input.
    std::int32_t readChar() {
        if (cursor_.cur != cursor_.end) {
            const char16_t unit = *cursor_.cur;
            if (!U16_IS_LEAD(unit)) {
                ++cursor_.cur;
                cursor_.touch(cursor_.cur);
                return unit;
            }
        }
        return readCharSlow();
    }
    /// Takes back the character that was read last.
    void unreadChar(std::int32_t c) noexcept {
        if (c >= 0) cursor_.cur -= c > 0xFFFF ? 2 : 1;
    }
    /// The next character, which stays the next one.
    std::int32_t peekChar() {
        const std::int32_t c = readChar();
        unreadChar(c);
        return c;
    }
    /// Whether the window holds the next unit and it is this one.
    bool isNext(char16_t unit) const noexcept { return cursor_.cur != cursor_.end && *cursor_.cur == unit; }
    /// Makes the cursor point at a unit. False at the end of input.
    bool pull();
    /// Whether there was any.
    bool skipWhitespace();
    /// Copies the units up to `end`, a place in the window, which is then the next unit.
    void copyTo(const char16_t* end, UnitBuffer& out) {
        const auto count = static_cast<std::size_t>(end - cursor_.cur);
        if (count > out.room()) [[unlikely]] {
            // The error stands after the first unit that is too many, wherever the window ends.
            cursor_.touch(cursor_.cur + out.room() + 1);
            out.refuse();
        }
        out.append(cursor_.cur, count);
        cursor_.cur = end;
        cursor_.touch(end);
    }
    /// Copies what comes before the next `mark` or U+FFFF, which is then the next character. False at the end of input.
    bool copyUpTo(char16_t mark, UnitBuffer& out) {
        do {
            const char16_t* const found = findUnit(cursor_.cur, cursor_.end, mark);
            copyTo(found, out);
            if (found != cursor_.end) return true;
        } while (pull());
        return false;
    }
    /// Whether what has been read from the window may be kept hold of.
    bool lends() const noexcept { return topStream_ != nullptr; }
    void lendTo(WindowBorrower& borrower) { borrowers_.push_back(&borrower); }
    void watchFor(InputWatcher& watcher) noexcept { watcher_ = &watcher; }

    // Frames

    std::size_t depth() const noexcept { return frameCount_; }
    int streamCount() const noexcept { return streamCount_; }
    void popTo(std::size_t depth);
    void popToStreams(int count);
    XmlInput& pushStream(std::unique_ptr<XmlInput> input);
    /// The same for an external entity. Null, and nothing pushed, when the entity contains itself.
    XmlInput* pushStream(std::unique_ptr<XmlInput> input, LumName entity, bool isParameter);
    /// False, and nothing pushed, when the entity contains itself or entities expand to far more than what was read.
    [[nodiscard]] bool pushReplacement(LumName entity, const UnicodeString& text, bool isParameter);
    /// Whether the end of the topmost frame is the end of input, whatever lies below.
    void setBarrier(bool isBarrier) noexcept { frames_[frameCount_ - 1]->isBarrier = isBarrier; }
    /// Whether the topmost frame is an entity whose end is the end of input until it is left.
    bool isInEntity() const noexcept {
        return frameCount_ > 1 && frames_[frameCount_ - 1]->isBarrier &&
               frames_[frameCount_ - 1]->kind != Frame::Literal;
    }
    /// Continues with what lies below such an entity; false when there is none.
    bool leaveEntity();

    /// While it lives, the units of `raw` after the first `from` are the input; their end is the end of input.
    class LiteralScope {
    public:
        LiteralScope(InputStack& inputs, const UnitBuffer& raw, std::size_t from);
        ~LiteralScope() { inputs_.popTo(depth_); }
        LiteralScope(const LiteralScope&) = delete;
        LiteralScope& operator=(const LiteralScope&) = delete;

    private:
        InputStack& inputs_;
        const std::size_t depth_;
    };

    // Where the parser is; after the inputs are closed, where it was

    /// The input being read, whatever replacement texts lie on it; null when none is open.
    XmlInput* current() const noexcept;
    /// No XML declaration can come any more in the stream that is read.
    void unleash() noexcept {
        if (topStream_) topStream_->unleash();
    }
    const UnicodeString& encodingName() const noexcept;
    const UnicodeString& systemId() const noexcept;
    const UnicodeString& baseUri() const noexcept;
    /// -1 and -1 before the document has begun.
    TextPosition position() const {
        if (topStream_ && isStarted_) return position_ = topStream_->getPosition(cursor_);
        return findPosition();
    }

private:
    struct Frame {
        enum Kind { Stream, Replacement, Literal } kind = Replacement;
        XmlCursor cursor;                       // while another frame is on top of it
        std::unique_ptr<XmlInput> input;        // Stream
        bool isBarrier = false;                 // its end is the end of input, whatever lies below
        std::size_t source = 0;                 // the nearest frame from here down that is not a replacement
        UnicodeString text;                     // Replacement: keeps the units alive
        std::vector<std::uint32_t> entityKeys;  // the entities that end with it
        const char16_t* start = nullptr;        // Literal: its first unit
    };

    void openDocument(std::unique_ptr<XmlInput> input, std::istream& in, const UnicodeString& systemId,
                      const UnicodeString& baseUri);
    void endLoans() const {
        for (WindowBorrower* const borrower : borrowers_) borrower->windowMoves();
    }
    static std::uint32_t keyOf(LumName entity, bool isParameter) noexcept;
    Frame& pushFrame(Frame::Kind kind);
    void popFrame();
    void closeFrames() { popTo(0); }
    std::int32_t readCharSlow();
    TextPosition findPosition() const;
    TextPosition positionOf(std::size_t frameIndex) const;

    XmlCursor cursor_;                            // of the topmost frame
    std::vector<std::unique_ptr<Frame>> frames_;  // [0, frameCount_) are in use; the rest is kept for reuse
    std::size_t frameCount_ = 0;
    XmlInput* topStream_ = nullptr;  // of the topmost frame; null when that is none
    int streamCount_ = 0;
    bool isStarted_ = false;
    std::vector<WindowBorrower*> borrowers_;
    InputWatcher* watcher_ = nullptr;

    InputMeter& meter_;
    const bool isExternal_;
    std::unordered_set<std::uint32_t, KeyedHash> openEntities_;  // whose replacement text is being read

    mutable TextPosition position_{-1, -1};  // when it was asked for last
    UnicodeString encodingName_;             // of the last input when none is open
    UnicodeString systemId_;                 // of the document
    UnicodeString baseUri_;
};

}  // namespace LumCommon::detail
