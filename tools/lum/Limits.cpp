#include "Limits.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <iterator>
#include <string_view>

namespace LumTool {

using LumCommon::LumXmlLimits;

namespace {

struct Limit {
    const char* name;
    std::uint64_t LumXmlLimits::*value;
    unsigned code;  // 0 where another limit has the same
};

constexpr Limit namedLimits[] = {
    {"depth", &LumXmlLimits::depth, 0x183B},
    {"attributes", &LumXmlLimits::attributes, 0x183C},
    {"textUnits", &LumXmlLimits::textUnits, 0x183D},
    {"nameUnits", &LumXmlLimits::nameUnits, 0x183E},
    {"valueUnits", &LumXmlLimits::valueUnits, 0x183F},
    {"expansionFactor", &LumXmlLimits::expansionFactor, 0},
    {"expansionThreshold", &LumXmlLimits::expansionThreshold, 0x1837},
    {"openInputs", &LumXmlLimits::openInputs, 0x1838},
    {"externalInputs", &LumXmlLimits::externalInputs, 0x1840},
    {"externalBytes", &LumXmlLimits::externalBytes, 0x1841},
    {"inflatedBytes", &LumXmlLimits::inflatedBytes, 0x1842},
    {"inflationRatio", &LumXmlLimits::inflationRatio, 0x1843},
    {"totalBytes", &LumXmlLimits::totalBytes, 0x1844},
    {"timeMs", &LumXmlLimits::timeMs, 0x1845},
    {"names", &LumXmlLimits::names, 0x1846},
};
static_assert(sizeof(LumXmlLimits) == std::size(namedLimits) * sizeof(std::uint64_t), "a limit has no name");

}  // namespace

void addLimitOptions(Syntax& syntax, std::vector<std::string>& limits) {
    static const std::string help = [] {
        std::string text = "NAME=VALUE, may be repeated; VALUE is a number or \"off\", NAME one of";
        for (const Limit& limit : namedLimits) text.append(text.ends_with("of") ? " " : ", ").append(limit.name);
        return text;
    }();
    syntax.option("--limit", limits, help.c_str());
}

LumXmlLimits readLimits(const std::vector<std::string>& limits, LumXmlLimits before) {
    for (const std::string& text : limits) {
        const std::string_view name = std::string_view(text).substr(0, text.find('='));
        const std::string_view value = std::string_view(text).substr(std::min(name.size() + 1, text.size()));
        const auto* const limit = std::find_if(std::begin(namedLimits), std::end(namedLimits),
                                               [&](const Limit& one) { return one.name == name; });
        std::uint64_t number = LumXmlLimits::off;
        const char* const end = value.data() + value.size();
        const bool isNumber = value != "off";
        const auto read = isNumber ? std::from_chars(value.data(), end, number) : std::from_chars_result{end, {}};
        if (limit == std::end(namedLimits) || value.empty() || read.ec != std::errc() || read.ptr != end) {
            throw UsageError("--limit: " + text + " is not NAME=VALUE; see --help");
        }
        before.*(limit->value) = number;
    }
    return before;
}

const char* findLimitName(unsigned code) {
    for (const Limit& limit : namedLimits) {
        if (limit.code == code) return limit.name;
    }
    return nullptr;
}

}  // namespace LumTool
