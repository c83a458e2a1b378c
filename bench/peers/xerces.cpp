// Xerces-C without validation: SAX2, and the tree of its own parser. It keeps UTF-16, as we do.

#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufFormatTarget.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax2/Attributes.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/sax2/XMLReaderFactory.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLUni.hpp>

#include "contest/Contender.h"

namespace LumBench {
namespace {

using namespace xercesc;

MemBufInputSource sourceOf(const Input& input) {
    return {reinterpret_cast<const XMLByte*>(input.bytes.data()), input.bytes.size(), "input"};
}

class Counting : public DefaultHandler {
public:
    void startElement(const XMLCh*, const XMLCh*, const XMLCh*, const Attributes& attributes) override {
        ++answer.elements;
        answer.attributes += attributes.getLength();
    }
    void characters(const XMLCh*, XMLSize_t length) override { answer.textUnits += length; }
    void fatalError(const SAXParseException&) override { throw std::runtime_error("Xerces-C refuses the input"); }

    Answer answer;
};

class Touching : public DefaultHandler {
public:
    void startElement(const XMLCh* uri, const XMLCh* name, const XMLCh*, const Attributes& attributes) override {
        seen += uri[0] + std::size_t{name[0]};
        for (XMLSize_t i = 0; i < attributes.getLength(); ++i) {
            seen += attributes.getURI(i)[0] + std::size_t{attributes.getLocalName(i)[0]} + attributes.getValue(i)[0];
        }
    }
    void endElement(const XMLCh* uri, const XMLCh* name, const XMLCh*) override {
        seen += uri[0] + std::size_t{name[0]};
    }
    void characters(const XMLCh* text, XMLSize_t length) override { seen += length + text[0]; }

    std::size_t seen = 0;
};

class Parse {
public:
    explicit Parse(const Input& input) : input_(input), parser_(XMLReaderFactory::createXMLReader()) {
        parser_->setFeature(XMLUni::fgSAX2CoreValidation, false);
        parser_->setFeature(XMLUni::fgXercesDynamic, false);
        parser_->setFeature(XMLUni::fgXercesSchema, false);
        parser_->setFeature(XMLUni::fgXercesLoadExternalDTD, false);
    }

    Answer count() {
        Counting handler;
        parse(handler);
        return handler.answer;
    }

    std::size_t touch() {
        Touching handler;
        parse(handler);
        return handler.seen;
    }

private:
    void parse(DefaultHandler& handler) {
        parser_->setContentHandler(&handler);
        parser_->setErrorHandler(&handler);
        parser_->parse(sourceOf(input_));
    }

    const Input& input_;
    std::unique_ptr<SAX2XMLReader> parser_;
};

std::basic_string<XMLCh> wide(const std::string& ascii) { return {ascii.begin(), ascii.end()}; }

struct LookUp {
    explicit LookUp(const std::vector<std::string>& texts) {
        for (const std::string& text : texts) names.push_back(wide(text));
    }
    std::vector<std::basic_string<XMLCh>> names;
};

class Tree {
public:
    explicit Tree(const Input& input) {
        Counting errors;
        XercesDOMParser parser;
        parser.setErrorHandler(&errors);
        parser.setDoNamespaces(true);
        parser.setValidationScheme(XercesDOMParser::Val_Never);
        parser.setLoadExternalDTD(false);
        parser.setCreateEntityReferenceNodes(false);
        parser.setCreateCommentNodes(false);
        parser.parse(sourceOf(input));
        document_ = parser.adoptDocument();
    }
    ~Tree() { document_->release(); }
    Tree(const Tree&) = delete;
    Tree& operator=(const Tree&) = delete;

    Answer count() const {
        Answer answer;
        forEachNode([&](const DOMNode* node) {
            if (node->getNodeType() != DOMNode::ELEMENT_NODE) {
                answer.textUnits += XMLString::stringLen(node->getNodeValue());
                return;
            }
            ++answer.elements;
            const DOMNamedNodeMap* const attributes = node->getAttributes();
            for (XMLSize_t i = 0; i < attributes->getLength(); ++i) {
                answer.attributes += !XMLString::equals(attributes->item(i)->getNamespaceURI(), XMLUni::fgXMLNSURIName);
            }
        });
        return answer;
    }

    void save(std::string& bytes) const {
        DOMImplementation* const maker = DOMImplementationRegistry::getDOMImplementation(wide("LS").c_str());
        DOMLSSerializer* const serializer = maker->createLSSerializer();
        DOMLSOutput* const output = maker->createLSOutput();
        MemBufFormatTarget target;
        output->setByteStream(&target);
        output->setEncoding(XMLUni::fgUTF8EncodingString);
        serializer->write(document_, output);
        bytes.assign(reinterpret_cast<const char*>(target.getRawBuffer()), target.getLen());
        output->release();
        serializer->release();
    }

    std::size_t walk() const {
        std::size_t seen = 0;
        forEachNode([&](const DOMNode* node) { seen += node->getNodeName()[0]; });
        return seen;
    }

    std::size_t lookUp(const LookUp& lookUp, Hits* hits) const {
        std::size_t seen = 0;
        forEachNode([&](const DOMNode* node) {
            if (node->getNodeType() != DOMNode::ELEMENT_NODE) return;
            const auto* const element = static_cast<const DOMElement*>(node);
            for (const std::basic_string<XMLCh>& name : lookUp.names) {
                const DOMAttr* const attribute = element->getAttributeNode(name.c_str());
                if (!attribute) continue;
                seen += attribute->getValue()[0];
                if (hits) ++hits->values, hits->units += XMLString::stringLen(attribute->getValue());
            }
        });
        return seen;
    }

private:
    template <class Visit>
    void forEachNode(Visit visit) const {
        const DOMNode* const root = document_->getDocumentElement();
        const DOMNode* node = root;
        while (node) {
            visit(node);
            const DOMNode* next = node->getFirstChild();
            while (!next && node != root) {
                next = node->getNextSibling();
                if (!next) node = node->getParentNode();
            }
            node = next;
        }
    }

    DOMDocument* document_;
};

}  // namespace

std::vector<Entry> entries() {
    XMLPlatformUtils::Initialize();
    return {
        {"events", "Xerces-C SAX2", make<EventsTrial<Parse, false>>},
        {"events-kept", "Xerces-C SAX2", make<EventsTrial<Parse, true>>},
        {"tree", "Xerces-C", make<TreeTrial<Tree>>},
        {"save", "Xerces-C", make<SaveTrial<Tree>>},
        {"walk", "Xerces-C", make<WalkTrial<Tree>>},
        {"attribute", "Xerces-C", make<AttributeTrial<Tree, LookUp>>},
    };
}

}  // namespace LumBench
