#include <lumcommon/bridge/LumException.h>
#include <lumcommon/core/detail/CheckedText.h>

namespace LumCommon {

LumException::LumException(const LumError& error)
    : std::runtime_error(detail::utf8Of(error.getMessage())),
      held_(std::make_shared<const Held>(
          // Member by member, as a plain copy of the error would lose its texts when memory runs out.
          Held{LumError(error.code, error.message, error.source, error.line, error.column, error.location),
               positionOf(error)})) {}

LumException::~LumException() = default;

}  // namespace LumCommon
