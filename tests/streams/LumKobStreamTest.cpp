// Streams that convert charsets, in both directions.

#include <gtest/gtest.h>
#include <lumcommon/lumcommon.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "support/CharsetTwins.h"
#include "support/PieceStream.h"
#include "support/Recipe.h"
#include "support/Utf8.h"

namespace LumCommon {
namespace {

using LumTest::PieceStream;
using LumTest::readAll;
using LumTest::recipeBytes;
using LumTest::utf8;
using Row = std::vector<UnicodeString>;

constexpr int eof = std::char_traits<char>::eof();

/// The rows of one kind, with their fields from the second on.
std::vector<Row> rowsOf(const char16_t* kind) {
    std::vector<Row> rows;
    for (Row& row : LumTest::readRows("streams/charsets.txt")) {
        row.resize(8);
        if (row[0] == kind) rows.emplace_back(row.begin() + 1, row.end());
    }
    EXPECT_GT(rows.size(), 5u);
    return rows;
}

std::string decode(std::string_view bytes, const std::string& encoding, std::size_t pieceBytes = LumTest::wholeInput) {
    PieceStream source(bytes, pieceBytes);
    LumKobStream in(&source, encoding.c_str());
    EXPECT_TRUE(in.is_open()) << encoding;
    return readAll(*in.rdbuf());
}

/// The same by the functions below the streams, with blocks as small as one byte in and room for one character out.
std::string decodeInBlocks(std::string_view bytes, const char* encoding, unsigned blockBytes, unsigned roomBytes) {
    CConvContext context;
    EXPECT_EQ(cconvInitConvert(context, {}, "UTF-16"), 0);
    EXPECT_EQ(cconvChgCharset(context, {}, encoding), 0);
    std::string result;
    std::string room(roomBytes, '\0');
    context.output = room.data();
    context.outputCapacity = roomBytes;
    for (std::size_t at = 0; context.status == 0;) {
        const std::string block(bytes.substr(at, blockBytes));
        at += block.size();
        context.input = block.data();
        context.inputConsumed = 0;
        context.inputAvailable = static_cast<unsigned>(block.size());
        context.isLastInput = at == bytes.size();
        do {
            EXPECT_EQ(cconvConvert(context), 0);
            result.append(room, 0, context.outputProduced);
        } while (context.outputProduced > 0);
        EXPECT_EQ(context.inputConsumed, context.inputAvailable) << "input is left although there was room";
    }
    cconvTermConvert(context);
    return result;
}

/// Writes units, flushed `pieceBytes` at a time.
void write(LumKobOStreamBuf& buffer, std::string_view units, std::size_t pieceBytes) {
    for (std::size_t at = 0; at < units.size(); at += pieceBytes) {
        const auto size = static_cast<std::streamsize>(std::min(pieceBytes, units.size() - at));
        EXPECT_EQ(buffer.sputn(units.data() + at, size), size);
        EXPECT_EQ(buffer.pubsync(), 0);
    }
}

/// @param format  a charset, and what differs from the usual: "mark", "big" and a line end.
std::string encode(std::string_view units, const std::string& format, std::size_t pieceBytes) {
    const auto asks = [&format](const char* word) { return (format + " ").find(word) != std::string::npos; };
    const auto lineEnds = asks(" CRLF ") ? LumKobOStreamBuf::LF_TO_CRLF
                          : asks(" CR ") ? LumKobOStreamBuf::LF_TO_CR
                          : asks(" LF ") ? LumKobOStreamBuf::LF_TO_LF
                                         : LumKobOStreamBuf::LF_KEEP;
    std::ostringstream out;
    {
        const std::string charset = format.substr(0, format.find(' '));
        LumKobOStreamBuf buffer(&out, charset.c_str(), asks(" mark "), lineEnds, !asks(" big "));
        EXPECT_TRUE(buffer.is_open()) << charset;
        write(buffer, units, pieceBytes);
    }
    return out.str();
}

TEST(LumKobStream, agreesWithIconv) {
    for (const Row& row : rowsOf(u"twin")) {
        const std::string iconvName = utf8(row[1]), charset = utf8(row[2]);
        SCOPED_TRACE(iconvName);
        const LumTest::Twins twins = LumTest::makeTwins("charsets/" + utf8(row[0]) + ".xml", iconvName.c_str());
        const std::string_view units = LumTest::asBytes(twins.units);
        for (const std::size_t pieceBytes : {1u, 3u, 4096u}) {
            EXPECT_TRUE(decode(twins.bytes, charset, pieceBytes) == units) << pieceBytes;
        }
        for (const std::size_t pieceBytes : {3u, 4096u, 100000u}) {
            EXPECT_TRUE(row[4] == u"read" || encode(units, charset, pieceBytes) == twins.bytes) << pieceBytes;
        }
        std::istringstream source(twins.bytes);
        UnicodeString name;
        bool bom = true;
        ASSERT_TRUE(LumKobStream::detectEncoding(&source, name, bom));
        EXPECT_EQ(name, row[3]);
        EXPECT_EQ(bom, iconvName == "UTF-16");
        EXPECT_EQ(source.tellg(), 0);
        LumKobStream in(&source, nullptr);
        EXPECT_TRUE(readAll(*in.rdbuf()) == units);
    }
}

TEST(LumKobStream, recognisesMarksAndWellFormedText) {
    for (const Row& row : rowsOf(u"detect")) {
        SCOPED_TRACE(utf8(row[0]));
        std::istringstream source(recipeBytes(row[1]));
        UnicodeString name = u"untouched";
        bool bom = false;
        const bool isFound = LumKobStream::detectEncoding(&source, name, bom);
        EXPECT_TRUE(row[2] == u"?" ? name != u"UTF-8" : isFound && name == row[2]) << utf8(name);
        EXPECT_EQ(bom, row[3] == u"mark");
        EXPECT_TRUE(source.good());
    }
    UnicodeString name = u"untouched";
    bool bom = true;
    std::istringstream empty;
    EXPECT_FALSE(LumKobStream::detectEncoding(&empty, name, bom));
    EXPECT_TRUE(empty.good());
    EXPECT_FALSE(LumKobStream::detectEncoding(static_cast<std::istream*>(nullptr), name, bom));
    EXPECT_FALSE(LumKobStream::detectEncoding(LUM_TEST_DATA "/charsets/no-such-file.xml", name, bom));
    EXPECT_EQ(name, u"untouched");
    EXPECT_TRUE(bom);
    EXPECT_TRUE(LumKobStream::detectEncoding(LUM_TEST_DATA "/charsets/ru.xml", name, bom));
    EXPECT_EQ(name, u"UTF-8");
    EXPECT_FALSE(bom);
    std::istringstream twoMarks("\xEF\xBB\xBF\xEF\xBB\xBFx");
    LumKobStream in(&twoMarks, nullptr);
    EXPECT_EQ(LumTest::toUnits(readAll(*in.rdbuf())), u"\uFEFFx") << "a mark is dropped twice";
    for (const Row& row : rowsOf(u"name")) {
        EXPECT_STREQ(LumKobStreamBuf::getLibraryName(utf8(row[0]).c_str()), utf8(row[1]).c_str());
    }
}

TEST(LumKobStream, staysClosedForWhatIsNotACharset) {
    for (const char* name : {"", "no-such-charset", "../UTF-8", "UTF-8,version=1", "Shift_JIS "}) {
        SCOPED_TRACE(name);
        std::istringstream source("text");
        LumKobStream in(&source, name);
        EXPECT_FALSE(in.is_open());
        EXPECT_TRUE(in.fail());
        EXPECT_EQ(in.rdbuf()->sgetc(), eof);
        EXPECT_EQ(source.tellg(), 0);
        EXPECT_TRUE(in.rdbuf()->init("UTF-8", false)) << "a closed buffer can be opened with a better name";
        EXPECT_EQ(in.rdbuf()->sgetc(), 't');
    }
    LumKobStream nothing(nullptr, "UTF-8");
    EXPECT_TRUE(nothing.is_open());
    EXPECT_EQ(nothing.get(), eof);
    EXPECT_FALSE(LumKobStream(nullptr, nullptr).is_open());
    std::ostringstream out;
    for (const char* name : {static_cast<const char*>(nullptr), "no-such-charset", "UTF-8,version=1"}) {
        LumKobOStreamBuf buffer(&out, name, true, LumKobOStreamBuf::LF_KEEP, true);
        EXPECT_FALSE(buffer.is_open());
        EXPECT_EQ(buffer.sputn("x\0", 2), 0);
        EXPECT_EQ(buffer.pubsync(), -1);
        EXPECT_FALSE(buffer.isLimitOver());
        EXPECT_EQ(buffer.getOutputStream(), &out);
    }
    EXPECT_EQ(out.str(), "");
}

TEST(LumKobStream, replacesMalformedBytesAndNothingElse) {
    for (const Row& row : rowsOf(u"decode")) {
        SCOPED_TRACE(utf8(row[0]));
        const std::string charset = utf8(row[1]), bytes = recipeBytes(row[2]), units = recipeBytes(row[3]);
        EXPECT_EQ(decode(bytes, charset), units);
        const char* const encoding = LumKobStreamBuf::getLibraryName(charset.c_str());
        EXPECT_EQ(decodeInBlocks(bytes, encoding, 1, 16), units);
        EXPECT_EQ(decodeInBlocks(bytes, encoding, 3, 4096), units);
        EXPECT_EQ(decodeInBlocks(bytes, encoding, 9000, 18), units);
    }
}

TEST(LumKobStream, keepsSixteenBytesForPuttingBackAndEndsWhereTheSourceFails) {
    std::istringstream source(std::string(6000, 'a') + "z");
    LumKobStream in(&source, "US-ASCII");
    std::string block(4096, '\0');
    in.read(block.data(), 4096);
    EXPECT_EQ(in.get(), 'a');  // from the second block
    int steps = 0;
    while (steps < 100 && in.rdbuf()->sungetc() != eof) ++steps;
    EXPECT_EQ(steps, 17);
    const std::string rest = readAll(*in.rdbuf());
    EXPECT_EQ(rest.size(), 2u * 6001 - 4097 + 17);
    EXPECT_FALSE(in.is_open()) << "the end ends the conversion";
    EXPECT_NE(in.rdbuf()->sungetc(), eof) << "what was read last can be put back at the end";
    for (const std::size_t failAt : {0u, 5u, 5000u}) {
        PieceStream failing(std::string(9000, 'x'), 7);
        failing.getBuffer().failAfter(failAt);
        LumKobStream broken(&failing, "Shift_JIS");
        EXPECT_EQ(readAll(*broken.rdbuf()).size(), 2 * failAt);
    }
}

TEST(LumKobOStreamBuf, writesTheSameForAnyPieces) {
    for (const Row& row : rowsOf(u"encode")) {
        SCOPED_TRACE(utf8(row[0]));
        for (const std::size_t pieceBytes : {1u, 2u, 3u, 100u}) {
            EXPECT_EQ(encode(recipeBytes(row[1]), utf8(row[2]), pieceBytes), recipeBytes(row[3])) << pieceBytes;
        }
    }
}

TEST(LumKobOStreamBuf, neverPassesTheLimit) {
    for (const Row& row : rowsOf(u"limit")) {
        for (const std::size_t pieceBytes : {std::size_t{1}, LumTest::wholeInput}) {
            SCOPED_TRACE(utf8(row[0]));
            std::ostringstream out;
            LumKobOStreamBuf buffer(&out, utf8(row[1]).c_str(), false, LumKobOStreamBuf::LF_KEEP, true);
            buffer.setLimit(static_cast<unsigned>(std::stoul(utf8(row[3]))));
            for (const std::string& step : LumTest::splitAt(';', utf8(row[2]))) {
                const std::string kind = step.substr(0, step.find(' '));
                const std::string bytes = recipeBytes(UnicodeString::fromUTF8(step.substr(kind.size())));
                std::istringstream in(bytes);
                if (kind == "text" && pieceBytes == 1) write(buffer, bytes, 1);
                // Not flushed: what is raw must wait for it.
                if (kind == "text" && pieceBytes != 1) buffer.sputn(bytes.data(), std::ssize(bytes));
                if (kind == "raw") buffer.writeRawBuffer(bytes.data(), static_cast<unsigned>(bytes.size()));
                if (kind == "stream") buffer.writeRawStream(in);
            }
            EXPECT_EQ(buffer.pubsync(), 0);
            EXPECT_EQ(buffer.isLimitOver(), row[6] == u"over");
            EXPECT_EQ(buffer.getOutputLength(), std::stoul(utf8(row[5])));
            EXPECT_TRUE(out.str() == recipeBytes(row[4])) << out.str().size();
        }
    }
}

TEST(LumKobOStreamBuf, holdsBackWhatIsNotComplete) {
    std::ostringstream out;
    LumKobOStreamBuf buffer(&out, "UTF-8", false, LumKobOStreamBuf::LF_KEEP, true);
    std::string written;
    for (const Row& row : rowsOf(u"hold")) {
        write(buffer, recipeBytes(row[1]), LumTest::wholeInput);
        EXPECT_EQ(out.str(), written += recipeBytes(row[2])) << utf8(row[0]);
    }
    buffer.term();
    EXPECT_FALSE(buffer.is_open());
    EXPECT_EQ(buffer.sputc('x'), eof);
}

TEST(LumKobOStreamBuf, reportsADestinationThatFails) {
    for (const bool throws : {false, true}) {
        std::ostream out(nullptr);
        if (throws) {
            EXPECT_THROW(out.exceptions(std::ios_base::badbit), std::ios_base::failure);
        }
        LumKobOStreamBuf buffer(&out, "UTF-8", false, LumKobOStreamBuf::LF_KEEP, true);
        EXPECT_LT(buffer.sputn(std::string(60000, 'x').data(), 60000), 60000);
        EXPECT_EQ(buffer.pubsync(), 0) << "what could not be written is dropped";
    }
    LumKobOStreamBuf nowhere(nullptr, "UTF-8", false, LumKobOStreamBuf::LF_KEEP, true);
    nowhere.sputn("x\0", 2);
    EXPECT_EQ(nowhere.pubsync(), -1);
}

}  // namespace
}  // namespace LumCommon
