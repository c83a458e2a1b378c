#pragma once

#include <lumcommon/lumcommon.h>

#include <vector>

#include "contest/Contender.h"

namespace LumBench {

namespace lum = LumCommon;

/// The interned names that attributes are asked for by.
struct LookUp {
    explicit LookUp(const std::vector<std::string>& texts) {
        for (const std::string& text : texts) names.emplace_back(lum::UnicodeString::fromUTF8(text));
    }
    std::vector<lum::LumName> names;
};

/// A loaded document.
/// @tparam Document  lum::LumDocument or a class of the caller's.
template <class Document>
class Tree {
public:
    explicit Tree(const Input& input) : document_(new Document) {
        MemoryInput in(input.bytes);
        document_->load(in);
    }

    Answer count() const {
        Answer answer;
        forEachNode([&](const lum::LumNode* node) {
            if (node->isText()) {
                answer.textUnits += static_cast<std::size_t>(node->getText().length());
            } else {
                ++answer.elements;
                if (node->hasAttributes()) answer.attributes += countAttributes(*node->getAttributes());
            }
        });
        return answer;
    }

    void save(std::string& bytes) {
        MemoryOutput out(bytes);
        document_->save(out, nullptr, u"UTF-8");
    }

    std::size_t walk() const {
        std::size_t seen = 0;
        forEachNode([&](const lum::LumNode* node) { seen += node->getLocalName().getEnum(); });
        return seen;
    }

    std::size_t lookUp(const LookUp& lookUp, Hits* hits) const {
        std::size_t seen = 0;
        forEachNode([&](const lum::LumNode* node) {
            if (!node->isElementNode()) return;
            const auto* const element = static_cast<const lum::LumElement*>(node);
            for (const lum::LumName name : lookUp.names) {
                const lum::LumValue value = element->getAttribute(name);
                const lum::UnicodeString* const text = value.getStringPointer();
                if (!text) continue;
                seen += static_cast<std::size_t>(text->length());
                if (hits) ++hits->values, hits->units += static_cast<std::size_t>(text->length());
            }
        });
        return seen;
    }

private:
    template <class Visit>
    void forEachNode(Visit visit) const {
        const lum::LumNode* const root = document_->getDocumentElement();
        const lum::LumNode* node = root;
        while (node) {
            visit(node);
            const lum::LumNode* next = node->getFirstChild();
            while (!next && node != root) {
                next = node->getNextSibling();
                if (!next) node = node->getParentNode();
            }
            node = next;
        }
    }

    static std::size_t countAttributes(const lum::LumNamedNodeMap& map) {
        std::size_t count = 0;
        for (const lum::LumNode* node = map.getFirstNode(); node; node = map.getNextNode(node)) {
            count += node->getNamespaceUri() != lum::NAME_NS_XMLNS;
        }
        return count;
    }

    lum::LumPtr<Document> document_;
};

}  // namespace LumBench
