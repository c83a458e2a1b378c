#pragma once

#include <lumcommon/core/Text.h>

#include <string_view>

/// What a document can hold where it becomes markup. Each check throws LumError 0x813, which tells what is wrong.
namespace LumCommon::detail {

/// Whether it is a name without a colon.
bool isNCName(std::u16string_view text) noexcept;
/// Whether it is a name, or two with a colon between them.
bool isQualifiedName(std::u16string_view text) noexcept;

[[noreturn]] void failName(std::u16string_view name);
[[noreturn]] void failCharacter(char16_t unit);

/// A name without a colon.
void checkNCName(std::u16string_view name);
// The following look at what is written, without the control characters that are dropped.
void checkComment(std::u16string_view text);
void checkCData(std::u16string_view text);
/// Its target is a name other than "xml" in any case, followed by white space or nothing.
void checkInstruction(std::u16string_view content);
/// White space alone.
void checkSpace(std::u16string_view text);
/// "yes" or "no".
void checkStandalone(std::u16string_view text);

}  // namespace LumCommon::detail
