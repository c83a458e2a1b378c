#pragma once

#include "Libxml2.h"

namespace LumBench {

/// libxml2's callbacks with namespaces, its fastest interface. The callbacks for declarations stay the default ones,
/// because those store the entities.
class Sax2Parse {
public:
    explicit Sax2Parse(const Input& input) : input_(input), parser_(xmlNewParserCtxt()) {}
    ~Sax2Parse() { xmlFreeParserCtxt(parser_); }
    Sax2Parse(const Sax2Parse&) = delete;
    Sax2Parse& operator=(const Sax2Parse&) = delete;

    Answer count() {
        Answer answer;
        parse(&answer, onStart, onEnd, onText);
        return answer;
    }

    std::size_t touch() {
        std::size_t seen = 0;
        parse(&seen, touchStart, touchEnd, touchText);
        return seen;
    }

private:
    template <class Data>
    static Data& dataOf(void* context) {
        return *static_cast<Data*>(static_cast<xmlParserCtxtPtr>(context)->_private);
    }

    void parse(void* data, startElementNsSAX2Func start, endElementNsSAX2Func end, charactersSAXFunc text) {
        parser_->_private = data;
        parser_->sax->startElementNs = start;
        parser_->sax->endElementNs = end;
        parser_->sax->characters = parser_->sax->ignorableWhitespace = parser_->sax->cdataBlock = text;
        const xmlDocPtr declarations = xmlCtxtReadMemory(
            parser_, input_.bytes.data(), static_cast<int>(input_.bytes.size()), nullptr, nullptr, libxml2Options);
        if (!declarations) throw std::runtime_error("libxml2 refuses " + input_.name);
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

    static void touchStart(void* context, const xmlChar* name, const xmlChar*, const xmlChar* uri, int declarationCount,
                           const xmlChar** declarations, int attributeCount, int, const xmlChar** attributes) {
        auto& seen = dataOf<std::size_t>(context);
        seen += firstOf(name) + firstOf(uri);
        // Prefix and namespace; name, prefix, namespace, first character and end of the value.
        for (int i = 0; i < 2 * declarationCount; ++i) seen += firstOf(declarations[i]);
        for (int i = 0; i < 5 * attributeCount; i += 5) {
            seen += firstOf(attributes[i]) + firstOf(attributes[i + 2]) + *attributes[i + 3];
            seen += static_cast<std::size_t>(attributes[i + 4] - attributes[i + 3]);
        }
    }
    static void touchEnd(void* context, const xmlChar* name, const xmlChar*, const xmlChar* uri) {
        dataOf<std::size_t>(context) += firstOf(name) + firstOf(uri);
    }
    static void touchText(void* context, const xmlChar* text, int length) {
        dataOf<std::size_t>(context) += static_cast<std::size_t>(length) + *text;
    }

    const Input& input_;
    xmlParserCtxtPtr parser_;
};

}  // namespace LumBench
