#include <lumcommon/names/detail/BuiltinNames.h>
#include <lumcommon/names/detail/Vocabulary.h>

#include <new>

namespace LumCommon::detail {

namespace {

constexpr std::size_t rowCount = NAME_BUILTIN_END_;
static_assert(rowCount == 1598);

constexpr Vocabulary<rowCount>::Rows builtinRows = {{
    {},
#define LUM_NAME(id, text) {u"" text, sizeof(u"" text) / sizeof(char16_t) - 1},
#include <lumcommon/names/BuiltinNames.inc>
#undef LUM_NAME
}};

constinit const Vocabulary<rowCount> builtinNames{builtinRows};

const UnicodeString* makeStrings() noexcept {
    // The strings outlive every static object of the process, so no destructor may run for them.
    alignas(UnicodeString) static unsigned char storage[rowCount * sizeof(UnicodeString)];
    auto* const strings = reinterpret_cast<UnicodeString*>(storage);
    for (std::size_t id = 0; id < rowCount; ++id) {
        const std::u16string_view text = builtinRows[id];
        if (text.empty()) {
            new (strings + id) UnicodeString();
        } else {
            // An alias of static text: nothing is copied, nothing is to be freed.
            new (strings + id) UnicodeString(true, text.data(), static_cast<std::int32_t>(text.size()));
        }
    }
    return strings;
}

}  // namespace

LumNameEnum findBuiltinName(const char16_t* text, std::size_t units) noexcept {
    return static_cast<LumNameEnum>(builtinNames.find(text, units));
}

const UnicodeString* builtinNameStrings() noexcept {
    static const UnicodeString* const strings = makeStrings();
    return strings;
}

}  // namespace LumCommon::detail
