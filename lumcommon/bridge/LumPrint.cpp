#include <lumcommon/bridge/LumPrint.h>

namespace LumCommon {

std::string toUtf8(const LumLength& length) {
    return length.isValid() ? toUtf8(LumValue(length.getPoints(), UNIT_PT)) : std::string();
}

std::string toUtf8(const LumPosition& position) {
    std::string text = toUtf8(position.location);
    for (const int number : {position.line, position.column}) {
        if (number == -1) continue;
        if (!text.empty()) text += ':';
        text += std::to_string(number);
    }
    return text;
}

}  // namespace LumCommon
