#pragma once

#include <lumcommon/xml/detail/UnitBuffer.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace LumCommon::detail {

/// The text of an event: units of its own, or, as long as it is one plain run, those in the window of the input.
class EventText {
public:
    void setLimit(std::uint64_t units) noexcept { own_.setLimit(units); }
    /// The longest run that may be borrowed.
    std::size_t limit() const noexcept { return own_.limit(); }
    std::u16string_view view() const noexcept {
        return isBorrowed() ? borrowed_ : std::u16string_view(own_.data(), own_.size());
    }
    std::size_t size() const noexcept { return view().size(); }
    bool empty() const noexcept { return size() == 0; }
    void clear() noexcept {
        borrowed_ = {};
        own_.clear();
    }

    bool isBorrowed() const noexcept { return borrowed_.data() != nullptr; }
    /// Empty text becomes these units, which stay where they are until takeOver() is called.
    void borrow(std::u16string_view units) noexcept { borrowed_ = units; }
    /// Copies what is borrowed.
    void takeOver() {
        if (!isBorrowed()) return;
        own_.append(borrowed_.data(), borrowed_.size());
        borrowed_ = {};
    }

    /// The units as its own, to append to.
    UnitBuffer& units() {
        takeOver();
        return own_;
    }
    void truncate(std::size_t size) noexcept {
        borrowed_ = borrowed_.substr(0, size);
        own_.truncate(size);
    }

private:
    UnitBuffer own_{XmlError::TextLimit};  // empty while there is a borrowed run
    std::u16string_view borrowed_;
};

}  // namespace LumCommon::detail
