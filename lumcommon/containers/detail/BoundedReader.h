#pragma once

#include <lumcommon/containers/detail/RecordFields.h>

#include <cstddef>
#include <cstdint>
#include <span>

namespace LumCommon::detail {

/// Takes little-endian numbers and runs of claimed lengths off the front of a run of bytes. The first one that is not
/// there in full ends the run: it and all after it are 0, since later ones would be read from the wrong place.
class BoundedReader {
public:
    explicit BoundedReader(std::span<const char> bytes) noexcept : rest_(bytes) {}

    /// Takes `claimed` bytes. False if fewer remain, and then nothing is left.
    [[nodiscard]] bool take(std::uint64_t claimed, std::span<const char>& run) noexcept {
        if (claimed > rest_.size()) {  // compare, do not add: a position plus a claim could overflow
            rest_ = {};
            return false;
        }
        run = rest_.first(static_cast<std::size_t>(claimed));
        rest_ = rest_.subspan(run.size());
        return true;
    }

    template <class Number>
    Number take() noexcept {
        std::span<const char> field;
        return take(sizeof(Number), field) ? RecordView(field).get(Field<Number>{0}) : Number{0};
    }

    std::size_t getRemainingBytes() const noexcept { return rest_.size(); }

private:
    std::span<const char> rest_;
};

}  // namespace LumCommon::detail
