// expat in namespace mode: the parser whose work is closest to ours. It keeps UTF-8 and does not intern names.

#include <expat.h>

#include <stdexcept>

#include "contest/Contender.h"

namespace LumBench {
namespace {

class Parse {
public:
    explicit Parse(const Input& input) : input_(input), parser_(XML_ParserCreateNS(nullptr, '|')) {}
    ~Parse() { XML_ParserFree(parser_); }
    Parse(const Parse&) = delete;
    Parse& operator=(const Parse&) = delete;

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
    void parse(void* data, XML_StartElementHandler start, XML_EndElementHandler end, XML_CharacterDataHandler text) {
        if (isUsed_) XML_ParserReset(parser_, nullptr);
        isUsed_ = true;
        XML_SetUserData(parser_, data);
        XML_SetElementHandler(parser_, start, end);
        XML_SetCharacterDataHandler(parser_, text);
        const std::string& bytes = input_.bytes;
        if (XML_Parse(parser_, bytes.data(), static_cast<int>(bytes.size()), 1) != XML_STATUS_OK) {
            throw std::runtime_error("expat refuses " + input_.name);
        }
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

    const Input& input_;
    XML_Parser parser_;
    bool isUsed_ = false;
};

}  // namespace

std::vector<Entry> entries() {
    return {
        {"events", "expat", make<EventsTrial<Parse, false>>},
        {"events-kept", "expat", make<EventsTrial<Parse, true>>},
    };
}

}  // namespace LumBench
