#include <lumcommon/core/LumError.h>
#include <lumcommon/format/LumUtil.h>
#include <lumcommon/uri/LumDataUri.h>
#include <unicode/stringoptions.h>

#include "Command.h"
#include "Input.h"
#include "Output.h"
#include "Progress.h"

#include <iostream>
#include <memory>

namespace LumTool {
namespace {

using namespace LumCommon;

bool isBase64(const UnicodeString& head) {
    static const UnicodeString mark(u";base64");
    const int32_t start = head.length() - mark.length();
    return start >= 0 && head.caseCompare(start, mark.length(), mark, U_FOLD_CASE_DEFAULT) == 0;
}

void printData(const UnicodeString& argument) {
    const LumDataUri uri(argument);
    const int32_t start = uri.getDataStart();
    if (start == -1) failToOpen(toUtf8(argument), "no comma before the data");
    const UnicodeString& text = uri.toString();
    UnicodeString data(text, start), head(text, 0, start - 1);
    checked(data);
    if (isBase64(checked(checked(head).trim()))) {
        LumUtil::decodeBase64(data, data.length(), std::cout);
        return;
    }
    // An escape stands for a byte. Characters that were not escaped are written unchanged.
    for (int32_t i = 0; i < data.length(); i = data.moveIndex32(i, 1)) {
        const UChar32 c = data.char32At(i);
        if (c <= 0xFF) {
            std::cout.put(static_cast<char>(c));
        } else {
            std::cout << toUtf8(UnicodeString(c));
        }
    }
}

void run(const std::string& argument) {
    const Progress progress(argument, Progress::Output::Standard);
    if (argument == "-") {
        copyToOutput(std::cin);
        return;
    }
    const LumUri uri(toUri(argument));
    if (uri.isDataScheme()) return printData(uri.toString());
    UnicodeString message;
    const std::unique_ptr<std::istream> in(uri.getStream(nullptr, &message));
    if (!in) {
        failToOpen(argument, toUtf8(message));
    }
    copyToOutput(*in);
}

}  // namespace

Command makeCatCommand() {
    return makeCommand("cat", "Write the bytes of a resource", "uri",
                       "A file, a file:, http:, jar: or data: URI, or - for standard input", run);
}

}  // namespace LumTool
