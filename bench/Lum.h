#pragma once

#include <lumcommon/lumcommon.h>

#include <streambuf>

#include "Answer.h"
#include "Inputs.h"

namespace LumBench {

namespace lum = LumCommon;

/// Reads every event and touches every name and text.
struct LumParse {
    static constexpr const char* label = "lumcommon";
    using Prepared = const Input&;

    static Answer answer(const Input& input) {
        Answer answer;
        MemoryInput in(input.bytes);
        lum::LumPtr<lum::LumXmlParser> parser = open(in);
        for (int event = parser->next(); event != lum::LumXmlParser::END_DOCUMENT; event = parser->next()) {
            if (event == lum::LumXmlParser::TEXT) {
                answer.textUnits += static_cast<std::size_t>(parser->getText().length());
            } else if (event == lum::LumXmlParser::START_TAG) {
                ++answer.elements;
                for (int i = 0; i < parser->getAttributeCount(); ++i) {
                    answer.attributes += parser->getAttributeNamespace(i) != lum::NAME_NS_XMLNS;
                }
            }
        }
        return answer;
    }

    static std::size_t run(const Input& input) {
        std::size_t seen = 0;
        MemoryInput in(input.bytes);
        lum::LumPtr<lum::LumXmlParser> parser = open(in);
        for (int event = parser->next(); event != lum::LumXmlParser::END_DOCUMENT; event = parser->next()) {
            if (event == lum::LumXmlParser::TEXT) {
                const lum::UnicodeString& text = parser->getText();
                seen += static_cast<std::size_t>(text.length()) + text[0];
            } else {
                seen += parser->getNamespace().getEnum() + parser->getName().getEnum();
                if (event == lum::LumXmlParser::START_TAG) seen += touchAttributes(*parser);
            }
        }
        return seen;
    }

private:
    static lum::LumPtr<lum::LumXmlParser> open(std::istream& in) {
        lum::LumPtr<lum::LumXmlParser> parser = lum::LumXmlUtil::createXmlParser();
        parser->setInput(in, lum::UnicodeString(), lum::UnicodeString());
        return parser;
    }

    static std::size_t touchAttributes(const lum::LumXmlParser& parser) {
        std::size_t seen = 0;
        const int count = parser.getAttributeCount();
        for (int i = 0; i < count; ++i) {
            const lum::UnicodeString& value = parser.getAttributeValue(i);
            seen += parser.getAttributeNamespace(i).getEnum() + parser.getAttributeName(i).getEnum();
            seen += static_cast<std::size_t>(value.length()) + value[0];
        }
        return seen;
    }
};

inline lum::LumPtr<lum::LumDocument> loadLum(const Input& input) {
    MemoryInput in(input.bytes);
    lum::LumPtr<lum::LumDocument> document(new lum::LumDocument);
    document->load(in);
    return document;
}

/// Builds a tree from the bytes and destroys it.
struct LumLoad {
    static constexpr const char* label = "lumcommon";
    using Prepared = const Input&;

    static Answer answer(const Input& input) {
        Answer answer;
        const lum::LumPtr<lum::LumDocument> document = loadLum(input);
        for (lum::LumNodeIterator it = document->getIterator(); it.getCurrentNode(); it.nextNode()) {
            const lum::LumNode* node = it.getCurrentNode();
            if (node->isText()) {
                answer.textUnits += static_cast<std::size_t>(node->getText().length());
            } else if (node->isElementNode()) {
                ++answer.elements;
                if (node->hasAttributes()) answer.attributes += countAttributes(*node->getAttributes());
            }
        }
        return answer;
    }

    static std::size_t run(const Input& input) {
        return static_cast<std::size_t>(loadLum(input)->getDocumentElement()->getLocalName().getEnum());
    }

private:
    static std::size_t countAttributes(const lum::LumNamedNodeMap& map) {
        std::size_t count = 0;
        for (const lum::LumNode* node = map.getFirstNode(); node; node = map.getNextNode(node)) {
            count += node->getNamespaceUri() != lum::NAME_NS_XMLNS;
        }
        return count;
    }
};

/// Discards the bytes written to it, as /dev/null does; `keep` collects them for the check.
class Sink : private std::streambuf, public std::ostream {
public:
    explicit Sink(std::string* keep = nullptr) : std::ostream(this), keep_(keep) {}
    std::size_t sizeBytes() const { return sizeBytes_; }

protected:
    std::streamsize xsputn(const char* bytes, std::streamsize count) override {
        sizeBytes_ += static_cast<std::size_t>(count);
        if (keep_) keep_->append(bytes, static_cast<std::size_t>(count));
        return count;
    }
    std::streambuf::int_type overflow(std::streambuf::int_type c) override {
        const char byte = std::streambuf::traits_type::to_char_type(c);
        xsputn(&byte, 1);
        return std::streambuf::traits_type::not_eof(c);
    }

private:
    std::string* keep_;
    std::size_t sizeBytes_ = 0;
};

/// Writes a tree as bytes. The result is checked by reading it again.
struct LumSave {
    static constexpr const char* label = "lumcommon";
    struct Prepared {
        explicit Prepared(const Input& input) : document(loadLum(input)) {}
        lum::LumPtr<lum::LumDocument> document;
    };

    static Answer answer(const Input& input) {
        Input saved{input.name, ""};
        Sink sink(&saved.bytes);
        loadLum(input)->save(sink, nullptr, u"UTF-8");
        return LumParse::answer(saved);
    }

    static std::size_t run(Prepared& prepared) {
        Sink sink;
        prepared.document->save(sink, nullptr, u"UTF-8");
        return sink.sizeBytes();
    }
};

}  // namespace LumBench
