#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/core/Text.h>

#include <optional>
#include <string>

namespace LumCommon {

/// A string that carries a narrow (multibyte) copy of itself, made on demand and kept until the text or the asked
/// codepage changes.
/// Threads: one at a time; getMBString changes the cache.
class LUM_API LumCStr : public UnicodeString {
public:
    LumCStr(const UnicodeString& text);
    using UnicodeString::operator=;  // a text can be assigned as to any string; the narrow copy notices

    /// The text in `codepage` (an ICU converter name; null: the platform's default converter).
    /// Characters that the codepage lacks become the converter's substitution character.
    /// An unknown codepage gives an empty string. The reference is valid until the next call or the end of this.
    const std::string& getMBString(const char* codepage = nullptr);
    /// The same without looking at the cache.
    const std::string& makeMBString(const char* codepage = nullptr);

private:
    std::string narrow_;
    std::optional<std::string> codepage_;  // nullopt: the platform default
    UnicodeString converted_;              // the text that narrow_ was made from
    bool isMade_ = false;
};

}  // namespace LumCommon
