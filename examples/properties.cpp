// Prints the properties that the user gave a document in a compound file:  properties FILE
// [properties]
#include <lumcommon/bridge/LumText.h>
#include <lumcommon/lumcommon.h>

#include <iostream>
#include <variant>

using namespace LumCommon;

int main(int, char* argv[]) {
    OleCompFile file;
    if (!file.OLEopen(argv[1])) return 1;
    OleSummaryInformation information;
    information.initDocumentSummaryInformation(&file);
    for (const OleProperty& property : information.readProperties()) {
        if (property.name.isEmpty()) continue;  // a standard property, which has only a number
        const OlePropertyValue::Content& content = property.value.content;
        std::cout << toUtf8(property.name) << " of type " << property.value.type;
        if (const auto* text = std::get_if<UnicodeString>(&content)) std::cout << ": " << toUtf8(*text);
        if (const auto* number = std::get_if<double>(&content)) std::cout << ": " << *number;
        if (const auto* flag = std::get_if<bool>(&content)) std::cout << ": " << (*flag ? "yes" : "no");
        std::cout << '\n';
    }
}
// [properties]
