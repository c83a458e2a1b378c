// Takes texts, paths and numbers of the standard library in, and gives them back:  texts IN OUT
// [texts]
#include <lumcommon/bridge/LumException.h>
#include <lumcommon/bridge/LumPrint.h>
#include <lumcommon/bridge/LumText.h>
#include <lumcommon/lumcommon.h>

#include <filesystem>
#include <iomanip>
#include <iostream>
#include <string>

using namespace LumCommon;

int main(int, char* argv[]) try {
    const std::filesystem::path in(argv[1]);
    const LumPtr<LumDocument> document = makeLum<LumDocument>();
    document->load(in);  // a path is a path: nothing in its name is decoded

    LumElement* const root = document->getDocumentElement();
    const std::string title = "caf\xC3\xA9";                // UTF-8
    root->setAttribute(toName("title"), toText(title));     // a text from UTF-8
    root->setAttribute(NAME_id, u"first");                  // UTF-16 as it is
    root->setAttribute(NAME_line_height, 1.5);              // a number
    root->setAttribute(NAME_width, LumValue(20, UNIT_MM));  // a number with a unit

    const std::string back = toUtf8(root->getAttribute(toName("title")));
    std::cout << (back == title ? "the same text" : "another text") << ", from " << uriToPath(pathToUri(in)).filename()
              << '\n';
    std::cout << LumName(NAME_width) << " =" << std::setw(8) << root->getAttribute(NAME_width) << '\n';
    try {
        withStdExceptions([&] { document->loadXml(u"<a>\n <b></a>"); });
    } catch (const std::exception& error) {  // a LumError does not come as one, a LumException does
        std::cout << error.what() << '\n';
    }
    try {
        document->loadXml(u"<a>\n <b></a>");
    } catch (const LumError& error) {
        const LumPosition place = positionOf(error);
        std::cout << "line " << place.line << ", column " << place.column << '\n';
    }
} catch (const LumError& error) {
    std::cerr << error << '\n';
    return 1;
}
// [texts]
