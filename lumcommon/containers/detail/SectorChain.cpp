#include <lumcommon/containers/detail/SectorChain.h>

#include <algorithm>

namespace LumCommon::detail {
namespace {

/// Up to this many sectors, searching them costs less than keeping a bit for each sector of the file.
constexpr std::size_t shortChain = 64;

}  // namespace

bool SectorChain::extendTo(std::size_t index) {
    while (sectors_.size() <= index) {
        if (next_ < 0) {
            if (next_ != END) next_ = BROKEN;
            return false;
        }
        if (isMet(next_)) {
            next_ = BROKEN;
            return false;
        }
        remember(next_);
        const auto entry = static_cast<std::size_t>(next_);
        next_ = entry < table_->size() ? (*table_)[entry] : BROKEN;
    }
    return true;
}

bool SectorChain::isMet(std::int32_t sector) const {
    if (met_.empty()) return std::ranges::find(sectors_, sector) != sectors_.end();
    const auto entry = static_cast<std::size_t>(sector);
    return entry < met_.size() && met_[entry];  // a sector that the table lacks is the last of its chain
}

void SectorChain::remember(std::int32_t sector) {
    const auto mark = [this](std::int32_t met) {
        if (static_cast<std::size_t>(met) < met_.size()) met_[static_cast<std::size_t>(met)] = true;
    };
    if (met_.empty() && sectors_.size() + 1 == shortChain) {
        met_.resize(table_->size());
        std::ranges::for_each(sectors_, mark);
    }
    sectors_.push_back(sector);  // last of what can fail
    mark(sector);
}

}  // namespace LumCommon::detail
