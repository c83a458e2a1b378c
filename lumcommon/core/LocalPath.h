#pragma once

#include <lumcommon/core/Api.h>

#include <concepts>
#include <string_view>

namespace LumCommon {

/// std::filesystem::path, and what looks like it. An operation that takes one opens that file, whatever is in its name:
/// nothing is decoded. Texts do not convert to it, so that calls with a text or a literal still take a URI.
///
///     document->load(std::filesystem::path("100%41.fo"));  // the file of that name
///     document->load(u"100%41.fo");                        // a URI: the file "100A.fo"
///
/// It is a concept so that the headers with such operations need not include that of std::filesystem.
template <class T>
concept LocalPath = requires(const T& path) {
    { path.native() } -> std::convertible_to<std::string_view>;
    { path.lexically_normal() } -> std::same_as<T>;
};

}  // namespace LumCommon
