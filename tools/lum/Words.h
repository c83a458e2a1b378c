#pragma once

#include <lumcommon/values/LumValue.h>

#include <string>
#include <string_view>

namespace LumTool {

/// The words that stand beside the library's numbers. "unknown" for a number without one.
std::string_view wordOfKind(LumCommon::LumValueKind kind);
std::string_view wordOfUnit(LumCommon::LumValueUnitType unit);
std::string_view wordOfToken(int kind);        ///< LumTokenizer; a delimiter is "delimiter"
std::string_view wordOfPackage(int kind);      ///< LumZipFile::detectOOXDocument()
std::string_view wordOfOleDocument(int kind);  ///< OleCompFile::getDocumentKind()
std::string_view wordOfOleEntry(int type);     ///< OleDirInfo::Type
std::string_view wordOfZipMethod(int method);  ///< LumZipFileEntry

/// What a property's value is, for readers: "length in pt", "integer", "percentage", "colour", "name".
std::string typeOf(const LumCommon::LumValue& value);

}  // namespace LumTool
