#include <lumcommon/lumcommon.h>

#include "Command.h"
#include "Output.h"

namespace lum {
namespace {

struct Arguments {};

void describe(CLI::App&, Arguments&) {}

void run(const Arguments&) { printLine(std::to_string(LumCommon::getLibVersion())); }

}  // namespace

void addVersionCommand(CLI::App& app, Action& action) {
    addCommand(app, action, "version", "Print the version of the library", describe, run);
}

}  // namespace lum
