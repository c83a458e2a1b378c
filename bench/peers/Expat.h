#pragma once

#include <expat.h>

#include <stdexcept>

#include "Answer.h"
#include "Inputs.h"

namespace LumBench {

/// expat in namespace mode: the parser whose work is closest to ours. It keeps UTF-8 and does not intern names.
struct ExpatParse {
    static constexpr const char* label = "expat";
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
    static void parse(const Input& input, void* data, XML_StartElementHandler start, XML_EndElementHandler end,
                      XML_CharacterDataHandler text) {
        XML_Parser parser = XML_ParserCreateNS(nullptr, '|');
        XML_SetUserData(parser, data);
        XML_SetElementHandler(parser, start, end);
        XML_SetCharacterDataHandler(parser, text);
        const XML_Status status = XML_Parse(parser, input.bytes.data(), static_cast<int>(input.bytes.size()), 1);
        XML_ParserFree(parser);
        if (status != XML_STATUS_OK) throw std::runtime_error("expat refuses " + input.name);
    }

    static void onStart(void* data, const XML_Char*, const XML_Char** attributes) {
        auto& answer = *static_cast<Answer*>(data);
        ++answer.elements;
        for (; *attributes; attributes += 2) ++answer.attributes;
    }
    static void onEnd(void*, const XML_Char*) {}
    static void onText(void* data, const XML_Char* text, int length) {
        static_cast<Answer*>(data)->textUnits += countUnits({text, static_cast<std::size_t>(length)});
    }

    static void touchStart(void* data, const XML_Char* name, const XML_Char** attributes) {
        auto& seen = *static_cast<std::size_t*>(data);
        seen += static_cast<unsigned char>(name[0]);
        for (; *attributes; ++attributes) seen += static_cast<unsigned char>((*attributes)[0]);
    }
    static void touchEnd(void* data, const XML_Char* name) {
        *static_cast<std::size_t*>(data) += static_cast<unsigned char>(name[0]);
    }
    static void touchText(void* data, const XML_Char* text, int length) {
        *static_cast<std::size_t*>(data) += static_cast<std::size_t>(length) + static_cast<unsigned char>(text[0]);
    }
};

}  // namespace LumBench
