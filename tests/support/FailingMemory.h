#pragma once

#include <gtest/gtest.h>
#include <lumcommon/lumcommon.h>
#include <support/DataRows.h>
#include <support/Utf8.h>

#include <functional>
#include <istream>
#include <memory>
#include <new>
#include <optional>
#include <set>
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

/// What an operation that keeps nothing needs: names that it has interned are gone when it runs again.
struct Names {
    Names() { LumCommon::LumNameTable::addRefSharedNameTable(); }
    ~Names() { LumCommon::LumNameTable::releaseSharedNameTable(); }
};

/// A row of a table in which `Object` is what each operation uses.
template <class Object = Names>
struct MemoryRow {
    const char* fault;  // what it catches
    std::string (*operation)(Object& object);
    const char* input = nullptr;  // the object is made of it, if there is one
};

template <class Object, std::size_t count>
void forEveryFailure(const MemoryRow<Object> (&rows)[count]) {
    for (const MemoryRow<Object>& row : rows) {
        SCOPED_TRACE(row.fault);
        const auto make = [&row] {
            if constexpr (std::is_constructible_v<Object, const char*>)
                return std::make_unique<Object>(row.input);
            else
                return std::make_unique<Object>();
        };
        forEveryFailure(make, [&row](auto& object) { return row.operation(*object); });
    }
}

/// The same for each row of a file: fault | operation | what is given to it ... Every operation must have a row.
inline void forEveryFailureOfRows(const std::string& file, const Operations& operations) {
    std::set<std::string> used;
    for (const Fields& row : readTextRows(file)) {
        SCOPED_TRACE(utf8(row[0]));
        Fields given;  // copies of these need memory
        for (std::size_t i = 2; i < row.size(); ++i) given.emplace_back(false, row[i].getBuffer(), row[i].length());
        const auto& operation = *operations.find(utf8(row[1]));
        used.insert(operation.first);
        forEveryFailure([] { return std::make_unique<Names>(); }, [&](auto&) { return operation.second(given); });
    }
    EXPECT_EQ(used.size(), operations.size()) << "an operation without rows";
}

/// For an operation that tells by its result whether it was done.
inline void insist(bool isDone) {
    if (!isDone) throw std::bad_alloc();
}

/// What a stream delivers; a failure when it is null or bad.
inline std::string contentOrFailure(std::istream* in) {
    insist(in);
    std::string content;
    do {
        const std::size_t before = content.size();
        content.resize(before + 512);
        in->read(content.data() + before, 512);
        content.resize(before + static_cast<std::size_t>(in->gcount()));
    } while (in->good());
    insist(!in->bad());
    return content;
}

}  // namespace LumTest
