#include <lumcommon/core/detail/CheckedText.h>
#include <lumcommon/core/detail/NeverDestroyed.h>
#include <lumcommon/names/detail/BuiltinNames.h>
#include <lumcommon/names/detail/Vocabulary.h>

#include <array>

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

struct BuiltinStrings {
    std::array<UnicodeString, rowCount> ofName;

    // Not aliases of the static text: a copy of an alias needs memory, and is empty without a word when there is none.
    BuiltinStrings() {
        for (std::size_t id = 0; id < rowCount; ++id) ofName[id] = textOf(builtinRows[id]);
    }
};

/// Kept out of its caller, so that asking for the strings once they exist costs a test and a load.
[[gnu::noinline]] const UnicodeString* makeStrings() {
    static NeverDestroyed<BuiltinStrings> strings;
    return strings->ofName.data();
}

}  // namespace

LumNameEnum findBuiltinName(const char16_t* text, std::size_t units) noexcept {
    return static_cast<LumNameEnum>(builtinNames.find(text, units));
}

const UnicodeString* builtinNameStrings() {
    static const UnicodeString* const strings = makeStrings();
    return strings;
}

}  // namespace LumCommon::detail
