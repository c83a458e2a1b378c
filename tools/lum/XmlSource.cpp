#include "XmlSource.h"

#include <lumcommon/names/LumXmlUtil.h>

#include "Input.h"
#include "Limits.h"
#include "Output.h"

#include <algorithm>
#include <iostream>
#include <iterator>

namespace LumTool {

using namespace LumCommon;

namespace {

struct NamedFeature {
    const char* name;
    LumXmlParser::Feature feature;
};

constexpr NamedFeature namedFeatures[] = {
    {"skip-external-dtd", LumXmlParser::FEATURE_SKIP_EXTERNAL_DTD},
    {"ignore-undefined-entities", LumXmlParser::FEATURE_IGNORE_UNDEFINED_ENTITIES},
    {"allow-undeclared-prefix", LumXmlParser::FEATURE_ALLOW_UNDECLARED_PREFIX},
    {"ignore-external-dtd-errors", LumXmlParser::FEATURE_IGNORE_EXTERNAL_DTD_ERRORS},
    {"ignore-unsupported-encoding", LumXmlParser::FEATURE_IGNORE_UNSUPPORTED_ENCODING},
    {"builtin-encodings-only", LumXmlParser::FEATURE_BUILTIN_ENCODINGS_ONLY},
    {"conforming", LumXmlParser::FEATURE_CONFORMING},
    {"no-external", LumXmlParser::FEATURE_NO_EXTERNAL},
};

LumXmlParser::Feature findFeature(const std::string& text) {
    for (const NamedFeature& one : namedFeatures) {
        if (text == one.name || text == std::to_string(one.feature)) return one.feature;
    }
    throw UsageError("--feature: there is no feature \"" + text + "\"; see --help");
}

}  // namespace

const char* featureHelp() {
    static const std::string help = [] {
        std::string text = "Turn on a feature of the parser, by its name or number; may be repeated:";
        for (const NamedFeature& one : namedFeatures) {
            text.append(text.ends_with(":") ? " " : ", ").append(one.name) += " (" + std::to_string(one.feature) + ")";
        }
        return text;
    }();
    return help.c_str();
}

void XmlSource::describe(Syntax& syntax) {
    syntax.flag("--conforming", isConforming, "Read XML 1.0 as the standard says, and nothing else");
    addLimitOptions(syntax, limits);
}

void XmlSource::describeFile(Syntax& syntax) { syntax.required("file", file, fileHelp); }

LumPtr<LumXmlParser> XmlSource::open(const std::vector<std::string>& features, const std::string& encoding) const {
    LumPtr<LumXmlParser> parser = LumXmlUtil::createXmlParser();
    if (commonOptions().isUntrusted) parser->setUntrusted();
    if (isConforming) parser->setFeature(LumXmlParser::FEATURE_CONFORMING, true);
    for (const std::string& text : features) parser->setFeature(findFeature(text), true);
    parser->setLimits(readLimits(limits, parser->getLimits()));
    if (file == "-") {
        parser->setInput(std::cin, fromArgument(encoding), {});
    } else {
        parser->setInput(toUri(file), fromArgument(encoding), {});
    }
    return parser;
}

void XmlSource::load(LumDocument& document) const {
    if (commonOptions().isUntrusted) document.setUntrusted();
    document.setConforming(isConforming);
    document.setLimits(readLimits(limits, document.getLimits()));
    if (file == "-") {
        document.load(std::cin);
    } else {
        document.load(toUri(file));
    }
}

}  // namespace LumTool
