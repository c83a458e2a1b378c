#pragma once

#include <lumcommon/core/Text.h>
#include <lumcommon/xml/detail/XmlParserError.h>

#include <cstdint>

namespace LumCommon {
class LumError;
}

namespace LumCommon::detail {

class InputStack;
class ParserEvent;

/// Where the readers report what is wrong with the input. Without a listener an error is thrown; a listener that
/// returns has accepted it, and the reader continues as best it can.
class ErrorReporter {
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
    /// The event, the resource, line and column.
    UnicodeString describePosition() const;

private:
    ParserEvent& event_;
    const InputStack& inputs_;
    Listener listener_ = nullptr;
    void* data_ = nullptr;
};

/// A character as an argument of messages; empty at the end of input.
inline UnicodeString charText(std::int32_t c) {
    return c < 0 ? UnicodeString() : UnicodeString(static_cast<UChar32>(c));
}

}  // namespace LumCommon::detail
