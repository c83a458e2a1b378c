#pragma once

#include <lumcommon/core/LumPtr.h>
#include <lumcommon/dom/LumDocument.h>
#include <lumcommon/xml/LumXmlParser.h>

#include "Command.h"

#include <string>
#include <vector>

namespace LumTool {

/// The options of a command that reads an XML document.
struct XmlSource {
    bool isConforming = false;
    std::vector<std::string> limits;
    std::string file;

    void describe(Syntax& syntax);
    /// Declares FILE; the arguments after it come later.
    void describeFile(Syntax& syntax);

    /// A parser that these options have set up, before its first event.
    LumCommon::LumPtr<LumCommon::LumXmlParser> open(const std::vector<std::string>& features = {},
                                                    const std::string& encoding = {}) const;
    void load(LumCommon::LumDocument& document) const;
};

/// What help says of --feature: the names and numbers of all features.
const char* featureHelp();

}  // namespace LumTool
