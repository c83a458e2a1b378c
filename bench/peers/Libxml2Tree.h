#pragma once

#include "Libxml2.h"

namespace LumBench {

struct LookUp {
    explicit LookUp(const std::vector<std::string>& texts) : names(texts) {}
    std::vector<std::string> names;
};

class Libxml2Tree {
public:
    explicit Libxml2Tree(const Input& input)
        : document_(xmlReadMemory(input.bytes.data(), static_cast<int>(input.bytes.size()), nullptr, nullptr,
                                  libxml2Options)) {
        if (!document_) throw std::runtime_error("libxml2 refuses " + input.name);
    }
    ~Libxml2Tree() { xmlFreeDoc(document_); }
    Libxml2Tree(const Libxml2Tree&) = delete;
    Libxml2Tree& operator=(const Libxml2Tree&) = delete;

    Answer count() const {
        Answer answer;
        forEachNode([&](const xmlNode* node) {
            if (node->type == XML_ELEMENT_NODE) {
                ++answer.elements;
                for (const xmlAttr* a = node->properties; a; a = a->next) ++answer.attributes;
            } else if (node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE) {
                answer.textUnits += countUnits(viewOf(node->content));
            }
        });
        return answer;
    }

    void save(std::string& bytes) const {
        xmlChar* saved = nullptr;
        int size = 0;
        xmlDocDumpMemoryEnc(document_, &saved, &size, "UTF-8");
        // The result is the memory that it has allocated; only the check needs it as a string.
        if (isKept_) bytes.assign(reinterpret_cast<const char*>(saved), static_cast<std::size_t>(size));
        isKept_ = false;
        xmlFree(saved);
    }

    std::size_t walk() const {
        std::size_t seen = 0;
        forEachNode([&](const xmlNode* node) { seen += *node->name; });
        return seen;
    }

    /// By the function that hands over a copy of the value, as ours does.
    std::size_t lookUp(const LookUp& lookUp, Hits* hits) const {
        std::size_t seen = 0;
        forEachNode([&](xmlNode* node) {
            if (node->type != XML_ELEMENT_NODE) return;
            for (const std::string& name : lookUp.names) {
                xmlChar* const value = xmlGetNoNsProp(node, libxml2Text(name));
                if (!value) continue;
                seen += *value;
                if (hits) ++hits->values, hits->units += countUnits(viewOf(value));
                xmlFree(value);
            }
        });
        return seen;
    }

private:
    template <class Visit>
    void forEachNode(Visit visit) const {
        xmlNode* const root = xmlDocGetRootElement(document_);
        xmlNode* node = root;
        while (node) {
            visit(node);
            xmlNode* next = node->type == XML_ELEMENT_NODE ? node->children : nullptr;
            while (!next && node != root) {
                next = node->next;
                if (!next) node = node->parent;
            }
            node = next;
        }
    }

    xmlDocPtr document_;
    mutable bool isKept_ = true;  // what is saved first
};

}  // namespace LumBench
