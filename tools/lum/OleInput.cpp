#include "OleInput.h"

#include <lumcommon/core/LumError.h>

#include "Input.h"
#include "Output.h"

namespace lum {

using namespace LumCommon;

OleInput::OleInput(const std::string& file) : in_(openInput(file)), io_(in_.get()) {
    file_.setAcceptsLooseFiles(true);
    if (!file_.OLEopen(&io_)) {
        throwCommonError(LumErrorCodeIO::CannotOpen, LumCommonErrorSource::Unnamed25, fromArgument(file));
    }
}

}  // namespace lum
