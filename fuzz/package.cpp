// Any bytes may claim to be an office package. The first byte chooses the pieces in which the reader gets them.
// Laws: if a package has one of the known kinds, its main part exists; asking again gives the same answer or the same
// error; all ways of reading agree; a source has a target mode for every id.

#include <lumcommon/containers/LumZipFile.h>
#include <lumcommon/core/LumError.h>
#include <lumcommon/streams/LumMemStream.h>
#include <lumcommon/streams/LumStrStream.h>

#include <string_view>

#include "FuzzSupport.h"

using namespace LumCommon;
using LumFuzz::Choices;
using LumFuzz::Digest;

namespace {

constexpr unsigned maxSources = 64;  // whose relationships are read; more would be slow and show nothing new

/// What the action adds, or the error that it throws.
template <class Action>
Digest outcomeOf(Action action) {
    Digest digest;
    try {
        action(digest);
    } catch (const LumError& error) {
        FUZZ_LAW(error.code != 0);
        digest = Digest();
        digest.add(error.code);
        digest.add(error.message);
    }
    return digest;
}

/// Runs the action twice: a failure must repeat itself, and a result must stay the same.
template <class Action>
void addTwice(Digest& digest, Action action) {
    const Digest first = outcomeOf(action);
    FUZZ_LAW(outcomeOf(action) == first);
    digest = outcomeOf([&](Digest& all) {
        all = digest;
        all.add(1);
        action(all);
    });
}

void addRelationships(LumZipFile& zip, LumZipFileEntry* source, Digest& digest) {
    zip.makeRelationships(source);
    for (const char16_t* id : {u"rId1", u"r1", u"a", u""}) {
        const UnicodeString target = zip.getRelationshipTargetFromId(id, source);
        const UnicodeString mode = zip.getRelationshipTargetMode(id, source);
        FUZZ_LAW(!target.isBogus() && !mode.isEmpty());
        digest.add(target);
        digest.add(mode);
    }
    digest.add(zip.getRelationshipTargetFromType(u"t", source));
}

Digest readPackage(std::istream& in) {
    Digest digest;
    LumZipFile zip(&in, false);
    addTwice(digest, [&](Digest& found) {
        const int kind = zip.detectOOXDocument();
        FUZZ_LAW(kind >= 0 && kind <= 16 && (kind == 0 || zip.getOfficeDocument()));
        found.add(static_cast<std::uint64_t>(kind));
    });
    addTwice(digest, [&](Digest& found) { addRelationships(zip, nullptr, found); });
    for (unsigned i = 0; i < zip.getFileEntryCount(); ++i) {
        LumZipFileEntry* const entry = zip.getFileEntry(i);
        digest.add(entry->getFileName());
        if (i < maxSources) addTwice(digest, [&](Digest& found) { addRelationships(zip, entry, found); });
        addTwice(digest, [&](Digest& found) {
            found.add(zip.getContentType(entry));
            FUZZ_LAW(zip.getContentType(entry) == entry->getContentType());
        });
    }
    FUZZ_LAW(zip.getContentType(nullptr).isEmpty());
    return digest;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Choices input(data, size);
    const unsigned how = input.byte();
    const std::string_view bytes(reinterpret_cast<const char*>(input.data()), input.size());
    LumStrStream whole(bytes.data(), bytes.size(), true);  // a heap block of its exact size
    const Digest first = readPackage(whole);
    LumFuzz::PieceBuffer pieces(input.data(), input.size(), 1 + (how & 15u), 1 + (how >> 4));
    std::istream source(&pieces);
    LumMemStream memory(&source, 1 + how);
    FUZZ_LAW(readPackage(memory) == first);
    return 0;
}
