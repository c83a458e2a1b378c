#include <lumcommon/dom/detail/LoadedTexts.h>
#include <lumcommon/names/detail/UnitHash.h>
#include <lumcommon/values/detail/ValueText.h>

#include <algorithm>

namespace LumCommon::detail {

namespace {

constexpr std::uint32_t countsInAdvance = 4096;

bool isText(const UnicodeString& string, std::u16string_view text) noexcept {
    return static_cast<std::size_t>(string.length()) == text.size() &&
           std::equal(text.begin(), text.end(), string.getBuffer());  // an empty text may lie nowhere
}

}  // namespace

LoadedTexts::~LoadedTexts() {
    for (Entry& entry : entries_) forget(entry);
}

void LoadedTexts::forget(Entry& entry) noexcept {
    if (entry.text) entry.text->releaseRefs(std::int64_t{entry.counts} + 1);
    entry.text = nullptr;
}

LumValue LoadedTexts::take(std::u16string_view text) {
    if (text.size() > maxUnits) return ValueText::toValue(ValueText::make(text, BlockUse::ORDINARY));
    const std::uint64_t hash = hashUnits(text.data(), text.size(), processHashKey());
    Entry& entry = entries_[static_cast<std::size_t>(hash >> (64 - indexBits))];
    if (entry.hash != static_cast<std::uint32_t>(hash)) {
        forget(entry);
        entry.hash = static_cast<std::uint32_t>(hash);
    } else {
        if (!entry.text) {
            entry.text = ValueText::make(text, BlockUse::LONG_LIVED);
            entry.counts = 0;
        }
        if (isText(entry.text->text(), text)) {
            if (entry.counts == 0) entry.text->addRefs(entry.counts = countsInAdvance);
            --entry.counts;
            return ValueText::toValue(entry.text);
        }
    }
    return ValueText::toValue(ValueText::make(text, BlockUse::ORDINARY));
}

}  // namespace LumCommon::detail
