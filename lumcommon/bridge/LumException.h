#pragma once

#include <lumcommon/bridge/LumPosition.h>
#include <lumcommon/core/Api.h>
#include <lumcommon/core/LumError.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <utility>

namespace LumCommon {

/// A LumError as a standard exception, for programs that catch these. The library throws LumError alone;
/// withStdExceptions() makes this of it.
///
///     try {
///         withStdExceptions([&] { document->load(path); });
///     } catch (const std::exception& error) {
///         std::cerr << error.what() << '\n';
///     }
///
/// Threads: as for any exception; copies share what they hold, which never changes. Copying does not throw.
class LUM_API LumException : public std::runtime_error {
public:
    /// Errors: std::bad_alloc.
    explicit LumException(const LumError& error);
    /// A copy takes no memory.
    LumException(const LumException&) noexcept = default;
    /// The same.
    LumException& operator=(const LumException&) noexcept = default;
    ~LumException() override;

    // what() is LumError::getMessage() in UTF-8.

    /// LumError::code.
    std::uint16_t getCode() const noexcept { return held_->error.code; }
    /// Those of positionOf(), so that nobody has to read the message: -1 when unknown.
    int getLine() const noexcept { return held_->position.line; }
    /// The column, or -1.
    int getColumn() const noexcept { return held_->position.column; }
    /// The same with the location.
    const LumPosition& getPosition() const noexcept { return held_->position; }
    /// The error as it was thrown.
    const LumError& getError() const noexcept { return held_->error; }

private:
    struct Held {
        LumError error;
        LumPosition position;
    };
    std::shared_ptr<const Held> held_;
};

/// Calls `action` and returns what it returns. A LumError that it throws becomes a LumException; everything else that
/// it throws passes through, std::bad_alloc among it.
///
///     const UnicodeString text = withStdExceptions([&] { return document->saveXml(); });
///
/// Cost: nothing unless something is thrown.   Threads: those of the action.
template <class Action>
decltype(auto) withStdExceptions(Action&& action) {
    try {
        return std::invoke(std::forward<Action>(action));
    } catch (const LumError& error) {
        throw LumException(error);
    }
}

}  // namespace LumCommon
