#pragma once

#include <libxml/xmlreader.h>

#include "Libxml2.h"

namespace LumBench {

/// libxml2's pull parser, which creates and drops a tree node for each event. A used one refuses UTF-16, so each turn
/// has its own.
class ReaderParse {
public:
    explicit ReaderParse(const Input& input) : input_(input) {}
    ~ReaderParse() { xmlFreeTextReader(reader_); }
    ReaderParse(const ReaderParse&) = delete;
    ReaderParse& operator=(const ReaderParse&) = delete;

    Answer count() {
        Answer answer;
        forEachNode([&](int type) {
            if (type == XML_READER_TYPE_ELEMENT) {
                ++answer.elements;
                while (xmlTextReaderMoveToNextAttribute(reader_) == 1) {
                    answer.attributes += xmlTextReaderIsNamespaceDecl(reader_) != 1;
                }
            } else if (isText(type)) {
                answer.textUnits += countUnits(viewOf(xmlTextReaderConstValue(reader_)));
            }
        });
        return answer;
    }

    std::size_t touch() {
        std::size_t seen = 0;
        forEachNode([&](int type) {
            if (isText(type)) {
                seen += *xmlTextReaderConstValue(reader_);
                return;
            }
            seen += *xmlTextReaderConstLocalName(reader_) + firstOf(xmlTextReaderConstNamespaceUri(reader_));
            if (type != XML_READER_TYPE_ELEMENT) return;
            while (xmlTextReaderMoveToNextAttribute(reader_) == 1) {
                seen += *xmlTextReaderConstLocalName(reader_) + *xmlTextReaderConstValue(reader_);
                seen += firstOf(xmlTextReaderConstNamespaceUri(reader_));
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
    void forEachNode(Visit visit) {
        xmlFreeTextReader(reader_);
        reader_ = xmlReaderForMemory(input_.bytes.data(), static_cast<int>(input_.bytes.size()), nullptr, nullptr,
                                     libxml2Options);
        int status = xmlTextReaderRead(reader_);
        for (; status == 1; status = xmlTextReaderRead(reader_)) {
            const int type = xmlTextReaderNodeType(reader_);
            if (type == XML_READER_TYPE_ELEMENT || type == XML_READER_TYPE_END_ELEMENT || isText(type)) visit(type);
        }
        if (status != 0) throw std::runtime_error("libxml2 refuses " + input_.name);
    }

    const Input& input_;
    xmlTextReaderPtr reader_ = nullptr;
};

}  // namespace LumBench
