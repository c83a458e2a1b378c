#include <lumcommon/dom/LumDocument.h>
#include <lumcommon/dom/LumElement.h>
#include <lumcommon/dom/LumXmlSerializer.h>

#include "Command.h"
#include "Input.h"
#include "Output.h"
#include "Progress.h"
#include "XmlSource.h"

#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

namespace LumTool {
namespace {

using namespace LumCommon;

struct Arguments {
    bool isLazy = false;
    bool isWithoutGenerator = false;
    XmlSource source;
    std::string encoding, output = "-";
};

void describe(Syntax& syntax, Arguments& arguments) {
    syntax.flag("--lazy", arguments.isLazy, "Keep only the open elements of the document in memory");
    syntax.flag("--no-generator", arguments.isWithoutGenerator, "Leave out the generator comment");
    arguments.source.describe(syntax);
    syntax.option("--encoding", arguments.encoding, "UTF-8 or Shift_JIS");
    arguments.source.describeFile(syntax);
    syntax.optional("out", arguments.output,
                    "The file to write, which may be FILE: replaced once all is written; standard output if omitted");
}

/// Writes the element and its descendants as they are loaded. A node is removed as soon as it is written and the next
/// one is known, so that only the open elements and their next nodes are in memory at any time.
void saveAsLoaded(LumDocument& document, LumElement* root) {
    LumXmlSerializer& serializer = *document.getSerializer();
    LumNode* node = root;
    for (;;) {
        const bool isElement = node->isElementNode();
        document.doSave(node, isElement);  // for an element only the start tag
        if (isElement) {
            if (LumNode* const child = node->getFirstChild()) {
                node = child;
                continue;
            }
            serializer.endTag(node->getNamespaceUri(), node->getLocalName());
        }
        for (;;) {
            if (node == root) return;
            LumNode* const parent = node->getParentNode();
            LumNode* const next = node->getNextSibling();
            parent->removeChild(node);
            if (next) {
                node = next;
                break;
            }
            node = parent;
            serializer.endTag(node->getNamespaceUri(), node->getLocalName());
        }
    }
}

void saveLazily(LumDocument& document, const Arguments& arguments) {
    document.setDeferredLoad(true);
    arguments.source.load(document);
    LumElement* const root = document.getDocumentElement();
    LumXmlSerializer& serializer = *document.getSerializer();
    const UnicodeString encoding = fromArgument(arguments.encoding);
    if (arguments.output == "-") {
        serializer.setOutput(std::cout, encoding);
    } else {
        serializer.setOutput(toOutputUri(arguments.output), encoding);
    }
    serializer.startDocument({}, {});
    if (root) saveAsLoaded(document, root);
    serializer.endDocument();
}

void saveWhole(LumDocument& document, const Arguments& arguments) {
    arguments.source.load(document);
    const UnicodeString encoding = fromArgument(arguments.encoding);
    if (arguments.output == "-") {
        document.save(std::cout, nullptr, encoding);
    } else {
        document.saveReplacing(toOutputUri(arguments.output), nullptr, encoding);
    }
}

bool isSameFile(const std::string& a, const std::string& b) {
    std::error_code error;
    return std::filesystem::equivalent(a, b, error) && !error;
}

/// What the serializer does not know, it would pass over.
void checkEncoding(const std::string& encoding) {
    UnicodeString name = fromArgument(encoding);
    if (encoding.empty() || checked(name.toUpper()) == u"UTF-8" || name == u"SHIFT_JIS") return;
    throw UsageError("--encoding: documents are written in UTF-8 or Shift_JIS, not in " + encoding);
}

void run(const Arguments& arguments) {
    const LumPtr<LumDocument> document(new LumDocument);
    if (arguments.isWithoutGenerator) document->getSerializer()->setGenerator({});
    const std::string& file = arguments.source.file;
    if (arguments.isLazy && isSameFile(file, arguments.output)) {
        throw UsageError("--lazy reads FILE while it writes OUT: they must be different files");
    }
    checkEncoding(arguments.encoding);
    const bool isToFile = arguments.output != "-";
    const Progress progress(file, isToFile ? Progress::Output::File : Progress::Output::Standard);
    withReasons(file, [&] { arguments.isLazy ? saveLazily(*document, arguments) : saveWhole(*document, arguments); });
}

}  // namespace

Command makeSaveCommand() { return makeCommand("save", "Load a document and save it again", describe, run); }

}  // namespace LumTool
