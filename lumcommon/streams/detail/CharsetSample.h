#pragma once

#include <string_view>

namespace LumCommon::detail {

struct CharsetGuess {
    const char* name = nullptr;  // static text; null: not recognised
    bool hasMark = false;
};

/// The charset of the text that begins with `sample`; see cconvChkEncode().
CharsetGuess guessCharset(std::string_view sample) noexcept;

}  // namespace LumCommon::detail
