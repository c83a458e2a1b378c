#include <lumcommon/lumcommon.h>

#include "Command.h"
#include "Output.h"

namespace lum {
namespace {

struct Arguments {};

void describe(Syntax&, Arguments&) {}

void run(const Arguments&) { printLine(std::to_string(LumCommon::getLibVersion())); }

}  // namespace

Command makeVersionCommand() { return makeCommand("version", "Print the version of the library", describe, run); }

}  // namespace lum
