#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace LumCommon::detail {

/// A chain of sectors, walked through an allocation table as far as somebody asks. Each sector is met once: a chain
/// that comes back to one of its own sectors ends there as broken.
/// Cost: O(1) a sector, amortised; memory of the sectors met, and a bit for each entry of the table once they are many.
class SectorChain {
public:
    static constexpr std::int32_t END = -2;     ///< in a table: the chain ends here; also the answer behind the end
    static constexpr std::int32_t BROKEN = -1;  ///< the chain loops, or leads to what is no sector

    SectorChain() = default;
    /// @param table  must stay as it is while the chain is walked.
    SectorChain(const std::vector<std::int32_t>& table, std::int32_t first) : table_(&table), next_(first) {}

    /// The sector at that place, END when the chain is shorter, BROKEN when it cannot be walked so far.
    std::int32_t at(std::size_t index) { return index < sectors_.size() || extendTo(index) ? sectors_[index] : next_; }
    /// The sectors met so far.
    const std::vector<std::int32_t>& getSectors() const noexcept { return sectors_; }

private:
    bool extendTo(std::size_t index);
    bool isMet(std::int32_t sector) const;
    void remember(std::int32_t sector);

    const std::vector<std::int32_t>* table_ = nullptr;
    std::vector<std::int32_t> sectors_;
    std::vector<bool> met_;  // by sector; empty while the chain is short
    std::int32_t next_ = BROKEN;
};

}  // namespace LumCommon::detail
