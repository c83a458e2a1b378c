#include "Terminal.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace LumTool {

bool isColored() {
    static const bool isAsked = [] {
        const char* const refusal = std::getenv("NO_COLOR");
        const char* const terminal = std::getenv("TERM");
        const bool isDumb = terminal && std::string_view(terminal) == "dumb";
        return isatty(STDOUT_FILENO) != 0 && !(refusal && *refusal) && !isDumb;
    }();
    return isAsked;
}

std::string painted(Look look, std::string_view text) {
    constexpr const char* sequences[] = {"\033[1;34m", "\033[36m", "\033[32m", "\033[2m"};
    if (!isColored()) return std::string(text);
    return std::string(sequences[static_cast<int>(look)]).append(text).append("\033[0m");
}

std::string swatchOf(unsigned rgb) {
    if (!isColored()) return {};
    char text[48];
    std::snprintf(text, sizeof text, "  \033[48;2;%u;%u;%um      \033[0m", rgb >> 16 & 0xFF, rgb >> 8 & 0xFF,
                  rgb & 0xFF);
    return text;
}

std::string harmless(std::string_view text) {
    std::string shown;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        const bool isSecondSet = c == 0xC2 && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) < 0xA0;
        if (c >= 0x20 && c != 0x7F && !isSecondSet) {
            shown += text[i];
            continue;
        }
        char escape[8];
        std::snprintf(escape, sizeof escape, "\\u%04x",
                      isSecondSet ? static_cast<unsigned char>(text[++i]) : unsigned{c});
        shown += c == '\n' ? "\\n" : c == '\t' ? "\\t" : c == '\r' ? "\\r" : escape;
    }
    return shown;
}

}  // namespace LumTool
