// Opens what references in a document lead to:  resources PACKAGE
// [resources]
#include <lumcommon/bridge/LumPrint.h>
#include <lumcommon/lumcommon.h>

#include <iostream>
#include <iterator>
#include <memory>
#include <sstream>

using namespace LumCommon;

class Shelf : public LumUriReferenceResolver {  // what the program has itself; nothing else of http: is opened
    std::istream* getStream(const UnicodeString& uri) override {
        if (uri == u"http://books.example/logo.svg") return new std::istringstream("<svg/>");
        return LumUri(uri).getScheme() == u"http" ? refusal() : nullptr;
    }
};

static void show(const LumUri& uri) {
    std::cout << uri << ": ";
    bool isRefused = false;
    const std::unique_ptr<std::istream> in(uri.getStream(nullptr, nullptr, &isRefused));
    if (in) {
        const std::string bytes(std::istreambuf_iterator<char>(*in), {});
        std::cout << bytes.size() << " bytes" << (in->bad() ? ", broken off" : "") << '\n';
    } else {
        std::cout << (isRefused ? "refused\n" : "not to be opened\n");
    }
}

int main(int, char* argv[]) {
    Shelf shelf;
    LumUri::setUriReferenceResolver(&shelf);

    const LumUri base(u"http://books.example/one/book.fo");
    show(LumUri(base, u"../logo.svg"));
    show(LumUri(base, u"url('figures/a b.svg')"));
    show(LumUri::fromLocalPath("/no such/100%.fo"));

    const LumUri package(UnicodeString::fromUTF8(argv[1]));
    show(package);
    show(LumUri(u"jar:" + package.toString() + u"!/word/document.xml"));

    const LumDataUri data(u"data:text/plain;base64,SGVsbG8h");
    const UnicodeString letters(data.toString(), data.getDataStart());
    std::cout << toUtf8(data.getMediaType()) << ": ";
    LumUtil::decodeBase64(letters, letters.length(), std::cout);
    std::cout << '\n';

    LumUri::setUriReferenceResolver(nullptr);  // before the shelf goes
}
// [resources]
