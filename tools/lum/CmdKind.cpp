#include <lumcommon/containers/LumZipFile.h>
#include <lumcommon/containers/OleCompFile.h>
#include <lumcommon/core/LumError.h>
#include <lumcommon/names/LumXmlUtil.h>
#include <lumcommon/streams/JZIOobj.h>
#include <lumcommon/streams/LumGzipStream.h>
#include <lumcommon/xml/LumXmlParser.h>

#include "Command.h"
#include "Input.h"
#include "Output.h"
#include "Words.h"

namespace LumTool {
namespace {

using namespace LumCommon;

/// The kind of office document; 0 if there is none or the package cannot be read.
int officeKindOf(std::istream& in) {
    try {
        LumZipFile package(&in, false);
        package.setAcceptsStrictPackages(true);
        return package.detectOOXDocument();
    } catch (const LumError&) {
        return 0;
    }
}

int oleKindOf(std::istream& in) {
    JZStreamIOobj io(&in);
    OleCompFile file;
    file.setAcceptsLooseFiles(true);
    return file.OLEopen(&io) ? file.getDocumentKind() : 0;
}

/// The root of an XML document; null if the input is not an XML document. What kind of file it is, it says itself:
/// nothing else is opened.
Json rootOf(std::istream& in) {
    try {
        const LumPtr<LumXmlParser> parser = LumXmlUtil::createXmlParser();
        parser->setUntrusted();
        for (const auto feature :
             {LumXmlParser::FEATURE_SKIP_EXTERNAL_DTD, LumXmlParser::FEATURE_IGNORE_UNDEFINED_ENTITIES,
              LumXmlParser::FEATURE_ALLOW_UNDECLARED_PREFIX, LumXmlParser::FEATURE_IGNORE_UNSUPPORTED_ENCODING}) {
            parser->setFeature(feature, true);
        }
        parser->setInput(in, {}, {});
        for (LumXmlParser::EventType event; (event = parser->next()) != LumXmlParser::START_TAG;) {
            if (event == LumXmlParser::END_DOCUMENT) return nullptr;
        }
        return Json{{"name", toUtf8(parser->getName())}, {"namespace", toUtf8(parser->getNamespace())}};
    } catch (const LumError&) {
        return nullptr;
    }
}

std::istream& rewound(std::istream& in) {
    in.clear();
    in.seekg(0);
    return in;
}

void run(const std::string& file) {
    const std::unique_ptr<std::istream> in = openInput(file);
    Json kind = {{"zip", LumZipFile::isZipFile(in.get())}};
    const int package = officeKindOf(*in), oleDocument = oleKindOf(rewound(*in));
    kind.add("ooxml", package);
    kind.add("ole", oleDocument);
    kind.add("gzip", LumGzipStreamBuf::checkHeader(rewound(*in)));
    LumGzipStream content(rewound(*in));  // other data pass through unchanged
    kind.add("root", rootOf(content));
    kind.add("ooxmlName", wordOfPackage(package));
    kind.add("oleName", wordOfOleDocument(oleDocument));
    printJson(kind);
}

}  // namespace

Command makeKindCommand() {
    return makeCommand("kind", "Print what kind of file this is, as JSON", "file", fileHelp, run);
}

}  // namespace LumTool
