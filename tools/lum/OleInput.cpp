#include "OleInput.h"

#include "Input.h"

namespace LumTool {

using namespace LumCommon;

OleInput::OleInput(const std::string& file) : in_(openInput(file)), io_(in_.get()) {
    file_.setAcceptsLooseFiles(true);
    if (!file_.OLEopen(&io_)) failBecause(file + " is no compound file", whatElse(*in_));
}

}  // namespace LumTool
