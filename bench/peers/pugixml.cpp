// pugixml ignores namespaces and checks less; it shows the least that a tree can cost. It keeps white space here, as
// the others do.

#include <cstring>
#include <pugixml.hpp>
#include <stdexcept>

#include "contest/Contender.h"

namespace LumBench {
namespace {

struct LookUp {
    explicit LookUp(const std::vector<std::string>& texts) : names(texts) {}
    std::vector<std::string> names;
};

class Tree {
public:
    explicit Tree(const Input& input) {
        constexpr unsigned options = pugi::parse_default | pugi::parse_ws_pcdata;
        if (!document_.load_buffer(input.bytes.data(), input.bytes.size(), options)) {
            throw std::runtime_error("pugixml refuses " + input.name);
        }
    }

    Answer count() const {
        Answer answer;
        forEachNode([&](const pugi::xml_node node) {
            if (node.type() == pugi::node_element) {
                ++answer.elements;
                for (const pugi::xml_attribute attribute : node.attributes()) {
                    answer.attributes += std::strncmp(attribute.name(), "xmlns", 5) != 0;
                }
            } else {
                answer.textUnits += countUnits(node.value());
            }
        });
        return answer;
    }

    void save(std::string& bytes) const {
        struct Writer : pugi::xml_writer {
            explicit Writer(std::string& to) : bytes(to) {}
            void write(const void* data, std::size_t size) override {
                bytes.append(static_cast<const char*>(data), size);
            }
            std::string& bytes;
        } writer(bytes);
        document_.save(writer, "", pugi::format_raw, pugi::encoding_utf8);
    }

    std::size_t walk() const {
        std::size_t seen = 0;
        forEachNode([&](const pugi::xml_node node) { seen += static_cast<unsigned char>(node.name()[0]); });
        return seen;
    }

    std::size_t lookUp(const LookUp& lookUp, Hits* hits) const {
        std::size_t seen = 0;
        forEachNode([&](const pugi::xml_node node) {
            if (node.type() != pugi::node_element) return;
            for (const std::string& name : lookUp.names) {
                const pugi::xml_attribute attribute = node.attribute(name.c_str());
                if (!attribute) continue;
                seen += static_cast<unsigned char>(attribute.value()[0]);
                if (hits) ++hits->values, hits->units += countUnits(attribute.value());
            }
        });
        return seen;
    }

private:
    template <class Visit>
    void forEachNode(Visit visit) const {
        const pugi::xml_node root = document_.document_element();
        pugi::xml_node node = root;
        while (node) {
            visit(node);
            pugi::xml_node next = node.first_child();
            while (!next && node != root) {
                next = node.next_sibling();
                if (!next) node = node.parent();
            }
            node = next;
        }
    }

    pugi::xml_document document_;
};

}  // namespace

std::vector<Entry> entries() {
    return {
        {"tree", "pugixml", make<TreeTrial<Tree>>},
        {"save", "pugixml", make<SaveTrial<Tree>>},
        {"walk", "pugixml", make<WalkTrial<Tree>>},
        {"attribute", "pugixml", make<AttributeTrial<Tree, LookUp>>},
    };
}

}  // namespace LumBench
