#pragma once

#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlreader.h>

#include <memory>
#include <stdexcept>

#include "Answer.h"
#include "Inputs.h"

namespace LumBench {

constexpr int libxmlOptions = XML_PARSE_HUGE | XML_PARSE_NONET | XML_PARSE_NOENT;

inline std::string_view libxmlText(const xmlChar* text) {
    return text ? std::string_view(reinterpret_cast<const char*>(text)) : std::string_view();
}

/// libxml2's callbacks with namespaces, its fastest interface. The callbacks for declarations stay the default ones,
/// because those store the entities.
struct LibxmlSax2 {
    static constexpr const char* label = "libxml2 SAX2";
    using Prepared = const Input&;

    static Answer answer(const Input& input) {
        Answer answer;
        parse(input, &answer, onStart, onEnd, onText);
        return answer;
    }

    static std::size_t run(const Input& input) {
        std::size_t seen = 0;
        parse(input, &seen, touchStart, touchEnd, touchText);
        return seen;
    }

private:
    template <class Data>
    static Data& dataOf(void* context) {
        return *static_cast<Data*>(static_cast<xmlParserCtxtPtr>(context)->_private);
    }

    static void parse(const Input& input, void* data, startElementNsSAX2Func start, endElementNsSAX2Func end,
                      charactersSAXFunc text) {
        const std::unique_ptr<xmlParserCtxt, void (*)(xmlParserCtxtPtr)> parser(xmlNewParserCtxt(), xmlFreeParserCtxt);
        parser->_private = data;
        parser->sax->startElementNs = start;
        parser->sax->endElementNs = end;
        parser->sax->characters = parser->sax->ignorableWhitespace = parser->sax->cdataBlock = text;
        const xmlDocPtr declarations = xmlCtxtReadMemory(
            parser.get(), input.bytes.data(), static_cast<int>(input.bytes.size()), nullptr, nullptr, libxmlOptions);
        if (!declarations) throw std::runtime_error("libxml2 refuses " + input.name);
        xmlFreeDoc(declarations);
    }

    static void onStart(void* context, const xmlChar*, const xmlChar*, const xmlChar*, int, const xmlChar**,
                        int attributeCount, int, const xmlChar**) {
        auto& answer = dataOf<Answer>(context);
        ++answer.elements;
        answer.attributes += static_cast<std::size_t>(attributeCount);
    }
    static void onEnd(void*, const xmlChar*, const xmlChar*, const xmlChar*) {}
    static void onText(void* context, const xmlChar* text, int length) {
        dataOf<Answer>(context).textUnits +=
            countUnits({reinterpret_cast<const char*>(text), static_cast<std::size_t>(length)});
    }

    static std::size_t touch(const xmlChar* name) { return name ? *name : 0; }
    static void touchStart(void* context, const xmlChar* name, const xmlChar*, const xmlChar* uri, int declarationCount,
                           const xmlChar** declarations, int attributeCount, int, const xmlChar** attributes) {
        auto& seen = dataOf<std::size_t>(context);
        seen += touch(name) + touch(uri);
        // Prefix and namespace; name, prefix, namespace, first character and end of the value.
        for (int i = 0; i < 2 * declarationCount; ++i) seen += touch(declarations[i]);
        for (int i = 0; i < 5 * attributeCount; i += 5) {
            seen += touch(attributes[i]) + touch(attributes[i + 2]) + *attributes[i + 3];
            seen += static_cast<std::size_t>(attributes[i + 4] - attributes[i + 3]);
        }
    }
    static void touchEnd(void* context, const xmlChar* name, const xmlChar*, const xmlChar* uri) {
        dataOf<std::size_t>(context) += touch(name) + touch(uri);
    }
    static void touchText(void* context, const xmlChar* text, int length) {
        dataOf<std::size_t>(context) += static_cast<std::size_t>(length) + *text;
    }
};

/// libxml2's pull parser, which creates and drops a tree node for each event.
struct LibxmlReader {
    static constexpr const char* label = "libxml2 reader";
    using Prepared = const Input&;

    static Answer answer(const Input& input) {
        Answer answer;
        forEachNode(input, [&](xmlTextReaderPtr reader, int type) {
            if (type == XML_READER_TYPE_ELEMENT) {
                ++answer.elements;
                while (xmlTextReaderMoveToNextAttribute(reader) == 1) {
                    answer.attributes += xmlTextReaderIsNamespaceDecl(reader) != 1;
                }
            } else if (isText(type)) {
                answer.textUnits += countUnits(libxmlText(xmlTextReaderConstValue(reader)));
            }
        });
        return answer;
    }

