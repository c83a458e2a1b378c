#include <lumcommon/lumcommon.h>

#include <unicode/uclean.h>

namespace LumCommon {

int getLibVersion() { return LUM_VERSION_MAJOR * 100 + LUM_VERSION_MINOR; }

void cleanup() {
    LumNameTable::cleanup();
    LumUtil::cleanup();
    LumLang::cleanup();
    MathMLName::cleanup();
    SVGName::cleanup();
    u_cleanup();
}

}  // namespace LumCommon
