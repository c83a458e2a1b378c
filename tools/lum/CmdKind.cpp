#include <lumcommon/containers/LumZipFile.h>
#include <lumcommon/containers/OleCompFile.h>
#include <lumcommon/core/LumError.h>
#include <lumcommon/names/LumXmlUtil.h>
#include <lumcommon/streams/LumGzipStream.h>

#include "Command.h"
#include "Input.h"
#include "Output.h"

#include <nlohmann/json.hpp>

namespace lum {
namespace {

using namespace LumCommon;
using nlohmann::ordered_json;

struct Arguments {
    std::string file;
};

void describe(CLI::App& command, Arguments& arguments) {
    command.add_option("file", arguments.file, "A file, a URI, or - for standard input")->required();
}

/// The kind of office document, 0 also for a package that cannot be read.
int officeKindOf(std::istream& in) {
    try {
        return LumZipFile::detectOOXDocument(&in);
    } catch (const LumError&) {
        return 0;
    }
}

/// The root of an XML document, null for what is none.
ordered_json rootOf(std::istream& in) {
    try {
        LumName localName;
        const LumName namespaceUri = LumXmlUtil::getRootName(localName, in);
        if (localName.isNull()) return nullptr;
        return {{"name", toUtf8(localName)}, {"namespace", toUtf8(namespaceUri)}};
    } catch (const LumError&) {
        return nullptr;
    }
}

std::istream& rewound(std::istream& in) {
    in.clear();
    in.seekg(0);
    return in;
}

void run(const Arguments& arguments) {
    const std::unique_ptr<std::istream> in = openInput(arguments.file);
    ordered_json kind = {{"zip", LumZipFile::isZipFile(in.get())}};
    kind["ooxml"] = officeKindOf(*in);
    kind["ole"] = OleCompFile::detectOLEDocument(rewound(*in));
    kind["gzip"] = LumGzipStreamBuf::checkHeader(rewound(*in));
    LumGzipStream content(rewound(*in));  // what is not gzip passes through
    kind["root"] = rootOf(content);
    printJson(kind);
}

}  // namespace

void addKindCommand(CLI::App& app, Action& action) {
    addCommand(app, action, "kind", "Tell what kind of file it is, as JSON", describe, run);
}

}  // namespace lum
