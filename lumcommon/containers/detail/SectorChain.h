#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace LumCommon::detail {

/// A chain of sectors, walked through an allocation table on demand. Each sector is visited once: a chain that returns
/// to one of its own sectors ends there as broken.
/// Cost: amortised O(1) per sector; memory for the sectors visited, and one bit for each entry of the table once there
/// are many of them.
class SectorChain {
public:
    static constexpr std::int32_t END = -2;     ///< in a table: the chain ends here; also returned past the end
    static constexpr std::int32_t BROKEN = -1;  ///< the chain loops, or leads to something that is not a sector

    SectorChain() = default;
    /// @param table  must not change while the chain is walked.
    SectorChain(const std::vector<std::int32_t>& table, std::int32_t first) : table_(&table), next_(first) {}

    /// The sector at that index; END if the chain is shorter, BROKEN if it cannot be walked that far.
    std::int32_t at(std::size_t index) { return index < sectors_.size() || extendTo(index) ? sectors_[index] : next_; }
    /// The sectors visited so far.
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
