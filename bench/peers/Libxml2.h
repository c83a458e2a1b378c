#pragma once

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <stdexcept>

#include "contest/Contender.h"

namespace LumBench {

/// Documents of any size and depth, nothing fetched, entities expanded as we do it.
constexpr int libxml2Options = XML_PARSE_HUGE | XML_PARSE_NONET | XML_PARSE_NOENT;

inline std::string_view viewOf(const xmlChar* text) {
    return text ? std::string_view(reinterpret_cast<const char*>(text)) : std::string_view();
}

inline std::size_t firstOf(const xmlChar* text) { return text ? *text : 0; }

inline const xmlChar* libxml2Text(const std::string& text) { return reinterpret_cast<const xmlChar*>(text.c_str()); }

}  // namespace LumBench
