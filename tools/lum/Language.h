#pragma once

#include <lumcommon/lang/LumLang.h>

#include <string>

namespace LumTool {

/// The language of a tag from the command line; "" and "none" are the empty language.
/// Failure: UsageError for a language or country that ISO does not list.
LumCommon::LumLang readLanguage(const std::string& tag);

}  // namespace LumTool
