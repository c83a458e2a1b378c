// Saves a document compressed into a temporary file, and reads from memory, from callbacks and from that file:
// streams IN
// [streams]
#include <lumcommon/lumcommon.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iostream>

using namespace LumCommon;

class Notes : public LumCustomStreamController {  // the program's own source and target of bytes
public:
    int read(char* to, int room) override {
        const int count = std::min(room, static_cast<int>(rest.size()));
        std::memcpy(to, rest.data(), static_cast<std::size_t>(count));
        rest.remove_prefix(static_cast<std::size_t>(count));
        return count;
    }
    int write(const char* bytes, int count) override {
        written.append(bytes, static_cast<std::size_t>(count));
        return count;
    }
    std::string_view rest = "<note>from callbacks</note>";
    std::string written;
};

static int countElements(std::istream& in) {
    LumPtr<LumXmlParser> parser = LumXmlUtil::createXmlParser();
    parser->setInput(in, UnicodeString(), UnicodeString());
    int count = 0;
    for (auto event = parser->next(); event != LumXmlParser::END_DOCUMENT; event = parser->next())
        count += event == LumXmlParser::START_TAG;
    return count;
}

int main(int, char* argv[]) {
    std::ifstream file(argv[1], std::ios::binary);
    LumMemStream memory(&file);  // read as far as it is asked for, and kept
    const int elements = countElements(memory);
    memory.clear();
    memory.seekg(0);
    std::cout << (countElements(memory) == elements ? "read twice\n" : "?\n");

    LumPtr<LumDocument> document = makeLum<LumDocument>();
    memory.clear();
    memory.seekg(0);
    document->load(memory);
    LumTempFile temporary(nullptr, "saved", ".xml.gz");  // removes the file at the end
    {
        LumGzipOStreamBuf compressed(temporary.getFileName());
        std::ostream out(&compressed);
        document->save(out, nullptr, u"UTF-8");
        out.flush();  // completes the compressed data: nothing can follow
        std::cout << (out ? "compressed\n" : "?\n");
    }
    LumGzipStream saved(temporary.getFileName());
    std::cout << (countElements(saved) == elements ? "the same elements\n" : "?\n");

    Notes notes;
    LumCustomStreamBuf source(&notes);
    std::istream in(&source);
    LumPtr<LumDocument> note = makeLum<LumDocument>();
    note->load(in);
    LumCustomStreamBuf target(&notes);
    std::ostream out(&target);
    note->save(out, nullptr, u"UTF-8");
    out.flush();
    std::cout << notes.written.substr(notes.written.find("<note")) << '\n';
}
// [streams]
