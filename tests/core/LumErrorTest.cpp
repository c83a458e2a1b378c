#include <gtest/gtest.h>
#include <lumcommon/core/LumError.h>
#include <support/Utf8.h>

#include <stdexcept>
#include <tuple>

namespace {

using namespace LumCommon;
using LumTest::utf8;

template <class Action>
LumError errorOf(Action action) {
    try {
        action();
    } catch (const LumError& error) {
        return error;
    }
    ADD_FAILURE() << "nothing was thrown";
    return LumError(0, UnicodeString(), UnicodeString(), -1, -1, UnicodeString());
}

TEST(LumError, commonErrorsCarryTheTextOfTheirCode) {
    struct Case {
        const char* fault;
        int code;
        const char16_t* arg1;
        const char16_t* arg2;
        const char* message;
    };
    static constexpr Case cases[] = {
        {"argument's name lost", 0x803, u"newChild", u"", "SYSTEM ERROR: newChild is null."},
        {"no stand-in for a missing name", 0x803, u"", u"", "SYSTEM ERROR: arg is null."},
        {"code without text falls to a neighbour", 0x804, u"a", u"", "SYSTEM ERROR: LumErrorCodeLumLIB"},
        {"gap in the codes falls to a neighbour", 0x805, u"a", u"", "SYSTEM ERROR: LumErrorCodeLumLIB"},
        {"node type not named", 0x80B, u"Document", u"", "SYSTEM ERROR: Cannot set a value on node type: Document"},
        {"stand-in used where a full stop belongs", 0x80B, u"", u"", "SYSTEM ERROR: Cannot set a value on node type."},
        {"names swapped", 0x80F, u"a", u"b", "SYSTEM ERROR: End tag 'a' does not match the start tag 'b'."},
        {"stand-in used for an empty tag name", 0x80F, u"", u"b",
         "SYSTEM ERROR: End tag '' does not match the start tag 'b'."},
        {"marker inside an argument filled in", 0x80F, u"%2%n", u"%1",
         "SYSTEM ERROR: End tag '%2%n' does not match the start tag '%1'."},
        {"text of the other family", 0x1003, u"f", u"", "SYSTEM ERROR: LumErrorCodeLumLIB"},
        {"search ends past the table", 0xFFFF, u"", u"", "SYSTEM ERROR: LumErrorCodeLumLIB"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.fault << ", code " << c.code);
        const LumError e = errorOf([&] {
            throwCommonError(static_cast<LumErrorCodeLumLIB>(c.code), LumCommonErrorSource::NodeAppendChild, c.arg1,
                             c.arg2);
        });
        EXPECT_EQ(e.code, c.code);
        EXPECT_EQ(utf8(e.getMessage()), c.message);
        EXPECT_EQ(utf8(e.source), "LumCommon::LumNode::appendChild");
        EXPECT_EQ(std::tuple(e.line, e.column, utf8(e.location)), std::tuple(-1, -1, std::string()));
    }
}

TEST(LumError, ioErrorsNameTheFileWhereTheirTextDoes) {
    static constexpr std::pair<int, const char*> cases[] = {
        {0x803, "LumErrorCodeIO"},
        {0x1003, "Cannot open file: f"},
        {0x1008, "LumErrorCodeIO"},
        {0x100D, "Cannot remove temporary file: f"},
        {0x100E, "Cannot create temporary file: f"},
    };
    for (const auto& [code, message] : cases) {
        SCOPED_TRACE(code);
        const LumError e = errorOf(
            [&, c = code] { throwCommonError(static_cast<LumErrorCodeIO>(c), LumCommonErrorSource::TempFile, u"f"); });
        EXPECT_EQ(e.code, code);
        EXPECT_EQ(utf8(e.message), message);
        EXPECT_EQ(utf8(e.source), "LumCommon::LumTempFile");
    }
}

TEST(LumError, sourcesAreTheDocumentedTexts) {
    static constexpr std::pair<int, const char*> cases[] = {
        {0, "LumCommon::LumDocument::loadNextNode"},
        {14, "LumCommon::XmlParserImpl::isEmptyElementTag"},
        {20, "LumCommon::XmlSerializerImpl::startDocumen"},
        {22, "LumCommon::XmlSerializerImpl::endTagt"},
        {23, ""},
        {24, "LumCommon::XmlSerializerImpl::checkStream"},
        {25, ""},
        {26, "LumCommon::LumMemStream"},
        {27, "LumCommon::LumTempFile"},
        {-1, ""},
        {28, ""},
        {1 << 30, ""},
    };
    for (const auto& [source, text] : cases) {
        EXPECT_EQ(utf8(getCommonErrorSource(static_cast<LumCommonErrorSource>(source))), text) << source;
    }
}

TEST(LumError, wrapsStandardExceptions) {
    const LumError memory(std::bad_alloc(), u"LumCommon::X::load");
    EXPECT_EQ(std::tuple(memory.code, utf8(memory.getMessage()), utf8(memory.source)),
              std::tuple(0x801, std::string("Out of memory."), std::string("LumCommon::X::load")));
    const LumError other(std::runtime_error("disk gone"), u"");
    EXPECT_EQ(std::tuple(other.code, utf8(other.getMessage()), other.line, other.column),
              std::tuple(0x802, std::string("C++ exception: disk gone"), -1, -1));
}

TEST(LumError, positionIsDescribedPieceByPiece) {
    struct Case {
        const char* fault;
        int line, column;
        const char16_t* location;
        const char *position, *message;
    };
    static constexpr Case cases[] = {
        {"line end added without a position", -1, -1, u"", "", "m"},
        {"separator dropped when the location is empty", 12, 5, u"", "Line 12, Col 5, ", "m\nLine 12, Col 5, "},
        {"location not last", 12, 5, u"a.fo", "Line 12, Col 5, a.fo", "m\nLine 12, Col 5, a.fo"},
        {"location alone ignored", -1, -1, u"a.fo", "a.fo", "m\na.fo"},
        {"zero taken for unknown", 0, -1, u"", "Line 0, ", "m\nLine 0, "},
        {"other negative numbers taken for unknown", -1, INT32_MIN, u"", "Col -2147483648, ", "m\nCol -2147483648, "},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        LumError e(1, u"m", u"", c.line, c.column, c.location);
        EXPECT_EQ(utf8(e.getPositionDescription()), c.position);
        EXPECT_EQ(utf8(e.getMessage()), c.message);
        e.setMessage(UnicodeString(u"p: ") + e.getMessage());
        EXPECT_EQ(utf8(e.message), "p: m") << "the position is doubled";
    }
}

TEST(LumError, appendMessageStartsALineOnlyAfterText) {
    LumError e(1, u"", u"", -1, -1, u"");
    e.appendMessage(u"");
    EXPECT_EQ(utf8(e.message), "");
    e.appendMessage(u"a");
    EXPECT_EQ(utf8(e.message), "a");
    e.appendMessage(e.message);
    EXPECT_EQ(utf8(e.message), "a\na") << "a message appended to itself";
}

}  // namespace
