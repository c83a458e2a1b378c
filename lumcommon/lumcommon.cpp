#include <lumcommon/lumcommon.h>

#include <unicode/uclean.h>

namespace LumCommon {

int getLibVersion() { return 309; }

void cleanup() {
    LumNameTable::cleanup();
    LumUtil::cleanup();
    LumLang::cleanup();
    MathMLName::cleanup();
    SVGName::cleanup();
    u_cleanup();
}

}  // namespace LumCommon
