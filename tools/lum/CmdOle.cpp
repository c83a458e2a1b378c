#include <lumcommon/containers/LumOleStreamBuf.h>
#include <lumcommon/containers/OleStream.h>
#include <lumcommon/core/LumError.h>

#include "Command.h"
#include "Input.h"
#include "OleInput.h"
#include "Output.h"
#include "Progress.h"
#include "Words.h"

namespace LumTool {
namespace {

using namespace LumCommon;

struct Arguments {
    std::string file;
    std::vector<std::string> names;
};

void describeStream(Syntax& syntax, Arguments& arguments) {
    syntax.required("file", arguments.file, OleInput::help);
    syntax.required("name", arguments.names, "The names of the storages and the stream, from the root");
}

/// For each entry the storage that contains it; -1 for the root and for entries that no storage leads to.
std::vector<long> findParents(const OleCompFile& file) {
    const auto count = static_cast<std::size_t>(file.getDirCount());
    std::vector<long> parents(count, -1);
    std::vector<bool> isMet(count);
    std::vector<std::pair<long, long>> waiting{{0, -1}};  // an entry and its parent
    while (!waiting.empty()) {
        const auto [index, parent] = waiting.back();
        waiting.pop_back();
        const OleDirInfo* const entry = file.getDirInfo(index);
        if (!entry || isMet[static_cast<std::size_t>(index)]) continue;
        isMet[static_cast<std::size_t>(index)] = true;
        parents[static_cast<std::size_t>(index)] = parent;
        waiting.emplace_back(entry->getLeft(), parent);
        waiting.emplace_back(entry->getRight(), parent);
        waiting.emplace_back(entry->getChild(), index);
    }
    return parents;
}

void list(const std::string& path) {
    OleInput file(path);
    const std::vector<long> parents = findParents(*file);
    for (long i = 0; i < file->getDirCount(); ++i) {
        const OleDirInfo* const entry = file->getDirInfo(i);
        if (entry->getType() == OleDirInfo::EMPTY) continue;
        printJson({{"index", i},
                   {"name", toUtf8(entry->getName())},
                   {"type", static_cast<int>(entry->getType())},
                   {"size", entry->getSize()},
                   {"startSector", entry->getStartSector()},
                   {"left", entry->getLeft()},
                   {"right", entry->getRight()},
                   {"child", entry->getChild()},
                   {"parent", parents[static_cast<std::size_t>(i)]},
                   {"typeName", wordOfOleEntry(entry->getType())}});
    }
}

void cat(const Arguments& arguments) {
    OleInput file(arguments.file);
    const OleDirPath path(arguments.names);
    const auto close = [&file](OleStream* opened) { file->OLEcloseStream(opened); };
    const std::unique_ptr<OleStream, decltype(close)> stream(file->OLEopenStream(&path), close);
    if (!stream) {
        std::string name;
        for (const std::string& component : arguments.names) name += name.empty() ? component : "/" + component;
        failBecause(arguments.file + " has no stream " + name);
    }
    const Progress progress(arguments.file, Progress::Output::Standard);
    LumOleStreamBuf buffer(stream.get(), -1);
    std::istream in(&buffer);
    if (copyToOutput(in) < stream->GetStreamSize()) {
        throwCommonError(LumErrorCodeIO::UnexpectedEnd, LumCommonErrorSource::Unnamed25);
    }
}

}  // namespace

Command makeOleCommand() {
    return {"ole",
            "Look into a compound file",
            {},
            {},
            {makeCommand("list", "Print the entries, one JSON object per entry", "file", OleInput::help, list),
             makeCommand("cat", "Write the bytes of a stream", describeStream, cat)}};
}

}  // namespace LumTool
