#pragma once

#include <string_view>

namespace LumCommon::detail {

struct CharsetGuess {
    const char* name = nullptr;  // static text; null: not recognised
    bool hasMark = false;
};

/// The charset of the text that begins with `sample`; see cconvChkEncode(). Failure: std::bad_alloc.
CharsetGuess guessCharset(std::string_view sample);

}  // namespace LumCommon::detail
