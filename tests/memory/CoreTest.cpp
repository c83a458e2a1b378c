// What core/ does when memory runs out.

#include <lumcommon/bridge/LumException.h>
#include <lumcommon/bridge/LumPrint.h>
#include <lumcommon/core/detail/PlatformText.h>
#include <support/FailingMemory.h>

namespace {

using namespace LumCommon;
using LumTest::utf8;

const UnicodeString longText(u"a text that does not fit into the string object itself and so needs memory");

/// A copy of it needs memory.
UnicodeString borrowed() { return UnicodeString(false, longText.getBuffer(), longText.length()); }

const LumTest::MemoryRow<> rows[] = {
    {"a part of the message is lost",
     [](auto&) {
         LumError error(1, borrowed(), borrowed(), 1, 2, borrowed());
         error.appendMessage(borrowed());
         error.setMessage(error.getMessage());
         return utf8(error.getMessage()) + utf8(error.source);
     }},
    {"the exception's text is lost",
     [](auto&) { return utf8(LumError(std::runtime_error(std::string(100, 'x')), borrowed()).getMessage()); }},
    {"the error lacks its argument",
     [](auto&) {
         try {
             throwCommonError(LumErrorCodeIO::CannotOpen, LumCommonErrorSource::TempFile, longText);
         } catch (const LumError& error) {
             if (error.code != static_cast<unsigned>(LumErrorCodeIO::CannotOpen)) throw;
             return utf8(error.getMessage());
         }
     }},
    {"the message is empty, as that of a malformed pattern",
     [](auto&) { return utf8(LumMessage(u"It's {1} and {0}", borrowed(), longText)); }},
    {"the copy in another charset is empty or short",
     [](auto&) {
         LumCStr text(borrowed());
         return text.getMBString("windows-1252") + text.getMBString();
     }},
    {"the path is empty",
     [](auto&) { return utf8(detail::fromPlatformText(detail::toPlatformPath(longText)->c_str())); }},
    {"a text, a path or a position is lost on its way to the standard library",
     [](auto&) {
         const UnicodeString message(false, u"m\nTEXT, 'a resource whose name needs memory', Line 1, Col 2.", 60);
         const LumException told(LumError(0x1801, message, u"LumCommon::XmlParserImpl", -1, -1, {}));
         return told.what() + toUtf8(told.getPosition()) + toUtf8(told.getError()) + toUtf8(toText(toUtf8(longText))) +
                uriToPath(pathToUri("/a folder/of a file/whose path needs memory")).native();
     }},
};

TEST(CoreMemory, failsAloud) { LumTest::forEveryFailure(rows); }

}  // namespace
