#pragma once

#include <lumcommon/core/Api.h>
#include <lumcommon/core/Text.h>

#include <optional>
#include <string>

namespace LumCommon {

/// A string with a cached narrow (multibyte) copy of itself, made on demand and remade when the text or the requested
/// codepage changes.
/// Threads: one at a time; getMBString changes the cache.
class LUM_API LumCStr : public UnicodeString {
public:
    /// A copy of `text`; nothing is converted yet.
    LumCStr(const UnicodeString& text);
    using UnicodeString::operator=;  // assignable like any string; the next getMBString() notices

    /// The text in `codepage` (an ICU converter name; null: the platform's default converter).
    /// Characters that the codepage lacks become the converter's substitution character.
    /// An unknown codepage gives an empty string. The reference is valid until the next call or until this object is
    /// destroyed.
    const std::string& getMBString(const char* codepage = nullptr);
    /// The same, but always converts anew.
    const std::string& makeMBString(const char* codepage = nullptr);

private:
    std::string narrow_;
    std::optional<std::string> codepage_;  // nullopt: the platform default
    UnicodeString converted_;              // the text that narrow_ was made from
    bool isMade_ = false;
};

}  // namespace LumCommon
