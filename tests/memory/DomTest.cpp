// What dom/ does when memory runs out.

#include <lumcommon/dom/detail/Utf8Text.h>
#include <support/FailingMemory.h>
#include <support/TempFolder.h>

#include <dirent.h>

namespace {

using namespace LumCommon;
using LumTest::utf8;
using LumTest::operator""_text;

/// Texts and values of all lengths, repeated values, prefixes, an instruction, an entity, an element of many
/// attributes.
std::string makeSource() {
    std::string source =
        "<?xml version='1.0'?><!DOCTYPE root [<!ENTITY words 'an entity of more words than the object has room for'>]>"
        "<root xmlns='urn:a' xmlns:p='urn:a-namespace-whose-name-is-too-long-for-the-string-object'>text"
        "<p:item-whose-qualified-name-is-too-long-to-be-kept-in-a-slot p:attribute-with-a-long-name-too='short'/>"
        "<item a='a value that is too long for the string object' b='&lt;twice&gt;'>a text of twenty units"
        "<item b='&lt;twice&gt;'/></item>a text that is too long for the string object &words; after it<many";
    for (int i = 0; i < 20; ++i) source += " p:a" + std::to_string(i) + "='" + std::string(i * 3, 'v') + "'";
    return source + "/>\xC3\xA9\xE6\x97\xA5<?target of an instruction?></root>";
}
const std::string source = makeSource();

/// Classes of a caller's, for which everything goes through the interface.
class OwnElement : public ElementNS {
public:
    using ElementNS::ElementNS;
};
class OwnDocument : public LumDocument {
public:
    LumPtr<LumElement> createElementNS(LumName uri, LumName prefix, LumName local) override {
        return LumPtr<LumElement>(new OwnElement(this, uri, prefix, local));
    }
};

template <class Document>
LumPtr<LumDocument> makeDocument() {
    return LumPtr<LumDocument>(new Document);
}

/// A stream that runs out of memory has failed.
template <class Save>
auto orFailure(Save save) {
    try {
        return save();
    } catch (const LumError& error) {
        if (error.code != static_cast<unsigned>(LumErrorCodeIO::OutputFailed)) throw;
        throw std::bad_alloc();
    }
}

std::string saved(LumDocument& document, LumNode* node = nullptr, const UnicodeString& encoding = {}) {
    return orFailure([&] {
        std::ostringstream out;
        document.save(out, node, encoding);
        return std::move(out).str();
    });
}

std::string load(LumDocument& document) {
    std::istringstream in(source);
    document.load(in);
    return saved(document);
}

LumPtr<LumDocument> makeLoaded() {
    LumPtr<LumDocument> document = makeDocument<LumDocument>();
    load(*document);
    return document;
}

struct Row {
    const char* fault;
    LumPtr<LumDocument> (*make)();
    std::string (*use)(LumDocument& document);
};
const Row rows[] = {
    {"the loaded tree is another one", makeDocument<LumDocument>, load},
    {"the loaded tree is another one, of a caller's classes", makeDocument<OwnDocument>, load},
    {"a document that is read while it is saved ends early", makeDocument<LumDocument>,
     [](LumDocument& document) {
         document.setDeferredLoad(true);
         return load(document);
     }},
    {"a copy lacks an attribute or a child", makeLoaded,
     [](LumDocument& document) {
         const LumPtr<LumNode> copy = document.getDocumentElement()->cloneNode(true);
         return saved(document, copy.get()) + utf8(copy->getInnerText());
     }},
    {"a replaced file lacks content, or another one is left beside it", makeLoaded,
     [](LumDocument& document) {
         static const LumTest::TempFolder folder;
         static const std::string path = folder.getPath() + "a.xml";
         orFailure([&] { return document.saveReplacing(UnicodeString::fromUTF8(path)), 0; });
         const std::unique_ptr<DIR, int (*)(DIR*)> files(::opendir(folder.getPath().c_str()), ::closedir);
         if (!files) throw std::bad_alloc();
         int count = -2;  // without the folder and the one above it
         while (::readdir(files.get())) ++count;
         return std::to_string(count) + ' ' + std::to_string(std::filesystem::file_size(path));
     }},
    {"the copy for another document lacks a part", makeLoaded,
     [](LumDocument& document) {
         const LumPtr<LumDocument> other = makeLum<LumDocument>();
         return saved(*other, other->importNode(*document.getDocumentElement(), true).get());
     }},
    {"the saved document lacks a value or a name", makeLoaded,
     [](LumDocument& document) {
         return saved(document, nullptr, u"Shift_JIS"_text) + utf8(orFailure([&] { return document.saveXml(); })) +
                utf8(orFailure([&] { return document.saveXml(document.getDocumentElement()->getLastChild()); }));
     }},
};

TEST(DomMemory, noLongerTextIsGatheredThanAStringCanHold) {
    detail::Utf8Output output(4);
    EXPECT_EQ(output.sputn("a\xC3\xA9\xF0\x9D\x84\x9E", 7), 7);
    EXPECT_EQ(output.sputc('b'), std::char_traits<char>::eof());
    EXPECT_EQ(utf8(output.decode()), "a\xC3\xA9\xF0\x9D\x84\x9E");
}

TEST(DomMemory, documentsFailAloud) {
    for (const Row& row : rows) {
        SCOPED_TRACE(row.fault);
        LumTest::forEveryFailure(row.make, [&row](LumPtr<LumDocument>& document) { return row.use(*document); });
    }
}

// An attribute stays without its value, a node without its text, or a name without its prefix.
TEST(DomMemory, changesFailAloud) {
    LumTest::forEveryFailure(makeLoaded, [](LumPtr<LumDocument>& document) {
        LumElement* const root = document->getDocumentElement();
        LumNode* const many = root->getChildNodeByName(LumName(u"many"_text));
        const LumPtr<LumElement> made =
            document->createElement(LumName(u"p:an-element-with-a-prefix-and-a-long-name"_text));
        LumValue compound(u"a value in a compound that is too long for the object"_text);
        compound.setNamedItem(LumName(u"an-item-of-the-compound-with-a-long-name"_text), LumValue(1.5f, UNIT_PT));
        const auto set = [&](const LumName& name, const LumValue& value) {
            const bool isNew = !made->hasAttribute(name);
            try {
                made->setAttribute(name, value);
            } catch (...) {
                if (isNew && made->hasAttribute(name)) throw std::runtime_error("without its value");
                throw;
            }
        };
        set(NAME_color, LumValue(LumColor(LumColor(), u"a spot colour of a very long name"_text, 0.5f)));
        set(LumName(u"compound"_text), compound);
        set(LumName(u"xml:p"_text), LumValue(u"a new value that is too long for the string object"_text));
        made->removeAttribute(NAME_color);
        static_cast<LumElement*>(many)->setAttributeNS(LumName(u"urn:b"_text), LumName(u"q:new"_text), LumValue(3));
        static_cast<LumElement*>(many)->removeAttributeNS(LumName(u"urn:b"_text), LumName(u"new"_text));
        made->appendChild(document->createTextNode(u"a text node of more than a string has room for"_text).get());
        made->getFirstChild()->setText(u"a text that takes its place and is long, too"_text);
        made->appendChildText(u"a second text"_text);
        std::string told = saved(*document, made.get()) + utf8(made->getNodeName().getString());
        told += utf8(LumXmlUtil::makeNSQNameStr(u"urn:a-namespace-with-a-long-name"_text, u"local"_text));
        return told + utf8(many->lookupPrefix(many->lookupNamespaceUri(LumName(u"p"_text))).getString());
    });
}

}  // namespace
