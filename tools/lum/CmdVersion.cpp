#include <lumcommon/lumcommon.h>

#include "Command.h"
#include "Output.h"

namespace LumTool {
namespace {

void run() { printLine(std::to_string(LumCommon::getLibVersion())); }

}  // namespace

Command makeVersionCommand() { return makeCommand("version", "Print the version of the library", run); }

}  // namespace LumTool
