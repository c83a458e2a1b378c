#include "Output.h"

#include <lumcommon/core/LumError.h>
#include <unicode/ustring.h>

#include <array>
#include <iostream>
#include <new>

namespace LumTool {

using namespace LumCommon;

namespace {

void checkOutput() {
    if (!std::cout) throwCommonError(LumErrorCodeIO::OutputFailed, LumCommonErrorSource::Unnamed25);
}

}  // namespace

UnicodeString fromArgument(const std::string& argument) {
    UErrorCode status = U_ZERO_ERROR;
    int32_t units = 0;
    u_strFromUTF8(nullptr, 0, &units, argument.data(), static_cast<int32_t>(argument.size()), &status);
    const bool isUtf8 = status == U_BUFFER_OVERFLOW_ERROR || U_SUCCESS(status);
    UnicodeString text = isUtf8 ? UnicodeString::fromUTF8(argument) : UnicodeString(argument.c_str());
    return checked(text);
}

UnicodeString& checked(UnicodeString& text) {
    if (text.isBogus()) throw std::bad_alloc();
    return text;
}

void print(std::string_view text) {
    std::cout << text;
    checkOutput();
}

void printLine(const std::string& text) { print(text + '\n'); }

void printJson(const Json& object) { printLine(object.toString()); }

std::uint64_t copyToOutput(std::istream& in) {
    std::array<char, 65536> block;
    std::uint64_t copied = 0;
    while (in.read(block.data(), block.size()), in.gcount() > 0) {
        std::cout.write(block.data(), in.gcount());
        copied += static_cast<std::uint64_t>(in.gcount());
    }
    if (in.bad()) throwCommonError(LumErrorCodeIO::InputFailed, LumCommonErrorSource::Unnamed25);
    return copied;
}

void flushOutput() {
    std::cout.flush();
    checkOutput();
}

void flushOutputQuietly() { std::cout.flush(); }

}  // namespace LumTool
