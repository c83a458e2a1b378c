#include <lumcommon/names/detail/UnitHash.h>
#include <sys/random.h>

#include <chrono>

namespace LumCommon::detail {

namespace {

HashKey drawKey() noexcept {
    HashKey key{};
    if (getrandom(&key, sizeof key, GRND_NONBLOCK) != static_cast<ssize_t>(sizeof key)) {
        // Without the system's random source, the time and the address of the stack are the hardest to guess.
        const auto ticks = static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
        const auto place = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(&key));
        key.seed = foldMultiply(ticks ^ fixedHashKey.seed, fixedHashKey.multiplier);
        key.multiplier = foldMultiply(place ^ key.seed, fixedHashKey.multiplier);
    }
    key.multiplier |= 1u;
    return key;
}

}  // namespace

const HashKey& processHashKey() noexcept {
    static const HashKey key = drawKey();
    return key;
}

}  // namespace LumCommon::detail
