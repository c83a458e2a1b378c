#pragma once

#include <gtest/gtest.h>
#include <lumcommon/names/LumNameTable.h>

#include <cstddef>
#include <functional>
#include <istream>
#include <memory>
#include <new>
#include <optional>
#include <string>

// What happens when memory runs out, at every place where it can. The program test_memory replaces malloc and its
// kin (FailingMemory.cpp), which also serve operator new, ICU, zlib and the C library, and it is linked with the
// objects of the library, where each small object is an allocation of its own.

namespace LumTest {

struct MemoryLaw {
    std::function<void()> make;
    std::function<std::string()> use;
    std::function<void()> drop;
    void hold() const;
};

/// The law of memory, for each allocation of `use`: when it fails, alone or with all after it, `use` still gives what
/// it gives otherwise or throws std::bad_alloc, or LumError 0x801 (0x1006, 0x1007 for a stream that is bad); then the
/// object gives the same when used again, and nothing has leaked.
/// @param make  makes what is used, with memory enough; what it returns is destroyed after each round.
/// @param use   (object&) tells in a string everything that it got from the object. When an operation says in another
///              way that it failed (null, the bad state of a stream), `use` throws std::bad_alloc. It starts with what
///              the object's header asks for after a failure, as rewinding.
template <class Make, class Use>
void forEveryFailure(Make make, Use use) {
    std::optional<decltype(make())> object;
    MemoryLaw{[&] { object.emplace(make()); }, [&] { return use(*object); }, [&] { object.reset(); }}.hold();
}

/// The same for an operation that keeps nothing.
template <class Operation>
void forEveryFailure(Operation operation) {
    MemoryLaw{[] {}, operation, [] {}}.hold();
}

struct MemoryRow {
    const char* fault;  // what it catches
    std::string (*operation)();
};

/// The same for each row. Names that an operation has interned are gone when it runs again.
template <std::size_t count>
void forEveryFailure(const MemoryRow (&rows)[count]) {
    struct Names {
        LumCommon::LumNameTable* table = LumCommon::LumNameTable::addRefSharedNameTable();
        ~Names() { LumCommon::LumNameTable::releaseSharedNameTable(); }
    };
    for (const MemoryRow& row : rows) {
        SCOPED_TRACE(row.fault);
        forEveryFailure([] { return std::make_unique<Names>(); }, [&row](auto&) { return row.operation(); });
    }
}

/// What a stream delivers; a failure when it is null or bad.
inline std::string contentOrFailure(std::istream* in) {
    if (!in) throw std::bad_alloc();
    std::string content;
    do {
        const std::size_t before = content.size();
        content.resize(before + 512);
        in->read(content.data() + before, 512);
        content.resize(before + static_cast<std::size_t>(in->gcount()));
    } while (in->good());
    if (in->bad()) throw std::bad_alloc();
    return content;
}

}  // namespace LumTest
