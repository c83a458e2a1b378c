#pragma once

#include <lumcommon/core/LumError.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <string>

#include "support/Utf8.h"

namespace LumTest {

/// An error as rows write it: "80B Message. in LumCommon::Source"; a position in it would show.
inline std::string describe(const LumCommon::LumError& error) {
    std::ostringstream told;
    told << std::hex << std::uppercase << error.code << ' ' << utf8(error.getMessage()) << " in " << utf8(error.source);
    return told.str();
}

/// Runs `action`, which must throw a LumError with this code, message and source.
template <class Action>
void expectError(unsigned code, const std::string& message, const std::string& source, Action action) {
    try {
        action();
        ADD_FAILURE() << "nothing thrown";
    } catch (const LumCommon::LumError& error) {
        EXPECT_EQ(error.code, code);
        EXPECT_EQ(utf8(error.getMessage()), message) << "or it tells a position";
        EXPECT_EQ(utf8(error.source), source);
    }
}

/// The same for an error of the parser, which tells its position in the message.
template <class Action>
void expectParserError(unsigned code, const std::string& message, const std::string& position, Action action) {
    expectError(code, message + "\n" + position, "LumCommon::XmlParserImpl", action);
}

}  // namespace LumTest
