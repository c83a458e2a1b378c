// lum: the library at work on the command line.

#include <lumcommon/lumcommon.h>

#include "Command.h"
#include "Output.h"

#include <clocale>
#include <cstdio>
#include <iostream>

namespace lum {
#define LUM_COMMAND(name) void add##name##Command(CLI::App& app, Action& action);
#include "Commands.inc"
#undef LUM_COMMAND
}  // namespace lum

namespace {

constexpr int exitFailure = 1;
constexpr int exitUsage = 2;

int report(const LumCommon::LumError& error) {
    std::fprintf(stderr, "lum: error 0x%04X: %s\n", static_cast<unsigned>(error.code),
                 lum::toUtf8(error.getMessage()).c_str());
    return exitFailure;
}

int runCommandLine(int argc, char** argv) {
    CLI::App app("Shows the LumCommon library at work. \"-\" is standard input; \"--\" ends the options.", "lum");
    app.require_subcommand(1);
    lum::Action action;
#define LUM_COMMAND(name) lum::add##name##Command(app, action);
#include "Commands.inc"
#undef LUM_COMMAND
    try {
        app.parse(argc, argv);
        action();
        lum::flushOutput();
    } catch (const CLI::Error& error) {
        return app.exit(error) == 0 ? 0 : exitUsage;  // help ends this way too, with 0
    } catch (const LumCommon::LumError& error) {
        lum::flushOutputQuietly();
        return report(error);
    } catch (const std::bad_alloc& error) {
        return report(LumCommon::LumError(error, {}));
    } catch (const std::exception& error) {
        return report(LumCommon::LumError(error, {}));
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    std::setlocale(LC_ALL, "");
    std::ios_base::sync_with_stdio(false);
    LumCommon::LumNameTable::addRefSharedNameTable();  // names made here stay until the end
    const int result = runCommandLine(argc, argv);
    LumCommon::LumNameTable::releaseSharedNameTable();
    LumCommon::cleanup();
    return result;
}
