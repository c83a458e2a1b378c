#include <lumcommon/core/LumRCObject.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <latch>
#include <thread>
#include <vector>

#include "support/ResidentMemory.h"

namespace {

using LumCommon::LumRCObject;
using LumTest::isMemoryTold;
using LumTest::residentBytes;

constexpr std::size_t sizes[] = {1, 24, 72, 88, 512, 513};

/// Blocks of all sizes in turn, each full of its own number.
struct Blocks {
    std::vector<unsigned char*> blocks;

    void allocate(std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t bytes = sizes[i % std::size(sizes)];
            blocks.push_back(static_cast<unsigned char*>(LumRCObject::operator new(bytes)));
            std::memset(blocks.back(), static_cast<int>(i % 251), bytes);
        }
    }
    /// Those at `first` and each `step` further; the number of those whose content has changed.
    std::size_t release(std::size_t first, std::size_t step) {
        std::size_t changed = 0;
        for (std::size_t i = first; i < blocks.size(); i += step) {
            const std::size_t bytes = sizes[i % std::size(sizes)];
            const auto isOther = [i](unsigned char byte) { return byte != i % 251; };
            changed += std::any_of(blocks[i], blocks[i] + bytes, isOther) ? 1 : 0;
            LumRCObject::operator delete(blocks[i], bytes);
        }
        return changed;
    }
};

// Catches blocks that overlap, and slabs lost when the thread that releases is not the one that allocated, whether that
// one goes on, has ended, or ends at the same time.
TEST(SlabPool, ThreadsGiveBackWhatOthersAllocated) {
    std::size_t before = 0;
    for (int cycle = 0; cycle < 90; ++cycle) {
        if (cycle == 30) before = residentBytes();
        Blocks blocks;
        std::latch isAllocated(1), isReleased(1);
        std::size_t changed = 0;
        std::thread other([&] {
            blocks.allocate(9000);
            isAllocated.count_down();
            if (cycle % 3 == 0) isReleased.wait();
            changed += blocks.release(0, 2);
            Blocks more;
            more.allocate(9000);  // takes back what has been released elsewhere
            changed += more.release(0, 1);
        });
        isAllocated.wait();
        if (cycle % 3 == 2) other.join();
        const std::size_t changedHere = blocks.release(1, 2);
        isReleased.count_down();
        if (other.joinable()) other.join();
        EXPECT_EQ(changed + changedHere, 0u) << cycle;
    }
    EXPECT_TRUE(!isMemoryTold || residentBytes() < before + 4'000'000);
}

// Catches holes that are not used again, so that one live block costs a slab, and memory that stays with the process.
TEST(SlabPool, FillsHolesAndGivesBackWhatIsUnused) {
    std::vector<void*> blocks(1'600'000);
    for (void*& block : blocks) block = std::memset(LumRCObject::operator new(80), 1, 80);
    const std::size_t most = residentBytes();
    for (std::size_t i = 1; i < blocks.size(); i += 2) LumRCObject::operator delete(blocks[i], 80);
    for (std::size_t i = 1; i < blocks.size(); i += 2) blocks[i] = LumRCObject::operator new(80);
    EXPECT_TRUE(!isMemoryTold || residentBytes() < most + 1'000'000);
    for (void* block : blocks) LumRCObject::operator delete(block, 80);
    EXPECT_TRUE(!isMemoryTold || residentBytes() < most - 40'000'000);
}

}  // namespace
