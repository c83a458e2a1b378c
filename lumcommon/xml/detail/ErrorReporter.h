#pragma once

#include <lumcommon/core/Text.h>
#include <lumcommon/xml/detail/InputStack.h>
#include <lumcommon/xml/detail/XmlParserError.h>

#include <cstdint>
#include <limits>

namespace LumCommon {
class LumError;
}

namespace LumCommon::detail {

class ParserEvent;

/// Where the readers report what is wrong with the input. Without a listener an error is thrown; a listener that
/// returns has accepted it, and the reader continues as best it can. An input that cannot be read any further is thrown
/// in any case, as there is nothing to continue with.
class ErrorReporter final : public InputWatcher {
public:
    using Listener = void (*)(const LumError&, void*);

    ErrorReporter(ParserEvent& event, const InputStack& inputs) noexcept : event_(event), inputs_(inputs) {}

    /// Null: errors are thrown.
    void setListener(Listener listener, void* data) noexcept {
        listener_ = listener;
        data_ = data;
    }
    /// Returns when a listener has accepted the error.
    /// @param a,b  the arguments of the message.
    void report(XmlError::Code code, const UnicodeString& a = UnicodeString(),
                const UnicodeString& b = UnicodeString());
    /// Throws the error that a document itself is refused: no listener can accept that.
    [[noreturn]] void raiseRefused() const;
    /// Throws error 0x1006 with the position, or Dropped.
    [[noreturn]] void inputFailed() override;
    void invalidCharacter() override { report(XmlError::InvalidChar); }

    /// Thrown by report() in place of an error that is dropped. It is caught where the scope was set up.
    struct Dropped {};
    /// While it lives, and while more than `streams` inputs are open, errors are dropped: a listener is still told, but
    /// where it does not accept the error, or nobody listens, what was being read is left without an error.
    class DropScope {
    public:
        /// @param applies  false: nothing changes.
        DropScope(ErrorReporter& errors, bool applies, int streams) noexcept
            : slot_(errors.droppedAbove_), before_(slot_) {
            if (applies) slot_ = streams;
        }
        ~DropScope() { slot_ = before_; }
        DropScope(const DropScope&) = delete;
        DropScope& operator=(const DropScope&) = delete;

    private:
        int& slot_;
        const int before_;
    };

    /// The event, the resource, line and column.
    UnicodeString describePosition() const;

private:
    [[noreturn]] void raise(XmlError::Code code, UnicodeString message) const;
    bool isDropped() const noexcept;
    void tellListener(const LumError& error);

    ParserEvent& event_;
    const InputStack& inputs_;
    Listener listener_ = nullptr;
    void* data_ = nullptr;
    int droppedAbove_ = std::numeric_limits<int>::max();  // that many open streams errors are dropped
};

/// Whether it says that memory ran out, which nobody may take for an error of the input.
bool isOutOfMemory(const LumError& error) noexcept;

/// A character as an argument of messages; empty at the end of input.
inline UnicodeString charText(std::int32_t c) {
    return c < 0 ? UnicodeString() : UnicodeString(static_cast<UChar32>(c));
}

}  // namespace LumCommon::detail
