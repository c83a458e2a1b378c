#pragma once

#include <expat.h>
#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include <map>
#include <string>
#include <vector>

#include "support/XmlEvents.h"

// What other parsers tell about a document, in the words of tell(). What follows the "!" of a refusal is the peer's own
// number and words.

namespace LumTest {

/// What a document refers to, by the last part of its address.
using Resources = std::map<std::string, std::string>;

/// A space where there is none of that name, so that no parser has to judge an address.
inline std::string findResource(const Resources& resources, const char* address) {
    const std::string name = address ? address : "";
    const auto found = resources.find(name.substr(name.rfind('/') + 1));
    return found == resources.end() ? " " : found->second;
}

struct PeerStory {
    const Resources& resources;
    std::string told = {};
    std::string refusal = {};  // the first
    void refuse(int code, std::string words) {
        std::replace(words.begin(), words.end(), '!', '?');  // the words may quote the document
        if (refusal.empty()) refusal = "!" + std::to_string(code) + " " + words;
    }
};

inline std::string tellByExpat(const std::string& document, const Resources& resources = {}) {
    static constexpr auto nameOf = [](const std::string& text) {
        const std::size_t separator = text.find('\x1F');
        return separator == std::string::npos ? text
                                              : "{" + text.substr(0, separator) + "}" + text.substr(separator + 1);
    };
    static constexpr auto parse = [](XML_Parser parser, const std::string& bytes) {
        const bool isRead = XML_Parse(parser, bytes.data(), static_cast<int>(bytes.size()), 1) == XML_STATUS_OK;
        const XML_Error code = XML_GetErrorCode(parser);
        if (!isRead) static_cast<PeerStory*>(XML_GetUserData(parser))->refuse(code, XML_ErrorString(code));
        XML_ParserFree(parser);
        return isRead;
    };
    PeerStory story{resources};
    const XML_Parser parser = XML_ParserCreateNS(nullptr, '\x1F');
    XML_SetUserData(parser, &story);
    XML_SetParamEntityParsing(parser, XML_PARAM_ENTITY_PARSING_ALWAYS);
    XML_SetExternalEntityRefHandler(
        parser, [](XML_Parser from, const XML_Char* context, const XML_Char*, const XML_Char* id, const XML_Char*) {
            const XML_Parser inner = XML_ExternalEntityParserCreate(from, context, nullptr);
            return int{parse(inner, findResource(static_cast<PeerStory*>(XML_GetUserData(from))->resources, id))};
        });
    XML_SetElementHandler(
        parser,
        [](void* data, const XML_Char* name, const XML_Char** pairs) {
            std::vector<std::string> attributes;
            for (; *pairs; pairs += 2) attributes.push_back(nameOf(pairs[0]) + "='" + pairs[1] + "'");
            static_cast<PeerStory*>(data)->told += startTag(nameOf(name), attributes);
        },
        [](void* data, const XML_Char* name) { static_cast<PeerStory*>(data)->told += "</" + nameOf(name) + ">"; });
    XML_SetCharacterDataHandler(parser, [](void* data, const XML_Char* text, int size) {
        static_cast<PeerStory*>(data)->told.append(text, static_cast<std::size_t>(size));
    });
    parse(parser, document);
    return story.told + story.refusal;
}

/// With wrong namespaces as refusals, which that parser forgives.
inline std::string tellByLibxml2(const std::string& document, const Resources& resources = {}) {
    using Text = const xmlChar*;
    static constexpr auto storyOf = [](void* context) {
        return static_cast<PeerStory*>(static_cast<xmlParserCtxtPtr>(context)->_private);
    };
    static constexpr auto nameOf = [](Text name, Text uri) {
        const auto* local = reinterpret_cast<const char*>(name);
        return uri ? "{" + std::string(reinterpret_cast<const char*>(uri)) + "}" + local : std::string(local);
    };
    static constexpr auto addText = [](void* context, Text text, int size) {
        storyOf(context)->told.append(reinterpret_cast<const char*>(text), static_cast<std::size_t>(size));
    };
    xmlSetExternalEntityLoader([](const char* address, const char*, xmlParserCtxtPtr context) {
        const std::string bytes = findResource(storyOf(context)->resources, address);
        const auto buffer =
            xmlParserInputBufferCreateMem(bytes.data(), static_cast<int>(bytes.size()), XML_CHAR_ENCODING_NONE);
        const xmlParserInputPtr input = xmlNewIOInputStream(context, buffer, XML_CHAR_ENCODING_NONE);
        input->filename = reinterpret_cast<char*>(xmlCharStrdup(address ? address : ""));
        return input;
    });
    xmlSetStructuredErrorFunc(nullptr, [](void*, xmlErrorPtr) {});  // errors outside of parsing would be printed
    PeerStory story{resources};
    const xmlParserCtxtPtr context = xmlNewParserCtxt();
    context->_private = &story;
    context->sax->characters = context->sax->ignorableWhitespace = context->sax->cdataBlock = addText;
    context->sax->reference = nullptr;
    context->sax->comment = nullptr;
    context->sax->processingInstruction = nullptr;
    context->sax->startElementNs = [](void* data, Text name, Text, Text uri, int, Text*, int count, int, Text* fields) {
        std::vector<std::string> attributes;
        for (Text* field = fields; field != fields + 5 * count; field += 5)
            attributes.push_back(nameOf(field[0], field[2]) + "='" + std::string(field[3], field[4]) + "'");
        storyOf(data)->told += startTag(nameOf(name, uri), attributes);
    };
    context->sax->endElementNs = [](void* data, Text name, Text, Text uri) {
        storyOf(data)->told += "</" + nameOf(name, uri) + ">";
    };
    context->sax->serror = [](void* data, xmlErrorPtr error) {
        const bool isNamespace = error->domain == XML_FROM_NAMESPACE && error->code != XML_WAR_NS_URI;
        if (error->level == XML_ERR_FATAL || (error->level == XML_ERR_ERROR && isNamespace))
            storyOf(data)->refuse(error->code, error->message);
    };
    xmlFreeDoc(xmlCtxtReadMemory(context, document.data(), static_cast<int>(document.size()),
                                 "http://library.invalid/d", nullptr,
                                 XML_PARSE_NOENT | XML_PARSE_DTDLOAD | XML_PARSE_DTDATTR));
    if (!context->wellFormed) story.refuse(context->errNo, "not well-formed");
    xmlFreeParserCtxt(context);
    return story.told + story.refusal;
}

}  // namespace LumTest
