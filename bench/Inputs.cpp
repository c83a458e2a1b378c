#include "Inputs.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>

namespace LumBench {

namespace {

std::string read(const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    if (!in || bytes.empty()) {
        std::fprintf(stderr, "cannot read %s\n", file.c_str());
        std::exit(1);
    }
    return bytes;
}

constexpr std::size_t madeSizeBytes = 2'000'000;

/// Repeats `piece` between `begin` and `end` until the document has about the size common to all generated ones.
std::string repeated(const std::string& begin, const std::string& piece, const std::string& end) {
    std::string document = begin;
    while (document.size() < madeSizeBytes) document += piece;
    return document + end;
}

std::string manyAttributes() {
    std::string element = "<e";
    for (int i = 0; i < 40; ++i) {
        element += " a" + std::to_string(i) + "=\"value " + std::to_string(i) + "\"";
    }
    return repeated("<r>", element + "/>", "</r>");
}

std::string deepNesting() {
    std::string document, closing;
    while (document.size() < madeSizeBytes / 2) {
        document += "<level>";
        closing += "</level>";
    }
    return document + closing;
}

std::string utf16(const std::string& ascii) {
    std::string bytes = "\xFF\xFE";
    bytes.reserve(2 * ascii.size() + 2);
    for (const char c : ascii) {
        bytes += c;
        bytes += '\0';
    }
    return bytes;
}

}  // namespace

const std::vector<Input>& inputs() {
    static const std::vector<Input> all = [] {
        const std::string data = LUM_BENCH_DATA;
        std::vector<Input> list;
        list.push_back({"book.fo", read(LUM_BENCH_BOOK)});
        list.push_back({"protocol.fo", read(data + "/fo/protocol.fo")});
        list.push_back({"article.fo", read(data + "/fo/article.fo")});
        list.push_back({"cjk.utf8", read(data + "/cjk/help.utf8.xml")});
        list.push_back({"cjk.utf16", read(data + "/cjk/help.utf16le.xml")});
        list.push_back({"attributes", manyAttributes()});
        list.push_back({"deep", deepNesting()});
        list.push_back({"text", repeated("<r>", "All of this is text without markup.\n", "</r>")});
        list.push_back({"references", repeated("<r>", "a &lt; b &amp;&#x41; c\r\n", "</r>")});
        list.push_back({"huge-value", repeated("<r a=\"", "all of this is one value ", "\"/>")});
        list.push_back({"utf16", utf16(repeated("<r>", "<p id='x'>Plain text in wide units.</p>", "</r>"))});
        return list;
    }();
    return all;
}

}  // namespace LumBench
