// lum: a command line tool that shows the library at work.

#include <lumcommon/lumcommon.h>

#include "Command.h"
#include "Input.h"
#include "Limits.h"
#include "Output.h"

#include <clocale>
#include <cstdio>
#include <iostream>
#include <new>
#include <string>

namespace LumTool {
#define LUM_COMMAND(name) Command make##name##Command();
#include "Commands.inc"
#undef LUM_COMMAND
}  // namespace LumTool

namespace {

constexpr int exitFailure = 1;
constexpr int exitUsage = 2;

/// What stands behind the message: what the tool knows, else the limit that was exceeded, else what the parser's code
/// means. Empty for other errors.
std::string reasonOf(unsigned code, const std::string& known) {
    if (!known.empty()) return known;
    if (const char* const limit = LumTool::findLimitName(code)) return "limit " + std::string(limit);
    const char* const cause = LumCommon::LumXmlErrorCode::getCause(code);
    return cause ? cause : "";
}

int report(const LumCommon::LumError& error, const std::string& known = {}) {
    const unsigned code = error.code;
    const std::string reason = reasonOf(code, known), note = reason.empty() ? "" : " (" + reason + ")";
    std::fprintf(stderr, "lum: error 0x%04X: %s%s\n", code, LumTool::toUtf8(error.getMessage()).c_str(), note.c_str());
    return exitFailure;
}

int run(int argc, char** argv) {
    const std::vector<LumTool::Command> commands{
#define LUM_COMMAND(name) LumTool::make##name##Command(),
#include "Commands.inc"
#undef LUM_COMMAND
    };
    try {
        if (LumTool::runCommandLine(argc, argv, commands)) LumTool::flushOutput();
    } catch (const LumTool::UsageError&) {
        return exitUsage;  // already reported by runCommandLine()
    } catch (const LumTool::ExplainedError& error) {
        LumTool::flushOutputQuietly();
        return report(error.error, error.reason);
    } catch (const LumCommon::LumError& error) {
        LumTool::flushOutputQuietly();
        return report(error);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        return report(LumCommon::LumError(error, {}));
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) try {
    std::setlocale(LC_ALL, "");
    std::ios_base::sync_with_stdio(false);
    LumCommon::LumUri::setFindsForeignFileUris(true);
    LumCommon::LumNameTable::addRefSharedNameTable();  // names made here stay until the end
    const int result = run(argc, argv);
    LumCommon::LumNameTable::releaseSharedNameTable();
    LumCommon::cleanup();
    return result;
} catch (const std::bad_alloc&) {  // before or after everything else
    std::fputs("lum: error 0x0801: Out of memory.\n", stderr);
    return exitFailure;
}
