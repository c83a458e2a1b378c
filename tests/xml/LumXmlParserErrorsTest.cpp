// What the parser says about documents that are not well-formed: code, message and position, thrown and called back.

#include <gtest/gtest.h>

#include "support/ExpectError.h"
#include "support/Sweeps.h"
#include "support/XmlEvents.h"

namespace {

using namespace LumTest;

struct ErrorRow {
    unsigned code;
    std::string document, message, position;
    ParserSetup setup;
};

std::vector<ErrorRow> readErrorRows() {
    std::vector<ErrorRow> rows;
    for (const std::vector<std::string>& row : readEscapedRows("xml/errors.txt", 6)) {
        const MarkedDocument document = readMarks(row[1]);
        EXPECT_EQ(document.positions.size(), 1u) << row[1];
        const int column = document.positions.front().column + std::atoi(row[4].c_str());
        rows.push_back({static_cast<unsigned>(std::stoi(row[0], nullptr, 16)), document.bytes, row[3],
                        row[2] + ", Line " + std::to_string(document.positions.front().line) + ", Col " +
                            std::to_string(column) + ".",
                        readSetup(row[5])});
    }
    return rows;
}

void parse(const ErrorRow& row, Pull how, const ParserSetup& setup, std::size_t pieceBytes,
           LumPtr<LumXmlParser>& parser) {
    PieceStream in(row.document, pieceBytes);
    parser = openParser(in, setup);
    for (int events = 0; pull(*parser, how) != LumXmlParser::END_DOCUMENT; ++events)
        if (events > 1000) throw std::runtime_error("the document does not come to an end");
}

struct Heard {
    LumPtr<LumXmlParser> parser;
    unsigned code = 0;
    std::string message, position;
};

TEST(LumXmlParserErrors, tellCodeMessageAndPositionThrownOrCalledBack) {
    for (const ErrorRow& row : readErrorRows()) {
        SCOPED_TRACE(row.document);
        for (const Pull how : {Pull::events, Pull::tokens}) {
            Heard heard;
            for (const std::size_t pieceBytes : readSizes)
                expectParserError(row.code, row.message, row.position,
                                  [&] { parse(row, how, row.setup, pieceBytes, heard.parser); });
            ParserSetup setup = row.setup;
            setup.onErrorData = &heard;
            setup.onError = [](const LumError& error, void* data) {
                auto& first = *static_cast<Heard*>(data);
                EXPECT_EQ(utf8(error.source), "LumCommon::XmlParserImpl");
                EXPECT_EQ(utf8(error.getPositionDescription()), "");
                if (first.code == 0)
                    first = {first.parser, error.code, utf8(error.message),
                             utf8(first.parser->getPositionDescription())};
            };
            EXPECT_NO_THROW(parse(row, how, setup, wholeInput, heard.parser));
            const bool canGoOn = row.code == 0x181D || row.code == 0x181E;
            EXPECT_EQ(heard.code, canGoOn ? row.code | 0x600 : row.code);
            EXPECT_EQ(heard.message, row.message);
            EXPECT_EQ(heard.position, row.position);
        }
    }
}

TEST(LumXmlParserErrors, stopWhenTheCallbackThrowsAndAreThrownAgainWithoutIt) {
    struct Stop {};
    PieceStream in("<a>&b;&c;</a>");
    const LumPtr<LumXmlParser> parser = openParser(in, {.onError = [](const LumError& error, void*) {
                                                       EXPECT_EQ(error.code, 0x1E1Eu);
                                                       throw Stop();
                                                   }});
    EXPECT_EQ(parser->next(), LumXmlParser::START_TAG);
    EXPECT_THROW(parser->next(), Stop);
    parser->setCallbackError(nullptr, nullptr);
    expectParserError(0x181E, "Reference to undefined entity: &c;", "ENTITY_REF, Line 1, Col 8.",
                      [&] { parser->next(); });
}

}  // namespace
