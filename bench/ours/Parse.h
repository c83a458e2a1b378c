#pragma once

#include <lumcommon/lumcommon.h>

#include "contest/Answer.h"
#include "contest/Input.h"

namespace LumBench {

namespace lum = LumCommon;

/// The events of next(), every name and text looked at.
class Parse {
public:
    explicit Parse(const Input& input) : input_(input), parser_(lum::LumXmlUtil::createXmlParser()) {}

    Answer count() {
        Answer answer;
        forEachEvent([&](int event) {
            if (event == lum::LumXmlParser::TEXT) {
                answer.textUnits += static_cast<std::size_t>(parser_->getText().length());
            } else if (event == lum::LumXmlParser::START_TAG) {
                ++answer.elements;
                for (int i = 0; i < parser_->getAttributeCount(); ++i) {
                    answer.attributes += parser_->getAttributeNamespace(i) != lum::NAME_NS_XMLNS;
                }
            }
        });
        return answer;
    }

    std::size_t touch() {
        std::size_t seen = 0;
        forEachEvent([&](int event) {
            if (event == lum::LumXmlParser::TEXT) {
                const lum::UnicodeString& text = parser_->getText();
                seen += static_cast<std::size_t>(text.length()) + text[0];
            } else {
                seen += parser_->getNamespace().getEnum() + parser_->getName().getEnum();
                if (event == lum::LumXmlParser::START_TAG) seen += touchAttributes();
            }
        });
        return seen;
    }

private:
    template <class Visit>
    void forEachEvent(Visit visit) {
        MemoryInput in(input_.bytes);
        parser_->setInput(in, lum::UnicodeString(), lum::UnicodeString());
        for (int event = parser_->next(); event != lum::LumXmlParser::END_DOCUMENT; event = parser_->next()) {
            visit(event);
        }
    }

    std::size_t touchAttributes() const {
        std::size_t seen = 0;
        const int count = parser_->getAttributeCount();
        for (int i = 0; i < count; ++i) {
            const lum::UnicodeString& value = parser_->getAttributeValue(i);
            seen += parser_->getAttributeNamespace(i).getEnum() + parser_->getAttributeName(i).getEnum();
            seen += static_cast<std::size_t>(value.length()) + value[0];
        }
        return seen;
    }

    const Input& input_;

protected:
    lum::LumPtr<lum::LumXmlParser> parser_;
};

/// The same as the standard says.
class ConformingParse : public Parse {
public:
    explicit ConformingParse(const Input& input) : Parse(input) {
        parser_->setFeature(lum::LumXmlParser::FEATURE_CONFORMING, true);
    }
};

}  // namespace LumBench
