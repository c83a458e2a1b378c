// Reads a document as events, loads it into a tree, walks the tree and saves it, and prints what it found and how long
// each step took:
//   measure IN OUT
#include <lumcommon/lumcommon.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>

using namespace LumCommon;

namespace {

class Stopwatch {
public:
    double seconds() const { return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count(); }

private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

void report(const char* what, std::uintmax_t sizeBytes, double seconds) {
    std::printf("%-28s %8.2f ms %9.1f MB/s\n", what, seconds * 1e3, static_cast<double>(sizeBytes) / 1e6 / seconds);
}

struct Counts {
    std::size_t events = 0, elements = 0, attributes = 0, texts = 0, textUnits = 0;
};

Counts readEvents(const char* file) {
    std::ifstream in(file, std::ios::binary);
    LumPtr<LumXmlParser> parser = LumXmlUtil::createXmlParser();
    parser->setInput(in, UnicodeString(), UnicodeString());
    Counts counts;
    for (int event = parser->next();; event = parser->next()) {
        ++counts.events;
        if (event == LumXmlParser::END_DOCUMENT) return counts;
        if (event == LumXmlParser::START_TAG) {
            ++counts.elements;
            counts.attributes += static_cast<std::size_t>(parser->getAttributeCount());
        } else if (event == LumXmlParser::TEXT) {
            ++counts.texts;
            counts.textUnits += static_cast<std::size_t>(parser->getText().length());
        }
    }
}

/// Counts the same things as readEvents(); namespace declarations are attributes in both.
Counts walkTree(LumDocument& document) {
    Counts counts;
    for (LumNodeIterator it = document.getIterator(); LumNode* node = it.getCurrentNode(); it.nextNode()) {
        if (node->isElementNode()) {
            ++counts.elements;
            if (node->hasAttributes()) {
                counts.attributes += static_cast<std::size_t>(node->getAttributes()->getCount());
            }
        } else if (node->isText()) {
            ++counts.texts;
            counts.textUnits += static_cast<std::size_t>(node->getText().length());
        }
    }
    return counts;
}

}  // namespace

int main(int argc, char* argv[]) try {
    if (argc != 3) {
        std::cerr << "usage: measure IN OUT\n";
        return 2;
    }
    const std::uintmax_t sizeBytes = std::filesystem::file_size(argv[1]);
    std::printf("%s, %ju bytes\n\n", argv[1], sizeBytes);

    Stopwatch parse;
    const Counts events = readEvents(argv[1]);
    const double parseSeconds = parse.seconds();

    LumPtr<LumDocument> document = makeLum<LumDocument>();
    Stopwatch load;
    document->load(std::filesystem::path(argv[1]));
    const double loadSeconds = load.seconds();

    Stopwatch walk;
    const Counts tree = walkTree(*document);
    const double walkSeconds = walk.seconds();

    Stopwatch save;
    document->save(std::filesystem::path(argv[2]));
    const double saveSeconds = save.seconds();

    std::printf("events     %10zu\nelements   %10zu\nattributes %10zu\ntexts      %10zu (%zu UTF-16 units)\n\n",
                events.events, events.elements, events.attributes, events.texts, events.textUnits);
    report("read every event", sizeBytes, parseSeconds);
    report("load into a tree", sizeBytes, loadSeconds);
    report("walk the tree", sizeBytes, walkSeconds);
    report("save the tree", sizeBytes, saveSeconds);
    std::printf("\nthe saved copy is %s, %ju bytes\n", argv[2], std::filesystem::file_size(argv[2]));

    if (tree.elements != events.elements || tree.attributes != events.attributes ||
        tree.textUnits != events.textUnits) {
        std::cerr << "the tree differs from the events\n";
        return 1;
    }
    return 0;
} catch (const LumError& error) {
    std::string message;
    std::cerr << error.getMessage().toUTF8String(message) << '\n';
    return 1;
} catch (const std::exception& error) {  // a file whose size cannot be read
    std::cerr << error.what() << '\n';
    return 1;
}
