#pragma once

#include <cstring>
#include <pugixml.hpp>
#include <stdexcept>
#include <string>

#include "Answer.h"
#include "Inputs.h"

namespace LumBench {

/// pugixml ignores namespaces and checks less; it shows the least that a tree can cost.
inline void loadPugixml(const Input& input, pugi::xml_document& document) {
    constexpr unsigned options = pugi::parse_default | pugi::parse_ws_pcdata;
    if (!document.load_buffer(input.bytes.data(), input.bytes.size(), options)) {
        throw std::runtime_error("pugixml refuses " + input.name);
    }
}

inline Answer countPugixml(const pugi::xml_document& document) {
    Answer answer;
    const pugi::xml_node root = document.document_element();
    for (pugi::xml_node node = root; node;) {
        if (node.type() == pugi::node_element) {
            ++answer.elements;
            for (const pugi::xml_attribute attribute : node.attributes()) {
                answer.attributes += std::strncmp(attribute.name(), "xmlns", 5) != 0;
            }
        } else if (node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata) {
            answer.textUnits += countUnits(node.value());
        }
        if (node.first_child()) {
            node = node.first_child();
            continue;
        }
        while (node != root && !node.next_sibling()) node = node.parent();
        node = node == root ? pugi::xml_node() : node.next_sibling();
    }
    return answer;
}

struct PugixmlLoad {
    static constexpr const char* label = "pugixml";
    using Prepared = const Input&;

    static Answer answer(const Input& input) {
        pugi::xml_document document;
        loadPugixml(input, document);
        return countPugixml(document);
    }

    static std::size_t run(const Input& input) {
        pugi::xml_document document;
        loadPugixml(input, document);
        return static_cast<unsigned char>(document.document_element().name()[0]);
    }
};

struct PugixmlSave {
    static constexpr const char* label = "pugixml";
    struct Prepared {
        explicit Prepared(const Input& input) { loadPugixml(input, document); }
        pugi::xml_document document;
    };

    static Answer answer(const Input& input) {
        Prepared prepared(input);
        Writer writer;
        writer.keeps = true;
        prepared.document.save(writer, "", pugi::format_raw);
        return PugixmlLoad::answer({input.name, writer.bytes});
    }

    static std::size_t run(Prepared& prepared) {
        Writer writer;
        prepared.document.save(writer, "", pugi::format_raw);
        return writer.sizeBytes;
    }

private:
    struct Writer : pugi::xml_writer {
        void write(const void* data, std::size_t size) override {
            sizeBytes += size;
            if (keeps) bytes.append(static_cast<const char*>(data), size);
        }
        bool keeps = false;
        std::size_t sizeBytes = 0;
        std::string bytes;
    };
};

}  // namespace LumBench