    static std::size_t run(const Input& input) {
        std::size_t seen = 0;
        forEachNode(input, [&](xmlTextReaderPtr reader, int type) {
            if (isText(type)) {
                seen += *xmlTextReaderConstValue(reader);
                return;
            }
            seen += *xmlTextReaderConstLocalName(reader);
            if (type != XML_READER_TYPE_ELEMENT) return;
            while (xmlTextReaderMoveToNextAttribute(reader) == 1) {
                seen += *xmlTextReaderConstLocalName(reader) + *xmlTextReaderConstValue(reader);
            }
        });
        return seen;
    }

private:
    static bool isText(int type) {
        return type == XML_READER_TYPE_TEXT || type == XML_READER_TYPE_CDATA || type == XML_READER_TYPE_WHITESPACE ||
               type == XML_READER_TYPE_SIGNIFICANT_WHITESPACE;
    }

    template <class Visit>
    static void forEachNode(const Input& input, Visit visit) {
        std::unique_ptr<xmlTextReader, void (*)(xmlTextReaderPtr)> reader(
            xmlReaderForMemory(input.bytes.data(), static_cast<int>(input.bytes.size()), nullptr, nullptr,
                               libxmlOptions),
            xmlFreeTextReader);
        int status = xmlTextReaderRead(reader.get());
        for (; status == 1; status = xmlTextReaderRead(reader.get())) {
            const int type = xmlTextReaderNodeType(reader.get());
            if (type == XML_READER_TYPE_ELEMENT || type == XML_READER_TYPE_END_ELEMENT || isText(type)) {
                visit(reader.get(), type);
            }
        }
        if (status != 0) throw std::runtime_error("libxml2 refuses " + input.name);
    }
};

using LibxmlDocument = std::unique_ptr<xmlDoc, void (*)(xmlDocPtr)>;

inline LibxmlDocument loadLibxml(const Input& input) {
    LibxmlDocument document(
        xmlReadMemory(input.bytes.data(), static_cast<int>(input.bytes.size()), nullptr, nullptr, libxmlOptions),
        xmlFreeDoc);
    if (!document) throw std::runtime_error("libxml2 refuses " + input.name);
    return document;
}

struct LibxmlLoad {
    static constexpr const char* label = "libxml2 tree";
    using Prepared = const Input&;

    static Answer answer(const Input& input) {
        Answer answer;
        const LibxmlDocument document = loadLibxml(input);
        const xmlNode* root = xmlDocGetRootElement(document.get());
        for (const xmlNode* node = root; node; node = next(node, root)) {
            if (node->type == XML_ELEMENT_NODE) {
                ++answer.elements;
                for (const xmlAttr* attribute = node->properties; attribute; attribute = attribute->next) {
                    ++answer.attributes;
                }
            } else if (node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE) {
                answer.textUnits += countUnits(libxmlText(node->content));
            }
        }
        return answer;
    }

    static std::size_t run(const Input& input) { return *xmlDocGetRootElement(loadLibxml(input).get())->name; }

private:
    static const xmlNode* next(const xmlNode* node, const xmlNode* root) {
        if (node->type == XML_ELEMENT_NODE && node->children) return node->children;
        while (node != root && !node->next) node = node->parent;
        return node == root ? nullptr : node->next;
    }
};

/// Writes into memory that it allocates; the other contenders write into a sink, so this one pays for an extra copy.
struct LibxmlSave {
    static constexpr const char* label = "libxml2 tree";
    struct Prepared {
        explicit Prepared(const Input& input) : document(loadLibxml(input)) {}
        LibxmlDocument document;
    };

    static Answer answer(const Input& input) {
        Prepared prepared(input);
        Input saved{input.name, ""};
        dump(prepared, &saved.bytes);
        return LibxmlReader::answer(saved);
    }

    static std::size_t run(Prepared& prepared) { return dump(prepared, nullptr); }

private:
    static std::size_t dump(Prepared& prepared, std::string* keep) {
        xmlChar* bytes = nullptr;
        int size = 0;
        xmlDocDumpMemoryEnc(prepared.document.get(), &bytes, &size, "UTF-8");
        if (keep) keep->assign(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(size));
        xmlFree(bytes);
        return static_cast<std::size_t>(size);
    }
};

}  // namespace LumBench
