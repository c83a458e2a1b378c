// What streams/ does when memory runs out.

#include <support/Deflated.h>
#include <support/FailingMemory.h>
#include <support/TempFolder.h>

namespace {

using namespace LumCommon;
using LumTest::contentOrFailure;
using LumTest::insist;
using LumTest::utf8;

std::string repeated(const std::string& text, int times) {
    std::string result;
    for (int i = 0; i < times; ++i) result += text + std::to_string(i);
    return result;
}
const std::string text = repeated("some text that can be compressed ", 500);
const std::string shiftJis = repeated(
    "\x93\xFA\x96{\x8C\xEA\x82\xCC\x83"
    "e\x83L\x83X\x83g",
    500);
const std::string gzip = LumTest::deflated(text, LumTest::Wrapper::GZIP);
const std::string raw = LumTest::deflated(text, LumTest::Wrapper::RAW);

/// Streams that were made with memory enough.
struct Made {
    LumStrStream inner{raw.data(), raw.size(), false};
    LumInflaterStream inflater{raw.data(), raw.size(), true};
    LumMemStream memory{nullptr, 256};

    Made() { memory.rdbuf()->setSource(&inner, false); }
};

TEST(StreamsMemory, failsAloud) {
    static const LumTest::TempFolder folder;
    LumTest::writeFile(folder.getPath() + "text.gz", gzip);
    const LumTest::MemoryRow<Made> rows[] = {
        {"the text ends early, or is read in another charset",
         [](Made&) {
             LumStrStream in(shiftJis.data(), shiftJis.size(), false);
             LumKobStream known(&in, "shift_jis");
             insist(known.is_open());
             const std::string first = contentOrFailure(&known);
             // Recognised without ICU's detector, which crashes when one of its allocations fails.
             LumStrStream utf8(text.data(), text.size(), false);
             LumKobStream detected(&utf8, nullptr);
             insist(detected.is_open());
             return first + contentOrFailure(&detected);
         }},
        {"what is written in another charset is lost",
         [](Made&) {
             const std::u16string units(3000, u'\u65E5');
             std::ostringstream target;
             LumKobOStreamBuf buffer(&target, "ISO-2022-JP", false, LumKobOStreamBuf::LF_KEEP, false);
             std::ostream out(&buffer);
             out.write(reinterpret_cast<const char*>(units.data()), 6000).flush();
             insist(out.good());
             buffer.writeRawBuffer("raw", 3);
             LumStrStream in(text.data(), text.size(), false);
             buffer.writeRawStream(in);
             buffer.term();
             insist(target.good());
             return target.str();
         }},
        {"inflated data end early",
         [](Made&) {
             LumStrStream in(gzip.data(), gzip.size(), false);
             LumGzipStream member(in);
             LumGzipStream file((folder.getPath() + "text.gz").c_str());
             insist(file.is_open());
             return contentOrFailure(&member) + contentOrFailure(&file);
         }},
        {"the inflater does not start over",
         [](Made& made) {
             made.inflater.reset();
             return contentOrFailure(&made.inflater);
         }},
        {"compressed data are lost",
         [](Made&) {
             std::ostringstream target;
             {
                 LumGzipOStreamBuf buffer(target);
                 std::ostream out(&buffer);
                 out.write(text.data(), static_cast<std::streamsize>(text.size()));
                 out.flush();
                 insist(out.good() && target.good());
             }
             return target.str();
         }},
        {"a source is read with a gap, or twice",
         [](Made& made) {
             made.memory.clear();
             made.memory.seekg(0);
             std::string told = contentOrFailure(&made.memory);
             insist(told.size() == made.memory.rdbuf()->length());
             return told;
         }},
        {"a source that broke looks like one that ended",
         [](Made&) {
             LumInflaterStream in(raw.data(), raw.size(), false);
             LumMemStream memory(&in, 256);
             return contentOrFailure(&memory);
         }},
        {"a source that is taken over is lost, or deleted twice",
         [](Made&) {
             LumMemStream first(new std::istringstream(text), 256, true);
             LumMemStream second(nullptr, 256);
             second << "before it ";
             insist(second.good());
             second.rdbuf()->setSource(new std::istringstream(text), true);
             return contentOrFailure(&first) + contentOrFailure(&second);
         }},
        {"written, copied or found bytes are others",
         [](Made&) {
             LumMemStream memory(nullptr, 256);
             memory.write(text.data(), static_cast<std::streamsize>(text.size()));
             LumStrStream in(text.data(), text.size(), true);
             insist(memory.good() && memory.rdbuf()->copyStream(in, text.size()) == text.size());
             LumMemStream copy(memory);
             insist(copy.rdbuf()->searchSeek("compressed 300"));
             copy.rdbuf()->trim(text.size() * 3 / 2);
             std::string all;
             copy.rdbuf()->appendToString(all);
             return all + contentOrFailure(&copy);
         }},
        {"the temporary file has no name, or lacks bytes",
         [](Made&) {
             LumTempFile file((folder.getPath() + "a-long-name-of-a-folder").c_str(), "prefix", ".suffix");
             insist(file.inflate(reinterpret_cast<const unsigned char*>(raw.data()), raw.size()));
             std::ifstream in(utf8(file.getFileName()));
             insist(in.is_open());
             return contentOrFailure(&in) + std::to_string(utf8(LumTempFile::getTempDirectory()).empty());
         }},
    };
    LumTest::forEveryFailure(rows);
}

}  // namespace
