// What becomes of the parts of a stream whose construction fails: what it has taken over is released, and so is what it
// has made.

#include <lumcommon/streams/LumKobStream.h>
#include <lumcommon/streams/LumMemStream.h>
#include <support/FailingMemory.h>

#include <sstream>

namespace {

using namespace LumCommon;
using LumTest::contentOrFailure;

const struct {
    const char* fault;
    std::string (*operation)();
} rows[] = {
    {"the source of a memory stream is lost",
     [] {
         LumMemStream in(new std::istringstream("text"), 16, true);
         return contentOrFailure(&in);
     }},
    {"a source that is added is lost, or deleted twice",
     [] {
         LumMemStream in(nullptr, 16);
         in << "more ";
         in.rdbuf()->setSource(new std::istringstream("text"), true);
         return contentOrFailure(&in);
     }},
    {"a conversion is lost",
     [] {
         std::istringstream text("text");
         const LumKobStream in(&text, "shift_jis");
         if (!in.is_open()) throw std::bad_alloc();
         return std::string("open");
     }},
};

TEST(StreamConstructors, leakNothingWhenTheyThrow) {
    for (const auto& row : rows) {
        SCOPED_TRACE(row.fault);
        LumTest::forEveryFailure(row.operation);
    }
}

}  // namespace
